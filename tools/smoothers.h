/// @file
/// What zel smooth makes of a series.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "smooth.h"

namespace tool {

/// The methods that --method names, for messages.
std::string methodWords();

/// A series after a smoother, a derivative or a filter.
struct Smoothed {
  std::string method;          // in words
  bool isDerivative = false;   // in other units than the series
  int width = 0;               // values of the window; 0 for a recursive filter
  std::vector<double> values;  // as many as the series has
};

/// @param what  what the series says of itself for messages
/// @throws Failure  an option does not suit the method or the series; the values are too large
Smoothed smoothed(std::span<const double> series, const std::string& what,
                  const SmoothOptions& options);

}  // namespace tool
