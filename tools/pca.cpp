#include "pca.h"

#include <algorithm>
#include <utility>

#include "components.h"
#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "grouping.h"
#include "json.h"
#include "number_text.h"
#include "scores_picture.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

std::string percent(double part) { return fixedPoint(100 * part, 2); }

std::string tableText(const Table& file, const Components& pca, const PcaOptions& options) {
  constexpr std::size_t kMostShown = 12;
  std::string text = headingText(file, pca.names.size());
  text += "  Principal components of the " + options.mode + "s, n = " + std::to_string(pca.rows);
  if (!pca.leftOut.empty()) {
    text += ", " + counted(static_cast<long long>(pca.leftOut.size()), "row") +
            " left out for missing values";
  }
  text += "\n\n";
  const std::size_t shown = std::min(pca.names.size(), kMostShown);
  std::vector<std::string> components;
  for (std::size_t k = 0; k < shown; ++k) components.push_back("PC" + std::to_string(k + 1));
  const auto textsOf = [&](auto&& textOf) {
    std::vector<std::string> texts;
    for (std::size_t k = 0; k < shown; ++k) texts.push_back(textOf(k));
    return texts;
  };
  TextColumns variances(components);
  variances.add("eigenvalue", textsOf([&](std::size_t k) {
                  return pca.eigenvalues[0] < 1e6 && pca.eigenvalues[0] >= 1e-2
                             ? fixedPoint(pca.eigenvalues[k], 4)
                             : significant(pca.eigenvalues[k], 6);
                }));
  variances.add("explained %", textsOf([&](std::size_t k) { return percent(pca.explained[k]); }));
  variances.add("cumulative %", textsOf([&](std::size_t k) { return percent(pca.cumulative[k]); }));
  text += variances.text(terminalColumns());
  if (shown < pca.names.size()) {
    text += "  (" + std::to_string(pca.names.size() - shown) + " more; --json has all)\n";
  }
  std::vector<std::string> labels;
  for (const std::string& name : pca.names) labels.push_back(printable(name, 40));
  TextColumns loadings(std::move(labels));
  for (std::size_t k = 0; k < shown; ++k) {
    std::vector<std::string> texts;
    for (const double v : pca.loadings[k]) texts.push_back(fixedPoint(v, 4));
    loadings.add(components[k], std::move(texts));
  }
  return text + "\n  Loadings\n\n" + loadings.text(terminalColumns());
}

std::string jsonText(const Table& file, const Components& pca, const PcaOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("mode", options.mode);
  json.add("rows", pca.rows);
  json.add("left_out", static_cast<int>(pca.leftOut.size()));
  json.beginArray("variables");
  for (std::size_t i = 0; i < pca.names.size(); ++i) {
    json.beginObject();
    json.add("column", pca.numbers[i]);
    json.add("name", pca.names[i]);
    json.endObject();
  }
  json.endArray();
  json.addAll("eigenvalues", pca.eigenvalues);
  json.addAll("explained", pca.explained);
  json.addAll("cumulative", pca.cumulative);
  json.beginArray("loadings");
  for (const auto& loading : pca.loadings) json.addAll("", loading);
  json.endArray();
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

/// The categories of the rows that are left; empty for a row without one.
std::vector<std::string> categoriesOf(const Grouping& grouping, const Components& pca, int rows) {
  if (grouping.size() == 0) return {};
  std::vector<std::string> all(static_cast<std::size_t>(rows));
  for (std::size_t k = 0; k < grouping.size(); ++k) {
    for (const int row : grouping.rows[k]) {
      all[static_cast<std::size_t>(row - 1)] = grouping.labels[k];
    }
  }
  std::vector<std::string> kept;
  int row = 0;
  for (std::string& label : all) {
    if (!std::binary_search(pca.leftOut.begin(), pca.leftOut.end(), ++row)) {
      kept.push_back(std::move(label));
    }
  }
  return kept;
}

}  // namespace

Result pca(const PcaOptions& options) {
  if (options.mode != "correlation" && options.mode != "covariance") {
    throw Failure("--mode: " + inQuotes(options.mode) + " is neither correlation nor covariance");
  }
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const Grouping colors =
      options.color.empty() ? Grouping() : groupingOf(file, options.color, "--color");
  const ColumnChoice choice = chooseColumns(file, options.columns, colors.column);
  if (choice.columns.size() < 2) {
    throw Failure(options.columns.empty()
                      ? file.source + " has one column of numbers, and components take two"
                      : "--column names one column, and components take two");
  }
  const Components components = componentsOf(file, choice.columns, options.mode == "correlation");
  if (!options.picture.empty()) {
    drawScores(options.picture, pictureTitle(file), components,
               categoriesOf(colors, components, file.rows()),
               "Principal components of the " + options.mode +
                   "s, n = " + std::to_string(components.rows));
  }
  if (options.json) return {jsonText(file, components, options), choice.note};
  std::string text = tableText(file, components, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, choice.note};
}

}  // namespace tool
