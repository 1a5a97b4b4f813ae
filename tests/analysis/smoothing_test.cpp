// Moving averages and medians, Savitzky-Golay, beside their definitions.
#include <cmath>
#include <functional>
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
  /// The result of a window whose centre is x(i).
  std::function<double(const TVector& x, int i, int m)> ofWindow;
};

/// Sum of weight(k) x(i + k) over a window, over the divisor.
auto weighted(long double (*weight)(int k, int m), long double (*divisor)(int m)) {
  return [=](const TVector& x, int i, int m) {
    long double sum = 0;
    for (int k = -m; k <= m; ++k) sum += weight(k, m) * x(i + k);
    return static_cast<double>(sum / divisor(m));
  };
}

double medianOfWindow(const TVector& x, int i, int m) {
  double q1, q2, q3;
  x.Quartiles(i - m, i + m, q1, q2, q3);
  return q2;
}

using L = long double;
const std::vector<Routine> kRoutines{
    {"MovingAverageSmooth", MovingAverageSmooth, false,
     weighted([](int, int) { return L(1); }, [](int m) { return L(2 * m + 1); })},
    {"MovingMedianSmooth", MovingMedianSmooth, false, medianOfWindow},
    {"WeightedAverageSmooth", WeightedAverageSmooth, false,
     weighted([](int k, int m) { return L(m + 1 - std::abs(k)); },
              [](int m) { return L(m + 1) * (m + 1); })},
    {"PolynomialSmooth", PolynomialSmooth, true,
     weighted([](int k, int m) { return L(3 * m * m + 3 * m - 1 - 5 * k * k); },
              [](int m) { return L((2 * m + 3) * (2 * m + 1) * (2 * m - 1) / 3); })},
    {"FirstDeriv", FirstDeriv, true,
     weighted([](int k, int) { return L(k); },
              [](int m) { return L(m * (m + 1) * (2 * m + 1) / 3); })},
    {"SecondDeriv", SecondDeriv, true,
     weighted(
         [](int k, int m) { return L(3 * k * k - m * (m + 1)); },
         [](int m) { return L(m) * (m + 1) * (2 * m + 1) * (2 * m - 1) * (2 * m + 3) / 30; })}};

Numbers signal(int n) {
  Numbers x(static_cast<std::size_t>(n));
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  for (double& v : x) v = std::round(4 * normal(random)) + static_cast<double>(random() % 7);
  return x;
}

/// Results 1..n of the range low..high, as far as there is room for them; those without a whole
/// window are the nearest one that has it, or 0 where this has no place.
Numbers byDefinition(const Routine& routine, const TVector& x, int low, int high, int winSize,
                     Numbers dest) {
  const int m = winSize / 2, n = high - low + 1, room = static_cast<int>(dest.size());
  for (int k = 1; k <= std::min(n, room); ++k) {
    const int whole = std::clamp(k, m + 1, n - m);
    dest[static_cast<std::size_t>(k - 1)] =
        whole <= room ? routine.ofWindow(x, low + whole - 1, m) : 0;
  }
  return dest;
}

void expectNear(const Numbers& actual, const Numbers& expected, const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (test::sameValue(actual[i], expected[i])) continue;
    ASSERT_NEAR(actual[i], expected[i], 2e-15 * std::max(std::abs(expected[i]), 16.0))
        << what << " at " << i;
  }
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
        TVector x(signal(c.n));
        TVector dest;
        dest.Resize(c.destSize);
        dest.Fill(77);
        const Numbers expected =
            byDefinition(routine, x, c.trueLow, c.trueHigh, winSize, test::contents(dest));
        const test::Events events(dest);
        routine.smooth(&x, c.low, c.high, &dest, winSize);
        const auto what = routine.name + std::string(" ").append(std::to_string(winSize));
        expectNear(test::contents(dest), expected, what);
        EXPECT_EQ(events.count, 1) << what;
        const Numbers inPlace =
            byDefinition(routine, x, c.trueLow, c.trueHigh, winSize, test::contents(x));
        routine.smooth(&x, c.low, c.high, &x, winSize);
        expectNear(test::contents(x), inPlace, what + " in place");
      }
    }
  }
}

TEST(Smoothing, LeavesNoErrorWhereTheFormulaHasNone) {
  TVector constant, line, parabola, y;
  for (TVector* v : {&constant, &line, &parabola, &y}) v->Resize(40);
  constant.Fill(0.1);
  for (int i = 1; i <= 40; ++i) {
    line.SetVal(i, i);
    parabola.SetVal(i, i * i);
  }
  for (int winSize = 5; winSize <= 25; winSize += 2) {
    const auto expectAll = [&](auto smooth, const TVector& x, double value) {
      smooth(&x, 1, 40, &y, winSize);
      for (const double v : y) ASSERT_EQ(v, value) << winSize;
    };
    for (auto smooth : {PolynomialSmooth, MovingAverageSmooth, WeightedAverageSmooth}) {
      expectAll(smooth, constant, 0.1);
      smooth(&line, 1, 40, &y, winSize);
      for (int i = 1 + winSize / 2; i <= 40 - winSize / 2; ++i) ASSERT_EQ(y(i), i);
    }
    expectAll(FirstDeriv, line, 1);
    expectAll(SecondDeriv, parabola, 2);
    expectAll(FirstDeriv, constant, 0);
    expectAll(SecondDeriv, constant, 0);
  }
}

