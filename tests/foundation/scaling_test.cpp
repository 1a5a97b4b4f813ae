#include "zel/foundation/scaling.h"

#include <cstdlib>

#include "tests/support/testing.h"

using namespace zel;

namespace {

double decimal(const char* mantissa, int k) {
  return std::strtod((std::string(mantissa) + "e" + std::to_string(k)).c_str(), nullptr);
}
double above(double x) { return std::nextafter(x, kInf); }
double below(double x) { return std::nextafter(x, 0); }

struct Scale {
  Extended start = -1;
  Extended step = -1;
  std::uint16_t subTicks = 99;
  bool operator==(const Scale&) const = default;
};
Scale scale(int ticks, Extended x1, Extended x2) {
  Scale s;
  CalcScalePars(ticks, x1, x2, s.start, s.step, s.subTicks);
  return s;
}

}  // namespace

// Where the mantissa comes from a logarithm or a quotient, some decade puts a limit on the wrong
// side.
TEST(Round125, LimitsAreExactInEveryDecade) {
  for (int k = -307; k <= 307; ++k) {
    const double one = decimal("1", k);
    for (const double sign : {1.0, -1.0}) {
      const auto up = sign > 0 ? RoundPos125 : RoundNeg125;
      const auto down = sign > 0 ? RoundNeg125 : RoundPos125;
      struct Limit {
        double (*round)(double);
        const char *at, *under, *from, *over;
      };
      for (const auto& [round, at, under, from, over] : {Limit{up, "2", "2", "2", "5"},
                                                         {up, "5", "5", "5", "10"},
                                                         {down, "2", "1", "2", "2"},
                                                         {down, "5", "2", "5", "5"},
                                                         {Round125, "1.5", "1", "2", "2"},
                                                         {Round125, "3", "2", "5", "5"},
                                                         {Round125, "8", "5", "10", "10"}}) {
        const double x = decimal(at, k);
        EXPECT_EQ(round(sign * below(x)), sign * decimal(under, k)) << at << ' ' << k;
        EXPECT_EQ(round(sign * x), sign * decimal(from, k)) << at << ' ' << k;
        EXPECT_EQ(round(sign * above(x)), sign * decimal(over, k)) << at << ' ' << k;
      }
      // Powers of ten have a neighbourhood.
      for (const double x : {one * (1 - 2e-14), below(one), one, above(one), one * (1 + 2e-14)}) {
        EXPECT_EQ(up(sign * x), sign * one) << k;
        EXPECT_EQ(down(sign * x), sign * one) << k;
      }
      EXPECT_EQ(up(sign * one * (1 + 3e-14)), sign * decimal("2", k));
      EXPECT_EQ(down(sign * one * (1 - 3e-14)), sign * decimal("0.5", k));
    }
  }
}

TEST(Round125, EndsOfTheRange) {
  const double smallest = std::numeric_limits<double>::denorm_min();
  for (double x = smallest; x < 1e-321; x += smallest) {
    EXPECT_TRUE(0 < RoundNeg125(x) && RoundNeg125(x) <= x && x <= RoundPos125(x));
  }
  EXPECT_EQ(Round125(1.7e308), kInf);
  EXPECT_EQ(RoundNeg125(std::numeric_limits<double>::max()), 1e308);
  EXPECT_EQ(Round125(-kInf), -kInf);
  EXPECT_TRUE(std::isnan(RoundPos125(std::nan(""))));
  EXPECT_EQ(Round125(0), 0);
}

TEST(CalcScalePars, ClassLimitsAndDirections) {
  EXPECT_EQ(scale(4, 100, 0), (Scale{100, -20, 4}));
  EXPECT_EQ(scale(5, 0, 100), (Scale{0, 10, 5}));  // a limit belongs to the class below
  EXPECT_EQ(scale(4, 0, 2e-9L), (Scale{0, 2e-10L, 4}));
  EXPECT_EQ(scale(5, 0, 1), (Scale{0, 0.1L, 5}));
}

