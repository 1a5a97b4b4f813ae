/// @file
/// The models of zel fit.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "zel/analysis/Zel_math2.h"

namespace tool {

struct Coefficient {
  std::string name;
  double value = 0;
  std::optional<double> standardError = {};
  std::optional<double> significance = {};  // two-sided, of its difference from 0
};

struct AnalysisOfVariance {
  int dfRegression = 0, dfResidual = 0, dfTotal = 0;
  double regression = 0, residual = 0, total = 0;  // sums of squares
  double meanRegression = 0, meanResidual = 0, f = 0;
};

/// A curve through pairs of values, or a circle.
struct FittedModel {
  std::string formula;      // "y = intercept + slope x"
  std::string scale = "y";  // what the least squares are of: "y", "ln y" or "1/y"
  std::string method;       // where there are no coefficients: what the curve is
  std::vector<Coefficient> coefficients;
  std::optional<double> quality;
  std::optional<AnalysisOfVariance> variance;
  bool isNearSingular = false;
  std::function<double(double)> curve;  // empty: it is a circle, the coefficients radius, x, y
  std::vector<double> residuals;        // y less the curve; the distances from the circle
};

/// The names of all models, for messages.
extern const char* const kModelNames;

/// Fits a model by name ("poly:3").
/// @param pairs      must outlive the curve
/// @param smoothing  of the model "smooth"
/// @throws Failure   there is no such model, or the data make it impossible
FittedModel fitModel(zel::TCurveFit& pairs, const std::string& name, double smoothing);

}  // namespace tool
