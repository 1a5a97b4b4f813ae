// Moving averages and medians, Savitzky-Golay, beside their definitions.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/containers.h"
#include "tests/support/expect_message.h"
#include "tests/support/same_bits.h"
#include "zel/analysis/Zel_math2.h"

namespace zel {
namespace {

using Numbers = std::vector<double>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMost = std::numeric_limits<double>::max();

struct Routine {
  const char* name;
  void (*smooth)(const TVector*, int, int, TVector*, int);
  bool isPolynomial;
  /// Of x(i + k) in a window of 2 m + 1 numbers around x(i), but for a factor; none: the median.
  double (*weight)(int k, int m);
  /// The factor makes the result exact for k^derivative.
  int derivative = 0;

  [[nodiscard]] double ofWindow(const TVector& x, int i, int m) const {
    if (!weight) {
      double q1, q2, q3;
      x.Quartiles(i - m, i + m, q1, q2, q3);
      return q2;
    }
    long double sum = 0, divisor = 0;
    for (int k = -m; k <= m; ++k) {
      sum += static_cast<long double>(weight(k, m)) * x(i + k);
      divisor += weight(k, m) * std::pow(k, derivative) / std::max(derivative, 1);
    }
    return static_cast<double>(sum / divisor);
  }
};

const std::vector<Routine> kRoutines{
    {"MovingAverageSmooth", MovingAverageSmooth, false, [](int, int) { return 1.0; }},
    {"MovingMedianSmooth", MovingMedianSmooth, false, nullptr},
    {"WeightedAverageSmooth", WeightedAverageSmooth, false,
     [](int k, int m) { return m + 1.0 - std::abs(k); }},
    {"PolynomialSmooth", PolynomialSmooth, true,
     [](int k, int m) { return 3.0 * m * m + 3 * m - 1 - 5 * k * k; }},
    {"FirstDeriv", FirstDeriv, true, [](int k, int) { return 1.0 * k; }, 1},
    {"SecondDeriv", SecondDeriv, true, [](int k, int m) { return 3.0 * k * k - m * (m + 1); }, 2}};

Numbers signal(int n) {
  Numbers x(static_cast<std::size_t>(n));
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  for (double& v : x) v = std::round(4 * normal(random)) + static_cast<double>(random() % 7);
  return x;
}

Numbers byDefinition(const Routine& routine, const TVector& x, int low, int high, int winSize,
                     Numbers dest) {
  const int m = winSize / 2, n = high - low + 1, size = static_cast<int>(dest.size());
  for (int k = 1; k <= std::min(n, size); ++k) {
    const int from = std::clamp(k, m + 1, n - m);
    dest[static_cast<std::size_t>(k - 1)] =
        from <= size ? routine.ofWindow(x, low + from - 1, m) : 0;
  }
  return dest;
}

// Ranges in any order, within and beyond the vector; results that are longer or shorter; in place.
TEST(Smoothing, FollowsTheDefinitionOfEachWindow) {
  struct Case {
    int n, low, high, trueLow, trueHigh, destSize;
  };
  for (const auto& routine : kRoutines) {
    for (const int winSize : {3, 5, 7, 9, 15, 25, 51, 129, 401}) {
      if (routine.isPolynomial && (winSize < 5 || winSize > 25)) continue;
      const int n = 4 * winSize + 1300;
      for (const Case& c : {Case{winSize + 1, -5, 1 << 30, 1, winSize + 1, winSize + 3},
                            Case{n, n - 3, 4, 4, n - 3, n}, Case{n, 1, n, 1, n, n / 2},
                            Case{n, 1, n, 1, n, winSize / 2}}) {
        TVector x(signal(c.n)), dest(Numbers(static_cast<std::size_t>(c.destSize), 77.0));
        const auto what = routine.name + std::string(" ").append(std::to_string(winSize));
        for (TVector* to : {&dest, &x}) {  // then in place
          const Numbers expected =
              byDefinition(routine, x, c.trueLow, c.trueHigh, winSize, test::contents(*to));
          const test::Events events(*to);
          routine.smooth(&x, c.low, c.high, to, winSize);
          ASSERT_EQ(to->size(), expected.size()) << what;
          for (int i = 1; i <= to->NrOfElem(); ++i) {
            const double value = expected[static_cast<std::size_t>(i - 1)];
            ASSERT_NEAR((*to)(i), value, 2e-15 * std::max(std::abs(value), 16.0)) << what;
          }
          EXPECT_EQ(events.count, 1) << what;
        }
      }
    }
  }
}

// Powers up to that of the derivative, or constants and lines.
TEST(Smoothing, LeavesNoErrorWhereTheFormulaHasNone) {
  for (const auto& routine : kRoutines) {
    for (int winSize = 5; winSize <= 25; winSize += 2) {
      for (int power = 0; power <= std::max(routine.derivative, 1); ++power) {
        TVector x(Numbers(40, 0.1)), y(Numbers(40, 7.0));
        for (int i = 1; i <= 40 && power > 0; ++i) x.SetVal(i, std::pow(i, power));
        routine.smooth(&x, 1, 40, &y, winSize);
        for (int i = 1 + winSize / 2; i <= 40 - winSize / 2; ++i) {
          const double derivative = power < routine.derivative ? 0 : power;
          ASSERT_EQ(y(i), routine.derivative == 0 ? x(i) : derivative) << routine.name;
        }
      }
    }
  }
}

// A value beyond all others must not leave rounding errors, infinities or not-a-numbers in windows
// that do not hold it, and finite values have finite means.
TEST(Smoothing, ForgetsAValueThatHasLeftTheWindow) {
  for (const auto& routine : kRoutines) {
    for (const double special : {1e300, kInf, -kInf, kNaN}) {
      for (const int winSize : {5, 25}) {
        TVector x(signal(700)), clean(signal(700)), y(signal(700));
        routine.smooth(&x, 1, 700, &clean, winSize);
        x.SetVal(350, special);
        routine.smooth(&x, 1, 700, &y, winSize);
        for (int i = 1; i <= 700; ++i) {
          if (std::abs(i - 350) <= winSize / 2) continue;
          ASSERT_EQ(y(i), clean(i)) << routine.name << i;
        }
        const double expected = routine.ofWindow(x, 350 + 2, winSize / 2);
        ASSERT_TRUE(routine.isPolynomial || test::sameValue(y(352), expected)) << routine.name;
      }
    }
  }
  TVector x(Numbers{kMost, kMost, kMost, -kMost, kMost, kMost, kMost, 0, 0, kMost}), y(signal(10));
  MovingAverageSmooth(&x, 1, 10, &y, 3);
  EXPECT_EQ(y(2), kMost);
  EXPECT_NEAR(y(3) / kMost, 1.0 / 3, 1e-15);
  WeightedAverageSmooth(&x, 1, 10, &y, 3);
  EXPECT_EQ(y(2), kMost);
  EXPECT_EQ(y(4), 0);
}

// 1E16 + 1 - 1E16: a plain sum would lose the 1.
TEST(Smoothing, SumsWindowsAccurately) {
  TVector x(signal(3000)), y(signal(3000));
  for (int i = 1; i <= 3000; ++i) x.SetVal(i, i % 3 == 0 ? 1e16 : i % 3 == 1 ? 1 : -1e16);
  for (const int winSize : {99, 999}) {
    MovingAverageSmooth(&x, 1, 3000, &y, winSize);
    for (const double v : y) ASSERT_NEAR(v, 1.0 / 3, 1e-16) << winSize;
  }
  for (int i = 1; i <= 3000; ++i) x.SetVal(i, (i % 3 == 0 ? 1 : i % 3 == 1 ? 1e-17 : -1) * 3);
  WeightedAverageSmooth(&x, 1, 3000, &y, 99);
  for (int i = 50; i <= 2951; ++i) {
    int large = 0, small = 0;
    for (int k = -49; k <= 49; ++k) {
      const int weight = 50 - std::abs(k);
      const int kind = (i + k) % 3;
      kind == 1 ? small += weight : large += kind == 0 ? weight : -weight;
    }
    ASSERT_DOUBLE_EQ(y(i) * 2500, 3 * large + small * x(1)) << i;
  }
}

TEST(Smoothing, MediansOfAllKindsOfValuesAreThoseOfQuartiles) {
  std::mt19937 random(11);
  const Numbers hostile{0, -0.0, 1, kNaN, kInf, -kInf, kMost, -kMost, 5e-324};
  for (unsigned run = 0; run < 60; ++run) {
    const int winSize = 3 + 2 * static_cast<int>(random() % 12), m = winSize / 2;
    Numbers values(static_cast<std::size_t>(winSize) + 1 + random() % 90);
    for (double& v : values) {
      const bool isHostile = run % 2 == 1 && random() % 16 == 0;
      v = isHostile ? hostile[random() % 9] : static_cast<double>(random() % (run % 3 ? 1000 : 3));
    }
    const TVector x(values);
    TVector y(values);
    MovingMedianSmooth(&x, 1, x.NrOfElem(), &y, winSize);
    for (int i = 1 + m; i <= x.NrOfElem() - m; ++i) {
      // Which of the zeros stands in the middle is not said: + 0.0 makes them one.
      ASSERT_TRUE(test::sameValue(y(i) + 0.0, kRoutines[1].ofWindow(x, i, m) + 0.0));
    }
  }
}

TEST(Smoothing, RefusesUnfitArgumentsInOrder) {
  TVector x(signal(30)), y(signal(30));
  for (const auto& routine : kRoutines) {
    const std::string name = std::string(routine.name) + ": ";
    const std::string window = routine.isPolynomial ? "polynomial" : "smoothing window";
    const std::string purpose = name == "FirstDeriv: " ? "calculation" : "smoothing";
    const std::string range = "length of " + window + " is out of range";
    const std::string missing = "either SourceVec or DestVec is undefined";
    const struct {
      TVector *from, *to;
      int size;
      std::string text;
    } cases[] = {{nullptr, &y, 4, missing},
                 {&x, nullptr, 5, missing},
                 {&x, &y, 30,
                  "specified range for " + purpose + " is smaller than the length of the " +
                      window + (routine.isPolynomial ? "" : "s")},
                 {&x, &y, 2, range},
                 {&x, &y, -5, range},
                 {&x, &y, routine.isPolynomial ? 3 : 1, range},
                 {&x, &y, routine.isPolynomial ? 27 : 0, range},
                 {&x, &y, 8, "length of " + window + " must be odd"}};
    for (const auto& c : cases) {
      EXPECT_THROW_MSG(routine.smooth(c.from, 1, 30, c.to, c.size), EZELMath2Error, name + c.text);
    }
  }
  const Numbers before = test::contents(x);
  test::expectFailuresHarmless<EZELMath2Error>(
      [&] { MovingMedianSmooth(&x, 1, 30, &x, 25); }, "MovingMedianSmooth: not enough memory",
      [&] { EXPECT_EQ(test::contents(x), before); }, [&] { x.SetElements(before); });
}

TEST(Smoothing, HasTheSameBitsOnEveryInstructionSet) {
  test::expectSameBits([] {
    Numbers all;
    TVector x(signal(1111)), y(signal(1111));
    x.SetVal(300, kInf);
    for (const auto& routine : kRoutines) {
      for (int i = 1; i <= 1111; ++i) x.SetVal(i, x(i) / 3);
      for (const int winSize : {17, 25}) {
        routine.smooth(&x, 2, 1110, &y, winSize);
        all.insert(all.end(), y.begin(), y.end());
      }
    }
    const TVector kernel(signal(38));
    MovingKernelFilter(&x, 1, 1111, &y, &kernel);
    all.insert(all.end(), y.begin(), y.end());
    return all;
  });
}

}  // namespace
}  // namespace zel
