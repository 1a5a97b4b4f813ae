/// @file
/// The picture of zel smooth.
#pragma once

#include <span>
#include <string>

#include "smoothers.h"

namespace tool {

/// Draws the series with the result over it; a derivative has a plot of its own below.
/// @param title   above the picture
/// @param yTitle  name of the series
/// @throws Failure  drawing or writing failed
void drawSmoothed(const std::string& fileName, const std::string& title, const std::string& yTitle,
                  std::span<const double> series, double sampleTime, const Smoothed& result);

}  // namespace tool
