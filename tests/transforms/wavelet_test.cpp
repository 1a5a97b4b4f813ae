// The wavelet transform against its definition, written down once more, and its invariants.
#include "tests/support/testing.h"
#include "zel/transforms/Zel_wavelet.h"

namespace {

using zel::Extended;
using zel::EZELWaveletError;
using zel::TWavelet1D;
using Signal = std::vector<Extended>;

constexpr zel::TWLSigExtMode kModes[] = {zel::wseWrap, zel::wseZeroPad, zel::wseSymmetric};

/// One level by the rule for the indices, tap by tap.
Signal byDefinition(const Signal& x, const TWavelet1D& filters, zel::TWLSigExtMode mode,
                    bool inverse) {
  const int n = static_cast<int>(x.size()), m = n / 2, taps = 2 * filters.Order();
  Signal result(x.size());
  const auto at = [](auto& values, int i) -> auto& { return values[static_cast<std::size_t>(i)]; };
  for (int i = 0; i < m; ++i) {
    for (int j = 1; j <= taps; ++j) {
      int p = 2 * i + j - taps + 1;
      if (p < 0 && mode == zel::wseZeroPad) continue;
      if (p < 0 && mode == zel::wseSymmetric) p = -p - 1;
      p = (p % n + n) % n;
      const auto h = filters.LowPass(), g = filters.HighPass();
      if (inverse) {
        at(result, p) += at(h, j - 1) * at(x, i) + at(g, j - 1) * at(x, m + i);
      } else {
        at(result, i) += at(h, j - 1) * at(x, p);
        at(result, m + i) += at(g, j - 1) * at(x, p);
      }
    }
  }
  return result;
}

Signal pyramid(Signal x, const TWavelet1D& filters, zel::TWLSigExtMode mode, int levels,
               bool inverse) {
  const std::size_t n = x.size();
  levels = std::max(levels, 1);
  for (std::size_t length = inverse ? 2 : n; length >= 2 && length <= n && levels > 0; --levels) {
    const Signal part(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(length));
    const Signal step = byDefinition(part, filters, mode, inverse);
    std::copy(step.begin(), step.end(), x.begin());
    length = inverse ? 2 * length : length / 2;
  }
  return x;
}

/// The signals that the tests transform: n deviates of the size 1.
void fill(TWavelet1D& W, int n) {
  std::mt19937_64 random(static_cast<unsigned>(n));
  std::normal_distribution<double> normal;
  W.SetNumData(n);
  for (int i = 1; i <= n; ++i) W.SetDataVal(i, normal(random));
}

Signal valuesOf(const TWavelet1D& W) { return {W.Data().begin(), W.Data().end()}; }

bool near(const Signal& a, const Signal& b, Extended tolerance) {
  const auto isNear = [&](Extended x, Extended y) { return std::abs(x - y) <= tolerance; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), isNear);
}

// The tolerance is that of extended precision: a filter or a sum in double would exceed it.
TEST(Wavelet, IsItsDefinition) {
  const Extended tolerance = 64 * std::numeric_limits<Extended>::epsilon();
  TWavelet1D W;
  for (int order = 1; order <= 3; ++order) {
    W.SetOrder(order);
    for (const auto mode : kModes) {
      W.SetSigExtMode(mode);
      for (int n = 1; n <= 64; n *= 2) {
        for (const int levels : {-1, 1, 2, 3, 6, 10}) {
          SCOPED_TRACE(::testing::Message() << "order " << order << ", mode " << int{mode} << ", n "
                                            << n << ", levels " << levels);
          const bool inverse = levels > 1;
          fill(W, n);
          const Signal x = valuesOf(W);
          W.Transform(levels);
          EXPECT_TRUE(near(valuesOf(W), pyramid(x, W, mode, levels, false), tolerance));
          fill(W, n);
          W.InverseTransform(levels);
          EXPECT_TRUE(near(valuesOf(W), pyramid(x, W, mode, levels, true), tolerance));
          fill(W, n);
          W.SingleStep(inverse);
          const Signal step = n == 1 ? x : byDefinition(x, W, mode, inverse);
          EXPECT_TRUE(near(valuesOf(W), step, tolerance));
        }
      }
    }
  }
}

TEST(Wavelet, FiltersAreOrthogonal) {
  TWavelet1D W;
  for (int order = 1; order <= 3; ++order) {
    W.SetOrder(order);
    const std::size_t taps = 2 * static_cast<std::size_t>(order);
    for (std::size_t shift = 0; shift < taps; shift += 2) {
      Extended low = shift == 0 ? -1 : 0, high = low;
      for (std::size_t k = shift; k < taps; ++k) {
        low += W.LowPass()[k] * W.LowPass()[k - shift];
        high += W.HighPass()[k] * W.HighPass()[k - shift];
      }
      EXPECT_LE(std::abs(low) + std::abs(high), 5e-16L) << order << " " << shift;
    }
  }
}

// The highest sample that a filter reaches is the last one, so only the first details see the
// zeros.
TEST(Wavelet, PolynomialsHaveNoDetails) {
  TWavelet1D W;
  W.SetSigExtMode(zel::wseZeroPad);
  for (int order = 1; order <= 3; ++order) {
    W.SetOrder(order);
    W.SetNumData(32);
    for (int i = 0; i <= 33; ++i) W.SetDataVal(i, std::pow(i / 32.0, order - 1));
    W.Transform(1);
    EXPECT_EQ(std::abs(W.GetDataVal(17)) > 1e-6, order > 1) << order;
    for (int i = 16 + order; i <= 32; ++i) EXPECT_NEAR(W.GetDataVal(i), 0, 1e-14) << order;
    EXPECT_EQ(W.GetDataVal(0) + W.GetDataVal(33), 0) << "outside";
  }
}

TEST(Wavelet, RefusalsChangeNothing) {
  TWavelet1D W;
  EXPECT_TRUE(W.Order() == 2 && W.SignalExtMode() == zel::wseWrap) << "as they start";
  EXPECT_EQ(Signal(256), valuesOf(W));
  W.SetName("w");
  fill(W, 8);
  W.SetOrder(3);
  const Signal before = valuesOf(W);
  for (const int n : {0, -1, -8, 3, 96, (1 << 23) + 1, 1 << 24, 1 << 30, INT_MIN}) {
    EXPECT_THROW_MSG(W.SetNumData(n), EZELWaveletError,
                     "Component \"w\": data length must be power of 2");
  }
  for (const int order : {0, 4, -1, INT_MAX}) {
    EXPECT_THROW_MSG(W.SetOrder(order), EZELWaveletError,
                     "Component \"w\": invalid order of Daubechies wavelet family");
  }
  const auto without = [&](auto&& operation) {
    const zel::test::FailingStorage failing(0);
    EXPECT_THROW_MSG(operation(), EZELWaveletError, "Component \"w\": not enough memory on heap");
  };
  without([&] { W.SetNumData(1 << 10); });
  without([&] { W.Transform(2); });
  without([&] { W.SingleStep(true); });
  without([&] { W.SetOrder(1); });
  EXPECT_TRUE(W.Size() == 8 && W.Order() == 3 && W.HighPass().size() == 6);
  EXPECT_EQ(before, valuesOf(W));
  W.SetNumData(1 << 23);
  EXPECT_EQ(1 << 23, W.Size());
}

}  // namespace
