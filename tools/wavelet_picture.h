/// @file
/// The picture of zel wavelet.
#pragma once

#include <span>
#include <string>

#include "wavelet_levels.h"

namespace tool {

/// Draws the series and, below, the coefficients of each level where they lie in it, each level on
/// a scale of its own with its share of the energy beside it.
/// @param title   above the picture
/// @param yTitle  name of the series
/// @param wraps   what lies before the start of the series belongs to its end
/// @throws Failure  drawing or writing failed
void drawWavelet(const std::string& fileName, const std::string& title, const std::string& yTitle,
                 const std::string& subtitle, std::span<const double> series,
                 const WaveletLevels& transform, bool wraps);

}  // namespace tool
