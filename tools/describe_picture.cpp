#include "describe_picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/base/numbertext.h"

namespace tool {
namespace {

/// More points than this in a row can't be told apart on paper: the line then goes through the
/// smallest and the largest value of each stretch.
constexpr int kMostStretches = 2000;
/// Up to this many points each gets a dot of its own.
constexpr int kMostDots = 120;

/// The row names as numbers, if all are and they ascend.
std::vector<double> numericNames(const Variable& variable) {
  std::vector<double> numbers;
  const Table& table = *variable.table;
  for (int r = 1; table.hasRowNames && r <= table.rows(); ++r) {
    const auto number = zel::ParseNumber(table.rowName(r));
    if (!number || (!numbers.empty() && *number <= numbers.back())) return {};
    numbers.push_back(*number);
  }
  return numbers;
}

std::string binsBlock(const Histogram& histogram) {
  std::string block = "$bins << EOD\n";
  for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
    block += shortest(histogram.edge(i)) + ' ' + shortest(histogram.edge(i + 1)) + ' ' +
             std::to_string(histogram.counts[i]) + '\n';
  }
  return block + "EOD\n";
}

/// Points of the series; a blank line breaks the curve where rows are missing.
std::string seriesBlock(const zel::TVector& x, const Variable& variable,
                        const std::vector<double>& names) {
  std::string block = "$series << EOD\n";
  int lastRow = 0;
  const auto add = [&](int position, int widestGap) {
    const int row = variable.rowOf(position);
    if (lastRow != 0 && row - lastRow > widestGap) block += '\n';
    lastRow = row;
    const double abscissa = names.empty() ? row : names[static_cast<std::size_t>(row - 1)];
    block += shortest(abscissa) + ' ' + shortest(x.Elem(position)) + '\n';
  };
  const int n = x.NrOfElem();
  if (n <= 2 * kMostStretches) {
    for (int i = 1; i <= n; ++i) add(i, 1);
  } else {
    const int stretch = (n - 1) / kMostStretches + 1;
    for (int first = 1; first <= n; first += std::min(stretch, n - first + 1)) {
      const int last = first + std::min(stretch, n - first + 1) - 1;
      double low = 0;
      double high = 0;
      int lowAt = 0;
      int highAt = 0;
      x.MinMax(first, last, low, high, lowAt, highAt);
      add(std::min(lowAt, highAt), 2 * stretch);
      if (lowAt != highAt) add(std::max(lowAt, highAt), 2 * stretch);
    }
  }
  return block + "EOD\n";
}

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kDrawing = R"(
bars = '#a3c1dd'; pale = '#e3ecf5'
left = 0.065 + 0.0105 * labelWidth
set grid ytics lt 1 lc rgb '#e6e6e6' lw 0.6
set lmargin at screen left
set rmargin at screen 0.98 - 0.0055 * labelWidth
set multiplot

set tmargin at screen 0.875
set bmargin at screen 0.545
set label 1 title at screen left, screen 0.965 left noenhanced textcolor rgb ink font ',10.5'
set label 2 'count' at screen 0.025, graph 0.5 center rotate textcolor rgb ink
set xlabel variable noenhanced offset 0, 0.3 textcolor rgb ink
set key at graph 1, graph 1.04 right bottom horizontal maxrows 1 Left reverse samplen 2.5 width -2 textcolor rgb ink noenhanced
top = most * 1.05
set yrange [0:top]
if (most <= 6) { set ytics 1 }
set autoscale xfix
$q << EOD
0
1
EOD
plot $bins using (($1 + $2) / 2):(0.5 * $3):1:2:(0):3 with boxxyerror notitle fs solid 1 border lc rgb 'white' lc rgb bars lw 0.5, \
  $q using (q1):($1 * top) with lines lc rgb red lw 1.4 dt (9, 5) title q1Label, \
  $q using (median):($1 * top) with lines lc rgb red lw 1.8 title medianLabel, \
  $q using (q3):($1 * top) with lines lc rgb red lw 1.4 dt (3, 3) title q3Label

set tmargin at screen 0.435
set bmargin at screen 0.105
unset label 1
set label 2 variable noenhanced
set xlabel abscissa
set yrange [*:*]
if (constant) { set yrange [2 * firstEdge - lastEdge:lastEdge] }
unset key
set ytics autofreq
if (fewRows) { set xtics 1; set xrange [0.5:rows + 0.5] }
set object 1 rectangle from graph 0, first q1 to graph 1, first q3 fs solid 1 noborder fc rgb pale behind
set arrow 1 from graph 0, first median to graph 1, first median nohead back lc rgb red lw 1
if (dots) {
  set offsets graph 0.015, graph 0.015, graph 0.04, graph 0.04
  plot $series using 1:2 with linespoints lc rgb blue lw 0.9 pt 7 ps 0.35
} else {
  plot $series using 1:2 with lines lc rgb blue lw 0.9
}
unset multiplot
)";

}  // namespace

