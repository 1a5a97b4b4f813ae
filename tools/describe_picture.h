/// @file
/// The picture of zel describe.
#pragma once

#include <optional>
#include <string>

#include "asc_column.h"
#include "bins.h"
#include "summary.h"

namespace tool {

/// Draws a histogram with the quartiles and, below it, the values in the order of the rows over the
/// band between the quartiles. If all rows have numbers for names, ascending, these are the
/// abscissa.
/// @param x  the values of the column
/// @throws Failure  there is nothing to draw, or drawing or writing failed
void drawDescription(const std::string& fileName, const zel::TVector& x, const AscColumn& column,
                     const Summary& summary, const std::optional<Histogram>& histogram);

}  // namespace tool
