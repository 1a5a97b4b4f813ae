// zel fit against R, and what it says.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

using Fit = ToolTest;

// R 4.2.2: lm, anova, cor; of the power function exp() of the intercept and its error times that.
TEST_F(Fit, RealDataAsR) {
  const std::pair<const char*, std::string> fits[] = {
      {"faithful.csv' --x eruptions --y waiting", R"(
        coefficients/0/estimate 33.474397022753379
        coefficients/0/standard_error 1.15487351465522536
        coefficients/0/significance 7.1360146272931033e-85
        coefficients/1/estimate 10.729641395133520
        coefficients/1/standard_error 0.31475340584640998
        coefficients/1/significance 8.1299585066183969e-100  r_squared 0.81146076097330966
        analysis_of_variance/regression 40643.7306008420
        analysis_of_variance/mean_residual 34.9755075786  analysis_of_variance/df_residual 270
        correlation/kendall 0.57476735389502132  correlation/spearman 0.77797205765161215
        y waiting)"},
      {"faithful.csv' --x eruptions --y waiting --model power", R"(
        coefficients/0/estimate 38.589642033296599  coefficients/0/standard_error 0.67475275381710707
        coefficients/0/significance null
        coefficients/1/estimate 0.49630046989675658
        coefficients/1/standard_error 0.014068792007282567
        coefficients/1/significance 4.2464775708050660e-103)"},
      {"longley.csv' --x GNP --y Employed --model centred:2", R"(
        coefficients/2/estimate -2.0374582629160573e-05
        coefficients/2/standard_error 1.8759829673562902e-05
        coefficients/2/significance 0.29717475944099175  coefficients/3/name shift)"}};
  for (const auto& [arguments, fields] : fits) {
    SCOPED_TRACE(arguments);
    const std::string command = std::string("fit '" ZEL_TEST_DATA "/").append(arguments);
    expectFields(jsonOf(command + " --json"), fields, 1e-11);
  }
}

TEST_F(Fit, TableOfASmallFile) {
  write("x.csv", "t,v\n1,2\n2,\n3,4\n4,7\n5,7\n");
  const std::string table = runZel("fit x.csv --x t --y 2 --ascii").output;
  EXPECT_TRUE(table.starts_with(R"(x.csv: v over t, 4 rows, 1 more left out for missing values

  Model line: y = intercept + slope x

              estimate  standard error  significance
  intercept  0.5428571         1.0602         0.66
  slope      1.371429          0.29692        0.0438

  fit quality (r squared)    0.914286
)")) << table;
}

/// Every model draws its picture; the curve through exact data has no residuals.
TEST_F(Fit, EveryModelAndItsPicture) {
  std::string text = "x,y\n";
  for (int i = 0; i < 9; ++i) {
    const double x = 1 + i * 0.5;
    text += std::to_string(x) + ',' + std::to_string(std::exp(-(x - 3) * (x - 3) / 2)) + '\n';
  }
  write("x.csv", text);
  for (const std::string model :
       {"line", "parabola", "poly:3", "centred:4", "circle", "log", "power", "exp", "recip",
        "recihyp", "recilog", "hyperbola", "hoerl", "gauss", "spline", "smooth --smoothing 0.1"}) {
    const auto run = runZel("fit x.csv --x x --y y --plot x.svg --json --model " + model);
    EXPECT_EQ("", run.errors) << model;
    const JsonFields json(run.output);
    if (model == "power") {
      EXPECT_EQ("ln y", json.text("scale"));
    }
    if (model == "gauss" || model == "spline") {
      EXPECT_NEAR(json.number("root_mean_square_residual"), 0, 1e-5) << model;
    }
    EXPECT_TRUE(bytesOf("x.svg").ends_with("</svg>\n\n")) << model;
  }
}

TEST_F(Fit, Refusals) {
  write("x.csv", "a,b,c,s\n1,2,-1,u\n2,3,0,v\n3,5,4,v\n");
  expectRefusals(
      "fit x.csv",
      {{"--x a --y d", "--y: x.csv has no column \"d\", but these: 1 \"a\", 2 \"b\", 3 \"c\""},
       {"--x s --y a",
        "x.csv, line 2, column \"s\": \"u\" is not a number (a missing value is left empty or "
        "written NA, NAN or ###)"},
       {"--x c --y a --model log",
        "x.csv: the model log does not fit: all x values must be positive"},
       {"--x a --y b --model poly:3",
        "x.csv: a polynomial of degree 3 takes at least 4 rows, and there are 3"},
       {"--x a --y b --model poly:31", "--model poly:31: \"31\" is not a degree from 0 to 30"},
       {"--x a --y b --model cube",
        "--model: there is no model \"cube\", but these: line, parabola, poly:N, centred:N, "
        "circle, "
        "log, power, exp, recip, recihyp, recilog, hyperbola, hoerl, gauss, spline, smooth"},
       {"--x a --y b --plot none/x.png",
        "the picture none/x.png was not written: No such file or directory"}});
  EXPECT_EQ(1, folder.count());
}

}  // namespace
}  // namespace zel_test
