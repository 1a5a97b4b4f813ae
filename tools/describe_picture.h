/// @file
/// The picture of zel describe.
#pragma once

#include <optional>
#include <string>

#include "bins.h"
#include "summary.h"
#include "variable.h"

namespace tool {

/// Draws a histogram with the quartiles and, below it, the values in the order of the rows over the
/// band between the quartiles. If all rows have numbers for names, ascending, these are the
/// abscissa.
/// @param title  above the picture
/// @param x      the values of the variable
/// @throws Failure  there is nothing to draw, or drawing or writing failed
void drawDescription(const std::string& fileName, const std::string& title, const zel::TVector& x,
                     const Variable& variable, const Summary& summary,
                     const std::optional<Histogram>& histogram);

}  // namespace tool
