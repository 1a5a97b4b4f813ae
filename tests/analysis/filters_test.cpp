// Kernel filters, windowed-sinc kernels and recursive filters.
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/containers.h"
#include "tests/support/expect_message.h"
#include "zel/analysis/Zel_math2.h"
#include "zel/kernels/recursive_filter.h"

namespace zel {
namespace {

using Numbers = std::vector<double>;

constexpr double kPi = std::numbers::pi;

Numbers noise(std::size_t n, unsigned seed = 1) {
  Numbers x(n);
  std::mt19937_64 random(seed);
  std::normal_distribution<double> normal;
  for (double& v : x) v = normal(random);
  return x;
}

/// Magnitude of the response of a symmetric or other kernel.
double gainOf(const Numbers& taps, double frequency) {
  std::complex<double> sum;
  for (std::size_t i = 0; i < taps.size(); ++i) {
    sum += taps[i] * std::polar(1.0, -2 * kPi * frequency * static_cast<double>(i));
  }
  return std::abs(sum);
}

TEST(KernelFilter, RepeatsTheEndsOfTheRange) {
  const TVector x(noise(60));
  constexpr int kLow = 12, kHigh = 43;
  for (const int taps : {1, 2, 3, 8, 17, 30}) {
    const TVector kernel(noise(static_cast<std::size_t>(taps), 2));
    Numbers expected(60, 5.0);
    for (int i = kLow; i <= kHigh; ++i) {
      double sum = 0;
      for (int j = 1; j <= taps; ++j) {
        sum += kernel(j) * x(std::clamp(i - taps / 2 + j - 1, kLow, kHigh));
      }
      expected[static_cast<std::size_t>(i - kLow)] = sum;
    }
    // Into a result of another size, into the signal, and into the kernel.
    TVector y(Numbers(70, 5.0)), inPlace(noise(60)), asKernel(kernel.Elements());
    MovingKernelFilter(&x, kHigh, kLow, &y, &kernel);
    MovingKernelFilter(&inPlace, kLow, kHigh, &inPlace, &kernel);
    MovingKernelFilter(&x, kLow, kHigh, &asKernel, &asKernel);
    EXPECT_EQ(test::contents(y), expected) << taps;
    for (int i = 1; i <= kHigh - kLow + 1; ++i) {
      ASSERT_EQ(inPlace(i), y(i));
      ASSERT_EQ(asKernel(i), y(i));
    }
  }
  TVector y, kernel(noise(60));
  EXPECT_THROW_MSG(MovingKernelFilter(&x, 1, 60, &y, nullptr), EZELMath2Error,
                   "MovingKernelfilter: SourceVec, DestVec and/or FilterKernel is undefined");
  EXPECT_THROW_MSG(MovingKernelFilter(&x, 1, 60, &y, &kernel), EZELMath2Error,
                   "MovingKernelfilter: specified range for smoothing is smaller than the length "
                   "of the kernel");
}

TEST(SincKernels, FollowTheFormulaAndPassTheirBand) {
  for (const int n : {1, 2, 31, 64, 101}) {
    for (const int window : {0, 1, 2}) {
      for (const double fc : {0.05, 0.2, 0.5, 0.7}) {
        TDoubleArray low;
        TVector vector;
        CalcSincLPKernel(n, fc, window, low);
        CalcSincLPKernel(n, fc, window, &vector);
        ASSERT_EQ(test::contents(vector), low);
        Numbers expected;
        double sum = 0;
        const double f = std::min(fc, 0.5);
        for (int i = 1; i <= n; ++i) {
          const int lag = i - (n / 2 + 1);
          const double t = 2 * kPi * i / (n + 1);
          const double w = window == 1   ? 0.54 - 0.46 * std::cos(t)
                           : window == 2 ? 0.42 - 0.5 * std::cos(t) + 0.08 * std::cos(2 * t)
                                         : 1;
          expected.push_back(w * (lag == 0 ? 2 * kPi * f : std::sin(2 * kPi * f * lag) / lag));
          sum += expected.back();
        }
        for (std::size_t i = 0; i < low.size(); ++i) {
          ASSERT_NEAR(low[i], expected[i] / sum, 2e-14) << n << ' ' << window << ' ' << fc;
        }
      }
    }
  }
  // Inside and outside of the bands of a long kernel, with both orders of the limits.
  TDoubleArray low, high, stop, pass, reversed;
  CalcSincLPKernel(301, 0.1, 2, low);
  CalcSincHPKernel(301, 0.1, 2, high);
  CalcSincBSKernel(301, 0.1, 0.3, 2, stop);
  CalcSincBPKernel(301, 0.1, 0.3, 2, pass);
  CalcSincBSKernel(301, 0.3, 0.1, 2, reversed);
  EXPECT_EQ(stop, reversed);
  const Numbers* const kernels[] = {&low, &high, &stop, &pass};
  const std::pair<double, Numbers> gains[] = {{0, {1, 0, 1, 0}},
                                              {0.08, {1, 0, 1, 0}},
                                              {0.12, {0, 1, 0, 1}},
                                              {0.28, {0, 1, 0, 1}},
                                              {0.33, {0, 1, 1, 0}}};
  for (const auto& [frequency, gain] : gains) {
    for (std::size_t k = 0; k < 4; ++k) {
      EXPECT_NEAR(gainOf(*kernels[k], frequency), gain[k], 1e-3) << k << ' ' << frequency;
    }
  }
  CalcSincLPKernel(5, 0, 1, low);
  EXPECT_EQ(low, Numbers(5));
  CalcSincHPKernel(4, 0.5, 0, low);
  EXPECT_EQ(low, Numbers(4)) << "a low-pass at one half is the unit impulse";
  CalcSincBPKernel(-3, 0.1, 0.2, 0, low);
  EXPECT_TRUE(low.empty());
  TVector vector{1, 2};
  CalcSincLPKernel(0, 0.1, 0, &vector);
  EXPECT_EQ(test::contents(vector), (Numbers{1, 2}));
}

/// Of a recursive filter.
double gainOf(double a0, const TMatrix& c, double frequency) {
  std::complex<double> above = a0, below = 1;
  for (int k = 1; k <= c.NrOfRows(); ++k) {
    const auto z = std::polar(1.0, -2 * kPi * frequency * k);
    above += c(1, k) * z;
    below -= c(2, k) * z;
  }
  return std::abs(above / below);
}

// The bilinear map of an analogue filter with ripple es: its gain is 1 / sqrt(1 + (es T)^2), T the
// Chebyshev polynomial of x, which is 1 / es at the cut-off; without ripple es T becomes x^poles.
TEST(ChebyshevDesign, HasTheGainsOfItsAnaloguePrototype) {
  for (const int poles : {2, 4, 6, 8, 20}) {
    for (const double ripple : {0.0, 1e-300, 0.5, 10.0, 29.0}) {
      const double es = std::sqrt(std::pow(100 / (100 - ripple), 2) - 1);
      const auto gain = [&](double ratio) {
        if (es == 0) return 1 / std::sqrt(1 + std::pow(ratio, 2 * poles));
        const double x = ratio * std::cosh(std::acosh(1 / es) / poles);
        const double t = x > 1 ? std::cosh(poles * std::acosh(x)) : std::cos(poles * std::acos(x));
        return std::sqrt((1 + es * es) / (1 + es * es * t * t));
      };
      for (const double cutoff : {0.2, 0.25, 0.3}) {
        for (const bool isHighPass : {false, true}) {
          double a0;
          TMatrix c;
          const test::Events events(c);
          CalcChebFilterCoeffs(poles, isHighPass, cutoff, ripple, a0, &c);
          EXPECT_EQ(events.count, 1);
          EXPECT_LT(std::abs(c(2, poles)), 1) << "the product of poles within the unit circle";
          for (const double frequency : {1e-9, 0.1, cutoff, 0.4, 0.5 - 1e-9}) {
            const double ratio = std::tan(kPi * frequency) / std::tan(kPi * cutoff);
            EXPECT_NEAR(gainOf(a0, c, frequency), gain(isHighPass ? 1 / ratio : ratio),
                        poles < 20 ? 1e-9 : 1e-3)
                << poles << ' ' << ripple << ' ' << cutoff << ' ' << frequency;
          }
        }
      }
    }
  }
}

TEST(ChebyshevDesign, RefusesWhatItCannotMake) {
  double a0 = 7;
  TMatrix c;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    int poles;
    double cutoff, ripple;
    const char* text;
  } cases[] = {{3, 0.6, 30, "NPoles must be even"},       {-1, 0.1, 1, "NPoles must be even"},
               {2, 0.6, 29.5, "invalid Ripple value"},    {2, 0.6, nan, "invalid Ripple value"},
               {22, -0.1, 0, "invalid cutoff frequency"}, {2, nan, 0, "invalid cutoff frequency"},
               {22, 0.1, 0, "NPoles must not exceed 20"}};
  for (const auto& [poles, cutoff, ripple, text] : cases) {
    EXPECT_THROW_MSG(CalcChebFilterCoeffs(poles, false, cutoff, ripple, a0, &c), EZELMath2Error,
                     std::string("CalcChebFilterCoeffs: ") + text);
  }
  EXPECT_EQ(a0, 7);
  CalcChebFilterCoeffs(0, false, 0.1, 0, a0, &c);
  EXPECT_EQ(a0, 1);
  EXPECT_EQ(test::contents(c), (Numbers{2, 1, 0, 0}));
  CalcChebFilterCoeffs(2, true, 0.5, 0, a0, &c);
  EXPECT_EQ(a0, 0);
  EXPECT_EQ(test::contents(c), (Numbers{2, 2, 0, 0, 0, 0}));
}

/// The two passes step by step over numbers 1..e, indices beyond 0.
TVector filteredByDefinition(const TVector& x, int low, int high, double a0, const TMatrix& c,
                             const TVector& dest) {
  const int p = c.NrOfRows(), pad = p + 1, e = std::max(high, 1) + 2 * pad;
  const Numbers zeros(static_cast<std::size_t>(e));
  TVector t1(zeros), t2(zeros), result(dest.Elements());
  for (int i = 1; i <= e; ++i) {
    double sum = a0 * x(i - pad);
    for (int k = 1; k <= p; ++k) sum += c(1, k) * x(i - k - pad) + c(2, k) * t1(i - k);
    t1.SetVal(i, sum);
  }
  for (int i = e; i >= 1; --i) {
    double sum = a0 * t1(i);
    for (int k = 1; k <= p; ++k) sum += c(1, k) * t1(i + k) + c(2, k) * t2(i + k);
    t2.SetVal(i, sum);
  }
  for (int i = low; i <= high; ++i) result.SetVal(i, t2(i + pad));
  return TVector(result.Elements());
}

TEST(ChebychevFilter, RunsForwardsAndBackwards) {
  const TVector x(noise(200));
  const struct {
    int poles, low, high, destSize;
  } cases[] = {{2, 1, 200, 200},  {4, 1, 150, 200}, {6, 30, 90, 50},
               {4, -9, 260, 300}, {2, 9, 3, 20},    {2, -5, 0, 20}};
  for (const auto& c : cases) {
    double a0;
    TMatrix coeffs;
    CalcChebFilterCoeffs(c.poles, false, 0.1, 0.5, a0, &coeffs);
    TVector dest(Numbers(static_cast<std::size_t>(c.destSize), 8.0)), inPlace, whole(noise(200));
    const TVector expected = filteredByDefinition(x, c.low, c.high, a0, coeffs, dest);
    const test::Events events(dest);
    ChebychevFilter(&x, c.low, c.high, &dest, a0, &coeffs);
    EXPECT_EQ(events.count, 0);
    for (int i = 1; i <= c.destSize; ++i) ASSERT_NEAR(dest(i), expected(i), 1e-11) << i;
    inPlace.Clone(&x);
    ChebychevFilter(&x, 1, 200, &whole, a0, &coeffs);
    ChebychevFilter(&inPlace, 1, 200, &inPlace, a0, &coeffs);
    EXPECT_EQ(test::contents(inPlace), test::contents(whole));
  }
  TMatrix oneColumn;
  const TVector three{1, 2, 3};
  TVector y{0, 0, 0};
  ChebychevFilter(&three, 1, 3, &y, 2, &oneColumn);
  EXPECT_EQ(test::contents(y), (Numbers{4, 8, 12}));
}

// Ranges far beyond the signal go through blocks: a filter that dies away, and one that never does
// (the running sum), whose second pass is known.
TEST(ChebychevFilter, OfRangesBeyondTheSignalNeedsNoStorageForThem) {
  const TVector x(noise(1000));
  double a0;
  TMatrix coeffs;
  CalcChebFilterCoeffs(4, false, 0.01, 0.5, a0, &coeffs);
  TVector near(Numbers(3000)), far(Numbers(3000, 8.0));
  ChebychevFilter(&x, 1, 40000, &near, a0, &coeffs);
  ChebychevFilter(&x, 1, std::numeric_limits<int>::max(), &far, a0, &coeffs);
  for (int i = 1; i <= 3000; ++i) ASSERT_NEAR(far(i), near(i), 1e-9);

  Numbers signal(10, 0.0), out(400000, -1.0);
  signal[3] = 1;
  const Numbers a{0}, b{1};
  kernels::filterBothWays({1, a, b}, signal, 400000, 0, out);
  // The first pass is 1 from index 3 on, to index 399999; the second counts from there.
  for (std::size_t i = 0; i < out.size(); ++i) {
    ASSERT_EQ(out[i], static_cast<double>(400000 - std::max<std::size_t>(i, 3))) << i;
  }
}

}  // namespace
}  // namespace zel
