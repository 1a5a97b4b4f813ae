/// @file
/// Least squares with one and with two regressors and a constant.
///
/// Sums of squares and products about the means in double-double, solved in double-double: neither
/// offsets of the data nor nearly collinear regressors cost digits that the data hold. Data of any
/// magnitude. Not-a-number and infinities make everything not-a-number.
#pragma once

#include <span>

#include "zel/base/types.h"
#include "zel/kernels/double_double.h"

namespace zel::kernels {

using ExtendedPair = Twofold<Extended>;

/// y = constant + slope x.
struct LineFit {
  ExtendedPair constant;
  ExtendedPair slope;
  double quality;  ///< coefficient of determination; 1 if y is constant
};

/// Spans of one length, at least 2. Where x is constant the results mean nothing.
[[nodiscard]] LineFit fitLine(std::span<const double> x, std::span<const double> y);

/// y = constant + slope1 x1 + slope2 x2.
struct PlaneFit {
  ExtendedPair constant;
  ExtendedPair slope1;
  ExtendedPair slope2;
  double quality;  ///< coefficient of determination; 1 if y is constant
  double part2;    ///< root mean square of what x2 adds to a fit by x1 alone, in units of y
  bool singular;   ///< x1 and x2 are collinear or constant; the rest means nothing
};

/// Spans of one length, at least 3.
[[nodiscard]] PlaneFit fitPlane(std::span<const double> x1, std::span<const double> x2,
                                std::span<const double> y);

}  // namespace zel::kernels
