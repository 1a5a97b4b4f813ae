#include "wavelet.h"

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "json.h"
#include "number_text.h"
#include "series.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "wavelet_levels.h"
#include "wavelet_picture.h"

namespace tool {
namespace {

zel::TWLSigExtMode modeOf(const std::string& word) {
  if (word == "wrap") return zel::wseWrap;
  if (word == "zero") return zel::wseZeroPad;
  if (word == "symmetric") return zel::wseSymmetric;
  throw Failure("--mode: " + inQuotes(word) + " is none of wrap, zero and symmetric");
}

/// What the transform is one of.
std::string methodText(const WaveletLevels& transform, const WaveletOptions& options) {
  std::string text = "Daubechies wavelets of order " + std::to_string(options.order) + ", mode " +
                     options.mode + "; mean " + significant(transform.mean, 7) + " removed";
  if (transform.zeros > 0) text += ", " + counted(transform.zeros, "zero") + " added at the end";
  return text;
}

/// The periods that a level holds, in samples.
double shortestPeriod(const WaveletLevel& level) {
  return std::ldexp(1, level.level + (level.isApproximation ? 1 : 0));
}

std::string periodText(const WaveletLevel& level, bool ascii) {
  const double from = shortestPeriod(level);
  return level.isApproximation ? "over " + shortest(from)
                               : shortest(from) + (ascii ? "-" : "–") + shortest(2 * from);
}

std::string tableText(const Table& file, const std::string& title, const WaveletLevels& transform,
                      const WaveletOptions& options) {
  std::string text =
      file.source + ": " + printable(title, 60) + ", " + counted(transform.samples, "value") + '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
  text += "\n  " + methodText(transform, options) + "\n\n";
  std::vector<std::string> labels, scales, periods, counts, energies, shares;
  // The same decimals for all, so that what is rounding shows as zero.
  const auto energyText = [&](double energy) {
    return transform.energy > 0 ? fixedPoint(energy, decimalsFor(transform.energy)) : "0";
  };
  for (const WaveletLevel& level : transform.levels) {
    labels.push_back(level.name);
    scales.push_back(shortest(std::ldexp(1, level.level)));
    periods.push_back(periodText(level, options.ascii));
    counts.push_back(std::to_string(level.coefficients.size()));
    energies.push_back(energyText(level.energy));
    shares.push_back(std::isfinite(level.share) ? fixedPoint(100 * level.share, 2)
                                                : (options.ascii ? "-" : "–"));
  }
  TextColumns columns(std::move(labels));
  columns.add("scale", std::move(scales));
  columns.add("period", std::move(periods));
  columns.add("coefficients", std::move(counts));
  columns.add("energy", std::move(energies));
  columns.add("share %", std::move(shares));
  text += columns.text(terminalColumns()) + '\n';
  TextTable sums;
  sums.add("energy of all levels", energyText(transform.transformed));
  sums.add("energy of the series", energyText(transform.energy), "without its mean");
  return text + sums.text();
}

std::string jsonText(const Table& file, const std::string& title, const WaveletLevels& transform,
                     const WaveletOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("column", title);
  json.add("values", transform.samples);
  json.add("mean_removed", transform.mean);
  json.add("zeros_added", transform.zeros);
  json.add("order", options.order);
  json.add("mode", options.mode);
  json.add("energy", transform.energy);
  json.add("energy_of_levels", transform.transformed);
  json.beginArray("levels");
  for (const WaveletLevel& level : transform.levels) {
    json.beginObject();
    json.add("name", level.name);
    json.add("level", level.level);
    json.add("scale", std::ldexp(1, level.level));
    json.add("shortest_period", shortestPeriod(level));
    json.add("longest_period", level.isApproximation
                                   ? std::optional<double>()
                                   : std::optional<double>(2 * shortestPeriod(level)));
    json.add("energy", level.energy);
    json.add("share", level.share);
    json.beginArray("coefficients");
    for (const double v : level.coefficients) json.add("", v);
    json.endArray();
    json.endObject();
  }
  json.endArray();
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

}  // namespace

Result wavelet(const WaveletOptions& options) {
  const zel::TWLSigExtMode mode = modeOf(options.mode);
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const Series series = seriesOf(file, options.column);
  const WaveletLevels transform =
      waveletLevels(series.values, series.what, options.order, options.levels, mode);
  const std::string& title = series.title;
  if (!options.picture.empty()) {
    drawWavelet(options.picture, pictureTitle(file), title, methodText(transform, options),
                series.values, transform, mode == zel::wseWrap);
  }
  if (options.json) return {jsonText(file, title, transform, options), ""};
  std::string text = tableText(file, title, transform, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, ""};
}

}  // namespace tool
