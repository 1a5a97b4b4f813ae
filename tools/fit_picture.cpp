#include "fit_picture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "failure.h"
#include "gnuplot.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr int kCurvePoints = 600;

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kStyle = R"(
set grid lt 1 lc rgb '#e6e6e6' lw 0.6
left = 0.075 + 0.0105 * labelWidth
set lmargin at screen left
set rmargin at screen 0.97
set label 1 title at screen left, screen 0.965 left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen left, screen 0.928 left noenhanced textcolor rgb grey font ',9'
set label 3 yTitle at screen 0.022, graph 0.5 center rotate noenhanced textcolor rgb ink
set xrange [low:high]
set yrange [bottom:top]
set multiplot
)";

constexpr const char* kCurve = R"(
set tmargin at screen 0.895
set bmargin at screen 0.395
set format x ''
plot $pairs using 1:2 with points pt 7 ps dotSize lc rgb dots, $curve using 1:2 with lines lc rgb red lw 1.8
unset label 1
unset label 2
set label 3 'residual' noenhanced
set xlabel xTitle noenhanced offset 0, 0.3 textcolor rgb ink
set format x '%.10g'
set tmargin at screen 0.345
set bmargin at screen 0.105
set yrange [-span:span]
set ytics span > 0 ? tick : 1
set arrow 1 from graph 0, first 0 to graph 1, first 0 nohead back lc rgb red lw 1.2
plot $pairs using 1:3 with points pt 7 ps dotSize lc rgb dots
unset multiplot
)";

constexpr const char* kCircle = R"(
set tmargin at screen 0.895
set bmargin at screen 0.415
set size ratio -1
set xlabel xTitle noenhanced offset 0, 0.3 textcolor rgb ink
plot $pairs using 1:2 with points pt 7 ps dotSize lc rgb dots, $curve using 1:2 with lines lc rgb red lw 1.8
unset label 1
unset label 2
set size noratio
set label 3 'distance' noenhanced
set xlabel 'direction from the centre in degrees'
set tmargin at screen 0.30
set bmargin at screen 0.105
set xrange [-180:180]
set xtics 60
set yrange [-span:span]
set ytics tick
set arrow 1 from graph 0, first 0 to graph 1, first 0 nohead back lc rgb red lw 1.2
plot $pairs using 4:3 with points pt 7 ps dotSize lc rgb dots
unset multiplot
)";

/// A range with some room around.
struct Range {
  double low, high;
  explicit Range(std::span<const double> values) {
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    low = *least;
    high = *most;
    widen(0.04);
  }
  void include(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  void widen(double part) {
    double room = part * (high - low);
    if (room == 0) room = low == 0 ? 1 : std::abs(low) / 10;
    low -= room;
    high += room;
  }
};

/// A round distance of about a third of the span.
double tickOf(double span) {
  const double power = std::pow(10, std::floor(std::log10(span / 2)));
  const double lead = span / 2 / power;
  return power * (lead < 2 ? 1 : lead < 5 ? 2 : 5);
}

}  // namespace

void drawFit(const std::string& fileName, const std::string& title, const PairedColumns& data,
             const FittedModel& model, const std::string& modelName) {
  const std::string undrawable = "the picture " + printable(fileName) + " was not written: ";
  if (data.x.empty()) throw Failure(undrawable + "there are no values to draw");
  Range x(data.x);
  Range y(data.y);
  const bool isCircle = !model.curve;
  std::string pairs = "$pairs << EOD\n";
  double span = 0;
  const auto& k = model.coefficients;
  for (std::size_t i = 0; i < data.x.size(); ++i) {
    const double r = model.residuals[i];
    if (!std::isfinite(r)) throw Failure(undrawable + "the curve exceeds the range of numbers");
    span = std::max(span, std::abs(r));
    pairs += shortest(data.x[i]) + ' ' + shortest(data.y[i]) + ' ' + shortest(r);
    if (isCircle) {
      pairs += ' ' + shortest(std::atan2(data.y[i] - k[2].value, data.x[i] - k[1].value) * 180 /
                              std::numbers::pi);
    }
    pairs += '\n';
  }
  std::string curve = "EOD\n$curve << EOD\n";
  const double middle = (y.low + y.high) / 2;
  const double reach = y.high - y.low;
  // Beyond the data a spline means little.
  const bool isSpline = !isCircle && model.coefficients.empty();
  const auto [least, most] = std::minmax_element(data.x.begin(), data.x.end());
  const double from = isSpline ? *least : x.low;
  const double to = isSpline ? *most : x.high;
  for (int i = 0; i <= kCurvePoints; ++i) {
    const double part = static_cast<double>(i) / kCurvePoints;
    double u = from + part * (to - from);
    double v = 0;
    if (isCircle) {
      const double angle = 2 * std::numbers::pi * part;
      u = k[1].value + k[0].value * std::cos(angle);
      v = k[2].value + k[0].value * std::sin(angle);
      x.include(u);
      y.include(v);
    } else {
      v = model.curve(u);
      // Poles and what lies beyond the domain interrupt the curve.
      if (!(std::abs(v - middle) < 3 * reach)) {
        curve += '\n';
        continue;
      }
      if (std::abs(v - middle) < 0.75 * reach) y.include(v);
    }
    curve += shortest(u) + ' ' + shortest(v) + '\n';
  }
  if (isCircle) {
    x.widen(0.05);
    y.widen(0.05);
    // The shape of the panel, for equal scales.
    constexpr double kShape = 1.45;
    const double wanted = kShape * (y.high - y.low);
    const double given = x.high - x.low;
    if (given < wanted) {
      x.widen((wanted / given - 1) / 2);
    } else {
      y.widen((given / wanted - 1) / 2);
    }
  }
  span = span == 0 ? 1 : 1.12 * span;
  std::size_t labelWidth = 4;
  const double step = std::pow(10, std::floor(std::log10(y.high - y.low)) - 1);
  for (const double edge : {y.low, y.high}) {
    labelWidth = std::max(labelWidth, significant(std::round(edge / step) * step, 6).size());
  }
  labelWidth = std::max(labelWidth, significant(-tickOf(span), 6).size());
  const bool areMany = data.x.size() > 400;
  std::string subtitle = modelName + ": " + (model.formula.empty() ? model.method : model.formula);
  if (model.quality) subtitle += ", r² = " + trimmed(*model.quality, 4);
  drawPicture(
      fileName, isCircle ? PictureSize{6.5, 8} : PictureSize{8, 6.5},
      pairs + curve + "EOD\n" + gnuplotVariable("title", gnuplotText(title, 95)) +
          gnuplotVariable("subtitle", gnuplotText(subtitle, 110)) +
          gnuplotVariable("xTitle", gnuplotText(data.xTitle, 60)) +
          gnuplotVariable("yTitle", gnuplotText(data.yTitle, 40)) +
          gnuplotVariable("labelWidth", std::to_string(std::min<std::size_t>(labelWidth, 12))) +
          gnuplotVariable("low", shortest(x.low)) + gnuplotVariable("high", shortest(x.high)) +
          gnuplotVariable("bottom", shortest(y.low)) + gnuplotVariable("top", shortest(y.high)) +
          gnuplotVariable("span", shortest(span)) +
          gnuplotVariable("tick", shortest(tickOf(span))) +
          gnuplotVariable("dotSize", areMany ? "0.25" : "0.42") +
          gnuplotVariable("dots", areMany ? "'#995288bb'" : "'#5288bb'") + kStyle +
          (isCircle ? kCircle : kCurve));
}

}  // namespace tool
