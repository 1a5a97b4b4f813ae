#include "correlations_picture.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr std::size_t kMostVariables = 100;
constexpr std::size_t kMostWithValues = 40;
/// From here on a cell has no room for the zero before the point.
constexpr std::size_t kWithoutZeros = 13;
constexpr std::size_t kLongestName = 24;

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kStyle = R"(
unset border
unset tics
set lmargin at screen left
set rmargin at screen right
set tmargin at screen top
set bmargin at screen bottom
set xrange [0:k]
set yrange [k:0]
set palette defined (-1 '#9f1f2b', -0.75 '#c5504f', -0.5 '#de9183', -0.25 '#f0cdc2', 0 '#f7f7f7', 0.25 '#c9d8e8', 0.5 '#92b4d4', 0.75 '#5288bb', 1 '#255c8e')
set cbrange [-1:1]
set colorbox user origin screen barLeft, screen bottom size screen barWidth, screen top - bottom noborder
set cbtics ('−1' -1, '−0.5' -0.5, '0' 0, '0.5' 0.5, '1' 1) scale 0 textcolor rgb ink font ',8' offset -0.6, 0
set label 1 title at screen margin, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen margin, screen subtitleHeight left noenhanced textcolor rgb grey font ',9'
)";

/// In inches, on the scale that the fonts have.
struct Layout {
  double cell;
  double valueFont;  // points
  double nameFont;
  double left;  // of the cells
  double head;  // above them
  double right;
  int angle;  // of the names of the columns, in degrees

  Layout(const std::vector<std::string>& names, const std::string& title) {
    const auto k = static_cast<double>(names.size());
    cell = names.size() <= kMostWithValues ? std::clamp(6.5 / k, 0.3, 0.85) : std::max(9 / k, 0.13);
    // A value has 5 characters, or 4, of 0.6 times the font size; they may take 85 % of the width.
    valueFont = std::min(10.0, (names.size() < kWithoutZeros ? 20 : 25) * cell);
    nameFont = std::min(9.5, 65 * cell);
    const double character = 0.62 * nameFont / 72;
    std::size_t longest = 0;
    for (const std::string& name : names) longest = std::max(longest, characterCount(name));
    const double name = character * static_cast<double>(std::min(longest, kLongestName + 3));
    left = kMargin + name + 0.12;
    angle = name <= 0.92 * cell ? 0 : names.size() <= kMostWithValues ? 45 : 90;
    head = 0.68 + (angle == 0 ? 0.22 : angle == 45 ? 0.71 * name + 0.12 : name + 0.12);
    right = std::max(kBar + 0.35 + kMargin, angle == 45 ? 0.71 * name : 0.0);
    const double titleWidth = 0.088 * static_cast<double>(characterCount(title)) + 2 * kMargin;
    right += std::max(0.0, std::max(3.2, std::min(titleWidth, 8.0)) - (left + k * cell + right));
  }
  static constexpr double kMargin = 0.2;
  static constexpr double kBar = 0.32;  // from the cells to the right end of the colour bar
};

std::string valueText(double r, bool withoutZeros) {
  if (r == 1) return "1";
  std::string text = fixedPoint(std::abs(r), 2);
  const bool negative = r < 0 && text != "0.00";
  if (withoutZeros && text[0] == '0') text.erase(0, 1);
  return (negative ? "\u2212" : "") + text;
}

/// Data for gnuplot and what draws them. Nothing at all for no lines: gnuplot fails for an empty
/// block.
struct Layer {
  const char* name;
  const char* drawing;
  std::string lines = {};
};

