/// @file
/// The picture of zel spectrum.
#pragma once

#include <span>
#include <string>

#include "spectral_lines.h"

namespace tool {

/// Draws the series and, below, the magnitudes over the frequency, with the periods of the
/// strongest peaks.
/// @param title   above the picture
/// @param yTitle  name of the series
/// @throws Failure  drawing or writing failed
void drawSpectrum(const std::string& fileName, const std::string& title, const std::string& yTitle,
                  const std::string& subtitle, std::span<const double> series, double sampleTime,
                  const Spectrum& spectrum);

}  // namespace tool
