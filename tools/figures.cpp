#include "figures.h"

#include <optional>
#include <utility>

#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

std::string nameOfRow(const Variable& variable, int row) {
  return printable(variable.table->rowName(row), 30);
}

class FigureLines {
 public:
  FigureLines(const Variable& variable, const Summary& summary, std::string dash)
      : variable_(variable), dash_(std::move(dash)) {
    if (summary.standardDeviation.value > 0.0) {
      decimals_ = decimalsFor(*summary.standardDeviation.value);
    }
  }
  void addCount(const std::string& label, int count) {
    lines_.push_back({label, std::to_string(count), {}, {}, {}});
  }
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
  void addExtreme(const std::string& label, const Figure& figure, int row) {
    const std::string number = std::to_string(row);
    const std::string name = row > 0 ? nameOfRow(variable_, row) : "";
    addValue(label, figure, "row " + number + (name.empty() ? "" : " (" + name + ')'));
    // The details of several variables stand side by side.
    constexpr std::size_t kWidest = 12;
    const bool fits = characterCount(name) <= kWidest;
    addDetail("  in row", row == 0       ? dash_
                          : name.empty() ? number
                                         : printable(name, fits ? kWidest : kWidest - 3));
  }
  void addMode(const std::string& label, const Figure& figure, int count) {
    addValue(label, figure, counted(count, "time"));
    addDetail("  times", count > 0 ? std::to_string(count) : dash_);
  }
  void addBlankLine() { lines_.emplace_back(); }
  std::vector<FigureLine> take() { return std::move(lines_); }

 private:
  void addDetail(std::string label, std::string text) {
    lines_.back().detailLabel = std::move(label);
    lines_.back().detail = std::move(text);
  }
  template <class Format>
  void add(const std::string& label, const Figure& figure, Format format,
           const std::string& note = {}) {
    if (figure.value) {
      lines_.push_back({label, format(*figure.value), note, {}, {}});
    } else {
      lines_.push_back({label, dash_, figure.reason, {}, {}});
    }
  }

  const Variable& variable_;
  std::string dash_;
  std::optional<int> decimals_;
  std::vector<FigureLine> lines_;
};

}  // namespace

std::vector<FigureLine> figureLines(const Variable& variable, const Summary& s,
                                    const std::string& dash) {
  FigureLines table(variable, s, dash);
  table.addCount("n", s.n);
  table.addCount("missing", s.missing);
  table.addOnScale("mean", s.mean);
  table.addOnScale("standard deviation", s.standardDeviation);
  table.addStandardError("standard error", s.standardError);
  table.addShape("skewness", s.skewness);
  table.addShape("excess kurtosis", s.excessKurtosis);
  table.addOnScale("geometric mean", s.geometricMean);
  table.addBlankLine();
  table.addExtreme("minimum", s.minimum, s.minimumRow);
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
  table.addExtreme("maximum", s.maximum, s.maximumRow);
  table.addMode("mode", s.mode, s.modeCount);
  return table.take();
}

}  // namespace tool
