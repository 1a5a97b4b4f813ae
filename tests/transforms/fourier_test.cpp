// TFastFourier: windows, spectrum and lengths.
#include "tests/support/testing.h"
#include "zel/transforms/Zel_fourier.h"
#include "zel/transforms/length_impl.h"

namespace zel {
namespace {

TEST(FastFourier, StartsAndResizesToPowersOfTwo) {
  int accepted = 0;
  for (int n = -9; n <= (1 << 24) + 1; ++n) accepted += isTransformLength(n) ? 1 : 0;
  EXPECT_EQ(accepted, 24);
  TFastFourier F;
  EXPECT_TRUE(F.SpectrumSize() == 256 && F.WeightingWindow() == fwRectangle);
  EXPECT_EQ(F.FData, TDoubleArray(512));
  EXPECT_EQ(F.GetWgtVal(256), 1);
  F.SetName("FFT1");
  F.SetRealVal(7, 3);
  for (const int bad : {1000, 0, -1, -2, INT_MIN, 3, 1 << 24, 1 << 30}) {
    EXPECT_THROW_MSG(F.SetNumData(bad), EZELFourierError,
                     "Component \"FFT1\": data length must be power of 2");
  }
  EXPECT_EQ(F.GetRealVal(7), 3) << "kept after a refusal";
  for (const int n : {1, 2, 1 << 12, 1 << 23}) {
    F.SetNumData(n);
    ASSERT_EQ(F.SpectrumSize(), n);
    ASSERT_EQ(F.FData.size(), 2 * static_cast<std::size_t>(n));
  }
  F.SetNumData(8);
  EXPECT_EQ(F.GetWgtVal(1), 0) << "the user's window starts anew";
}

TEST(FastFourier, PointsOutsideAreZero) {
  TFastFourier F;
  F.SetNumData(4);
  for (const int ix : {0, 5, -1, INT_MAX, INT_MIN}) {
    F.SetRealVal(ix, 1);
    F.SetImagVal(ix, 1);
    F.SetWgtVal(ix, 1);
    EXPECT_EQ(F.GetRealVal(ix) + F.GetImagVal(ix) + F.GetWgtVal(ix), 0);
  }
  EXPECT_EQ(F.FData, TDoubleArray(8));
  F.FData = {1, 2, 3, 4, 5, 6, 7, 8};
  F.ClearReal();
  EXPECT_EQ(F.FData, (TDoubleArray{0, 2, 0, 4, 0, 6, 0, 8}));
  F.FData.resize(3);
  F.Transform();
  EXPECT_EQ(F.FData.size(), 8U) << "a size that the caller changed";
}

// 3 + 2 sin(9 w t): the scale, the sign of the exponent, what is found again.
TEST(FastFourier, SpectrumOfAnOscillation) {
  TFastFourier F;
  F.SetNumData(64);
  for (int i = 1; i <= 64; ++i) F.SetRealVal(i, 3 + 2 * std::sin(9 * 2 * kPi * (i - 1) / 64));
  EXPECT_EQ(F.ImagMin(), 0);
  F.Transform();
  EXPECT_NEAR(F.GetFSerCos(0), 3, 1e-14);
  EXPECT_NEAR(F.GetImagVal(10), 64, 1e-12) << "plus in the exponent";
  EXPECT_NEAR(F.ImagMin(), -64, 1e-12) << "found again after the transform";
  EXPECT_NEAR(F.RealMax(), 192, 1e-12);
  F.SetRealVal(3, 1000);
  EXPECT_EQ(F.RealMax(), 1000) << "found again after a change";
  F.SetNumData(4);
  EXPECT_EQ(F.RealMax(), 0);
  F.FData = {1, 2, 3, 4, 5, 6, 7, 8};
  F.Clear();
  EXPECT_EQ(F.FData, TDoubleArray(8));
}

TEST(FastFourier, SpectrumOfGivenLines) {
  TFastFourier F;
  F.SetNumData(8);
  // X_0 .. X_7; line 1 has X_1 = 3 + 4 i and X_7 = 1 - 2 i, line 4 has X_4 twice.
  F.FData = {2, 1, 3, 4, 0, -5, 0, 0, 6, 8, 0, 0, 0, 0, 1, -2};
  // Line, power, square of the magnitude, sine and cosine of the series (all eightfold), phase.
  const double rows[][6] = {{-1, 0, 0, 0, 0, 0},
                            {0, 5, 5, 0, 2, 0},
                            {1, 30, 52, 6, 4, std::atan(4.0 / 3)},
                            {2, 25, 25, -5, 0, -kPi / 2},
                            {3, 0, 0, 0, 0, -kPi / 2},
                            {4, 200, 144, 0, 12, std::atan(4.0 / 3)},
                            {5, 0, 0, 0, 0, 0},
                            {INT_MAX, 0, 0, 0, 0, 0}};
  for (const auto& [row, power, squared, sine, cosine, phase] : rows) {
    const int line = static_cast<int>(row);
    EXPECT_EQ(F.GetPowerSpec(line), power / 8) << line;
    EXPECT_EQ(F.GetMagnitude(line), std::sqrt(squared) / 8) << line;
    EXPECT_EQ(F.GetFSerSin(line), sine / 8) << line;
    EXPECT_EQ(F.GetFSerCos(line), cosine / 8) << line;
    EXPECT_EQ(F.GetPhase(line), phase) << line;
  }
  EXPECT_EQ(F.RMS(0, 1), std::sqrt(35) / 8);
  EXPECT_EQ(F.RMS(5, 1), F.RMS(1, 5));
  EXPECT_EQ(F.RMS(-3, 10000), std::sqrt(5.0 + 30 + 25 + 200) / 8);
  EXPECT_EQ(F.RMS(INT_MAX, INT_MAX), std::sqrt(200) / 8);
  EXPECT_EQ(F.PowerMax(), 30.0 / 8) << "without the last line";
  EXPECT_EQ(F.MagniMax(), 12.0 / 8) << "with the last line";
  EXPECT_EQ(F.ImagMax(), 8);
  EXPECT_EQ(F.RealMin(), 0);
  F.SetRealVal(2, 1e200);
  EXPECT_DOUBLE_EQ(F.GetMagnitude(1), 1.25e199) << "squares beyond the range of double";

  EXPECT_EQ(F.FreqOfLine(2, 0.5), 0.5);
  EXPECT_EQ(F.FreqOfLine(0, 0.5) + F.FreqOfLine(5, 0.5), 0);
  for (int line = 1; line <= 4; ++line) {
    EXPECT_EQ(F.LineOfFreq(F.FreqOfLine(line, 0.1), 0.1), line);
  }
  EXPECT_EQ(F.LineOfFreq(2.5, 0.125), 2) << "ties to even";
  for (const double f : {4.6, 0.5, -8.0, HUGE_VAL, std::nan("")})
    EXPECT_EQ(F.LineOfFreq(f, 0.125), 0);

  F.SetNumData(1);
  F.FData = {3, -4};
  F.Transform();
  EXPECT_EQ(F.FData, (TDoubleArray{3, -4}));
  EXPECT_EQ(F.GetMagnitude(0), 5);
  EXPECT_EQ(F.GetMagnitude(1) + F.MagniMax() + F.PowerMax(), 0) << "no line but 0";
  EXPECT_EQ(F.ImagMax(), -4);
}

TEST(FastFourier, Windows) {
  // At 1/8, 1/4, -1/2 and 0; the sums of the published coefficients by mpmath.
  const std::tuple<TFastFourierWgtWin, double, double, double, double> windows[] = {
      {fwRectangle, 1, 1, 1, 1},
      {fwTriangle, 0.75, 0.5, 0, 1},
      {fwCos2, 0.85355339059327376, 0.5, 0, 1},
      {fwGauss, 0.75483960198900734, 0.32465246735834973, 0.011108996538242306, 1},
      {fwHamming, 0.86628787840597516, 0.543478261, 0.086956522, 1},
      {fwBlackman, 0.77771094326599204, 0.349742, 0.006878, 0.999998},
      {fwBlkmHarris, 0.69576416298132042, 0.21747, 6e-5, 1},
      {fwBlkmNuttall, 0.70195823348459818, 0.2269824, 0.0003628, 1}};
  for (const auto& [window, eighth, quarter, end, centre] : windows) {
    EXPECT_NEAR(TFastFourier::WeightAt(window, 0.125), eighth, 4e-16) << int{window};
    EXPECT_NEAR(TFastFourier::WeightAt(window, 0.25), quarter, 4e-16) << int{window};
    EXPECT_NEAR(TFastFourier::WeightAt(window, -0.5), end, 4e-16) << int{window};
    EXPECT_NEAR(TFastFourier::WeightAt(window, 0), centre, 4e-16) << int{window};
    EXPECT_EQ(TFastFourier::WeightAt(window, -0.51), 0) << int{window};
    EXPECT_EQ(TFastFourier::WeightAt(window, kNaN), 0) << int{window};
  }
}

TEST(FastFourier, TransformsWeightTheirData) {
  TFastFourier F;
  for (int window = fwRectangle; window <= fwUserDef; ++window) {
    const auto kind = static_cast<TFastFourierWgtWin>(window);
    F.SetWgtWin(kind);
    for (const int n : {1, 2, 64, 65536}) {
      F.SetNumData(n);
      for (int i = 1; i <= n; ++i) {
        F.SetWgtVal(i, i);
        F.SetRealVal(i, 1);
        F.SetImagVal(i, 2);
      }
      F.Transform();
      F.InverseTransform();
      for (int i = 1; i <= n; ++i) {
        const double w = n == 1               ? 1
                         : kind == fwUserDef  ? i
                         : kind == fwTriangle ? 2.0 * std::min(i, n + 1 - i) / n
                                              : TFastFourier::WeightAt(kind, (i - n / 2.0) / n);
        const double bound = 2e-15 * (kind == fwUserDef ? n : 1);
        ASSERT_NEAR(F.GetRealVal(i), w, bound) << window << " " << n << " " << i;
        ASSERT_NEAR(F.GetImagVal(i), 2 * w, bound) << window << " " << n << " " << i;
      }
    }
  }
}

TEST(FastFourier, WithoutMemoryNothingIsLost) {
  TFastFourier F;
  F.SetName("F");
  F.SetWgtWin(fwHamming);
  const auto prepare = [&] {
    F.SetNumData(2048);
    F.SetRealVal(5, 1);
  };
  prepare();
  const TDoubleArray before = F.FData;
  for (const auto& operation :
       {std::function([&] { F.SetNumData(4); }), std::function([&] { F.Transform(); })}) {
    test::expectFailuresHarmless<EZELFourierError>(
        operation, "Component \"F\": not enough memory on heap",
        [&] { EXPECT_EQ(F.FData, before); }, prepare);
  }
}

}  // namespace
}  // namespace zel