// A value beyond all others must not leave rounding errors, infinities or not-a-numbers in windows
// that do not hold it, and finite values have finite means.
TEST(Smoothing, ForgetsAValueThatHasLeftTheWindow) {
  for (const auto& routine : kRoutines) {
    for (const double special : {1e300, kInf, -kInf, kNaN}) {
      for (const int winSize : {5, 25}) {
        TVector x(signal(700)), clean, y;
        clean.Resize(700);
        y.Resize(700);
        routine.smooth(&x, 1, 700, &clean, winSize);
        x.SetVal(350, special);
        routine.smooth(&x, 1, 700, &y, winSize);
        for (int i = 1; i <= 700; ++i) {
          if (std::abs(i - 350) > winSize / 2) {
            ASSERT_EQ(y(i), clean(i)) << routine.name << i;
          }
        }
        if (!routine.isPolynomial && !std::isnan(special)) {
          ASSERT_TRUE(test::sameValue(y(352), routine.ofWindow(x, 352, winSize / 2)));
        }
      }
    }
  }
  TVector x(Numbers{kMost, kMost, kMost, -kMost, kMost, kMost, kMost, 0, 0, kMost}), y;
  y.Resize(10);
  MovingAverageSmooth(&x, 1, 10, &y, 3);
  EXPECT_EQ(y(2), kMost);
  EXPECT_NEAR(y(3) / kMost, 1.0 / 3, 1e-15);
  EXPECT_EQ(y(8), kMost / 3);
  WeightedAverageSmooth(&x, 1, 10, &y, 3);
  EXPECT_EQ(y(2), kMost);
  EXPECT_EQ(y(4), 0);
}

// 1E16 + 1 - 1E16: a plain sum would lose the 1.
TEST(Smoothing, SumsWindowsAccurately) {
  TVector x, y;
  x.Resize(3000);
  y.Resize(3000);
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
  for (int run = 0; run < 60; ++run) {
    const int winSize = 3 + 2 * static_cast<int>(random() % 12);
    TVector x, y;
    x.Resize(winSize + 1 + static_cast<int>(random() % 90));
    y.Resize(x.NrOfElem());
    for (int i = 1; i <= x.NrOfElem(); ++i) {
      const bool isHostile = run % 2 == 1 && random() % 16 == 0;
      x.SetVal(i, isHostile ? hostile[random() % hostile.size()]
                            : static_cast<double>(random() % (run % 3 == 0 ? 3 : 1000)));
    }
    MovingMedianSmooth(&x, 1, x.NrOfElem(), &y, winSize);
    for (int i = 1 + winSize / 2; i <= x.NrOfElem() - winSize / 2; ++i) {
      // Which of the zeros stands in the middle is not said: + 0.0 makes them one.
      ASSERT_TRUE(test::sameValue(y(i) + 0.0, medianOfWindow(x, i, winSize / 2) + 0.0));
    }
  }
}

TEST(Smoothing, RefusesUnfitArgumentsInOrder) {
  TVector x(signal(30)), y(signal(30));
  for (const auto& routine : kRoutines) {
    const std::string name = std::string(routine.name) + ": ";
    const std::string window = routine.isPolynomial ? "polynomial" : "smoothing window";
    const std::string purpose = name == "FirstDeriv: " ? "calculation" : "smoothing";
    const auto refuses = [&](TVector* from, TVector* to, int size, const std::string& text) {
      EXPECT_THROW_MSG(routine.smooth(from, 1, 30, to, size), EZELMath2Error, name + text);
    };
    refuses(nullptr, &y, 4, "either SourceVec or DestVec is undefined");
    refuses(&x, nullptr, 5, "either SourceVec or DestVec is undefined");
    refuses(&x, &y, 30,
            "specified range for " + purpose + " is smaller than the length of the " + window +
                (routine.isPolynomial ? "" : "s"));
    for (const int size : {2, -5, 3, 27}) {
      if (size < 3 || routine.isPolynomial) {
        refuses(&x, &y, size, "length of " + window + " is out of range");
      }
    }
    refuses(&x, &y, 8, "length of " + window + " must be odd");
  }
  const Numbers before = test::contents(x);
  test::expectFailuresHarmless<EZELMath2Error>(
      [&] { MovingMedianSmooth(&x, 1, 30, &x, 25); }, "MovingMedianSmooth: not enough memory",
      [&] { EXPECT_EQ(test::contents(x), before); }, [&] { x.SetElements(before); });
}

TEST(Smoothing, HasTheSameBitsOnEveryInstructionSet) {
  test::expectSameBits([] {
    Numbers all;
    TVector x(signal(1111)), y;
    x.SetVal(300, kInf);
    y.Resize(1111);
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
