#include "description.h"

#include <algorithm>
#include <utility>

#include "figures.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr int kMostBinsByDefault = 30;
constexpr int kSparklineBins = 10;

/// The values of a part in the bins of the whole.
std::optional<Histogram> countedIn(std::optional<Histogram> bins, const Variable& part) {
  if (!bins) return bins;
  std::fill(bins->counts.begin(), bins->counts.end(), 0);
  for (const double value : part.values) ++bins->counts[bins->binOf(value)];
  return bins;
}

}  // namespace

Description describeVariable(Variable variable, const std::vector<double>& percents, int bins) {
  const zel::TVector x(variable.values);
  Summary summary = summarize(x, variable, percents);
  std::optional<Histogram> histogram;
  std::optional<Histogram> few;
  if (summary.n > 0) {
    histogram = bins > 0 ? countInAbout(x, bins) : countInBins(x, kMostBinsByDefault);
    few = countInAbout(x, kSparklineBins);
  }
  return {std::move(variable), std::move(summary), std::move(histogram), std::move(few)};
}

Description describePart(Variable variable, const std::vector<double>& percents,
                         const Description& whole) {
  Summary summary = summarize(zel::TVector(variable.values), variable, percents);
  auto histogram = countedIn(whole.histogram, variable);
  auto few = countedIn(whole.few, variable);
  return {std::move(variable), std::move(summary), std::move(histogram), std::move(few)};
}

std::string dash(const DescribeOptions& options) { return options.ascii ? "-" : "–"; }

std::string textOfColumns(const std::vector<Description>& descriptions,
                          const std::vector<std::string>& headings,
                          const DescribeOptions& options) {
  const bool sparklines = !options.noHistogram && !options.ascii;
  const auto textsOf = [&](const Description& d, auto&& add) {
    for (const FigureLine& line : figureLines(d.variable, d.summary, dash(options))) {
      add(line.label, line.number);
      if (!line.detailLabel.empty()) add(line.detailLabel, line.detail);
    }
    if (!sparklines) return;
    add("", "");
    add("histogram", d.few && d.summary.n > 0 ? sparkline(*d.few) : dash(options));
  };
  std::vector<std::string> labels;
  textsOf(descriptions[0],
          [&](const std::string& label, const std::string&) { labels.push_back(label); });
  TextColumns columns(labels);
  for (std::size_t i = 0; i < descriptions.size(); ++i) {
    std::vector<std::string> texts;
    textsOf(descriptions[i],
            [&](const std::string&, const std::string& text) { texts.push_back(text); });
    columns.add(printable(headings[i], 24), std::move(texts));
  }
  return columns.text(terminalColumns());
}

void addFigures(JsonWriter& json, const Description& d, const DescribeOptions& options) {
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
    row > 0 ? json.add(key + "_row", row) : json.addNull(key + "_row");
    if (d.variable.table->hasRowNames && row > 0) {
      json.add(key + "_row_name", d.variable.table->rowName(row));
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

}  // namespace tool
