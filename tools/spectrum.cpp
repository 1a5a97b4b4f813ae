#include "spectrum.h"

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "json.h"
#include "number_text.h"
#include "series.h"
#include "spectral_lines.h"
#include "spectrum_picture.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr std::array<const char*, 8> kWindows = {"rectangle", "triangle", "cos2",   "gauss",
                                                 "hamming",   "blackman", "harris", "nuttall"};

zel::TFastFourierWgtWin windowOf(const std::string& word) {
  for (std::size_t k = 0; k < kWindows.size(); ++k) {
    if (word == kWindows[k]) return static_cast<zel::TFastFourierWgtWin>(k);
  }
  throw Failure("--window: " + inQuotes(word) + " is none of " + windowWords());
}

std::string methodText(const Spectrum& found, const SpectrumOptions& options) {
  return "window " + options.window + ", mean " + significant(found.mean, 7) + " removed, " +
         std::to_string(found.points) + " points with the zeros at the end";
}

std::string tableText(const Table& file, const Series& series, const Spectrum& found,
                      const SpectrumOptions& options) {
  std::string text = file.source + ": " + printable(series.title, 60) + ", " +
                     counted(found.samples, "value") + ", sample time " +
                     shortest(options.sampleTime) + '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
  text += "\n  " + methodText(found, options) + "\n\n";
  if (found.peaks.empty()) return text + "  no lines: the series is constant\n";
  std::vector<std::string> labels, frequencies, periods, magnitudes, phases;
  const int decimals = decimalsFor(found.peaks[0].magnitude);
  for (const SpectralLine& line : found.peaks) {
    labels.push_back("line " + std::to_string(line.line));
    frequencies.push_back(significant(line.frequency, 6));
    periods.push_back(significant(line.period, 5));
    magnitudes.push_back(fixedPoint(line.magnitude, decimals));
    phases.push_back(fixedPoint(line.phase, 1) + (options.ascii ? "" : "°"));
  }
  TextColumns columns(std::move(labels));
  columns.add("frequency", std::move(frequencies));
  columns.add("period", std::move(periods));
  columns.add("magnitude", std::move(magnitudes));
  columns.add("phase", std::move(phases));
  return text + columns.text(terminalColumns());
}

std::string jsonText(const Table& file, const Series& series, const Spectrum& found,
                     const SpectrumOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("column", series.title);
  json.add("values", found.samples);
  json.add("sample_time", options.sampleTime);
  json.add("window", options.window);
  json.add("mean_removed", found.mean);
  json.add("points", found.points);
  json.beginArray("lines");
  for (const SpectralLine& line : found.peaks) {
    json.beginObject();
    json.add("line", line.line);
    json.add("frequency", line.frequency);
    json.add("period", line.period);
    json.add("magnitude", line.magnitude);
    json.add("phase", line.phase);
    json.endObject();
  }
  json.endArray();
  json.add("frequency_step", found.step);
  json.beginArray("magnitudes");
  for (const double m : found.magnitudes) json.add("", m);
  json.endArray();
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

}  // namespace

std::string windowWords() {
  std::string words = kWindows[0];
  for (std::size_t k = 1; k < kWindows.size(); ++k) {
    words += (k + 1 < kWindows.size() ? ", " : " and ") + std::string(kWindows[k]);
  }
  return words;
}

Result spectrum(const SpectrumOptions& options) {
  const zel::TFastFourierWgtWin window = windowOf(options.window);
  if (!(options.sampleTime > 0) || !std::isfinite(options.sampleTime)) {
    throw Failure("--sample-time: it must be above 0");
  }
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const Series series = seriesOf(file, options.column);
  const Spectrum found =
      spectrumOf(series.values, series.what, options.sampleTime, window, options.lines);
  if (!options.picture.empty()) {
    drawSpectrum(options.picture, pictureTitle(file), series.title, methodText(found, options),
                 series.values, options.sampleTime, found);
  }
  if (options.json) return {jsonText(file, series, found, options), ""};
  std::string text = tableText(file, series, found, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, ""};
}

}  // namespace tool
