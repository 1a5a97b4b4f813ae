/// @file
/// Mean direction of angles.
#pragma once

#include <cmath>
#include <span>

#include "zel/base/types.h"

namespace zel::kernels {

/// Direction of the sum of the unit vectors of angles, in degrees, in [0, 360); 0 if the vectors
/// cancel exactly or there are none. Multiples of 90 degrees enter exactly, any number of turns is
/// taken off without rounding. Not-a-number for an angle that is not finite.
/// Method: Mardia and Jupp, Directional Statistics (2000) ch. 2.
[[nodiscard]] inline double circularMeanDegrees(std::span<const double> angles) {
  constexpr Extended kDegree = 0.01745329251994329576923690768488612713L;
  Extended sines = 0;
  Extended cosines = 0;
  for (const double angle : angles) {
    // The nearest multiple of 90 degrees and the rest; both steps are exact.
    const double reduced = std::remainder(angle, 360.0);
    const double quarter = std::round(reduced / 90);
    const Extended rest = static_cast<Extended>(reduced - 90 * quarter) * kDegree;
    Extended s = std::sin(rest);
    Extended c = std::cos(rest);
    if (std::abs(quarter) == 2) {
      s = -s;
      c = -c;
    } else if (quarter != 0) {
      const Extended turned = quarter * c;
      c = -quarter * s;
      s = turned;
    }
    sines += s;
    cosines += c;
  }
  if (sines == 0 && cosines == 0) return 0;
  const Extended direction = std::atan2(sines, cosines) / kDegree;
  const auto result = static_cast<double>(direction < 0 ? direction + 360 : direction);
  return result >= 360 ? 0 : result + 0.0;
}

}  // namespace zel::kernels
