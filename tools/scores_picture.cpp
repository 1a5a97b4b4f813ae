#include "scores_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

/// Colours that stay apart for the colour-blind (P. Tol, Colour schemes, 2021, "bright" and more).
constexpr const char* kColours[] = {"#4477aa", "#ee6677", "#228833", "#ccbb44", "#66ccee",
                                    "#aa3377", "#994400", "#88aa00", "#555555", "#bb99dd"};
static_assert(std::size(kColours) == kMostColours);
constexpr std::size_t kMostArrows = 20;

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kStyle = R"(
set size ratio -1
set lmargin at screen 0.10
set rmargin at screen 0.97
set tmargin at screen top
set bmargin at screen bottom
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen 0.03, screen subtitleHeight left noenhanced textcolor rgb grey font ',9'
set xlabel xTitle offset 0, 0.3 textcolor rgb ink
set ylabel yTitle textcolor rgb ink
set xzeroaxis lt 1 lc rgb '#cccccc' lw 0.6
set yzeroaxis lt 1 lc rgb '#cccccc' lw 0.6
set key at graph 1, graph 1.01 right bottom horizontal Left reverse samplen 0.6 textcolor rgb ink noenhanced
set xrange [low:high]
set yrange [bottom_:top_]
)";

std::string axisTitle(const Components& components, std::size_t k) {
  return "PC" + std::to_string(k + 1) + "  (" + fixedPoint(100 * components.explained[k], 1) +
         " % of the variance)";
}

/// From the origin, with a name at its head.
struct Arrow {
  std::string name;
  double x, y;
};
using Arrows = std::vector<Arrow>;

/// The loadings of the first two components.
/// @param reach  length of the longest
Arrows arrowsOf(const Components& components, double reach) {
  const std::vector<double>& x = components.loadings[0];
  const std::vector<double>& y = components.loadings[1];
  double longest = 0;
  for (std::size_t i = 0; i < x.size(); ++i) longest = std::max(longest, std::hypot(x[i], y[i]));
  Arrows arrows;
  for (std::size_t i = 0; i < x.size() && longest > 0; ++i) {
    arrows.push_back({components.names[i], x[i] / longest * reach, y[i] / longest * reach});
  }
  return arrows;
}

/// @param gap  least distance of names on one side
std::string arrowScript(Arrows arrows, double gap) {
  std::sort(arrows.begin(), arrows.end(), [](const Arrow& a, const Arrow& b) { return a.y < b.y; });
  std::string script;
  double lastHeight[2] = {-HUGE_VAL, -HUGE_VAL};  // of a name on the right and on the left
  for (const Arrow& arrow : arrows) {
    double& last = lastHeight[arrow.x < 0];
    last = std::max(1.06 * arrow.y, last + gap);
    script += "set arrow from first 0, first 0 to first " + shortest(arrow.x) + ", first " +
              shortest(arrow.y) +
              " head filled size screen 0.012, 18 front lc rgb '#555555' lw 1.1\n";
    script += "set label " + gnuplotText(arrow.name, 24) + " at first " + shortest(1.06 * arrow.x) +
              ", first " + shortest(last) + (arrow.x < 0 ? " right" : " left") +
              " front noenhanced textcolor rgb '#333333' font ',8'\n";
  }
  return script;
}

/// The different categories in the order of their first rows.
std::vector<std::string> differentOnes(const std::vector<std::string>& categories) {
  std::vector<std::string> found;
  for (const std::string& category : categories) {
    if (std::find(found.begin(), found.end(), category) != found.end()) continue;
    found.push_back(category);
    if (found.size() > kMostColours) break;
  }
  return found;
}

}  // namespace

const char* colourOf(std::size_t k) { return kColours[k % kMostColours]; }

void drawScores(const std::string& fileName, const std::string& title, const Components& components,
                const std::vector<std::string>& categories, const std::string& subtitle) {
  const std::vector<std::string> groups = differentOnes(categories);
  if (groups.size() > kMostColours) {
    throw Failure("the picture " + printable(fileName) + " was not written: it has colours for " +
                  std::to_string(kMostColours) + " categories, and --color has more");
  }
  const std::vector<double>& x = components.scores[0];
  const std::vector<double>& y = components.scores[1];
  double low = 0, high = 0, bottom = 0, top = 0;
  std::vector<std::string> blocks(std::max<std::size_t>(groups.size(), 1));
  for (std::size_t i = 0; i < x.size(); ++i) {
    low = std::min(low, x[i]);
    high = std::max(high, x[i]);
    bottom = std::min(bottom, y[i]);
    top = std::max(top, y[i]);
    const auto group =
        categories.empty()
            ? std::size_t{0}
            : static_cast<std::size_t>(std::find(groups.begin(), groups.end(), categories[i]) -
                                       groups.begin());
    blocks[group] += shortest(x[i]) + ' ' + shortest(y[i]) + '\n';
  }
  Arrows arrows;
  if (components.names.size() <= kMostArrows) {
    const double reach =
        0.8 * std::min(std::max(-low, high), std::max({-bottom, top, (high - low) / 4}));
    arrows = arrowsOf(components, reach);
  }
  for (const Arrow& arrow : arrows) {
    low = std::min(low, 1.1 * arrow.x);
    high = std::max(high, 1.1 * arrow.x);
    bottom = std::min(bottom, 1.1 * arrow.y);
    top = std::max(top, 1.1 * arrow.y);
  }
  if (high == low) high = low + 1;
  const double roomX = 0.05 * (high - low);
  low -= roomX;
  high += roomX;
  bottom -= roomX;
  top += roomX;
  constexpr double kWidth = 8;
  constexpr double kHead = 0.95;  // inches above and below the plot
  constexpr double kFoot = 0.65;
  const double plotWidth = 0.87 * kWidth;
  const double plotHeight = std::clamp(plotWidth * (top - bottom) / (high - low), 2.0, 7.5);
  const double height = plotHeight + kHead + kFoot;
  std::string script =
      gnuplotVariable("title", gnuplotText(title, 95)) +
      gnuplotVariable("subtitle",
                      gnuplotText(subtitle + (arrows.empty() ? "" : "; arrows: loadings"), 110)) +
      gnuplotVariable("xTitle", gnuplotText(axisTitle(components, 0))) +
      gnuplotVariable("yTitle", gnuplotText(axisTitle(components, 1))) +
      gnuplotVariable("low", shortest(low)) + gnuplotVariable("high", shortest(high)) +
      gnuplotVariable("bottom_", shortest(bottom)) + gnuplotVariable("top_", shortest(top)) +
      gnuplotVariable("top", shortest(1 - kHead / height)) +
      gnuplotVariable("bottom", shortest(kFoot / height)) +
      gnuplotVariable("titleHeight", shortest(1 - 0.23 / height)) +
      gnuplotVariable("subtitleHeight", shortest(1 - 0.48 / height)) + kStyle +
      arrowScript(arrows, 0.03 * (high - low));
  std::string plot;
  for (std::size_t g = 0; g < blocks.size(); ++g) {
    const std::string name = "$group" + std::to_string(g);
    script += name + " << EOD\n" + blocks[g] + "EOD\n";
    plot += (g == 0 ? "plot " : ", ") + name + " using 1:2 with points pt 7 ps 0.5 lc rgb '" +
            colourOf(g) + "' ";
    plot += groups.empty()
                ? "notitle"
                : "title " + gnuplotText(groups[g].empty() ? "(missing)" : groups[g], 30);
  }
  drawPicture(fileName, {kWidth, height}, script + plot + '\n');
}

}  // namespace tool
