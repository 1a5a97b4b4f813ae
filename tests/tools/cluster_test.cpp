// zel cluster against R and the library, and what it says.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"
#include "zel/analysis/Zel_math2.h"

namespace zel_test {
namespace {

using ClusterCommand = ToolTest;

// R 4.2.2: kmeans(scale(iris[, 1:4]), 3, nstart = 100); height and table(cutree(h, 4)) of
// h = hclust(dist(scale(USArrests)), m), m = complete, single, average, mcquitty, ward.D, and of
// hclust(dist(USArrests, "manhattan"), "complete")
TEST_F(ClusterCommand, RealDataAsR) {
  const JsonFields partition(
      runZel("cluster '" ZEL_TEST_DATA "/iris.csv' --by Species --json").output);
  expectFields(partition,
               "within 138.88835971735148 total 596 clusters/0/size 53 clusters/1/size 50 "
               "clusters/2/size 47 clusters/1/means/0 5.006 clusters/1/classes/0 50",
               1e-12);
  const std::string command = "cluster '" ZEL_TEST_DATA "/USArrests.csv' --clusters 4 --json ";
  const auto expectTree = [&](const std::string& options, const std::string& expected) {
    expectFields(jsonOf(command + options), expected, 1e-12);
  };
  expectTree("--method complete",
             "unions/48/distance 6.0766415626545776 clusters/0/size 21 clusters/1/size 11 "
             "clusters/2/size 10");
  expectTree("--method single",
             "unions/48/distance 2.058088855394264 clusters/0/size 46 clusters/1/size 2 "
             "clusters/2/size 1");
  expectTree("--method upgma",
             "unions/48/distance 3.3223616212712654 clusters/0/size 30 clusters/1/size 12 "
             "clusters/2/size 7");
  expectTree("--method average",
             "unions/48/distance 4.1908605425566741 clusters/0/size 21 clusters/1/size 13 "
             "clusters/2/size 9");
  expectTree("--method ward",
             "unions/48/distance 34.379570235990784 clusters/0/size 19 clusters/1/size 12 "
             "clusters/2/size 12");
  expectTree("--method complete --raw --distance manhattan",
             "unions/0/distance 3.9000000000000008 unions/48/distance 368.89999999999998 "
             "clusters/0/size 24 clusters/1/size 14 clusters/2/size 10");
}

TEST_F(ClusterCommand, TableAndPictures) {
  // Two groups by hand; the row without a value is left out.
  write("x.csv", "name,x,y\na,0,0\nb,10,\nc,1,0\nd,10,10\ne,0,1\nf,11,10\n");
  const ZelRun tree =
      runZel("cluster x.csv --raw --method single --clusters 2 --distance squared --plot t.svg");
  EXPECT_EQ("", tree.errors);
  expectWords(tree.output, {R"(
  single linkage, distance squared, of the values as they are, n = 5, 1 row left out for missing values
  Sum of squares within the clusters 1.83333 of 238, 99.2 % are between them

             size         x         y
  cluster 1     3   0.33333   0.33333
  cluster 2     2  10.5      10

  The last unions, by the number of clusters

          distance
  2 to 1       181
  3 to 2         1
  4 to 3         1
  5 to 4         1

  Members

  cluster 1: a, c, e
  cluster 2: d, f
)"});
  expectWords(readBytes(path("t.svg")), {">a<", "1 (3)", "2 (2)", "single linkage"});
  const ZelRun partition = runZel("cluster x.csv --clusters 2 --starts 0 --plot p.svg");
  expectWords(partition.output, {"k-means, started from the first rows, of standardised values",
                                 "cluster 2: d, f\n"});
  expectWords(readBytes(path("p.svg")), {"1 (3)", "2 (2)"});
  EXPECT_EQ(0, runZel("cluster x.csv --clusters 5 --method ward --plot all.svg").status);
  const JsonFields json(
      runZel("cluster x.csv --clusters 1 --method flexible --flexible 1 --by name --json").output);
  expectFields(json,
               "assignment/1/row 3 assignment/1/name c assignment/4/cluster 1 "
               "unions/0/first 3 unions/0/second 5 positions/8 3.375 clusters/0/classes/1 0 "
               "clusters/0/classes/2 1 within 8",
               1e-14);
}

TEST_F(ClusterCommand, Refusals) {
  write("x.csv", "a,b,c\n1,2,1e200\n2,2,-1e200\n3,2,0\n");
  expectRefusals(
      "cluster",
      {{"x.csv",
        "x.csv, column \"b\": it is constant and so cannot be standardised (--column leaves it "
        "out, --raw takes it)"},
       {"x.csv --column a --clusters 4",
        "--clusters: x.csv has only 3 rows without a missing value"},
       {"x.csv --column a --method median",
        "--method: \"median\" is none of kmeans, single, complete, ward, average, flexible and "
        "upgma"},
       {"x.csv --column a --method ward --distance cosine",
        "--distance: \"cosine\" is none of euclid, squared and manhattan"},
       {"x.csv --column a --plot x.svg", "--plot: the picture of a partition takes two columns"},
       {"x.csv --clusters 11 --plot x.svg", "--clusters: the picture has colours for 10 clusters"},
       {"x.csv --column a --by d",
        "--by: x.csv has no column \"d\", but these: 1 \"a\", 2 \"b\", 3 \"c\""},
       {"x.csv --raw", "x.csv, column \"c\": the values are too large"}});
}

}  // namespace
}  // namespace zel_test
