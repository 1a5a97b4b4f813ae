#include "zel/foundation/scaling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <type_traits>

namespace zel {
namespace {

// tenths x 10^(k-1), correctly rounded, as no product or quotient of powers can promise. The text
// holds no decimal point, so the locale does not matter; std::from_chars would refuse denormal
// results.
template <class F>
F decimal(int tenths, int k) {
  const std::string text = std::to_string(tenths) + "e" + std::to_string(k - 1);
  if constexpr (std::is_same_v<F, double>) {
    return std::strtod(text.c_str(), nullptr);
  } else {
    return std::strtold(text.c_str(), nullptr);
  }
}

// The limits of the mantissa classes within one power of ten. Rounding is monotone, so comparing
// with the rounded limits decides like exact arithmetic, but takes the double nearest to a limit
// for the limit itself.
struct Decade {
  double one, oneAndHalf, two, three, five, eight;
};
constexpr int kLowest = -324;
constexpr int kHighest = 308;

const auto& decades() {
  static const auto table = [] {
    std::array<Decade, kHighest - kLowest + 1> t{};
    for (int k = kLowest; k <= kHighest; ++k) {
      t[static_cast<std::size_t>(k - kLowest)] = {decimal<double>(10, k), decimal<double>(15, k),
                                                  decimal<double>(20, k), decimal<double>(30, k),
                                                  decimal<double>(50, k), decimal<double>(80, k)};
    }
    return t;
  }();
  return table;
}

// |log10(m / power)| <= 1e-14, as a difference, which is exact for neighbours.
bool isPowerOfTen(double m, double power) {
  constexpr double tolerance = 2.302585092994072e-14;  // 10^1e-14 - 1
  return std::isfinite(power) && std::fabs(m - power) <= tolerance * power;
}

enum class Rule { nearest, up, down };

double round125(double x, Rule rule) {
  if (x == 0 || !std::isfinite(x)) return x + 0.0;
  const double m = std::fabs(x);
  const auto& table = decades();
  const auto next = std::upper_bound(table.begin(), table.end(), m,
                                     [](double value, const Decade& d) { return value < d.one; });
  const Decade& d = *(next - 1);
  const double ten = next == table.end() ? std::numeric_limits<double>::infinity() : next->one;
  const auto chosen = [&] {
    if (isPowerOfTen(m, d.one)) return d.one;
    if (isPowerOfTen(m, ten)) return ten;
    switch (rule) {
      case Rule::nearest:
        return m < d.oneAndHalf ? d.one : m < d.three ? d.two : m < d.eight ? d.five : ten;
      case Rule::up:
        return m > d.five ? ten : m > d.two ? d.five : d.two;
      default:
        return m < d.two ? d.one : m < d.five ? d.two : d.five;
    }
  };
  return std::copysign(chosen(), x);
}

constexpr Extended kLg2 = 0.301029995663981195213738894724493027L;
constexpr Extended kLg5 = 0.698970004336018804786261105275506973L;

// Step and number of minor intervals for about 10^lg per step; 0 if there is none.
Extended pleasantStep(Extended lg, std::uint16_t& subTicks) {
  constexpr Extended tolerance = 1e-10L;
  if (!std::isfinite(lg)) return 0;
  Extended k = std::round(lg);
  Extended fraction = 0;
  if (std::fabs(lg - k) >= tolerance) {
    k = std::floor(lg);
    fraction = lg - k;
  }
  const int mantissa = fraction < kLg2 + tolerance ? 1 : fraction < kLg5 + tolerance ? 2 : 5;
  const auto step = decimal<Extended>(10 * mantissa, static_cast<int>(k));
  if (step == 0 || std::isinf(step)) return 0;
  subTicks = mantissa == 2 ? 4 : 5;
  return step;
}

}  // namespace

double Round125(double x) { return round125(x, Rule::nearest); }

double RoundPos125(double x) { return round125(x, x > 0 ? Rule::up : Rule::down); }

double RoundNeg125(double x) { return round125(x, x > 0 ? Rule::down : Rule::up); }

void CalcScalePars(int NTicks, Extended X1, Extended X2, Extended& Start, Extended& Step,
                   std::uint16_t& NrSubTicks) {
  // The results may be the variables that were passed as bounds, so they are written last.
  Extended start = X1;
  Extended step = 0;
  std::uint16_t subTicks = 1;
  // A step counts as reached while it lies no more than this part of itself before X1.
  constexpr Extended slack = 0.001L;
  const bool downward = X1 >= X2;
  if (X1 != X2 && std::isfinite(X1) && std::isfinite(X2)) {
    if (NTicks <= 0) {
      step = 1;
      start = downward ? std::trunc(X1) - 1 : std::ceil(X1 - slack);
      subTicks = std::fabs(X2 - X1) <= 10 ? 5 : 1;
    } else {
      const auto n = static_cast<Extended>(NTicks);
      const Extended range = std::fabs(X2 - X1);
      const Extended lg = std::isfinite(range) ? std::log10(range / n)
                                               : std::log10(std::fabs(X2 / 2 - X1 / 2) / n) + kLg2;
      step = pleasantStep(lg, subTicks);
      if (downward) step = -step;
      // Not by adding steps from below: that would accumulate rounding, and never end once a step
      // is too small to change the sum.
      if (step != 0) start = std::ceil(X1 / step - slack) * step;
    }
  }
  Start = start + 0.0L;
  Step = step;
  NrSubTicks = subTicks;
}

double HistoBinRef(double x, double RefPoint, double BinWidth, double& Offset) {
  const double edge =
      BinWidth == 0 ? x : std::floor((x - RefPoint) / BinWidth) * BinWidth + RefPoint;
  Offset = x - edge;
  return edge;
}

double Squash(double x, double Center, double Slope, double Limit) {
  return Limit == 0 ? 0 : Limit * std::tanh(Slope * (x - Center) / Limit);
}

}  // namespace zel
