// zel smooth against the library, and what it says.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"
#include "zel/analysis/Zel_math2.h"

namespace zel_test {
namespace {

using SmoothCommand = ToolTest;

TEST_F(SmoothCommand, NumbersOfTheLibrary) {
  zel::TVector spots, result, taps;
  std::string comment;
  ASSERT_EQ(0, spots.ImportASC(ZEL_TEST_DATA "/sunspots.asc", comment));
  const int n = spots.NrOfElem();
  result.Resize(n);
  const std::string command = "smooth '" ZEL_TEST_DATA "/sunspots.asc' --json --method ";
  const auto expectResult = [&](const std::string& options, double factor, double offset) {
    const JsonFields json(runZel(command + options).output);
    for (int i = 1; i <= n; ++i) {
      EXPECT_DOUBLE_EQ(result(i) * factor + offset, json.number("result/" + std::to_string(i - 1)))
          << options << ' ' << i;
      EXPECT_EQ(spots(i), json.number("series/" + std::to_string(i - 1)));
    }
    return json;
  };
  zel::MovingAverageSmooth(&spots, 1, n, &result, 5);
  EXPECT_EQ("1988", expectResult("mean", 1, 0).text("row_names/288"));
  zel::MovingMedianSmooth(&spots, 1, n, &result, 11);
  EXPECT_EQ("11", expectResult("median --width 11", 1, 0).text("width"));
  zel::WeightedAverageSmooth(&spots, 1, n, &result, 5);
  expectResult("triangle", 1, 0);
  zel::PolynomialSmooth(&spots, 1, n, &result, 7);
  expectResult("polynomial", 1, 0);
  zel::FirstDeriv(&spots, 1, n, &result, 7);
  expectResult("slope --sample-time 0.5", 2, 0);
  zel::SecondDeriv(&spots, 1, n, &result, 9);
  expectResult("curvature --width 9 --sample-time 2", 0.25, 0);

  zel::CalcSincLPKernel(31, 0.05, 1, &taps);
  zel::MovingKernelFilter(&spots, 1, n, &result, &taps);
  expectResult("lowpass --cutoff 0.1 --sample-time 0.5", 1, 0);
  zel::CalcSincHPKernel(41, 0.2, 2, &taps);
  zel::MovingKernelFilter(&spots, 1, n, &result, &taps);
  expectResult("highpass --cutoff 0.2 --window blackman --width 41", 1, 0);
  zel::CalcSincBPKernel(31, 0.05, 0.15, 0, &taps);
  zel::MovingKernelFilter(&spots, 1, n, &result, &taps);
  expectResult("bandpass --cutoff 0.05,0.15 --window rectangle", 1, 0);
  zel::CalcSincBSKernel(31, 0.05, 0.15, 0, &taps);
  zel::MovingKernelFilter(&spots, 1, n, &result, &taps);
  expectResult("bandstop --cutoff 0.05,0.15 --window rectangle", 1, 0);
  double mean = 0, variance = 0, a0 = 0;
  spots.MeanVar(0, 0, mean, variance);
  zel::TVector centred(std::vector<double>(spots.begin(), spots.end()));
  for (int i = 1; i <= n; ++i) centred.SetVal(i, spots(i) - mean);
  zel::TMatrix coefficients;
  for (const bool high : {false, true}) {
    zel::CalcChebFilterCoeffs(6, high, 0.1, 2, a0, &coefficients);
    zel::ChebychevFilter(&centred, 1, n, &result, a0, &coefficients);
    expectResult(
        std::string("chebyshev-") + (high ? "high" : "low") + " --cutoff 0.1 --poles 6 --ripple 2",
        1, high ? 0 : mean);
  }
}

TEST_F(SmoothCommand, TableAndPictures) {
  write("x.csv", "name,v\na,1\nb,3\nc,8\nd,6\n");
  const ZelRun run = runZel("smooth x.csv --width 3 --rows 3 --plot x.svg");
  EXPECT_EQ("", run.errors);
  expectWords(run.output, {R"(x.csv: v, 4 values, sample time 1

  moving average over 3 values

  standard deviation of the series      3.10913
  standard deviation of the result      0.96225
  standard deviation of the difference  2.24433

     series    result  difference
  a       1  4         -3
  b       3  4         -1
  d       6  5.666667   0.3333333
  (1 more; --rows shows more, --json has all)
)"});
  expectWords(readBytes(path("x.svg")), {"moving average over 3 values", ">v<"});
  EXPECT_EQ(0,
            runZel("smooth '" ZEL_TEST_DATA "/sunspots.asc' --method slope --plot y.svg").status);
  expectWords(readBytes(path("y.svg")), {"derivative"});
}

TEST_F(SmoothCommand, Refusals) {
  write("x.csv", "a,b,c\n1,2,1e308\n2,,-1e308\n3,5,1e308\n4,4,-1e308\n5,4,1e308\n6,4,-1e308\n");
  expectRefusals(
      "smooth",
      {{"x.csv --column b",
        "x.csv, column \"b\": row 2 has no value, and a filter takes a series without gaps"},
       {"x.csv --column a --width 4", "--width: the method mean takes an odd number from 3 on"},
       {"x.csv --column a --method slope --width 27",
        "--width: the method slope takes an odd number of 5 to 25"},
       {"x.csv --column a --width 7",
        "x.csv, column \"a\": a window of 7 values takes a longer series than one of 6 values"},
       {"x.csv --column a --method chebyshev-low --cutoff 0.1 --width 3",
        "--width: the method chebyshev-low takes none"},
       {"x.csv --column a --method chebyshev-low --cutoff 0.1 --poles 3",
        "--poles: it must be even"},
       {"x.csv --column a --cutoff 0.1", "--cutoff: the method mean takes no frequency"},
       {"x.csv --column a --method bandpass --cutoff 0.1",
        "--cutoff: the method bandpass takes two frequencies"},
       {"x.csv --column a --method lowpass --width 3 --cutoff 1 --sample-time 0.5",
        "--cutoff: 1 is not between 0 and 1, half a cycle per value (--sample-time 0.5)"},
       {"x.csv --column a --window hann",
        "--window: \"hann\" is none of rectangle, hamming and blackman"},
       {"x.csv --column a --sample-time 0", "--sample-time: it must be above 0"},
       {"x.csv --column c --method curvature --width 5 --plot z.svg",
        "x.csv, column \"c\": the result exceeds the range of numbers"},
       {"x.csv --column a --method savgol",
        "--method: \"savgol\" is none of mean, median, triangle, polynomial, slope, curvature, "
        "lowpass, highpass, bandpass, bandstop, chebyshev-low and chebyshev-high"}});
  EXPECT_EQ("", readBytes(path("z.svg"))) << "no picture";
}

}  // namespace
}  // namespace zel_test
