/// @file
/// The wavelet transform of a column, level by level.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "zel/transforms/Zel_wavelet.h"

namespace tool {

/// The coefficients of one level.
struct WaveletLevel {
  std::string name;  // "D1" are the finest details, "A5" the approximations of level 5
  int level = 0;
  bool isApproximation = false;
  std::vector<double> coefficients;
  double energy = 0;  // their sum of squares
  double share = 0;   // of the energy of all levels; not-a-number if that is 0
  double centre =
      0;  // sample, from 0, around which coefficient 0 lies; each next one 2^level later
};

/// A series and its transform.
struct WaveletLevels {
  double mean = 0;                   // of the series; it is removed first
  int samples = 0;                   // of the series
  int zeros = 0;                     // added at the end, up to a power of two
  double energy = 0;                 // sum of squares of the series without its mean
  double transformed = 0;            // sum of squares of all coefficients
  std::vector<WaveletLevel> levels;  // the finest details first, the approximations last
};

/// @param series  at least two values, and what they say of themselves for messages
/// @param levels  0: as many as there are
/// @throws Failure  the series is too short, too long or too large, or has fewer levels
WaveletLevels waveletLevels(std::span<const double> series, const std::string& what, int order,
                            int levels, zel::TWLSigExtMode mode);

}  // namespace tool
