#include "groups_picture.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr std::size_t kMostPanels = 40;
constexpr std::size_t kMostCategories = 40;
/// Each value gets a dot of its own up to this many in a panel.
constexpr std::size_t kMostDots = 3000;
constexpr double kWidth = 8;
constexpr double kHeadHeight = 0.7;
constexpr double kPlotHeight = 2.1;
constexpr double kCharacter = 0.078;  // width in inches of the labels

constexpr const char* kStyle = R"(
pale = '#dfe9f3'
set grid ytics lt 1 lc rgb '#e6e6e6' lw 0.6
set boxwidth 0.56 absolute
set multiplot
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 legend at screen 0.03, screen legendHeight left noenhanced textcolor rgb grey font ',8.5'
)";

/// Uses the variables and the data that the caller puts before it. The first panel draws the labels
/// of the picture.
constexpr const char* kPanel = R"(
set label 3 name at graph 0, graph 1 left offset 0, 0.9 noenhanced textcolor rgb ink font ',9.5'
set ytics auto nomirror out scale 0.4 textcolor rgb ink font ',8'
set xrange [0.4:categories + 0.6]
set yrange [low:high]
)";

constexpr const char* kBoxes =
    "$boxes using 1:3:2:6:5 with candlesticks fs solid 1 border lc rgb blue lc rgb pale lw 0.9, "
    "$boxes using ($1 - 0.28):4:(0.56):(0) with vectors nohead lc rgb red lw 1.8";

constexpr const char* kDots = ", $dots using 1:2 with points pt 7 ps 0.22 lc rgb '#8a2f6496'";

/// Places and sizes in inches.
struct Layout {
  std::size_t across;
  std::size_t down;
  double panelWidth;
  double panelHeight;
  bool areTurned;   // the labels of the categories
  bool areCounted;  // below them are the numbers of values
  double foot;      // below a plot

  Layout(const Grouping& grouping, std::size_t panels) {
    const auto k = static_cast<double>(grouping.size());
    std::size_t longest = 2;
    for (const std::string& label : grouping.labels) {
      longest = std::max(longest, std::min(characterCount(label), kLongestLabel));
    }
    // What is side by side if one panel in the row leaves room for it.
    const auto isWithinRow = [&](double slot) { return k * slot <= kWidth - kMargins; };
    const double label = kCharacter * static_cast<double>(longest);
    const double upright = std::max(label + 0.07, 0.2);
    const double counted = std::max(upright, kCharacter * kCountLength);
    areTurned = !isWithinRow(upright);
    areCounted = isWithinRow(counted);
    const double slot = areCounted ? counted : areTurned ? 0.18 : upright;
    const auto room = static_cast<std::size_t>((kWidth - 0.3) / (k * slot + kMargins));
    const std::size_t wanted = panels == 1 ? 1 : panels <= 4 ? 2 : panels <= 9 ? 3 : 4;
    across = std::clamp<std::size_t>(room, 1, wanted);
    down = (panels - 1) / across + 1;
    panelWidth = (kWidth - 0.2) / static_cast<double>(across);
    foot = areTurned ? 0.72 * label + 0.3 : 0.48;
    panelHeight = 0.5 + (panels == 1 ? 2 : 1) * kPlotHeight + foot;
  }
  static constexpr std::size_t kLongestLabel = 16;
  static constexpr double kCountLength = 8;  // "n = 1234"
  static constexpr double kMargins = 0.9;    // beside a plot
};

bool isDrawable(const Summary& s) {
  return s.n > 0 && s.minimum.value && s.lowerQuartile.value && s.median.value &&
         s.upperQuartile.value && s.maximum.value;
}

