/// @file
/// The picture of zel fit.
#pragma once

#include <span>
#include <string>

#include "models.h"

namespace tool {

/// Two columns, value by value.
struct PairedColumns {
  const std::string& xTitle;
  const std::string& yTitle;
  std::span<const double> x;
  std::span<const double> y;
};

/// Draws the pairs with the curve and, below, the residuals; a circle with equal scales, and its
/// distances over the direction.
/// @param title  above the picture
/// @throws Failure  there is nothing to draw, or drawing or writing failed
void drawFit(const std::string& fileName, const std::string& title, const PairedColumns& data,
             const FittedModel& model, const std::string& modelName);

}  // namespace tool
