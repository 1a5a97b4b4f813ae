/// @file
/// The running sums of TCurveFit. Internal.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zel/analysis/TCurveFit.h"
#include "zel/kernels/exact_sum.h"

namespace zel::detail {

/// The sums that belong to x, in the order of those of y whose roles they exchange; then the
/// symmetric ones.
enum TPairSum : std::uint8_t {
  sumx,       // x
  sumxq,      // x^2
  sumx2y,     // x^2 y
  sumx3,      // x^3
  sumx4,      // x^4
  sum1byx,    // 1 / x
  sum1byxq,   // 1 / x^2
  sumybyx,    // y / x
  sumlnx,     // ln x
  sumlnxq,    // (ln x)^2
  sumylnx,    // y ln x
  sumxlnx,    // x ln x
  sumlnxbyy,  // ln x / y
  sumyqlnx,   // y^2 ln x
  sumy,
  sumyq,
  sumxy2,
  sumy3,
  sumy4,
  sum1byy,
  sum1byyq,
  sumxbyy,
  sumlny,
  sumlnyq,
  sumxlny,
  sumylny,
  sumlnybyx,
  sumxqlny,
  sumDiff,    // x - y
  SumDiffq,   // (x - y)^2
  sumxy,      // x y
  sum1byxy,   // 1 / (x y)
  sumlnxlny,  // ln x ln y
  kPairSums
};

/// 33 sums of terms of the pairs, kept exactly: each is the sum of the rounded extended terms (of
/// unrounded ones for x^2, y^2, x y and (x - y)^2) over the pairs that are in, without any trace of
/// pairs that were removed, however large their terms.
///
/// A value of at most 1E-30 in magnitude counts as 0 in the reciprocals: uc_MaxReal stands for 1/x
/// and its square for 1/x^2. Logarithms of values that are not positive contribute nothing, nor
/// does ln x / 0.
class TPairSums {
 public:
  void Add(double x, double y) { Accumulate(x, y, false); }
  /// Takes a pair back that was added.
  void Remove(double x, double y) { Accumulate(x, y, true); }
  void Clear() {
    for (auto& sum : FSums) sum.clear();
  }
  /// The sums of the pairs with x and y exchanged.
  void Flip();
  [[nodiscard]] kernels::Twofold<Extended> Value(TPairSum sum) const { return FSums[sum].value(); }

  /// What the values of a pair keep out of the transformed sums.
  [[nodiscard]] static TEnumSet<TCurveFitError> Faults(double x, double y);

 private:
  void Accumulate(double x, double y, bool isRemoved);

  std::array<kernels::ExactSum, kPairSums> FSums;
};

}  // namespace zel::detail
