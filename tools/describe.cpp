#include "describe.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "bins.h"
#include "describe_picture.h"
#include "failure.h"
#include "figures.h"
#include "file_names.h"
#include "gnuplot.h"
#include "histograms_picture.h"
#include "json.h"
#include "number_text.h"
#include "summary.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "variable.h"
#include "zel/base/numbertext.h"

namespace tool {
namespace {

constexpr int kMostBinsByDefault = 30;
constexpr int kSparklineBins = 10;
constexpr int kPanelBins = 16;

/// @param list  numbers separated by commas
std::vector<double> parsePercentiles(std::string_view list) {
  std::vector<double> percents;
  for (bool more = true; more;) {
    const std::size_t comma = list.find(',');
    const std::string_view word = list.substr(0, comma);
    more = comma != std::string_view::npos;
    if (more) list.remove_prefix(comma + 1);
    const auto percent = zel::ParseNumber(word);
    if (!percent || *percent < 0 || *percent > 100) {
      throw Failure("--percentiles: " + inQuotes(word) + " is not a number from 0 to 100");
    }
    percents.push_back(*percent);
  }
  std::sort(percents.begin(), percents.end());
  return percents;
}

/// A variable with all that is said of it.
struct Description {
  Variable variable;
  Summary summary;
  std::optional<Histogram> histogram;
};

Description describeVariable(Variable variable, const std::vector<double>& percents, int bins) {
  const zel::TVector x(variable.values);
  Summary summary = summarize(x, variable, percents);
  std::optional<Histogram> histogram;
  if (summary.n > 0) {
    histogram = bins > 0 ? countInAbout(x, bins) : countInBins(x, kMostBinsByDefault);
  }
  return {std::move(variable), std::move(summary), std::move(histogram)};
}

std::string dash(const DescribeOptions& options) { return options.ascii ? "-" : "–"; }

std::string histogramText(const Summary& s, const std::optional<Histogram>& histogram, bool ascii) {
  if (!histogram) return "  No histogram: the values are too large.\n";
  std::vector<BinMark> marks;
  for (const auto& [figure, word] :
       {std::pair(&s.lowerQuartile, "lower quartile"), std::pair(&s.median, "median"),
        std::pair(&s.upperQuartile, "upper quartile")}) {
    if (figure->value) marks.push_back({*figure->value, word});
  }
  return "  Histogram: bins of width " + shortest(histogram->width()) + ", lower edges shown\n\n" +
         textHistogram(*histogram, marks, terminalColumns(), ascii);
}

std::string textOfOne(const Table& file, const Description& d, const DescribeOptions& options) {
  const auto& [variable, summary, histogram] = d;
  std::string text =
      file.source + (variable.name.empty() ? "" : ": " + printable(variable.name)) + '\n';
  if (!file.comment.empty()) text += printable(file.comment) + '\n';
  std::vector<FigureLine> lines = figureLines(variable, summary, dash(options));
  if (summary.n == 0) lines.resize(2);  // n and missing
  TextTable table;
  for (const FigureLine& line : lines) table.add(line.label, line.number, line.note);
  text += '\n' + table.text();
  if (summary.n == 0) return text + "\n  There are no values to describe.\n";
  if (!options.noHistogram) text += '\n' + histogramText(summary, histogram, options.ascii);
  return text;
}

/// One column of the table for each variable.
std::string textOfSeveral(const Table& file, const std::vector<Description>& descriptions,
                          const DescribeOptions& options) {
  const bool sparklines = !options.noHistogram && !options.ascii;
  const auto textsOf = [&](const Description& d, auto&& add) {
    for (const FigureLine& line : figureLines(d.variable, d.summary, dash(options))) {
      add(line.label, line.number);
      if (!line.detailLabel.empty()) add(line.detailLabel, line.detail);
    }
    if (!sparklines) return;
    const zel::TVector x(d.variable.values);
    std::optional<Histogram> few;
    if (d.summary.n > 0) few = countInAbout(x, kSparklineBins);
    add("", "");
    add("histogram", few ? sparkline(*few) : dash(options));
  };
  std::vector<std::string> labels;
  textsOf(descriptions[0],
          [&](const std::string& label, const std::string&) { labels.push_back(label); });
  TextColumns columns(labels);
  for (const Description& d : descriptions) {
    std::vector<std::string> texts;
    textsOf(d, [&](const std::string&, const std::string& text) { texts.push_back(text); });
    columns.add(printable(d.variable.title, 24), std::move(texts));
  }
  return headingText(file, descriptions.size()) + columns.text(terminalColumns());
}

void addVariable(JsonWriter& json, const Description& d, const DescribeOptions& options) {
  const Summary& s = d.summary;
  json.add("name", d.variable.name);
  json.add("n", s.n);
  json.add("missing", s.missing);
  json.add("mean", s.mean.value);
  json.add("standard_deviation", s.standardDeviation.value);
  json.add("standard_error", s.standardError.value);
  json.add("skewness", s.skewness.value);
  json.add("excess_kurtosis", s.excessKurtosis.value);
  json.add("geometric_mean", s.geometricMean.value);
  const auto addExtreme = [&](const std::string& key, const Figure& figure, int row) {
    json.add(key, figure.value);
    s.n > 0 ? json.add(key + "_row", row) : json.addNull(key + "_row");
    if (!d.variable.rowNames.empty() && s.n > 0) {
      json.add(key + "_row_name", d.variable.rowNames[static_cast<std::size_t>(row - 1)]);
    }
  };
  addExtreme("minimum", s.minimum, s.minimumRow);
  json.add("lower_quartile", s.lowerQuartile.value);
  json.add("median", s.median.value);
  json.add("upper_quartile", s.upperQuartile.value);
  json.beginArray("percentiles");
  for (const auto& [percent, at] : s.percentiles) {
    json.beginObject();
    json.add("percent", percent);
    json.add("value", at.value);
    json.endObject();
  }
  json.endArray();
  addExtreme("maximum", s.maximum, s.maximumRow);
  json.add("mode", s.mode.value);
  json.add("mode_count", s.modeCount);
  if (d.histogram && !options.noHistogram) {
    json.beginObject("histogram");
    json.add("first_edge", d.histogram->edge(0));
    json.add("bin_width", d.histogram->width());
    json.beginArray("counts");
    for (const int count : d.histogram->counts) json.add("", count);
    json.endArray();
    json.endObject();
  } else {
    json.addNull("histogram");
  }
}

std::string jsonText(const Table& file, const std::vector<Description>& descriptions,
                     const DescribeOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment);
  if (descriptions.size() == 1) {
    addVariable(json, descriptions[0], options);
  } else {
    json.add("rows", file.rows);
    json.beginArray("variables");
    for (const Description& d : descriptions) {
      json.beginObject();
      json.add("column", d.variable.number);
      addVariable(json, d, options);
      json.endObject();
    }
    json.endArray();
  }
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

void draw(const Table& file, const std::vector<Description>& descriptions,
          const DescribeOptions& options) {
  if (descriptions.size() == 1) {
    const auto& [variable, summary, histogram] = descriptions[0];
    drawDescription(options.picture, pictureTitle(file), zel::TVector(variable.values), variable,
                    summary, histogram);
    return;
  }
  std::vector<HistogramPanel> panels;
  for (const Description& d : descriptions) {
    HistogramPanel& panel = panels.emplace_back(HistogramPanel{d.variable.title, &d.summary, {}});
    // All of about as many bins, so that they can be compared.
    if (d.summary.n > 0) {
      panel.histogram = countInAbout(zel::TVector(d.variable.values),
                                     options.bins > 0 ? options.bins : kPanelBins);
    }
  }
  drawHistograms(options.picture, pictureTitle(file), panels);
}

}  // namespace

Result describe(const DescribeOptions& options) {
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const std::vector<double> percents = parsePercentiles(options.percentiles);
  const Table file = readTable(options.file);
  const ColumnChoice choice = chooseColumns(file, options.columns);
  std::vector<Description> descriptions;
  for (const std::size_t c : choice.columns) {
    descriptions.push_back(describeVariable(variableOf(file, c), percents, options.bins));
  }
  if (!options.picture.empty()) draw(file, descriptions, options);
  if (options.json) return {jsonText(file, descriptions, options), choice.note};
  std::string text = descriptions.size() == 1 ? textOfOne(file, descriptions[0], options)
                                              : textOfSeveral(file, descriptions, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, choice.note};
}

}  // namespace tool