void drawDescription(const std::string& fileName, const std::string& title, const zel::TVector& x,
                     const Variable& variable, const Summary& summary,
                     const std::optional<Histogram>& histogram) {
  requirePictureName(fileName);
  const std::string undrawable = "the picture " + printable(fileName) + " was not written: ";
  if (summary.n == 0) throw Failure(undrawable + "there are no values to draw");
  if (!histogram) throw Failure(undrawable + "the values are too large to draw");

  const std::vector<double> names = numericNames(variable);
  const int decimals = std::max(decimalsFor(histogram->width()) - 1, 0);
  const auto label = [&](const char* what, const Figure& figure) {
    std::string number = trimmed(*figure.value, decimals);
    if (number.find('e') != std::string::npos) number = significant(*figure.value, 4);
    return gnuplotText(std::string(what) + ' ' + number);
  };
  const std::string name = gnuplotText(variable.name.empty() ? "value" : variable.name, 60);
  const int most = *std::max_element(histogram->counts.begin(), histogram->counts.end());

  const int rows = variable.rowOf(summary.n);
  // The margins leave room for the tick labels.
  std::size_t labelWidth = std::max<std::size_t>(4, std::to_string(most).size());
  for (std::size_t i = 0; i <= histogram->counts.size(); ++i) {
    const std::string edge = histogram->edgeText(i);
    // A tick between two edges with exponents has digits of its own.
    const std::size_t more = edge.find('e') != std::string::npos ? 2 : 0;
    labelWidth = std::max(labelWidth, std::min<std::size_t>(edge.size() + more, 12));
  }
  std::string script = binsBlock(*histogram) + seriesBlock(x, variable, names);
  script +=
      gnuplotVariable("title", gnuplotText(title, 95)) + gnuplotVariable("variable", name) +
      gnuplotVariable("abscissa", gnuplotText(names.empty() ? "row" : "")) +
      gnuplotVariable("q1", shortest(*summary.lowerQuartile.value)) +
      gnuplotVariable("median", shortest(*summary.median.value)) +
      gnuplotVariable("q3", shortest(*summary.upperQuartile.value)) +
      gnuplotVariable("q1Label", label("lower quartile", summary.lowerQuartile)) +
      gnuplotVariable("medianLabel", label("median", summary.median)) +
      gnuplotVariable("q3Label", label("upper quartile", summary.upperQuartile)) +
      gnuplotVariable("most", std::to_string(most)) +
      gnuplotVariable("labelWidth", std::to_string(labelWidth)) +
      gnuplotVariable("dots", summary.n <= kMostDots ? "1" : "0") +
      gnuplotVariable("rows", std::to_string(rows)) +
      gnuplotVariable("firstEdge", shortest(histogram->edge(0))) +
      gnuplotVariable("lastEdge", shortest(histogram->edge(histogram->counts.size()))) +
      gnuplotVariable("constant", *summary.minimum.value == *summary.maximum.value ? "1" : "0") +
      gnuplotVariable("fewRows", names.empty() && rows <= 10 ? "1" : "0");
  script += kDrawing;
  drawPicture(fileName, {8, 6}, script);
}

}  // namespace tool
