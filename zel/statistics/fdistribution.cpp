#include "zel/statistics/fdistribution.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "zel/base/types.h"
#include "zel/kernels/incomplete_beta.h"
#include "zel/kernels/normal_tail.h"
#include "zel/kernels/tail_quantile.h"

namespace zel {

namespace {

/// The arguments of the incomplete beta function that belong to x.
struct BetaArguments {
  BetaArguments(Extended ratio, int df1, int df2) : a(Extended(df1) / 2), b(Extended(df2) / 2) {
    const Extended up = df1 * ratio;
    const Extended sum = up + df2;
    x = up / sum;
    y = df2 / sum;
    lambda = a * y * (1 - ratio);  // a y - b x
  }
  [[nodiscard]] Extended power() const { return kernels::betaPower(a, b, x, y, lambda); }
  [[nodiscard]] kernels::BetaTails tails() const {
    return kernels::incompleteBeta(a, b, x, y, lambda);
  }
  Extended a, b, x, y, lambda;
};

kernels::BetaTails tails(double x, int df1, int df2) {
  if (df1 < 1 || df2 < 1 || x <= 0) return {0, 1};
  if (std::isinf(x)) return {1, 0};
  return BetaArguments(x, df1, df2).tails();
}

/// Where the iteration begins: the approximation of Wilson and Hilferty for the logarithm of F
/// (Abramowitz and Stegun 26.5.22), or the leading term far out.
Extended firstGuess(Extended a, Extended b, bool lower, Extended tail) {
  const Extended z = lower ? -kernels::normalTail(tail) : kernels::normalTail(tail);
  if (std::min(a, b) > 1) {
    const Extended ra = 1 / (2 * a - 1);
    const Extended rb = 1 / (2 * b - 1);
    const Extended h = 2 / (ra + rb);
    const Extended scale = (z * z - 3) / 6;
    const Extended w = z * std::sqrt(h + scale > 0 ? h + scale : h) / h -
                       (rb - ra) * (scale + 5 / 6.0L - 2 / (3 * h));
    return std::exp(std::clamp<Extended>(2 * w, -2000, 2000));
  }
  return 1;
}

}  // namespace

double FDistriIntegral(double x, int df1, int df2) {
  return static_cast<double>(tails(x, df1, df2).lower);
}

double FDistriComplement(double x, int df1, int df2) {
  return static_cast<double>(tails(x, df1, df2).upper);
}

double FDistriDensity(double x, int df1, int df2) {
  if (df1 < 1 || df2 < 1 || x < 0 || std::isinf(x)) return 0;
  if (x == 0) return df1 == 1 ? std::numeric_limits<double>::infinity() : df1 == 2 ? 1 : 0;
  return static_cast<double>(BetaArguments(x, df1, df2).power() / x);
}

double FDistriQuantile(double p, int df1, int df2) {
  if (df1 < 1 || df2 < 1 || !(p > 0 && p < 1)) return 0;
  const bool lower = p < 0.5;
  const Extended tail = lower ? Extended{p} : 1 - Extended{p};
  const Extended start = firstGuess(Extended(df1) / 2, Extended(df2) / 2, lower, tail);
  return static_cast<double>(kernels::tailQuantile(lower, tail, start, [&](Extended at) {
    const BetaArguments here(at, df1, df2);
    const auto [below, above] = here.tails();
    const Extended slope = here.power();
    return kernels::TailAt{lower ? below : above, lower ? slope : -slope, here.lambda};
  }));
}

}  // namespace zel
