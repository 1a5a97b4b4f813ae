/// @file
/// The picture of zel correlate.
#pragma once

#include <string>

#include "correlations.h"

namespace tool {

/// Draws a heat map: blue for positive, red for negative correlations, with the values in the cells
/// as long as there is room for them.
/// @param title  above it
/// @throws Failure  there are too many variables, or drawing or writing failed
void drawCorrelations(const std::string& fileName, const std::string& title,
                      const Correlations& correlations);

}  // namespace tool
