/// @file
/// The picture of zel describe for several variables.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bins.h"
#include "summary.h"

namespace tool {

/// One small histogram; there is none without values, or if they are too large.
struct HistogramPanel {
  std::string name;
  const Summary* summary = nullptr;
  std::optional<Histogram> histogram;
};

/// Draws small histograms with box plots over them side by side.
/// @param title  above them
/// @throws Failure  there are too many, or drawing or writing failed
void drawHistograms(const std::string& fileName, const std::string& title,
                    const std::vector<HistogramPanel>& panels);

}  // namespace tool
