/// @file
/// The spectrum of a series.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "zel/transforms/Zel_fourier.h"

namespace tool {

/// A line whose magnitude exceeds that of its neighbours.
struct SpectralLine {
  int line = 0;
  double frequency = 0;
  double period = 0;
  double magnitude = 0;  // amplitude of a cosine of this frequency
  double phase = 0;      // of that cosine at the first value, in degrees, in (-180, 180]
};

struct Spectrum {
  double mean = 0;  // of the series; it is removed first
  int samples = 0;
  int points = 0;                   // of the transform, with the zeros at the end
  double step = 0;                  // frequency of line 1
  std::vector<double> magnitudes;   // of the lines 0, 1, ...
  std::vector<SpectralLine> peaks;  // the strongest first
};

/// The window lies over the series, and zeros follow up to at least three times its length, so that
/// the lines are close enough together to find the top of a peak.
/// @param what  what the series says of itself for messages
/// @param most  peaks
/// @throws Failure  the series is too short, too long or too large
Spectrum spectrumOf(std::span<const double> series, const std::string& what, double sampleTime,
                    zel::TFastFourierWgtWin window, int most);

}  // namespace tool