/// The blocks of data and the command that draws them.
std::string cellScript(const Correlations& correlations) {
  constexpr double kDarkFrom = 0.6;  // colours that white is legible on
  Layer cells{"$cells",
              "($1 + 0.5):($2 + 0.5):1:($1 + 1):2:($2 + 1):3 with boxxyerror fs solid 1 border lc "
              "rgb 'white' lc palette lw gap"};
  Layer undefined{"$undefined",
                  "($1 + 0.5):($2 + 0.5):1:($1 + 1):2:($2 + 1) with boxxyerror fs solid 1 border "
                  "lc rgb 'white' lc rgb '#e4e4e4' lw gap"};
  Layer dark{"$dark", "1:2:3 with labels noenhanced textcolor rgb ink font valueFont"};
  Layer light{"$light", "1:2:3 with labels noenhanced textcolor rgb 'white' font valueFont"};
  const bool values = correlations.size() <= kMostWithValues;
  for (std::size_t i = 0; i < correlations.size(); ++i) {
    for (std::size_t j = 0; j < correlations.size(); ++j) {
      const std::string place = std::to_string(j) + ' ' + std::to_string(i);
      const std::string middle = std::to_string(j) + ".5 " + std::to_string(i) + ".5 ";
      const auto& r = correlations.r[i][j];
      if (r) {
        cells.lines += place + ' ' + shortest(*r) + '\n';
      } else {
        undefined.lines += place + '\n';
      }
      if (!values) continue;
      (r && std::abs(*r) >= kDarkFrom ? light : dark).lines +=
          middle + (r ? valueText(*r, correlations.size() >= kWithoutZeros) : "–") + '\n';
    }
  }
  std::string blocks;
  std::string plot;
  for (const Layer& layer : {undefined, cells, dark, light}) {
    if (layer.lines.empty()) continue;
    blocks += std::string(layer.name) + " << EOD\n" + layer.lines + "EOD\n";
    plot += (plot.empty() ? "plot " : ", ") + std::string(layer.name) + " using " + layer.drawing;
  }
  return blocks + plot + '\n';
}

std::string nameLabels(const std::vector<std::string>& names, const Layout& layout) {
  const std::string font =
      " noenhanced textcolor rgb ink font '," + fixedPoint(layout.nameFont, 1) + "'\n";
  const std::string across =
      layout.angle == 0 ? "center offset 0, 0.7"
                        : "left rotate by " + std::to_string(layout.angle) + " offset 0, 0.5";
  std::string script;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string label = "set label " + gnuplotText(names[i], kLongestName) + " at ";
    const std::string middle = std::to_string(i) + ".5";
    script.append(label).append("graph 0, first ").append(middle);
    script.append(" right offset -0.7, 0").append(font);
    script.append(label).append("first ").append(middle).append(", graph 1 ");
    script.append(across).append(font);
  }
  return script;
}

std::string subtitleOf(const Correlations& correlations) {
  const auto [fewest, most] = correlations.rangeOfPairs();
  return "Pearson correlation, n = " + std::to_string(fewest) +
         (fewest == most ? "" : " to " + std::to_string(most));
}

}  // namespace

void drawCorrelations(const std::string& fileName, const std::string& title,
                      const Correlations& correlations) {
  const std::size_t k = correlations.size();
  if (k > kMostVariables) {
    throw Failure("the picture " + printable(fileName) + " was not written: it has room for " +
                  std::to_string(kMostVariables) + " variables, not " + std::to_string(k) +
                  " (--column chooses)");
  }
  std::vector<std::string> names;
  for (const std::string& name : correlations.names) names.push_back(printable(name, kLongestName));
  const Layout layout(names, title);
  const double cells = layout.cell * static_cast<double>(k);
  const double width = layout.left + cells + layout.right;
  const double height = layout.head + cells + Layout::kMargin;
  const auto fromLeft = [&](double inches) { return fixedPoint(inches / width, 5); };
  const auto fromTop = [&](double inches) { return fixedPoint(1 - inches / height, 5); };
  std::string script =
      gnuplotVariable("k", std::to_string(k)) +
      gnuplotVariable("margin", fromLeft(Layout::kMargin)) +
      gnuplotVariable("left", fromLeft(layout.left)) +
      gnuplotVariable("right", fromLeft(layout.left + cells)) +
      gnuplotVariable("top", fromTop(layout.head)) +
      gnuplotVariable("bottom", fromTop(layout.head + cells)) +
      gnuplotVariable("barLeft", fromLeft(layout.left + cells + Layout::kBar - 0.12)) +
      gnuplotVariable("barWidth", fromLeft(0.12)) + gnuplotVariable("titleHeight", fromTop(0.23)) +
      gnuplotVariable("title", gnuplotText(title, 95)) +
      gnuplotVariable("subtitleHeight", fromTop(0.48)) +
      gnuplotVariable("subtitle", gnuplotText(subtitleOf(correlations))) +
      gnuplotVariable("valueFont", "'," + fixedPoint(layout.valueFont, 1) + "'") +
      gnuplotVariable("gap", layout.cell > 0.25 ? "0.8" : "0.3");
  drawPicture(fileName, {width, height},
              script + kStyle + nameLabels(names, layout) + cellScript(correlations));
}

}  // namespace tool
