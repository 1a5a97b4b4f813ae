/// @file
/// The figures that describe a sample.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "variable.h"
#include "zel/vector/Zel_vector.h"

namespace tool {

/// A figure, or why there is none.
struct Figure {
  std::optional<double> value;
  std::string reason;
};

struct Percentile {
  double percent = 0;
  Figure at;
};

/// Skewness and kurtosis are corrected for the sample size. Quartiles and percentiles follow the
/// rules of TVector. A figure that leaves the range of a double is none.
struct Summary {
  int n = 0;
  int missing = 0;
  Figure mean;
  Figure standardDeviation;
  Figure standardError;
  Figure skewness;
  Figure excessKurtosis;
  Figure geometricMean;
  Figure minimum;
  int minimumRow = 0;
  Figure lowerQuartile;
  Figure median;
  Figure upperQuartile;
  std::vector<Percentile> percentiles;
  Figure maximum;
  int maximumRow = 0;
  Figure mode;
  int modeCount = 0;
};

/// @param x         the values of the variable; read only if it has some
/// @param percents  0..100
Summary summarize(const zel::TVector& x, const Variable& variable,
                  std::span<const double> percents);

}  // namespace tool
