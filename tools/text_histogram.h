/// @file
/// Histograms in the terminal.
#pragma once

#include <string>
#include <vector>

#include "bins.h"

namespace tool {

/// A word beside the bar of the bin that holds a value.
struct BinMark {
  double at = 0;
  std::string word;
};

/// One line per bin: its lower edge, a bar, the count, the marks.
/// @param columns  width of the text; at least 40 are used
/// @param ascii    bars of "#" instead of block characters of an eighth's width
std::string textHistogram(const Histogram& histogram, const std::vector<BinMark>& marks,
                          int columns, bool ascii);

/// The counts as one line of small bars, a character for each bin.
std::string sparkline(const Histogram& histogram);

/// Columns of the terminal that standard output goes to, 80 if it is none, at most 100: longer bars
/// are hard to compare.
int terminalColumns();

}  // namespace tool
