// zel wavelet: sums by hand, and what it says.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/tools/json_fields.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

TEST(WaveletCommand, HaarByHand) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "t,v\n1,1\n2,3\n3,8\n");
  // Without the mean: -3, -1, 4 and a zero.
  const JsonFields json(runZel(folder, "wavelet x.csv --column v --order 1 --json").output);
  expectFields(json,
               "zeros_added 1 mean_removed 4 energy 26 energy_of_levels 26 levels/0/energy 10 "
               "levels/1/share 0.61538461538461538 levels/1/coefficients/0 -4 levels/1/scale 4 "
               "levels/2/name A2 levels/2/longest_period null",
               2.5e-15);
  const JsonFields one(runZel(folder, "wavelet x.csv --column 2 --levels 1 --json").output);
  EXPECT_EQ("A1", one.text("levels/1/name"));
}

TEST(WaveletCommand, TableAndPicture) {
  const TempDir folder;
  const auto run = runZel(folder, "wavelet '" ZEL_TEST_DATA "/sunspots.asc' --plot x.svg");
  EXPECT_EQ("", run.errors);
  // The last one is the cycle of eleven years.
  expectWords(run.output, {"mean 48.61349 removed, 223 zeros added at the end\n",
                           "  D3      8       8–16            64  212981    47.46\n"});
  expectWords(readBytes(folder.file("x.svg")), {"D9", "A9", "47.5 %", "sunspot number"});
  writeBytes(folder.file("x.csv"), "v\n5\n5\n");
  EXPECT_EQ(0, runZel(folder, "wavelet x.csv --mode zero --plot y.svg").status) << "no energy";
}

TEST(WaveletCommand, Refusals) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "a,b,c\n1,2,1e300\n2,,-1e300\n3,5,1e300\n");
  writeBytes(folder.file("short.csv"), "a\n1\n");
  expectRefusals(
      folder, "wavelet",
      {{"x.csv", "x.csv has 3 columns of numbers; --column chooses one"},
       {"x.csv --column b",
        "x.csv, column \"b\": row 2 has no value, and a transform takes a series without gaps"},
       {"x.csv --column c --plot y.svg",
        "x.csv, column \"c\": the squares of its values exceed the range of numbers"},
       {"x.csv --column a --levels 3", "--levels: 3 values have at most 2 levels"},
       {"x.csv --column a --mode mirror", "--mode: \"mirror\" is none of wrap, zero and symmetric"},
       {"short.csv", "short.csv, column \"a\": a transform takes at least two values"}});
  EXPECT_EQ("", readBytes(folder.file("y.svg"))) << "no picture";
}

}  // namespace
}  // namespace zel_test
