/// @file
/// Constants.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The largest finite values.
inline constexpr double uc_MaxDouble = std::numeric_limits<double>::max();
inline constexpr double uc_MaxReal = uc_MaxDouble;
inline constexpr float uc_MaxSingle = std::numeric_limits<float>::max();
inline constexpr std::int64_t uc_MaxInt64 = std::numeric_limits<std::int64_t>::max();

/// Mathematical constants, correct to the last digit of Extended.
inline constexpr Extended uc_pi = 3.141592653589793238462643383279502884197L;
inline constexpr Extended uc_2pi = 6.283185307179586476925286766559005768394L;
inline constexpr Extended uc_e = 2.718281828459045235360287471352662497757L;
inline constexpr Extended uc_ln2 = 0.6931471805599453094172321214581765680755L;
inline constexpr Extended uc_ln10 = 2.302585092994045684017991454684364207601L;
inline constexpr Extended uc_sqrt2 = 1.414213562373095048801688724209698078570L;
inline constexpr Extended uc_sqrt2pi = 2.506628274631000502415765284811045253007L;
/// 1/sqrt(2 pi), the height of the normal density.
inline constexpr Extended uc_sqrt2pitom1 = 0.3989422804014326779399460599343818684759L;

/// ln n! for n = 0..1000, correct to the last digit.
extern ZEL_API const std::array<Extended, 1001> uc_LnFactorial;

}  // namespace zel
