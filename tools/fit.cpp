#include "fit.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "failure.h"
#include "file_names.h"
#include "fit_picture.h"
#include "gnuplot.h"
#include "json.h"
#include "models.h"
#include "number_text.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

struct Ranks {
  double pearson = 0, spearman = 0, kendall = 0, kendallSignificance = 0, gamma = 0;
};

/// The data, the model, and what is said of both.
struct Fit {
  const Table& file;
  std::string xTitle, yTitle;
  int rows = 0;
  int leftOut = 0;
  FittedModel model;
  Ranks ranks;
  double rootMeanSquare = 0;  // of the residuals
};

/// Kendall's is the difference of two numbers near 1.
std::string probability(double p) { return p < 1e-10 ? "below 1e-10" : significant(p, 3); }

std::string textOrDash(std::optional<double> value, int digits, const char* dash) {
  return value ? significant(*value, digits) : dash;
}

std::string coefficientText(const FittedModel& model, const char* dash) {
  std::vector<std::string> labels, values, errors, significances;
  bool hasErrors = false;
  for (const Coefficient& c : model.coefficients) {
    labels.push_back(c.name);
    values.push_back(significant(c.value, 7));
    errors.push_back(textOrDash(c.standardError, 5, dash));
    significances.push_back(textOrDash(c.significance, 3, dash));
    hasErrors = hasErrors || c.standardError;
  }
  TextColumns columns(std::move(labels));
  columns.add("estimate", std::move(values));
  if (hasErrors) {
    columns.add("standard error", std::move(errors));
    columns.add("significance", std::move(significances));
  }
  return columns.text(terminalColumns()) + '\n';
}

std::string varianceText(const FittedModel& model) {
  const AnalysisOfVariance& v = *model.variance;
  TextColumns columns({"regression", "residual", "total"});
  const auto number = [](double value) { return significant(value, 6); };
  columns.add("df", {std::to_string(v.dfRegression), std::to_string(v.dfResidual),
                     std::to_string(v.dfTotal)});
  columns.add("sum of squares", {number(v.regression), number(v.residual), number(v.total)});
  columns.add("mean square", {number(v.meanRegression), number(v.meanResidual), ""});
  columns.add("F", {number(v.f), "", ""});
  return "\n  Analysis of variance of " + model.scale + "\n\n" + columns.text(terminalColumns());
}

std::string tableText(const Fit& fit, const FitOptions& options) {
  const FittedModel& model = fit.model;
  std::string text = fit.file.source + ": " + printable(fit.yTitle, 60) + " over " +
                     printable(fit.xTitle, 60) + ", " + counted(fit.rows, "row");
  if (fit.leftOut > 0) {
    text += ", " + std::to_string(fit.leftOut) + " more left out for missing values";
  }
  text += '\n';
  if (!fit.file.comment().empty()) text += printable(fit.file.comment()) + '\n';
  text += "\n  Model " + options.model + ": " +
          (model.formula.empty() ? model.method : model.formula) + "\n\n";
  if (!model.coefficients.empty()) text += coefficientText(model, options.ascii ? "-" : "–");
  TextTable table;
  if (model.quality) {
    table.add(model.scale == "y" ? "fit quality (r squared)"
                                 : "fit quality (r squared of " + model.scale + ")",
              trimmed(*model.quality, 6));
  }
  table.add(model.curve ? "root mean square residual" : "root mean square distance",
            significant(fit.rootMeanSquare, 5));
  text += table.text();
  if (model.isNearSingular) {
    text += "  The powers of x can hardly be told apart; centred:N may do better.\n";
  }
  if (model.variance) text += varianceText(model);
  text += "\n  Correlation of x and y\n\n";
  TextTable correlations;
  correlations.add("Pearson", fixedPoint(fit.ranks.pearson, 4));
  correlations.add("Spearman", fixedPoint(fit.ranks.spearman, 4));
  correlations.add("Kendall tau-b", fixedPoint(fit.ranks.kendall, 4),
                   "significance " + probability(fit.ranks.kendallSignificance));
  correlations.add("Goodman-Kruskal gamma", fixedPoint(fit.ranks.gamma, 4));
  return text + correlations.text();
}

