// zel pca against R, and what it says.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/tools/json_fields.h"
#include "tests/tools/run_zel.h"

namespace {

using zel_test::expectFailure;
using zel_test::JsonFields;
using zel_test::readBytes;
using zel_test::runZel;
using zel_test::TempDir;
using zel_test::writeBytes;

// R 4.2.2: prcomp(USArrests, scale. = TRUE), prcomp(USArrests)
TEST(Pca, RealDataAsR) {
  const TempDir folder;
  const JsonFields json(runZel(folder, "pca '" ZEL_TEST_DATA "/USArrests.csv' --json").output);
  EXPECT_NEAR(json.number("eigenvalues/0"), 2.48024157914949406, 1e-14);
  EXPECT_NEAR(json.number("explained/3"), 0.17343008772983534 / 4, 1e-14);
  EXPECT_NEAR(json.number("cumulative/3"), 1, 1e-15);
  EXPECT_NEAR(json.number("loadings/0/1"), 0.58318363490967051, 1e-14);
  EXPECT_NEAR(json.number("loadings/0/3"), 0.54343209144568294, 1e-14);
  const JsonFields plain(
      runZel(folder, "pca '" ZEL_TEST_DATA "/USArrests.csv' --mode covariance --json").output);
  EXPECT_NEAR(plain.number("eigenvalues/0"), 7011.1148510236034781, 1e-9);
  EXPECT_NEAR(plain.number("eigenvalues/3"), 6.1642461841632024, 1e-10);
}

TEST(Pca, TableAndPicture) {
  const TempDir folder;
  const auto run = runZel(
      folder, "pca '" ZEL_TEST_DATA "/iris.csv' --mode covariance --color Species --plot x.svg");
  EXPECT_EQ("", run.errors) << "Species is not left out, it colours";
  EXPECT_NE(std::string::npos, run.output.find(R"(
  Principal components of the covariances, n = 150

       eigenvalue  explained %  cumulative %
  PC1      4.2282        92.46         92.46
  PC2      0.2427         5.31         97.77
  PC3      0.0782         1.71         99.48
  PC4      0.0238         0.52        100.00

  Loadings

                    PC1      PC2      PC3      PC4
  Sepal.Length   0.3614   0.6566  -0.5820   0.3155
)"));
  const std::string picture = readBytes(folder.file("x.svg"));
  for (const char* word : {"setosa", "virginica", "Petal.Width", "92.5 % of the variance"}) {
    EXPECT_NE(std::string::npos, picture.find(word)) << word;
  }
  writeBytes(folder.file("x.csv"), "a,b,c\n1,2,\n2,1,7\n4,4,6\n5,7,6\n3,3,7\n");
  EXPECT_EQ("1", JsonFields(runZel(folder, "pca x.csv --json").output).text("left_out"));
  EXPECT_EQ("2", JsonFields(runZel(folder, "pca x.csv --color c --plot y.svg --json").output)
                     .text("variables/1/column"));
  EXPECT_NE(std::string::npos, readBytes(folder.file("y.svg")).find("(missing)"));
  writeBytes(folder.file("x.asc"),
             "c\n3\n4\nFALSE TRUE FALSE\na b g\n1 2 1\n2 1 1\n4 4 2\n5 7 2\n");
  EXPECT_EQ(
      "(absent)",
      JsonFields(runZel(folder, "pca x.asc --color g --json").output).text("variables/2/name"))
      << "what colours is no variable, whatever the file";
}

TEST(Pca, Refusals) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "a,b,c,s\n1,2,4,u\n2,3,4,v\n3,5,4,v\n");
  const std::pair<const char*, const char*> cases[] = {
      {"",
       "x.csv, column \"c\": it is constant and so has no correlations (--column leaves it out, "
       "--mode covariance takes it)"},
      {"--column a", "--column names one column, and components take two"},
      {"--mode scaled", "--mode: \"scaled\" is neither correlation nor covariance"},
      {"--column a,b --color t",
       "--color: x.csv has no column \"t\", but these: 1 \"a\", 2 \"b\", 3 \"c\", 4 \"s\""}};
  for (const auto& [arguments, sentence] : cases) {
    expectFailure(runZel(folder, std::string("pca x.csv ") + arguments), sentence);
  }
  writeBytes(folder.file("few.csv"), "a,b\n1,\n,3\n4,5\n");
  expectFailure(runZel(folder, "pca few.csv"),
                "few.csv has fewer than two rows without a missing value");
}

}  // namespace
