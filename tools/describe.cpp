#include "describe.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "asc_column.h"
#include "bins.h"
#include "describe_picture.h"
#include "failure.h"
#include "gnuplot.h"
#include "json.h"
#include "number_text.h"
#include "summary.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "zel/base/numbertext.h"

namespace tool {
namespace {

constexpr int kMostBinsByDefault = 30;

constexpr const char* kHelp =
    R"(FILE is an ASC file of one column: four header lines, then a row per line.
  any comment
  1 ;nr. of columns
  3 ;nr. of rows
  FALSE FALSE FALSE FALSE ;row attributes, column names, row names, nominal
  12.5
  NAN
  1e3
If the flags say so, the name of the column follows the header, and each row
starts with an attribute (a number) and a name (in double quotes). NAN and ###
stand for a missing value. Texts after ";" in the header are ignored.

The figures:
  standard deviation  divisor n - 1; the standard error is that of the mean
  skewness, kurtosis  corrected for the sample size; 0 for a normal population
  quartiles           at (n + 1) q of the sorted values, interpolated
  percentiles         at (n - 1) p of the sorted values from 0, interpolated
  mode                the smallest of the most frequent values

Examples:
  zel describe data/sunspots.asc
  zel describe data/sunspots.asc --plot sunspots.png
  zel describe data/faithful_waiting.asc --percentiles 1,2.5,97.5,99 --bins 20
  zel describe - --json < data/sunspots.asc

Exit status: 0 all done; 2 a wrong argument, a file that cannot be read or
written, bad data: one line on standard error says what, where and why.)";

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

std::string placeOf(const AscColumn& column, int row) {
  std::string place = "row " + std::to_string(row);
  if (!column.rowNames.empty()) {
    place += " (" + printable(column.rowNames[static_cast<std::size_t>(row - 1)], 30) + ')';
  }
  return place;
}

/// The table of the figures, rounded so that the digits shown mean something.
class FigureTable {
 public:
  FigureTable(const Summary& summary, bool ascii) : dash_(ascii ? "-" : "–") {
    if (summary.standardDeviation.value > 0.0) {
      decimals_ = decimalsFor(*summary.standardDeviation.value);
    }
  }
  void addCount(const std::string& label, int count) { table_.add(label, std::to_string(count)); }
  /// On the scale of the data: to the last digit that matters beside their spread.
  void addOnScale(const std::string& label, const Figure& figure) {
    add(label, figure,
        [&](double x) { return decimals_ ? fixedPoint(x, *decimals_) : significant(x, 12); });
  }
  /// To five digits of its own.
  void addStandardError(const std::string& label, const Figure& figure) {
    add(label, figure, [&](double x) { return x > 0 ? fixedPoint(x, decimalsFor(x)) : "0"; });
  }
  /// A figure without unit.
  void addShape(const std::string& label, const Figure& figure) {
    add(label, figure, [](double x) { return fixedPoint(x, 4); });
  }
  /// A value between two of the data. Beyond twelve digits the interpolation leaves its own traces.
  void addInterpolated(const std::string& label, const Figure& figure) {
    add(label, figure, [](double x) { return significant(x, 12); });
  }
  /// A value of the data, as it is.
  void addValue(const std::string& label, const Figure& figure, const std::string& note) {
    add(label, figure, shortest, note);
  }
  void addBlankLine() { table_.addBlankLine(); }
  [[nodiscard]] std::string text() const { return table_.text(); }

 private:
  template <class Format>
  void add(const std::string& label, const Figure& figure, Format format,
           const std::string& note = {}) {
    if (figure.value) {
      table_.add(label, format(*figure.value), note);
    } else {
      table_.add(label, dash_, figure.reason);
    }
  }

