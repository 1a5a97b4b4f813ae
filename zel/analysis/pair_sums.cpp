#include <cmath>
#include <utility>

#include "zel/analysis/pair_sums_impl.h"
#include "zel/base/Zel_univconst.h"

namespace zel::detail {

namespace {

constexpr Extended kTiny = 1e-30L;
constexpr std::size_t kSideSums = sumy;
static_assert(2 * kSideSums == sumDiff);

bool isTiny(Extended value) { return std::abs(value) <= kTiny; }

Extended logarithm(Extended value) { return value > 0 ? std::log(value) : 0; }

using TSideTerms = std::array<Extended, kSideSums>;

/// The terms of the sums that belong to x, in the order of TPairSum. With the arguments exchanged
/// they are the terms of those that belong to y.
TSideTerms sideTerms(Extended x, Extended y, Extended lnX) {
  const Extended xx = x * x;
  const bool hasReciprocal = !isTiny(x);
  const Extended reciprocal = hasReciprocal ? 1 / x : Extended{uc_MaxReal};
  // Where nothing is to be added, not even a not-a-number may come from 0 times infinity.
  const bool hasLog = x > 0;
  return {x,
          xx,
          xx * y,
          xx * x,
          xx * xx,
          reciprocal,
          hasReciprocal ? 1 / xx : reciprocal * reciprocal,
          hasReciprocal ? y / x : reciprocal * y,
          lnX,
          lnX * lnX,
          hasLog ? y * lnX : 0,
          hasLog ? x * lnX : 0,
          hasLog && y != 0 ? lnX / y : 0,
          hasLog ? y * y * lnX : 0};
}

/// 1 / (x y); where one of them is tiny, the largest double stands for its reciprocal, where both
/// are, for the whole. Symmetric to the last bit, so that what an exchange of x and y turned can be
/// removed.
Extended reciprocalProduct(Extended x, Extended y) {
  constexpr Extended kMost = uc_MaxReal;
  if (isTiny(x)) return isTiny(y) ? kMost : kMost / y;
  return isTiny(y) ? kMost / x : 1 / (x * y);
}

}  // namespace

TEnumSet<TCurveFitError> TPairSums::Faults(double x, double y) {
  TEnumSet<TCurveFitError> faults;
  if (!(x > 0)) faults.include(cfeXLE0);
  if (!(y > 0)) faults.include(cfeYLE0);
  if (isTiny(x)) faults.include(cfeXEQ0);
  if (isTiny(y)) faults.include(cfeYEQ0);
  return faults;
}

void TPairSums::Accumulate(double xValue, double yValue, bool isRemoved) {
  const auto put = [&](std::size_t sum, Extended term) {
    isRemoved ? FSums[sum].subtract(term) : FSums[sum].add(term);
  };
  // The rest of a rounded square or product, so that differences of these sums keep their digits
  // whatever the offset of the data (test CurveFitStatistics.OffsetKeepsDigits).
  const auto putRest = [&](std::size_t sum, Extended a, Extended b) {
    const auto product = kernels::twoProduct(a, b);
    if (std::isfinite(product.hi) && std::isfinite(product.lo)) put(sum, product.lo);
  };
  const Extended x = xValue;
  const Extended y = yValue;
  const Extended lnX = logarithm(x);
  const Extended lnY = logarithm(y);
  const TSideTerms ofX = sideTerms(x, y, lnX);
  const TSideTerms ofY = sideTerms(y, x, lnY);
  for (std::size_t k = 0; k < kSideSums; ++k) {
    put(k, ofX[k]);
    put(kSideSums + k, ofY[k]);
  }
  const Extended difference = x - y;
  put(sumDiff, difference);
  put(SumDiffq, difference * difference);
  put(sumxy, x * y);
  put(sum1byxy, reciprocalProduct(x, y));
  if (x > 0 && y > 0) put(sumlnxlny, lnX * lnY);

  putRest(sumxq, x, x);
  putRest(sumyq, y, y);
  putRest(sumxy, x, y);
  putRest(SumDiffq, difference, difference);
}

void TPairSums::Flip() {
  for (std::size_t k = 0; k < kSideSums; ++k) std::swap(FSums[k], FSums[kSideSums + k]);
  FSums[sumDiff].negate();
}

}  // namespace zel::detail
