/// @file
/// Histograms with bins of a round width.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zel/vector/Zel_vector.h"

namespace tool {

/// Bin i (from 0) counts the values x with edge(i) <= x < edge(i + 1). The width is m 10^e and the
/// edges are whole multiples of it.
struct Histogram {
  int mantissa = 1;          // m
  int exponent = 0;          // e
  double firstMultiple = 0;  // the lowest edge, in widths
  std::vector<int> counts;

  [[nodiscard]] double edge(std::size_t i) const;
  [[nodiscard]] double width() const;
  /// An edge with as many decimals as the width has.
  [[nodiscard]] std::string edgeText(std::size_t i) const;
  /// The bin that holds a value between the smallest and the largest one.
  [[nodiscard]] std::size_t binOf(double x) const;
};

/// Counts all values of a vector in bins whose width suits the sample: 1, 2 or 5 times a power of
/// ten, the widest that is not above 2 IQR n^(-1/3) (D. Freedman, P. Diaconis, Z.
/// Wahrscheinlichkeitstheorie 57 (1981) 453), but not finer than the decimals of the data.
/// @param mostBins  wider bins are taken instead of more than these
/// @return nothing if the range of the values is too close to that of a double
std::optional<Histogram> countInBins(const zel::TVector& x, int mostBins);

/// The same with about the given number of bins (1 to 200), from a finer choice of round widths.
std::optional<Histogram> countInAbout(const zel::TVector& x, int bins);

}  // namespace tool
