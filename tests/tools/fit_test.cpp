// zel fit against R, and what it says.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/json_fields.h"
#include "tests/tools/run_zel.h"

namespace {

using zel_test::expectFailure;
using zel_test::JsonFields;
using zel_test::readBytes;
using zel_test::runZel;
using zel_test::TempDir;
using zel_test::writeBytes;

#define FAITHFUL "fit '" ZEL_TEST_DATA "/faithful.csv' --x eruptions --y waiting --json"

void expectNear(const JsonFields& json, const std::string& path, double expected) {
  EXPECT_NEAR(json.number(path) / expected, 1, 1e-11) << path;
}

/// Estimate, standard error and significance of coefficient k.
void expectCoefficient(const JsonFields& json, int k, double estimate, double error,
                       double significance) {
  const std::string path = "coefficients/" + std::to_string(k) + '/';
  expectNear(json, path + "estimate", estimate);
  expectNear(json, path + "standard_error", error);
  if (significance > 0) {
    expectNear(json, path + "significance", significance);
  } else {
    EXPECT_EQ("null", json.text(path + "significance"));
  }
}

// R 4.2.2: lm, anova, cor
TEST(Fit, RealDataAsR) {
  const TempDir folder;
  const JsonFields line(runZel(folder, FAITHFUL).output);
  expectCoefficient(line, 0, 33.474397022753379, 1.15487351465522536, 7.1360146272931033e-85);
  expectCoefficient(line, 1, 10.729641395133520, 0.31475340584640998, 8.1299585066183969e-100);
  expectNear(line, "r_squared", 0.81146076097330966);
  expectNear(line, "analysis_of_variance/regression", 40643.7306008420);
  expectNear(line, "analysis_of_variance/mean_residual", 34.9755075786);
  EXPECT_EQ("270", line.text("analysis_of_variance/df_residual"));
  expectNear(line, "correlation/kendall", 0.57476735389502132);
  expectNear(line, "correlation/spearman", 0.77797205765161215);
  EXPECT_EQ("waiting", line.text("y"));

  const JsonFields power(runZel(folder, FAITHFUL " --model power").output);
  const double factor = std::exp(3.65298389935456269);
  expectCoefficient(power, 0, factor, factor * 0.017485333324286992, 0);
  expectCoefficient(power, 1, 0.49630046989675658, 0.014068792007282567, 4.2464775708050660e-103);
  EXPECT_EQ("ln y", power.text("scale"));

  const JsonFields centred(runZel(folder,
                                  "fit '" ZEL_TEST_DATA
                                  "/longley.csv' --x GNP --y Employed --model centred:2 --json")
                               .output);
  expectCoefficient(centred, 0, 65.505707225738789, 0.23831789795343100, 7.3826279748099598e-26);
  expectCoefficient(centred, 2, -2.0374582629160573e-05, 1.8759829673562902e-05,
                    0.29717475944099175);
  EXPECT_EQ("shift", centred.text("coefficients/3/name"));

  const JsonFields missing(
      runZel(folder, "fit '" ZEL_TEST_DATA "/airquality.csv' --x Temp --y Ozone --json").output);
  expectCoefficient(missing, 1, 2.4287033048700324, 0.23313184940166223, 2.9318965924778349e-18);
  EXPECT_EQ("37", missing.text("left_out"));
}

TEST(Fit, TableOfASmallFile) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "t,v\n1,2\n2,\n3,4\n4,7\n5,7\n");
  const std::string table = runZel(folder, "fit x.csv --x t --y 2 --ascii").output;
  EXPECT_TRUE(table.starts_with(R"(x.csv: v over t, 4 rows, 1 more left out for missing values

  Model line: y = intercept + slope x

              estimate  standard error  significance
  intercept  0.5428571         1.0602         0.66
  slope      1.371429          0.29692        0.0438

  fit quality (r squared)    0.914286
)")) << table;
}

/// Every model draws its picture; the curve through exact data has no residuals.
TEST(Fit, EveryModelAndItsPicture) {
  const TempDir folder;
  std::string text = "x,y\n";
  for (int i = 0; i < 9; ++i) {
    const double x = 1 + i * 0.5;
    text += std::to_string(x) + ',' + std::to_string(std::exp(-(x - 3) * (x - 3) / 2)) + '\n';
  }
  writeBytes(folder.file("x.csv"), text);
  for (const std::string model :
       {"line", "parabola", "poly:3", "centred:4", "circle", "log", "power", "exp", "recip",
        "recihyp", "recilog", "hyperbola", "hoerl", "gauss", "spline", "smooth --smoothing 0.1"}) {
    const auto run = runZel(folder, "fit x.csv --x x --y y --plot x.svg --json --model " + model);
    EXPECT_EQ("", run.errors) << model;
    const JsonFields json(run.output);
    if (model == "gauss" || model == "spline") {
      EXPECT_NEAR(json.number("root_mean_square_residual"), 0, 1e-5) << model;
    }
    EXPECT_TRUE(readBytes(folder.file("x.svg")).ends_with("</svg>\n\n")) << model;
  }
}

TEST(Fit, Refusals) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "a,b,c,s\n1,2,-1,u\n2,3,0,v\n3,5,4,v\n");
  const std::pair<const char*, const char*> cases[] = {
      {"--x a --y d", "--y: x.csv has no column \"d\", but these: 1 \"a\", 2 \"b\", 3 \"c\""},
      {"--x s --y a",
       "x.csv, line 2, column \"s\": \"u\" is not a number (a missing value is left empty or "
       "written NA, NAN or ###)"},
      {"--x c --y a --model log",
       "x.csv: the model log does not fit: all x values must be positive"},
      {"--x a --y b --model poly:3",
       "x.csv: a polynomial of degree 3 takes at least 4 rows, and there are 3"},
      {"--x a --y b --model poly:31", "--model poly:31: \"31\" is not a degree from 0 to 30"},
      {"--x a --y b --model cube",
       "--model: there is no model \"cube\", but these: line, parabola, poly:N, centred:N, circle, "
       "log, power, exp, recip, recihyp, recilog, hyperbola, hoerl, gauss, spline, smooth"},
      {"--x a --y b --plot none/x.png",
       "the picture none/x.png was not written: No such file or directory"}};
  for (const auto& [arguments, sentence] : cases) {
    expectFailure(runZel(folder, std::string("fit x.csv ") + arguments), sentence);
  }
  EXPECT_EQ(1, folder.count());
}

}  // namespace
