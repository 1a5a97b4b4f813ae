#include "summary.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

Figure finite(double value) {
  if (std::isfinite(value)) return {value, {}};
  return {std::nullopt, "beyond the range of a double"};
}

Figure none(const char* reason) { return {std::nullopt, reason}; }

/// The exponent of a power of two by which the values must be divided so that their squares stay in
/// the range of a double; 0 if they do as they are.
int excessExponent(const Summary& s) {
  const double size =
      std::max(std::abs(s.minimum.value.value_or(0)), std::abs(s.maximum.value.value_or(0)));
  if (size == 0 || (size > 0x1p-300 && size < 0x1p300)) return 0;
  return std::max(std::ilogb(size), -1000);
}

void addMoments(const zel::TVector& x, Summary& s) {
  const int exponent = excessExponent(s);
  zel::TVector scaled(exponent != 0 ? x.Elements() : std::span<const double>());
  if (exponent != 0) scaled.SMult(std::ldexp(1.0, -exponent));
  const zel::TVector& values = exponent != 0 ? scaled : x;

  double mean = 0;
  double variance = 0;
  values.MeanVar(0, 0, mean, variance);
  double deviation = std::sqrt(variance);
  if (s.n == 2) {
    // MeanVar calls the variance of two values 1 by convention. This is the usual one.
    zel::TVector centred(values.Elements());
    centred.MeanCenter();
    deviation = centred.CalcVecLeng();
  }
  s.mean = finite(std::ldexp(mean, exponent));
  s.standardDeviation = finite(std::ldexp(deviation, exponent));
  s.standardError = finite(std::ldexp(deviation / std::sqrt(s.n), exponent));
  if (s.n == 1) s.standardDeviation = s.standardError = none("needs at least 2 values");

  if (s.n < 4) {
    s.skewness = s.excessKurtosis = none("needs at least 4 values");
  } else if (deviation == 0) {
    s.skewness = s.excessKurtosis = none("all values are equal");
  } else {
    double skewness = 0;
    double kurtosis = 0;
    values.SkewKurtSample(0, 0, skewness, kurtosis);
    s.skewness = finite(skewness);
    s.excessKurtosis = finite(kurtosis);
  }
}

void addExtremes(const zel::TVector& x, const Variable& variable, Summary& s) {
  double low = 0;
  double high = 0;
  int lowAt = 0;
  int highAt = 0;
  x.MinMax(0, 0, low, high, lowAt, highAt);
  // MinMax starts from +-1.7e308 and finds nothing if all values lie beyond.
  if (lowAt == 0) lowAt = x.Find(0, 0, low = x.Percentile(0, 0, 0));
  if (highAt == 0) highAt = x.Find(0, 0, high = x.Percentile(100, 0, 0));
  s.minimum = finite(low);
  s.maximum = finite(high);
  s.minimumRow = variable.rowOf(lowAt);
  s.maximumRow = variable.rowOf(highAt);
}

}  // namespace

Summary summarize(const zel::TVector& x, const Variable& variable,
                  std::span<const double> percents) {
  Summary s;
  s.n = static_cast<int>(variable.values.size());
  s.missing = variable.missing;
  for (const double p : percents) s.percentiles.push_back({p, none("there are no values")});
  if (s.n == 0) {
    for (Figure* f : {&s.mean, &s.standardDeviation, &s.standardError, &s.skewness,
                      &s.excessKurtosis, &s.geometricMean, &s.minimum, &s.lowerQuartile, &s.median,
                      &s.upperQuartile, &s.maximum, &s.mode}) {
      *f = none("there are no values");
    }
    return s;
  }
  addExtremes(x, variable, s);
  addMoments(x, s);
  s.geometricMean = none("needs values above 0");
  if (s.minimum.value > 0.0) s.geometricMean = finite(x.GeometricMean(0, 0));

  double q1 = 0;
  double q2 = 0;
  double q3 = 0;
  x.Quartiles(0, 0, q1, q2, q3);
  s.lowerQuartile = finite(q1);
  s.median = finite(q2);
  s.upperQuartile = finite(q3);
  for (auto& [percent, at] : s.percentiles) at = finite(x.Percentile(percent, 0, 0));

  const double mode = x.Mode(0, 0);
  s.modeCount = static_cast<int>(std::count(x.begin(), x.end(), mode));
  if (s.modeCount > 1 || s.n == 1) {
    s.mode = finite(mode);
  } else {
    s.modeCount = 0;
    s.mode = none("all values differ");
  }
  return s;
}

}  // namespace tool
