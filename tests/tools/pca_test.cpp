// zel pca against R, and what it says.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

using Pca = ToolTest;

// R 4.2.2: prcomp(USArrests, scale. = TRUE), prcomp(USArrests)
TEST_F(Pca, RealDataAsR) {
  const std::string command = "pca '" ZEL_TEST_DATA "/USArrests.csv' --json";
  expectFields(jsonOf(command),
               "eigenvalues/0 2.48024157914949406 explained/3 0.0433575219324588340 cumulative/3 1 "
               "loadings/0/1 0.58318363490967051 loadings/0/3 0.54343209144568294",
               1e-15);
  expectFields(jsonOf(command + " --mode covariance"),
               "eigenvalues/0 7011.1148510236034781 eigenvalues/3 6.1642461841632024", 1e-13);
}

TEST_F(Pca, TableAndPicture) {
  const auto run =
      runZel("pca '" ZEL_TEST_DATA "/iris.csv' --mode covariance --color Species --plot x.svg");
  EXPECT_EQ("", run.errors) << "Species is not left out, it colours";
  expectWords(run.output, {R"(
  Principal components of the covariances, n = 150

       eigenvalue  explained %  cumulative %
  PC1      4.2282        92.46         92.46
  PC2      0.2427         5.31         97.77
  PC3      0.0782         1.71         99.48
  PC4      0.0238         0.52        100.00

  Loadings

                    PC1      PC2      PC3      PC4
  Sepal.Length   0.3614   0.6566  -0.5820   0.3155
)"});
  expectWords(bytesOf("x.svg"), {"setosa", "virginica", "Petal.Width", "92.5 % of the variance"});
  write("x.csv", "a,b,c\n1,2,\n2,1,7\n4,4,6\n5,7,6\n3,3,7\n");
  EXPECT_EQ("1", jsonOf("pca x.csv --json").text("left_out"));
  EXPECT_EQ("2", jsonOf("pca x.csv --color c --plot y.svg --json").text("variables/1/column"));
  expectWords(bytesOf("y.svg"), {"(missing)"});
  write("x.asc", "c\n3\n4\nFALSE TRUE FALSE\na b g\n1 2 1\n2 1 1\n4 4 2\n5 7 2\n");
  EXPECT_EQ("(absent)", jsonOf("pca x.asc --color g --json").text("variables/2/name"))
      << "what colours is no variable, whatever the file";
}

TEST_F(Pca, Refusals) {
  write("x.csv", "a,b,c,s\n1,2,4,u\n2,3,4,v\n3,5,4,v\n");
  write("few.csv", "a,b\n1,\n,3\n4,5\n");
  expectRefusals(
      "pca",
      {{"x.csv",
        "x.csv, column \"c\": it is constant and so has no correlations (--column leaves it out, "
        "--mode covariance takes it)"},
       {"x.csv --column a", "--column names one column, and components take two"},
       {"x.csv --mode scaled", "--mode: \"scaled\" is neither correlation nor covariance"},
       {"x.csv --column a,b --color t",
        "--color: x.csv has no column \"t\", but these: 1 \"a\", 2 \"b\", 3 \"c\", 4 \"s\""},
       {"few.csv", "few.csv has fewer than two rows without a missing value"}});
}

}  // namespace
}  // namespace zel_test
