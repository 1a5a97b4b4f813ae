#include "smooth_picture.h"

#include "gnuplot.h"
#include "number_text.h"
#include "series.h"

namespace tool {
namespace {

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kHead = R"(
set grid lt 1 lc rgb '#e6e6e6' lw 0.6
set lmargin at screen 0.105
set rmargin at screen 0.97
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen 0.03, screen subtitleHeight left noenhanced textcolor rgb grey font ',9'
set label 3 yTitle at screen 0.022, graph 0.5 center rotate noenhanced textcolor rgb ink
set xrange [0:last]
set autoscale yfix
set offsets 0, 0, graph 0.05, graph 0.05
)";

constexpr const char* kTogether = R"(
set tmargin at screen 0.84
set bmargin at screen 0.145
set xlabel 'time' textcolor rgb ink offset 0, 0.3
plot $series using 1:2 with lines lc rgb '#a9bfd3' lw 1, \
  $result using 1:2 with lines lc rgb red lw 1.4
)";

constexpr const char* kApart = R"(
set multiplot
set tmargin at screen 0.885
set bmargin at screen 0.535
plot $series using 1:2 with lines lc rgb blue lw 1
unset label 1
unset label 2
set label 3 'derivative'
set tmargin at screen 0.455
set bmargin at screen 0.105
set xlabel 'time' textcolor rgb ink offset 0, 0.3
set xzeroaxis lt 1 lc rgb '#999999' lw 0.8
plot $result using 1:2 with lines lc rgb red lw 1.2
unset multiplot
)";

}  // namespace

void drawSmoothed(const std::string& fileName, const std::string& title, const std::string& yTitle,
                  std::span<const double> series, double sampleTime, const Smoothed& result) {
  const double height = result.isDerivative ? 6 : 4.2;
  const auto last = sampleTime * static_cast<double>(series.size() - 1);
  const std::string script = curveBlock("$series", series, 0, sampleTime) +
                             curveBlock("$result", result.values, 0, sampleTime) +
                             gnuplotVariable("title", gnuplotText(title, 95)) +
                             gnuplotVariable("subtitle", gnuplotText(result.method, 110)) +
                             gnuplotVariable("yTitle", gnuplotText(yTitle, 20)) +
                             gnuplotVariable("titleHeight", shortest(1 - 0.24 / height)) +
                             gnuplotVariable("subtitleHeight", shortest(1 - 0.47 / height)) +
                             gnuplotVariable("last", shortest(last)) + kHead +
                             (result.isDerivative ? kApart : kTogether);
  drawPicture(fileName, {8, height}, script);
}

}  // namespace tool
