#include "smooth.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "json.h"
#include "number_text.h"
#include "series.h"
#include "smooth_picture.h"
#include "smoothers.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "zel/vector/Zel_vector.h"

namespace tool {
namespace {

double spreadOf(std::span<const double> values) {
  double mean = 0;
  double variance = 0;
  zel::TVector(values).MeanVar(0, 0, mean, variance);
  return std::sqrt(variance);
}

std::vector<double> differences(std::span<const double> a, std::span<const double> b) {
  std::vector<double> d(a.size());
  std::ranges::transform(a, b, d.begin(), std::minus());
  return d;
}

std::string rowLabel(const Table& file, int row) {
  const std::string name = printable(file.rowName(row), 24);
  return name.empty() ? std::to_string(row) : name;
}

std::string tableText(const Table& file, const Series& series, const Smoothed& result,
                      const SmoothOptions& options) {
  const int n = static_cast<int>(series.values.size());
  std::string text = file.source + ": " + printable(series.title, 60) + ", " + counted(n, "value") +
                     ", sample time " + shortest(options.sampleTime) + '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
  text += "\n  " + result.method + "\n\n";
  TextTable spreads;
  const auto addSpread = [&](const char* label, std::span<const double> values) {
    spreads.add(std::string("standard deviation of the ") + label,
                significant(spreadOf(values), 6));
  };
  addSpread("series", series.values);
  addSpread("result", result.values);
  const std::vector<double> rest = differences(series.values, result.values);
  if (!result.isDerivative) addSpread("difference", rest);
  text += spreads.text() + '\n';

  // Evenly spread over the series, both ends among them.
  const int shown = std::min(n, options.rows);
  std::vector<std::string> labels, originals, results, remainders;
  for (int k = 0; k < shown; ++k) {
    const auto i =
        static_cast<std::size_t>(shown == 1 ? 0 : std::int64_t{k} * (n - 1) / (shown - 1));
    labels.push_back(rowLabel(file, static_cast<int>(i) + 1));
    originals.push_back(significant(series.values[i], 7));
    results.push_back(significant(result.values[i], 7));
    remainders.push_back(significant(rest[i], 7));
  }
  TextColumns columns(std::move(labels));
  columns.add("series", std::move(originals));
  columns.add("result", std::move(results));
  if (!result.isDerivative) columns.add("difference", std::move(remainders));
  text += columns.text(terminalColumns());
  if (shown < n) {
    text += "  (" + std::to_string(n - shown) + " more; --rows shows more, --json has all)\n";
  }
  return text;
}

std::string jsonText(const Table& file, const Series& series, const Smoothed& result,
                     const SmoothOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("column", series.title);
  json.add("values", static_cast<int>(series.values.size()));
  json.add("sample_time", options.sampleTime);
  json.add("method", options.method);
  json.add("method_text", result.method);
  if (result.width > 0) json.add("width", result.width);
  if (!options.cutoff.empty()) json.addAll("cutoff", options.cutoff);
  json.add("standard_deviation_of_series", spreadOf(series.values));
  json.add("standard_deviation_of_result", spreadOf(result.values));
  if (file.hasRowNames) {
    json.beginArray("row_names");
    for (int row = 1; row <= file.rows(); ++row) json.add("", file.rowName(row));
    json.endArray();
  }
  json.addAll("series", series.values);
  json.addAll("result", result.values);
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

}  // namespace

Result smooth(const SmoothOptions& options) {
  if (!(options.sampleTime > 0) || !std::isfinite(options.sampleTime)) {
    throw Failure("--sample-time: it must be above 0");
  }
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const Series series = seriesOf(file, options.column, "a filter");
  const Smoothed result = smoothed(series.values, series.what, options);
  if (!options.picture.empty()) {
    drawSmoothed(options.picture, pictureTitle(file), series.title, series.values,
                 options.sampleTime, result);
  }
  if (options.json) return {jsonText(file, series, result, options), ""};
  std::string text = tableText(file, series, result, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, ""};
}

}  // namespace tool
