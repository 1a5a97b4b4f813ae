/// @file
/// The figures of zel describe as texts.
#pragma once

#include <string>
#include <vector>

#include "summary.h"
#include "variable.h"

namespace tool {

/// One line of the table; all empty for a blank line.
struct FigureLine {
  std::string label;
  std::string number;
  std::string note;         // beside the number: where it is, or why it is none
  std::string detailLabel;  // the note as a line of its own, for a place without room beside it
  std::string detail;
};

/// The figures, rounded so that the digits shown mean something. The lines of all variables are the
/// same if they have the same percentiles.
/// @param dash  for a figure that there is none of
std::vector<FigureLine> figureLines(const Variable& variable, const Summary& summary,
                                    const std::string& dash);

}  // namespace tool
