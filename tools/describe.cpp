#include "describe.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "bins.h"
#include "describe_by.h"
#include "describe_picture.h"
#include "description.h"
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
  const auto& [variable, summary, histogram, few] = d;
  std::string text =
      file.source + (variable.name.empty() ? "" : ": " + printable(variable.name)) + '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
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
  std::vector<std::string> headings;
  for (const Description& d : descriptions) headings.push_back(d.variable.title);
  return headingText(file, descriptions.size()) + textOfColumns(descriptions, headings, options);
}

std::string jsonText(const Table& file, const std::vector<Description>& descriptions,
                     const DescribeOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  if (descriptions.size() == 1) {
    addFigures(json, descriptions[0], options);
  } else {
    json.add("rows", file.rows());
    json.beginArray("variables");
    for (const Description& d : descriptions) {
      json.beginObject();
      json.add("column", d.variable.number);
      addFigures(json, d, options);
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
    const auto& [variable, summary, histogram, few] = descriptions[0];
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
  const Table file = readTable(options.file, options.decimalComma);
  if (!options.by.empty()) return describeBy(file, percents, options);
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
