// zel spectrum and zel wavelet: cosines that are known, a cycle that is, sums by hand, and what
// they say.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

using SpectrumCommand = ToolTest;
using WaveletCommand = ToolTest;

// Two cosines whose frequencies are lines of the padded transform.
TEST_F(SpectrumCommand, FindsCosines) {
  std::string text = "t,v\n";
  for (int i = 0; i < 256; ++i) {
    const double turn = 2 * std::numbers::pi * i / 1024;
    text += std::to_string(i) + ',' +
            std::to_string(7 + 3 * std::cos(100 * turn + 1) + std::cos(301 * turn - 2)) + '\n';
  }
  write("x.csv", text);
  for (const char* window : {"cos2", "gauss", "hamming", "blackman", "harris", "nuttall"}) {
    const std::string command = "spectrum x.csv --column v --sample-time 0.5 --lines 40 --json";
    const JsonFields json = jsonOf(command + " --window " + window);
    SCOPED_TRACE(window);
    expectFields(json,
                 "points 1024 lines/0/line 100 lines/0/frequency 0.1953125 lines/0/period 5.12 "
                 "lines/1/line 301",
                 1e-12);
    EXPECT_NEAR(json.number("lines/0/magnitude"), 3, 0.02);
    EXPECT_NEAR(json.number("lines/0/phase"), 180 / std::numbers::pi, 2);
    EXPECT_NEAR(json.number("lines/1/magnitude"), 1, 0.02);
    EXPECT_NEAR(json.number("lines/1/phase"), -360 / std::numbers::pi, 2);
  }
}

TEST_F(SpectrumCommand, SunspotCycle) {
  const std::string command = "spectrum '" ZEL_TEST_DATA "/sunspots.asc' ";
  const ZelRun run = runZel(command + "--plot x.svg");
  EXPECT_EQ("", run.errors);
  const JsonFields json = jsonOf(command + "--json");
  EXPECT_NEAR(json.number("lines/0/period"), 11, 0.25);
  expectWords(run.output, {"\n  line 183  0.0893555  11.191  "});
  expectWords(bytesOf("x.svg"), {"11.19"});
}

TEST_F(SpectrumCommand, ConstantsAndRefusals) {
  write("one.csv", "v\n5\n5\n5\n5\n5\n");
  expectWords(runZel("spectrum one.csv --plot y.svg").output, {"no lines: the series is constant"});
  EXPECT_NE("", bytesOf("y.svg"));
  write("x.csv", "a,b\n1,1e308\n2,-1e308\n3,1e308\n,-1e308\n");
  expectRefusals(
      "spectrum",
      {{"x.csv", "x.csv has 2 columns of numbers; --column chooses one"},
       {"x.csv --column a",
        "x.csv, column \"a\": row 4 has no value, and a transform takes a series without gaps"},
       {"x.csv --column b --sample-time 1e-320 --plot z.svg",
        "x.csv, column \"b\": its spectrum exceeds the range of numbers"},
       {"one.csv --sample-time 0", "--sample-time: it must be above 0"},
       {"one.csv --window hann",
        "--window: \"hann\" is none of rectangle, triangle, cos2, gauss, hamming, blackman, harris "
        "and nuttall"}});
  EXPECT_EQ("", bytesOf("z.svg")) << "no picture";
}

TEST_F(WaveletCommand, HaarByHand) {
  write("x.csv", "t,v\n1,1\n2,3\n3,8\n");
  // Without the mean: -3, -1, 4 and a zero.
  const JsonFields json = jsonOf("wavelet x.csv --column v --order 1 --json");
  expectFields(json,
               "zeros_added 1 mean_removed 4 levels/1/scale 4 levels/2/name A2 "
               "levels/2/longest_period null");
  expectFields(
      json,
      "energy 26 energy_of_levels 26 levels/0/energy 10 levels/1/share 0.61538461538461538 "
      "levels/1/coefficients/0 -4",
      2.5e-15);
  const JsonFields one = jsonOf("wavelet x.csv --column 2 --levels 1 --json");
  EXPECT_EQ("A1", one.text("levels/1/name"));
}

TEST_F(WaveletCommand, TableAndPicture) {
  const auto run = runZel("wavelet '" ZEL_TEST_DATA "/sunspots.asc' --plot x.svg");
  EXPECT_EQ("", run.errors);
  // The last one is the cycle of eleven years.
  expectWords(run.output, {"mean 48.61349 removed, 223 zeros added at the end\n",
                           "  D3      8       8–16            64  212981    47.46\n"});
  expectWords(bytesOf("x.svg"), {"D9", "A9", "47.5 %", "sunspot number"});
  write("x.csv", "v\n5\n5\n");
  EXPECT_EQ(0, runZel("wavelet x.csv --mode zero --plot y.svg").status) << "no energy";
}

TEST_F(WaveletCommand, Refusals) {
  write("x.csv", "a,b,c\n1,2,1e300\n2,,-1e300\n3,5,1e300\n");
  write("short.csv", "a\n1\n");
  expectRefusals(
      "wavelet",
      {{"x.csv --column c --plot y.svg",
        "x.csv, column \"c\": the squares of its values exceed the range of numbers"},
       {"x.csv --column a --levels 3", "--levels: 3 values have at most 2 levels"},
       {"x.csv --column a --mode mirror", "--mode: \"mirror\" is none of wrap, zero and symmetric"},
       {"short.csv", "short.csv, column \"a\": a transform takes at least two values"}});
  EXPECT_EQ("", bytesOf("y.svg")) << "no picture";
}

}  // namespace
}  // namespace zel_test