TEST(CalcScalePars, WithoutWishForTicks) {
  EXPECT_EQ(scale(0, 2.3, 9), (Scale{3, 1, 5}));
  EXPECT_EQ(scale(0, 2.0005, 9), (Scale{2, 1, 5}));  // within a thousandth
  EXPECT_EQ(scale(0, -2.3, 19), (Scale{-2, 1, 1}));
  EXPECT_EQ(scale(0, 2.3, -9), (Scale{1, 1, 1}));
  EXPECT_EQ(scale(-3, -2.3, -9), (Scale{-3, 1, 5}));
  EXPECT_EQ(scale(0, 1e30L, 2e30L), (Scale{1e30L, 1, 1}));
}

TEST(CalcScalePars, StepsAreRoundAndStartIsTheFirstMultiple) {
  SetRandSeed(3);
  for (int trial = 0; trial < 20000; ++trial) {
    const Extended size = std::pow(10.0L, static_cast<Extended>(Random(600) - 300));
    const Extended x1 = (Random() - 0.5) * size;
    const Extended x2 = trial % 7 == 0 ? x1 * (1 + 1e-9L * Random()) : (Random() - 0.5) * size;
    const int ticks = 1 + Random(trial % 2 ? 10 : 1000);
    const Scale s = scale(ticks, x1, x2);
    ASSERT_EQ(s.step > 0, x2 > x1);
    const Extended steps = (x2 - x1) / s.step;
    ASSERT_GE(steps, ticks * (1 - 1e-9L));
    ASSERT_LE(steps, 2.5L * ticks * (1 + 1e-9L));
    const Extended multiple = std::nearbyint(s.start / s.step);
    ASSERT_EQ(multiple * s.step, s.start);
    const Extended beyond = multiple - x1 / s.step;  // in steps
    ASSERT_GE(beyond, -0.001L * (1 + 1e-6L));
    ASSERT_LT(beyond, 0.999L * (1 + 1e-6L));
    const auto step = static_cast<double>(std::fabs(s.step));
    ASSERT_DOUBLE_EQ(Round125(step), step);
    ASSERT_EQ(s.subTicks, Round125(step * 3.5) < step * 3 ? 4 : 5);  // 4 for 2, whose 7 becomes 5
  }
}

TEST(CalcScalePars, DegenerateRangesEnd) {
  const Extended huge = std::numeric_limits<Extended>::max();
  const Extended tiny = std::numeric_limits<Extended>::denorm_min();
  const Extended nan = std::nanl("");
  for (const int ticks : {0, 3, -3}) {
    for (const auto& [x1, x2] :
         {std::pair<Extended, Extended>{4, 4}, {kInf, 1}, {1, -kInf}, {1, nan}}) {
      EXPECT_EQ(scale(ticks, x1, x2), (Scale{x1, 0, 1}));
    }
  }
  EXPECT_EQ(scale(INT_MAX, 0, tiny).step, 0);
  EXPECT_EQ(scale(1, -huge, huge).step, 0);
  const Scale s = scale(4, -huge, huge);  // the range overflows, the step does not
  EXPECT_TRUE(s.step > huge / 4 && s.start >= -huge);
  EXPECT_GT(scale(1, 0, tiny * 100).step, 0);
  // Steps too small to change the start.
  EXPECT_EQ(scale(1000, 1e30L, std::nextafter(1e30L, 2e30L)).start, 1e30L);
}

TEST(HistoBinRef, GridAnchoredAtItsReference) {
  for (const auto& [x, width, edge] : {std::tuple(-7.25, 2.0, -9.0), {5, 2, 5}, {5.5, 0, 5.5}}) {
    double offset = -1;
    EXPECT_EQ(HistoBinRef(x, 1, width, offset), edge);
    EXPECT_EQ(offset, x - edge);
  }
}

TEST(Squash, SigmoidWithItsSlopeAndLimits) {
  EXPECT_NEAR(Squash(2 + 1e-10, 2, 3, 4) / 3e-10, 1, 1e-6);  // no cancellation near the centre
  EXPECT_DOUBLE_EQ(Squash(3, 2, -3, 4), -4 * std::tanh(0.75));
  EXPECT_EQ(Squash(-1e300, 2, 3, 4), -4);
  EXPECT_EQ(Squash(2, 2, 3, 0), 0);
}
