#include "histograms_picture.h"

#include <algorithm>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/foundation/scaling.h"

namespace tool {
namespace {

constexpr std::size_t kMostPanels = 40;
constexpr double kWidth = 8;
constexpr double kPanelHeight = 1.9;
constexpr double kHeadHeight = 0.7;

constexpr const char* kStyle = R"(
bars = '#a3c1dd'; pale = '#dfe9f3'
set border 1 lc rgb ink lw 0.75
unset ytics
set multiplot
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 'Boxes: the quartiles with the median; lines: from minimum to maximum' at screen 0.03, screen legendHeight left textcolor rgb grey font ',8.5'
)";

/// Uses the variables and the data that the caller puts before it. The first panel draws the labels
/// of the picture.
constexpr const char* kPanel = R"(
set label 3 name at graph 0, graph 1.12 left noenhanced textcolor rgb ink font ',9.5'
set label 4 note at graph 1, graph 1.12 right noenhanced textcolor rgb grey font ',8.5'
set xtics tick nomirror out scale 0.4 textcolor rgb ink font ',8' offset 0, 0.35
set xrange [low:high]
set yrange [0:1.3 * most]
middle = 1.17 * most; half = 0.06 * most
set arrow 1 from first smallest, first middle to first largest, first middle nohead back lc rgb blue lw 0.9
set object 1 rectangle from first q1, first middle - half to first q3, first middle + half front fs solid 1 border lc rgb blue fc rgb pale lw 0.9
set arrow 2 from first median, first middle - half to first median, first middle + half nohead front lc rgb red lw 1.8
plot $bins using (($1 + $2) / 2):(0.5 * $3):1:2:(0):3 with boxxyerror fs solid 1 border lc rgb 'white' lc rgb bars lw 0.5
unset label 1
unset label 2
)";

/// A panel without a histogram still takes its place.
constexpr const char* kEmptyPanel = R"(
set label 3 name at graph 0, graph 1.12 left noenhanced textcolor rgb ink font ',9.5'
set label 4 note at graph 1, graph 1.12 right noenhanced textcolor rgb grey font ',8.5'
unset xtics
set xrange [0:1]
set yrange [0:1]
unset object 1
unset arrow 1
unset arrow 2
plot NaN
unset label 1
unset label 2
)";

/// Distance of the ticks: a round number, not below the width of the bins, and so large that there
/// is room for the labels.
double tickDistance(double low, double high, double width) {
  const std::size_t label = std::max(significant(low, 10).size(), significant(high, 10).size());
  return std::max(zel::RoundPos125((high - low) / (label > 6 ? 2 : 4)), width);
}

/// The name on the left and a note on the right, if there is room for it.
std::string heading(const HistogramPanel& panel, const std::string& note, double inches) {
  constexpr double kCharacter = 0.083;
  const auto room = static_cast<std::size_t>(inches / kCharacter);
  const bool fits = characterCount(panel.name) + characterCount(note) + 2 <= room;
  return gnuplotVariable("name", gnuplotText(panel.name, room - 3)) +
         gnuplotVariable("note", fits ? gnuplotText(note) : "''");
}

std::string panelScript(const HistogramPanel& panel, double inches) {
  if (!panel.histogram) {
    const bool none = panel.summary->n == 0;
    return heading(panel, none ? "no values" : "values too large", inches) + kEmptyPanel;
  }
  const Histogram& histogram = *panel.histogram;
  const double low = histogram.edge(0);
  const double high = histogram.edge(histogram.counts.size());
  const int decimals = std::max(decimalsFor(histogram.width()) - 1, 0);
  std::string median = trimmed(*panel.summary->median.value, decimals);
  if (median.find('e') != std::string::npos) median = significant(*panel.summary->median.value, 4);
  std::string script = "$bins << EOD\n";
  for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
    script += shortest(histogram.edge(i)) + ' ' + shortest(histogram.edge(i + 1)) + ' ' +
              std::to_string(histogram.counts[i]) + '\n';
  }
  const int most = *std::max_element(histogram.counts.begin(), histogram.counts.end());
  return script + "EOD\n" + heading(panel, "median " + median, inches) +
         gnuplotVariable("low", shortest(low)) + gnuplotVariable("high", shortest(high)) +
         gnuplotVariable("most", std::to_string(most)) +
         gnuplotVariable("smallest", shortest(*panel.summary->minimum.value)) +
         gnuplotVariable("q1", shortest(*panel.summary->lowerQuartile.value)) +
         gnuplotVariable("median", shortest(*panel.summary->median.value)) +
         gnuplotVariable("q3", shortest(*panel.summary->upperQuartile.value)) +
         gnuplotVariable("largest", shortest(*panel.summary->maximum.value)) +
         gnuplotVariable("tick", shortest(tickDistance(low, high, histogram.width()))) + kPanel;
}

}  // namespace

void drawHistograms(const std::string& fileName, const std::string& title,
                    const std::vector<HistogramPanel>& panels) {
  if (panels.size() > kMostPanels) {
    throw Failure("the picture " + printable(fileName) + " was not written: it has room for " +
                  std::to_string(kMostPanels) + " variables, not " + std::to_string(panels.size()) +
                  " (--column chooses)");
  }
  const std::size_t across = panels.size() <= 4 ? 2 : panels.size() <= 9 ? 3 : 4;
  const std::size_t down = (panels.size() - 1) / across + 1;
  const double height = kHeadHeight + kPanelHeight * static_cast<double>(down);
  const auto screen = [](const char* side, double place) {
    return "set " + std::string(side) + "margin at screen " + fixedPoint(place, 5) + '\n';
  };
  std::string script = gnuplotVariable("title", gnuplotText(title, 95)) +
                       gnuplotVariable("titleHeight", shortest(1 - 0.22 / height)) +
                       gnuplotVariable("legendHeight", shortest(1 - 0.47 / height)) + kStyle;
  const double panelWidth = 0.97 / static_cast<double>(across);
  for (std::size_t i = 0; i < panels.size(); ++i) {
    const std::size_t row = i / across;
    const double left = 0.03 + panelWidth * static_cast<double>(i % across);
    const double top = kHeadHeight + kPanelHeight * static_cast<double>(row);
    script += screen("l", left) + screen("r", left + panelWidth - 0.04) +
              screen("t", 1 - (top + 0.42) / height) +
              screen("b", 1 - (top + kPanelHeight - 0.3) / height) +
              panelScript(panels[i], kWidth * (panelWidth - 0.04));
  }
  drawPicture(fileName, {kWidth, height}, script + "unset multiplot\n");
}

}  // namespace tool