  TextTable table_;
  std::string dash_;
  std::optional<int> decimals_;
};

std::string tableText(const AscColumn& column, const Summary& s, bool ascii) {
  FigureTable table(s, ascii);
  table.addCount("n", s.n);
  table.addCount("missing", s.missing);
  if (s.n == 0) return table.text() + "\n  There are no values to describe.\n";
  table.addOnScale("mean", s.mean);
  table.addOnScale("standard deviation", s.standardDeviation);
  table.addStandardError("standard error", s.standardError);
  table.addShape("skewness", s.skewness);
  table.addShape("excess kurtosis", s.excessKurtosis);
  table.addOnScale("geometric mean", s.geometricMean);
  table.addBlankLine();
  table.addValue("minimum", s.minimum, placeOf(column, s.minimumRow));
  auto percentile = s.percentiles.begin();
  const auto addPercentilesUpTo = [&](double percent) {
    for (; percentile != s.percentiles.end() && percentile->percent <= percent; ++percentile) {
      table.addInterpolated(shortest(percentile->percent) + " %", percentile->at);
    }
  };
  addPercentilesUpTo(25);
  table.addInterpolated("lower quartile", s.lowerQuartile);
  addPercentilesUpTo(50);
  table.addInterpolated("median", s.median);
  addPercentilesUpTo(75);
  table.addInterpolated("upper quartile", s.upperQuartile);
  addPercentilesUpTo(100);
  table.addValue("maximum", s.maximum, placeOf(column, s.maximumRow));
  table.addValue("mode", s.mode, counted(s.modeCount, "time"));
  return table.text();
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

std::string jsonText(const AscColumn& column, const Summary& s,
                     const std::optional<Histogram>& histogram, const DescribeOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", column.comment);
  json.add("name", column.name);
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
    if (!column.rowNames.empty() && s.n > 0) {
      json.add(key + "_row_name", column.rowNames[static_cast<std::size_t>(row - 1)]);
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
  if (histogram && !options.noHistogram) {
    json.beginObject("histogram");
    json.add("first_edge", histogram->edge(0));
    json.add("bin_width", histogram->width());
    json.beginArray("counts");
    for (const int count : histogram->counts) json.add("", count);
    json.endArray();
    json.endObject();
  } else {
    json.addNull("histogram");
  }
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

/// A picture that replaced the data it shows would be a nasty surprise.
void requireDifferentFiles(const std::string& data, const std::string& picture) {
  std::error_code ignored;
  if (std::filesystem::equivalent(data, picture, ignored)) {
    throw Failure("the picture " + printable(picture) + " would replace the data file");
  }
}

}  // namespace

CLI::App* addDescribe(CLI::App& program, DescribeOptions& options) {
  CLI::App* command =
      program.add_subcommand("describe", "Describe a column of numbers: table, histogram, picture");
  command->add_option("FILE", options.file, "ASC file of one column; - is standard input")
      ->required()
      ->option_text(" ");
  command
      ->add_option("--percentiles", options.percentiles,
                   "percentiles to show, 0 to 100 [5,10,90,95]")
      ->option_text("P,P,...");
  command->add_option("--bins", options.bins, "about this many bins, of a round width")
      ->check(CLI::Range(1, 200))
      ->option_text("N");
  command->add_flag("--no-histogram", options.noHistogram, "the table only");
  command
      ->add_option("--plot", options.picture, "draw a picture, a .png or .svg file (needs gnuplot)")
      ->option_text("PICTURE");
  command->add_flag("--json", options.json, "print JSON, all digits, null for what is undefined");
  command->add_flag("--ascii", options.ascii, "print bars and dashes as ASCII characters");
  command->footer(kHelp);
  return command;
}

std::string describe(const DescribeOptions& options) {
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const std::vector<double> percents = parsePercentiles(options.percentiles);
  const AscColumn column = readAscColumn(options.file);
  const zel::TVector x(column.values);
  const Summary summary = summarize(x, column, percents);
  std::optional<Histogram> histogram;
  if (summary.n > 0) {
    histogram =
        options.bins > 0 ? countInAbout(x, options.bins) : countInBins(x, kMostBinsByDefault);
  }
  if (!options.picture.empty()) drawDescription(options.picture, x, column, summary, histogram);
  if (options.json) return jsonText(column, summary, histogram, options);

  std::string text =
      column.source + (column.name.empty() ? "" : ": " + printable(column.name)) + '\n';
  if (!column.comment.empty()) text += printable(column.comment) + '\n';
  text += '\n' + tableText(column, summary, options.ascii);
  if (!options.noHistogram && summary.n > 0) {
    text += '\n' + histogramText(summary, histogram, options.ascii);
  }
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return text;
}

}  // namespace tool
