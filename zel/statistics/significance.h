/// @file
/// Levels of significance and other choices of the statistical routines.
#pragma once

#include <array>
#include <cstdint>

#include "zel/base/api.h"

namespace zel {

/// Levels 0.20, 0.15, 0.10, 0.05, 0.01 of the Kolmogorov-Smirnov table.
enum TSignifLevel : std::uint8_t { Dot20, Dot15, Dot10, Dot05, Dot01 };

/// Levels of the Dean-Dixon table; NumericSigLevel has them as numbers.
enum TSignifLevelEx : std::uint8_t {
  Dot001,
  Dot002,
  Dot005,
  Dot010,
  Dot020,
  Dot050,
  Dot100,
  Dot200,
  Dot500
};

/// 0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5; the index is a TSignifLevelEx.
extern ZEL_API const std::array<double, 9> NumericSigLevel;

/// Two-sample t tests: of pairs, with equal variances, with different variances (Welch).
enum TtTestVersion : std::uint8_t { ttPaired, ttHomoScedastic, ttHeteroScedastic };

/// Scaling before partial least squares: subtract the mean, or divide by the deviation too.
enum TPLSSclMode : std::uint8_t { scmCenter, scmStandardize };

}  // namespace zel
