// zel wavelet: sums by hand, and what it says.
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

TEST(WaveletCommand, HaarByHand) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "t,v\n1,1\n2,3\n3,8\n");
  // Without the mean: -3, -1, 4 and a zero.
  const JsonFields json(runZel(folder, "wavelet x.csv --column v --order 1 --json").output);
  EXPECT_EQ("1", json.text("zeros_added"));
  EXPECT_NEAR(json.number("mean_removed"), 4, 1e-15);
  EXPECT_NEAR(json.number("energy"), 26, 1e-13);
  EXPECT_NEAR(json.number("energy_of_levels"), 26, 1e-13);
  EXPECT_NEAR(json.number("levels/0/energy"), 2 + 8, 1e-13);
  EXPECT_NEAR(json.number("levels/1/share"), 16.0 / 26, 1e-14);
  EXPECT_NEAR(json.number("levels/1/coefficients/0"), -4, 1e-14);
  EXPECT_EQ("4", json.text("levels/1/scale"));
  EXPECT_EQ("A2", json.text("levels/2/name"));
  EXPECT_EQ("null", json.text("levels/2/longest_period"));
  const JsonFields one(runZel(folder, "wavelet x.csv --column 2 --levels 1 --json").output);
  EXPECT_EQ("A1", one.text("levels/1/name"));
}

TEST(WaveletCommand, TableAndPicture) {
  const TempDir folder;
  const auto run = runZel(folder, "wavelet '" ZEL_TEST_DATA "/sunspots.asc' --plot x.svg");
  EXPECT_EQ("", run.errors);
  EXPECT_NE(std::string::npos,
            run.output.find("mean 48.61349 removed, 223 zeros added at the end\n"));
  // The cycle of eleven years.
  EXPECT_NE(std::string::npos, run.output.find("  D3      8       8–16            64  212981    "
                                               "47.46\n"))
      << run.output;
  const std::string picture = readBytes(folder.file("x.svg"));
  for (const char* word : {"D9", "A9", "47.5 %", "sunspot number"}) {
    EXPECT_NE(std::string::npos, picture.find(word)) << word;
  }
  writeBytes(folder.file("x.csv"), "v\n5\n5\n");
  EXPECT_EQ(0, runZel(folder, "wavelet x.csv --mode zero --plot y.svg").status) << "no energy";
}

TEST(WaveletCommand, Refusals) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "a,b,c\n1,2,1e300\n2,,-1e300\n3,5,1e300\n");
  writeBytes(folder.file("short.csv"), "a\n1\n");
  const std::pair<const char*, const char*> cases[] = {
      {"x.csv", "x.csv has 3 columns of numbers; --column chooses one"},
      {"x.csv --column b",
       "x.csv, column \"b\": row 2 has no value, and a transform takes a series without gaps"},
      {"x.csv --column c --plot y.svg",
       "x.csv, column \"c\": the squares of its values exceed the range of numbers"},
      {"x.csv --column a --levels 3", "--levels: 3 values have at most 2 levels"},
      {"x.csv --column a --mode mirror", "--mode: \"mirror\" is none of wrap, zero and symmetric"},
      {"short.csv", "short.csv, column \"a\": a transform takes at least two values"}};
  for (const auto& [arguments, sentence] : cases) {
    expectFailure(runZel(folder, std::string("wavelet ") + arguments), sentence);
  }
  EXPECT_EQ("", readBytes(folder.file("y.svg"))) << "no picture";
}

}  // namespace
