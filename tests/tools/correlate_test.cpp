// zel correlate against R, and what it says.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

using Correlate = ToolTest;

/// Compares the upper triangle, row by row, and the symmetry.
void expectCorrelations(const JsonFields& json, int k, const std::vector<double>& upper) {
  auto expected = upper.begin();
  for (int i = 0; i < k; ++i) {
    for (int j = i; j < k; ++j, ++expected) {
      const auto path = [](int a, int b) {
        return "correlation/" + std::to_string(a) + '/' + std::to_string(b);
      };
      EXPECT_EQ(json.text(path(i, j)), json.text(path(j, i)));
      if (std::isnan(*expected)) {
        EXPECT_EQ("null", json.text(path(i, j))) << path(i, j);
      } else {
        EXPECT_NEAR(*expected, json.number(path(i, j)), 2e-15) << path(i, j);
      }
    }
  }
}

// R 4.2.2: cor(iris[, 1:4])
TEST_F(Correlate, RealDataAsR) {
  const ZelRun iris = runZel("correlate '" ZEL_TEST_DATA "/iris.csv' --json");
  EXPECT_EQ(0, iris.status);
  EXPECT_TRUE(iris.errors.ends_with(": column \"Species\" is left out: it holds text\n"));
  expectCorrelations(JsonFields(iris.output), 4,
                     {1, -0.11756978413300206, 0.87175377588658320, 0.81794112627157578, 1,
                      -0.42844010433053969, -0.36612593253643910, 1, 0.96286543140279601, 1});
  expectFields(JsonFields(iris.output),
               "rows 150 variables/0/name Sepal.Length variables/1/column 2 n/3/0 150");
}

// R 4.2.2: cor(cbind(x, y, z), use = "pairwise.complete.obs"); one is constant where x is known,
// few has one value.
TEST_F(Correlate, PairsWithoutMissingValues) {
  write("x.csv",
        "x,y,z,one,few\n1,2,10,1,\n2,1,NA,1,\n,4,NA,5,\n4,NA,7,1,3\n5,3.5,7,1,\n6,6,2,1,\n"
        "7.5,5,3,1,\n");
  const JsonFields json = jsonOf("correlate x.csv --json");
  expectCorrelations(
      json, 5,
      {1, 0.87747450566564622, -0.90236475632612922, NAN, NAN,  //
       1, -0.99183659813417557, json.number("correlation/1/3"), NAN, 1, NAN, NAN, 1, NAN, NAN});
  EXPECT_NE("null", json.text("correlation/1/3"));
  expectFields(json, "n/0/1 5 n/4/4 1");
  EXPECT_EQ(R"(x.csv: 3 variables, 7 rows

  Pearson correlation, n = 1 to 7

            x     one  few
  x    1.0000  -         -
  one  -       1.0000    -
  few  -       -         -

  n, the rows in which neither value is missing

       x  one  few
  x    6    6    1
  one  6    7    1
  few  1    1    1
)",
            runZel("correlate x.csv --ascii --column 1,one,few").output);
}

// The columns of long names are numbered; the values of a double reach far.
TEST_F(Correlate, LongNamesAndExtremeValues) {
  write("x.asc",
        "Extremes\n3\n3\nFALSE TRUE FALSE\n\"with a long name\" tiny huge\n"
        "1 1e-300 -1e300\n2 2e-300 -2e300\n4 4e-300 -4e300\n");
  EXPECT_EQ(R"(x.asc: 3 variables, 3 rows
Extremes

  Pearson correlation, n = 3

                             1        2        3
  1  with a long name   1.0000   1.0000  -1.0000
  2  tiny               1.0000   1.0000  -1.0000
  3  huge              -1.0000  -1.0000   1.0000
)",
            runZel("correlate x.asc").output);
}

TEST_F(Correlate, Refusals) {
  write("one.csv", "a,b\n1,s\n2,s\n");
  write("x.csv", "a,b\n1,2\n2,3\n");
  expectRefusals(
      "correlate",
      {{"one.csv", "one.csv has one column of numbers, and a correlation takes two"},
       {"x.csv --column a --column 1", "--column names one column, and a correlation takes two"},
       {"x.csv --plot x.gif", "the picture x.gif must have a name that ends in .png or .svg"},
       {"--frobnicate", "FILE is required (zel correlate --help shows how)"}});
}

}  // namespace
}  // namespace zel_test
