#include "tree_picture.h"

#include <algorithm>
#include <cstddef>

#include "gnuplot.h"
#include "number_text.h"
#include "scores_picture.h"
#include "utf8.h"

namespace tool {
namespace {

/// More labels than this, side by side, could not be read.
constexpr std::size_t kMostLabels = 160;
constexpr std::size_t kLongestLabel = 24;

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kStyle = R"(
set lmargin at screen 0.09
set rmargin at screen 0.98
set tmargin at screen top
set bmargin at screen bottom
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen 0.03, screen subtitleHeight left noenhanced textcolor rgb grey font ',9'
set ylabel 'distance' textcolor rgb ink
set border 2
set xrange [0.2:last]
set yrange [0:highest]
set key at graph 1, graph 1.01 right bottom horizontal Left reverse samplen 1.2 textcolor rgb ink noenhanced
)";

/// The points at which the lines of a union end: down, across, down.
std::string bracket(double x1, double y1, double x2, double y2, double height) {
  const std::string top = shortest(height);
  return shortest(x1) + ' ' + shortest(y1) + '\n' + shortest(x1) + ' ' + top + '\n' + shortest(x2) +
         ' ' + top + '\n' + shortest(x2) + ' ' + shortest(y2) + "\n\n";
}

}  // namespace

void drawTree(const std::string& fileName, const std::string& title, const Clusters& clusters,
              const std::vector<std::string>& labels) {
  const std::size_t n = labels.size();
  const std::size_t parts = clusters.sizes.size();
  std::vector<int> owner(clusters.assignment);  // cluster of each node, 0 above the cut
  std::vector<double> heights(n, 0.0);
  std::vector<std::string> blocks(parts + 1);
  const auto at = [](int node) { return static_cast<std::size_t>(node - 1); };
  for (const Union& u : clusters.unions) {
    const int own = owner[at(u.first)] == owner[at(u.second)] ? owner[at(u.first)] : 0;
    blocks[static_cast<std::size_t>(own)] +=
        bracket(clusters.positions[at(u.first)], heights[at(u.first)],
                clusters.positions[at(u.second)], heights[at(u.second)], u.height);
    owner.push_back(own);
    heights.push_back(u.height);
  }
  const double highest = heights.back() > 0 ? 1.05 * heights.back() : 1;
  const bool isLabelled = n <= kMostLabels;
  std::size_t longest = 0;
  std::string names =
      isLabelled ? "set xtics scale 0 rotate by 90 right noenhanced font '," : "unset xtics\n";
  if (isLabelled) {
    names += std::string(n > 80 ? "4.5" : n > 50 ? "6.5" : "8") + "' (";
    for (std::size_t i = 0; i < n; ++i) {
      names += (i == 0 ? "" : ", ") + gnuplotText(labels[i], kLongestLabel) + ' ' +
               shortest(clusters.positions[i]);
      longest = std::max(longest, std::min(characterCount(labels[i]), kLongestLabel + 3));
    }
    names += ")\n";
  }
  constexpr double kHead = 0.95, kPlot = 4.4;  // inches
  const double foot = 0.25 + (isLabelled ? 0.075 * static_cast<double>(longest) : 0);
  const double height = kHead + kPlot + foot;
  std::string script = gnuplotVariable("title", gnuplotText(title, 95)) +
                       gnuplotVariable("subtitle", gnuplotText(clusters.method, 110)) +
                       gnuplotVariable("titleHeight", shortest(1 - 0.23 / height)) +
                       gnuplotVariable("subtitleHeight", shortest(1 - 0.48 / height)) +
                       gnuplotVariable("top", shortest(1 - kHead / height)) +
                       gnuplotVariable("bottom", shortest(foot / height)) +
                       gnuplotVariable("last", shortest(static_cast<double>(n) + 0.8)) +
                       gnuplotVariable("highest", shortest(highest)) + kStyle + names;
  if (parts > 1) {
    const double below = parts < n ? clusters.unions[n - parts - 1].height : 0;
    const std::string cut = shortest((below + clusters.unions[n - parts].height) / 2);
    script += "set arrow from graph 0, first " + cut + " to graph 1, first " + cut +
              " nohead dt 2 lc rgb '#999999' lw 0.8\n";
  }
  std::string plot;
  for (std::size_t g = 0; g <= parts; ++g) {
    if (blocks[g].empty()) continue;
    const std::string name = "$part" + std::to_string(g);
    script += name + " << EOD\n" + blocks[g] + "EOD\n";
    plot += (plot.empty() ? "plot " : ", ") + name + " using 1:2 with lines lw 1 lc rgb '" +
            (g == 0 ? "#777777" : colourOf(g - 1)) + "' ";
    plot += g == 0 || parts > kMostColours
                ? "notitle"
                : "title " + gnuplotText(std::to_string(g) + " (" +
                                         std::to_string(clusters.sizes[g - 1]) + ')');
  }
  drawPicture(fileName, {8, height}, script + plot + '\n');
}

}  // namespace tool
