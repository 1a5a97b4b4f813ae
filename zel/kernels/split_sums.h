/// @file
/// The fast sums: plain additions that are exact because each element is first cut at a fixed unit.
///
/// An accumulator that starts at 1.5 * 2^52 units and stays near it absorbs the multiple of the
/// unit nearest to an element without any error; what is left of the element, at most half a unit,
/// is summed plainly. That takes four operations where an error-free sum takes seven. The unit is a
/// power of two that follows the magnitude of the data from run to run; a run that turns out too
/// large for its unit is repeated with a larger one. (Zielke and Drygalla 2003; Rump, Ogita and
/// Oishi, SIAM J. Sci. Comput. 31 (2008) 189; Demmel and Nguyen, IEEE ARITH 21 (2013) 163.)
///
/// The results come with a bound of their error. A caller that needs more takes the sums of
/// lane_sums.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zel/kernels/double_double.h"

namespace zel::kernels {

/// |exact sum - value| <= error; error is infinite if the data do not suit the method (not finite,
/// or magnitudes beyond 2^450).
struct BoundedSum {
  DoubleDouble value;
  double error = 0;
};

[[nodiscard]] BoundedSum splitSum(const double* x, std::size_t n);
[[nodiscard]] BoundedSum splitSum(const std::int32_t* x, std::size_t n);

/// Sums of d and d^2, where d = x - centre, rounded to double.
struct SplitMoments {
  BoundedSum sum;
  BoundedSum squares;
};

[[nodiscard]] SplitMoments splitMoments(const double* x, std::size_t n, double centre);
[[nodiscard]] SplitMoments splitMoments(const std::int32_t* x, std::size_t n, double centre);

}  // namespace zel::kernels