std::string jsonText(const Fit& fit, const FitOptions& options) {
  const FittedModel& model = fit.model;
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", fit.file.comment());
  json.add("x", fit.xTitle);
  json.add("y", fit.yTitle);
  json.add("rows", fit.rows);
  json.add("left_out", fit.leftOut);
  json.add("model", options.model);
  if (!model.formula.empty()) json.add("formula", model.formula);
  json.add("scale", model.scale);
  json.beginArray("coefficients");
  for (const Coefficient& c : model.coefficients) {
    json.beginObject();
    json.add("name", c.name);
    json.add("estimate", c.value);
    json.add("standard_error", c.standardError);
    json.add("significance", c.significance);
    json.endObject();
  }
  json.endArray();
  json.add("r_squared", model.quality);
  json.add("root_mean_square_residual", fit.rootMeanSquare);
  if (model.variance) {
    const AnalysisOfVariance& v = *model.variance;
    json.beginObject("analysis_of_variance");
    json.add("df_regression", v.dfRegression);
    json.add("df_residual", v.dfResidual);
    json.add("df_total", v.dfTotal);
    json.add("regression", v.regression);
    json.add("residual", v.residual);
    json.add("total", v.total);
    json.add("mean_regression", v.meanRegression);
    json.add("mean_residual", v.meanResidual);
    json.add("f", v.f);
    json.endObject();
  }
  json.beginObject("correlation");
  json.add("pearson", fit.ranks.pearson);
  json.add("spearman", fit.ranks.spearman);
  json.add("kendall", fit.ranks.kendall);
  json.add("kendall_significance", fit.ranks.kendallSignificance);
  json.add("gamma", fit.ranks.gamma);
  json.endObject();
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

Ranks ranksOf(zel::TCurveFit& pairs) {
  Ranks ranks;
  ranks.pearson = pairs.CorrCoeff();
  ranks.spearman = pairs.SpearmanRankCorr();
  ranks.kendall = pairs.KendallsTau(ranks.kendallSignificance);
  ranks.gamma = pairs.KruskalGamma();
  return ranks;
}

}  // namespace

Result fit(const FitOptions& options) {
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const std::size_t xColumn = chooseColumn(file, options.x, "--x");
  const std::size_t yColumn = chooseColumn(file, options.y, "--y");
  const std::vector<int> leftOut = rowsWithout(file, {xColumn, yColumn});
  const auto valuesOf = [&](std::size_t c) {
    std::vector<double> values = withoutRows(file.values(c), leftOut);
    if (std::any_of(values.begin(), values.end(), [](double v) { return std::isinf(v); })) {
      throw Failure(placeOf(file, file.columns[c]) + ": it has an infinite value");
    }
    return values;
  };
  const std::vector<double> x = valuesOf(xColumn);
  const std::vector<double> y = valuesOf(yColumn);
  zel::TCurveFit pairs;
  for (std::size_t i = 0; i < x.size(); ++i) pairs.EnterStatValue(x[i], y[i]);
  Fit result{.file = file,
             .xTitle = file.columns[xColumn].title(),
             .yTitle = file.columns[yColumn].title(),
             .rows = pairs.NumData(),
             .leftOut = static_cast<int>(leftOut.size()),
             .model = {},
             .ranks = {}};
  try {
    result.model = fitModel(pairs, options.model, options.smoothing);
  } catch (const Failure& failure) {
    // What is wrong with the command line is so for every file.
    const std::string reason = failure.what();
    throw Failure(reason.starts_with("--model") ? reason : file.source + ": " + reason);
  }
  result.ranks = ranksOf(pairs);
  double squares = 0;
  for (const double r : result.model.residuals) squares += r * r;
  if (!x.empty()) result.rootMeanSquare = std::sqrt(squares / static_cast<double>(x.size()));
  if (!options.picture.empty()) {
    drawFit(options.picture, pictureTitle(file), {result.xTitle, result.yTitle, x, y}, result.model,
            options.model);
  }
  if (options.json) return {jsonText(result, options), ""};
  std::string text = tableText(result, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, ""};
}

}  // namespace tool
