#include "models.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "failure.h"
#include "utf8.h"
#include "zel/statistics/tdistribution.h"

namespace tool {
namespace {

using Numbers = std::vector<double>;
using Function = double (*)(double);

double same(double v) { return v; }
double square(double v) { return v * v; }
double logarithm(double v) { return std::log(v); }
double reciprocal(double v) { return 1 / v; }

/// A change of y that makes a model linear in its coefficients.
struct Scale {
  const char* name;
  Function of;
};
constexpr Scale kPlain{"y", same};
constexpr Scale kLogarithm{"ln y", logarithm};
constexpr Scale kReciprocal{"1/y", reciprocal};

/// How a coefficient comes from those of the linear model.
enum class From : std::uint8_t { linear, exponential, other };

struct Parameter {
  const char* name;
  From from;
  int regressor;  // -1: the constant
};

/// A model that is linear in its coefficients after a change of y.
struct Model {
  const char* name;
  const char* formula;
  Scale scale;
  std::vector<Function> regressors;
  std::vector<Parameter> parameters;
  void (*fit)(const zel::TCurveFit& pairs, Numbers& k, double& quality);
  double (*curve)(const Numbers& k, double x);
};

/// A fit of two or three coefficients.
template <auto kMember>
void fitBy(const zel::TCurveFit& pairs, Numbers& k, double& quality) {
  if constexpr (requires { (pairs.*kMember)(k[0], k[1], quality); }) {
    (pairs.*kMember)(k[0], k[1], quality);
  } else {
    (pairs.*kMember)(k[0], k[1], k[2], quality);
  }
}

void fitLine(const zel::TCurveFit& pairs, Numbers& k, double& quality) {
  pairs.CalcLinFit(k[1], k[0], quality);
}

const std::vector<Model>& models() {
  using Fit = zel::TCurveFit;
  constexpr auto kLinear = From::linear;
  constexpr auto kExp = From::exponential;
  constexpr auto kOther = From::other;
  static const std::vector<Model> all{
      {"line",
       "y = intercept + slope x",
       kPlain,
       {same},
       {{"intercept", kLinear, -1}, {"slope", kLinear, 0}},
       fitLine,
       [](const Numbers& k, double x) { return k[0] + k[1] * x; }},
      {"parabola",
       "y = k0 + k1 x + k2 x²",
       kPlain,
       {same, square},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}, {"k2", kLinear, 1}},
       fitBy<&Fit::CalcParabolFit>,
       [](const Numbers& k, double x) { return k[0] + x * (k[1] + x * k[2]); }},
      {"log",
       "y = k0 + k1 ln x",
       kPlain,
       {logarithm},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcLogFit>,
       [](const Numbers& k, double x) { return k[0] + k[1] * std::log(x); }},
      {"hyperbola",
       "y = k0 + k1 / x",
       kPlain,
       {reciprocal},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcHyperbolFit>,
       [](const Numbers& k, double x) { return k[0] + k[1] / x; }},
      {"recip",
       "y = 1 / (k0 + k1 x)",
       kReciprocal,
       {same},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcReciLinFit>,
       [](const Numbers& k, double x) { return 1 / (k[0] + k[1] * x); }},
      {"recihyp",
       "y = x / (k0 x + k1)",
       kReciprocal,
       {reciprocal},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcReciHyperbolFit>,
       [](const Numbers& k, double x) { return x / (k[0] * x + k[1]); }},
      {"recilog",
       "y = 1 / (k0 + k1 ln x)",
       kReciprocal,
       {logarithm},
       {{"k0", kLinear, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcReciLogFit>,
       [](const Numbers& k, double x) { return 1 / (k[0] + k[1] * std::log(x)); }},
      {"power",
       "y = k0 x^k1",
       kLogarithm,
       {logarithm},
       {{"k0", kExp, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcPowerFit>,
       [](const Numbers& k, double x) { return k[0] * std::pow(x, k[1]); }},
      {"exp",
       "y = k0 exp(k1 x)",
       kLogarithm,
       {same},
       {{"k0", kExp, -1}, {"k1", kLinear, 0}},
       fitBy<&Fit::CalcExponentialFit>,
       [](const Numbers& k, double x) { return k[0] * std::exp(k[1] * x); }},
      {"hoerl",
       "y = k0 k1^x x^k2",
       kLogarithm,
       {same, logarithm},
       {{"k0", kExp, -1}, {"k1", kExp, 0}, {"k2", kLinear, 1}},
       fitBy<&Fit::CalcHoerlFit>,
       [](const Numbers& k, double x) { return k[0] * std::pow(k[1], x) * std::pow(x, k[2]); }},
      {"gauss",
       "y = height exp(-(x - position)² / (2 sigma²))",
       kLogarithm,
       {same, square},
       {{"height", kOther, 0}, {"position", kOther, 0}, {"sigma", kOther, 0}},
       fitBy<&Fit::CalcGaussFit>,
       [](const Numbers& k, double x) {
         const double u = (x - k[1]) / k[2];
         return k[0] * std::exp(-u * u / 2);
       }}};
  return all;
}

/// Least squares with standard errors, the constant last.
struct LinearModel {
  bool isDone = false;
  Numbers values, errors;
  int df = 0;
  AnalysisOfVariance variance;
};

/// @param regressors  of x
LinearModel regress(zel::TCurveFit& pairs, Function scale,
                    std::span<const std::function<double(double)>> regressors) {
  const int n = pairs.NumData();
  const int m = static_cast<int>(regressors.size());
  zel::TMatrix design;
  design.Resize(m + 1, n);
  zel::TVector y, b, errors;
  y.Resize(n);
  for (int i = 1; i <= n; ++i) {
    for (int c = 1; c <= m; ++c) {
      design.SetVal(c, i, regressors[static_cast<std::size_t>(c - 1)](pairs.GetDataX(i)));
    }
    design.SetVal(m + 1, i, 1);
    y.SetVal(i, scale(pairs.GetDataY(i)));
  }
  LinearModel result;
  bool isNearSingular = false;
  if (n <= m || !zel::MultiLinReg(&design, &y, &b, &errors, isNearSingular) || isNearSingular) {
    return result;
  }
  result.isDone = true;
  result.values.assign(b.begin(), b.end());
  result.errors.assign(errors.begin(), errors.end());
  zel::TCurveFit estimates;
  for (int i = 1; i <= n; ++i) {
    double estimate = 0;
    for (int c = 1; c <= m + 1; ++c) estimate += b(c) * design(c, i);
    estimates.EnterStatValue(y(i), estimate);
  }
  AnalysisOfVariance& v = result.variance;
  estimates.CalcAnovaReg(m, true, v.dfRegression, v.dfResidual, v.dfTotal, v.residual, v.regression,
                         v.total, v.meanResidual, v.meanRegression, v.f);
  result.df = v.dfResidual;
  return result;
}

/// Error and significance of coefficient k of a linear model.
void addError(Coefficient& coefficient, const LinearModel& linear, std::size_t k) {
  if (!linear.isDone || linear.df < 1) return;
  const double error = linear.errors[k];
  coefficient.standardError = error;
  coefficient.significance =
      error > 0 ? 2 * zel::tDistriIntegral(-std::abs(linear.values[k] / error), linear.df) : 0;
}

FittedModel fitLinearised(zel::TCurveFit& pairs, const Model& model) {
  Numbers k(model.parameters.size());
  double quality = 0;
  model.fit(pairs, k, quality);
  FittedModel fitted;
  fitted.formula = model.formula;
  fitted.scale = model.scale.name;
  fitted.quality = quality;
  const std::vector<std::function<double(double)>> regressors(model.regressors.begin(),
                                                              model.regressors.end());
  const LinearModel linear = regress(pairs, model.scale.of, regressors);
  if (linear.isDone) fitted.variance = linear.variance;
  for (std::size_t i = 0; i < k.size(); ++i) {
    const Parameter& parameter = model.parameters[i];
    Coefficient& coefficient = fitted.coefficients.emplace_back(Coefficient{parameter.name, k[i]});
    if (parameter.from == From::other) continue;
    addError(coefficient, linear,
             parameter.regressor < 0 ? regressors.size()
                                     : static_cast<std::size_t>(parameter.regressor));
    if (parameter.from == From::exponential) {
      // To first order; that the logarithm is not 0 says nothing about the coefficient.
      if (coefficient.standardError) *coefficient.standardError *= std::abs(k[i]);
      coefficient.significance.reset();
    }
  }
  fitted.curve = [k, curve = model.curve](double x) { return curve(k, x); };
  return fitted;
}

constexpr int kHighestDegree = 30;

/// The degree in "poly:3".
int degreeIn(const std::string& name) {
  const std::string text = name.substr(name.find(':') + 1);
  int degree = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), degree);
  if (error != std::errc() || end != text.data() + text.size() || degree < 0 ||
      degree > kHighestDegree) {
    throw Failure("--model " + printable(name, 40) + ": " + inQuotes(text) +
                  " is not a degree from 0 to " + std::to_string(kHighestDegree));
  }
  return degree;
}

/// Of a high degree, the first and the last terms.
std::string polynomialText(int degree, const std::string& variable) {
  std::string text = "y = k0";
  for (int j = 1; j <= degree; ++j) {
    if (j == 3 && degree > 3) {
      text.append(" + ...");
      j = degree;
    }
    const std::string index = std::to_string(j);
    text.append(" + k").append(index).append(" ").append(variable);
    if (j > 1) text.append("^").append(index);
  }
  return text;
}

FittedModel fitPolynomial(zel::TCurveFit& pairs, int degree, bool isCentred) {
  zel::TDoubleArray k;
  double quality = 0;
  double shift = 0;
  FittedModel fitted;
  const bool isDone =
      isCentred ? pairs.CalcCenteredPolyFit(degree, k, shift, quality, fitted.isNearSingular)
                : pairs.CalcPolyFit(degree, k, quality, fitted.isNearSingular);
  if (!isDone) {
    throw Failure(pairs.NumData() <= degree
                      ? "a polynomial of degree " + std::to_string(degree) + " takes at least " +
                            std::to_string(degree + 1) + " rows, and there are " +
                            std::to_string(pairs.NumData())
                      : "the powers of x are too large");
  }
  fitted.formula = polynomialText(degree, isCentred ? "(x - shift)" : "x");
  fitted.quality = quality;
  const double spread = isCentred && pairs.StdDevX() > 0 ? pairs.StdDevX() : 1;
  std::vector<std::function<double(double)>> powers;
  for (int j = 1; j <= degree; ++j) {
    powers.emplace_back([=](double x) { return std::pow((x - shift) / spread, j); });
  }
  const LinearModel linear = regress(pairs, same, powers);
  if (linear.isDone && degree > 0) fitted.variance = linear.variance;
  for (int j = 0; j <= degree; ++j) {
    const auto at = static_cast<std::size_t>(j);
    Coefficient& coefficient = fitted.coefficients.emplace_back(
        Coefficient{std::string("k").append(std::to_string(j)), k[at]});
    addError(coefficient, linear, j == 0 ? powers.size() : at - 1);
    if (coefficient.standardError) *coefficient.standardError /= std::pow(spread, j);
  }
  if (isCentred) fitted.coefficients.push_back({"shift", shift});
  fitted.curve = [values = Numbers(k.begin(), k.end()), shift](double x) {
    double y = 0;
    for (std::size_t j = values.size(); j-- > 0;) y = y * (x - shift) + values[j];
    return y;
  };
  return fitted;
}

FittedModel fitCircle(zel::TCurveFit& pairs) {
  double r = 0;
  double x = 0;
  double y = 0;
  pairs.CalcCircleFit(r, x, y);
  FittedModel fitted;
  fitted.formula = "(x - x0)² + (y - y0)² = radius²";
  fitted.scale = "(x - x0)² + (y - y0)²";
  fitted.coefficients = {{"radius", r}, {"x0", x}, {"y0", y}};
  return fitted;
}

FittedModel fitSpline(zel::TCurveFit& pairs) {
  static_cast<void>(pairs.CubicSpline(pairs.MinX()));
  FittedModel fitted;
  fitted.method = "natural cubic spline through the pairs";
  fitted.curve = [&pairs](double x) { return pairs.CubicSpline(x); };
  return fitted;
}

FittedModel fitSmooth(zel::TCurveFit& pairs, double smoothing) {
  pairs.SetSplineSmoothing(smoothing);
  double quality = 0;
  bool isValid = false;
  static_cast<void>(pairs.SmoothedSpline(pairs.MinX(), quality, isValid));
  if (!isValid) throw Failure("a smoothing spline takes at least 3 different values of x");
  FittedModel fitted;
  fitted.method = "cubic smoothing spline";
  fitted.quality = quality;
  fitted.curve = [&pairs](double x) {
    double ignoredQuality = 0;
    bool ignored = false;
    return pairs.SmoothedSpline(x, ignoredQuality, ignored);
  };
  return fitted;
}

FittedModel fit(zel::TCurveFit& pairs, const std::string& name, double smoothing) {
  const auto& all = models();
  const auto model =
      std::find_if(all.begin(), all.end(), [&](const Model& m) { return m.name == name; });
  if (model != all.end()) return fitLinearised(pairs, *model);
  if (name.starts_with("poly:")) return fitPolynomial(pairs, degreeIn(name), false);
  if (name.starts_with("centred:")) return fitPolynomial(pairs, degreeIn(name), true);
  if (name == "circle") return fitCircle(pairs);
  if (name == "spline") return fitSpline(pairs);
  if (name == "smooth") return fitSmooth(pairs, smoothing);
  throw Failure("--model: there is no model " + inQuotes(name) + ", but these: " + kModelNames);
}

}  // namespace

const char* const kModelNames =
    "line, parabola, poly:N, centred:N, circle, log, power, exp, recip, recihyp, recilog, "
    "hyperbola, "
    "hoerl, gauss, spline, smooth";

FittedModel fitModel(zel::TCurveFit& pairs, const std::string& name, double smoothing) {
  FittedModel fitted;
  try {
    fitted = fit(pairs, name, smoothing);
  } catch (const zel::EZELMath2Error& error) {
    // Behind the name of the routine.
    const std::string_view message = error.what();
    throw Failure("the model " + name +
                  " does not fit: " + std::string(message.substr(message.find(": ") + 2)));
  }
  const auto& k = fitted.coefficients;
  for (int i = 1; i <= pairs.NumData(); ++i) {
    const double x = pairs.GetDataX(i);
    const double y = pairs.GetDataY(i);
    fitted.residuals.push_back(fitted.curve
                                   ? y - fitted.curve(x)
                                   : std::hypot(x - k[1].value, y - k[2].value) - k[0].value);
  }
  return fitted;
}

}  // namespace tool