/// Data and commands of a panel.
std::string panelScript(const GroupedVariable& panel, const Grouping& grouping,
                        const Layout& layout) {
  std::string boxes = "$boxes << EOD\n";
  std::string dots = "$dots << EOD\n";
  std::string labels;
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  std::size_t n = 0;
  for (const Variable* variable : panel.variables) n += variable->values.size();
  for (std::size_t k = 0; k < panel.summaries.size(); ++k) {
    const Summary& s = *panel.summaries[k];
    const auto place = static_cast<double>(k + 1);
    labels += (k > 0 ? ", " : "") + gnuplotText(grouping.labels[k], Layout::kLongestLabel) +
              (layout.areCounted ? ".\"\\nn = " + std::to_string(s.n) + '"' : "") + ' ' +
              std::to_string(k + 1);
    if (!isDrawable(s)) continue;
    low = std::min(low, *s.minimum.value);
    high = std::max(high, *s.maximum.value);
    boxes += std::to_string(k + 1);
    for (const Figure* f :
         {&s.minimum, &s.lowerQuartile, &s.median, &s.upperQuartile, &s.maximum}) {
      boxes += ' ' + shortest(*f->value);
    }
    boxes += '\n';
    if (n > kMostDots) continue;
    double spread = 0;
    for (const double value : panel.variables[k]->values) {
      spread = std::fmod(spread + 0.61803398875, 1);  // no two neighbours are close
      dots += fixedPoint(place + 0.4 * (spread - 0.5), 3) + ' ' + shortest(value) + '\n';
    }
  }
  const bool isEmpty = !(low <= high && high - low < 1e307);
  const double room = isEmpty      ? 0
                      : high > low ? 0.05 * (high - low)
                      : low == 0   ? 1
                                   : std::abs(low) / 10;
  std::string script =
      gnuplotVariable("name", gnuplotText(panel.name + (isEmpty ? ": nothing to draw" : ""), 60)) +
      gnuplotVariable("low", shortest(isEmpty ? 0 : low - room)) +
      gnuplotVariable("high", shortest(isEmpty ? 1 : high + room)) + kPanel + "set xtics (" +
      labels + ") nomirror scale 0 noenhanced textcolor rgb ink font ',8'" +
      (layout.areTurned ? " rotate by 45 right" : "") + '\n';
  if (isEmpty) return script + "plot NaN\n";
  script += boxes + "EOD\n";
  if (n <= kMostDots) script += dots + "EOD\n";
  return script + "plot " + kBoxes + (n <= kMostDots ? kDots : "") + '\n';
}

}  // namespace

void drawGroups(const std::string& fileName, const std::string& title, const Grouping& grouping,
                const std::vector<GroupedVariable>& variables) {
  const auto refuse = [&](std::size_t most, const char* what, std::size_t number) {
    if (number <= most) return;
    throw Failure("the picture " + printable(fileName) + " was not written: it has room for " +
                  std::to_string(most) + ' ' + what + ", not " + std::to_string(number));
  };
  refuse(kMostPanels, "variables", variables.size());
  refuse(kMostCategories, "categories", grouping.size());
  const Layout layout(grouping, variables.size());
  const double height = kHeadHeight + layout.panelHeight * static_cast<double>(layout.down);
  const auto screen = [](const char* side, double place) {
    return "set " + std::string(side) + "margin at screen " + fixedPoint(place, 5) + '\n';
  };
  std::string script =
      gnuplotVariable("title", gnuplotText(title, 95)) +
      gnuplotVariable("legend", gnuplotText("By " + printable(grouping.title, 30) +
                                                ". Boxes: the quartiles with the median; lines: "
                                                "from minimum to maximum",
                                            120)) +
      gnuplotVariable("categories", std::to_string(grouping.size())) +
      gnuplotVariable("titleHeight", shortest(1 - 0.22 / height)) +
      gnuplotVariable("legendHeight", shortest(1 - 0.47 / height)) + kStyle;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const double left = 0.2 + layout.panelWidth * static_cast<double>(i % layout.across);
    const std::size_t row = i / layout.across;
    const double top = kHeadHeight + layout.panelHeight * static_cast<double>(row);
    script += screen("l", (left + 0.5) / kWidth) +
              screen("r", (left + layout.panelWidth - 0.2) / kWidth) +
              screen("t", 1 - (top + 0.42) / height) +
              screen("b", 1 - (top + layout.panelHeight - layout.foot) / height) +
              panelScript(variables[i], grouping, layout) +
              (i == 0 ? "unset label 1\nunset label 2\n" : "");
  }
  drawPicture(fileName, {kWidth, height}, script + "unset multiplot\n");
}

}  // namespace tool
