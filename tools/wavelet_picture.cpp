#include "wavelet_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "gnuplot.h"
#include "number_text.h"
#include "series.h"

namespace tool {
namespace {

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kSeries = R"(
set lmargin at screen 0.13
set rmargin at screen 0.90
set label 1 title at screen 0.03, screen titleHeight left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen 0.03, screen subtitleHeight left noenhanced textcolor rgb grey font ',9'
set label 3 yTitle at screen 0.022, graph 0.5 center rotate noenhanced textcolor rgb ink
set xrange [0.5:last + 0.5]
set yrange [bottom:top]
set multiplot
set tmargin at screen seriesTop
set bmargin at screen seriesBottom
set format x ''
plot $series using 1:2 with lines lc rgb blue lw 1
unset label 1
unset label 2
set label 3 'coefficients by level'
set tmargin at screen levelsTop
set bmargin at screen levelsBottom
set format x '%.10g'
set xlabel 'value' textcolor rgb ink offset 0, 0.3
set border 1
set yrange [0.4:levels + 0.6]
set style fill solid noborder
)";

constexpr const char* kLevels = R"(
plot $zero using 1:2:3:4 with vectors nohead lc rgb '#cccccc' lw 0.6, \
  $marks using 1:2:3:4:5:6 with boxxyerror lc rgb blue, \
  $smooth using 1:2:3:4:5:6 with boxxyerror lc rgb red
unset multiplot
)";

struct Extent {
  double low = 0, high = 0;
  void include(double v) {
    low = std::min(low, v);
    high = std::max(high, v);
  }
};

/// Bars up and down from the height of the level, those of one place merged.
std::string marksOf(const WaveletLevel& level, double height, int samples, int size, bool wraps) {
  double largest = 0;
  for (const double v : level.coefficients) largest = std::max(largest, std::abs(v));
  // Full bars of nothing but rounding would mislead.
  if (!(level.share > 1e-20)) return "";
  const double step = std::ldexp(1, level.level);
  const double width = std::max(step, samples / static_cast<double>(kMostPlaces));
  std::vector<Extent> bars(static_cast<std::size_t>(samples / width) + 1);
  std::vector<double> places(bars.size(), -1);
  for (std::size_t i = 0; i < level.coefficients.size(); ++i) {
    double place = level.centre + step * static_cast<double>(i);
    if (wraps && place < -0.5) place += size * std::ceil((-0.5 - place) / size);
    if (place < -0.5 || place > samples - 0.5) continue;
    const auto bar = static_cast<std::size_t>(std::max(place, 0.0) / width);
    bars[bar].include(level.coefficients[i]);
    places[bar] = place;
  }
  std::string block;
  for (std::size_t k = 0; k < bars.size(); ++k) {
    if (places[k] < -0.5) continue;
    const double half = 0.4 * width;
    const auto at = [&](double v) { return shortest(height + 0.46 * v / largest); };
    block += shortest(places[k] + 1) + ' ' + shortest(height) + ' ' +
             shortest(std::max(places[k] + 1 - half, 0.5)) + ' ' +
             shortest(std::min(places[k] + 1 + half, samples + 0.5)) + ' ' + at(bars[k].low) + ' ' +
             at(bars[k].high) + '\n';
  }
  return block;
}

}  // namespace

void drawWavelet(const std::string& fileName, const std::string& title, const std::string& yTitle,
                 const std::string& subtitle, std::span<const double> series,
                 const WaveletLevels& transform, bool wraps) {
  std::string marks = "$marks << EOD\n", smooth = "$smooth << EOD\n", zero = "$zero << EOD\n";
  std::string names = "set ytics scale 0 (";
  std::string shares;
  const std::size_t count = transform.levels.size();
  const int size = transform.samples + transform.zeros;
  for (std::size_t k = 0; k < count; ++k) {
    const WaveletLevel& level = transform.levels[k];
    const std::string height = std::to_string(count - k);
    (level.isApproximation ? smooth : marks) +=
        marksOf(level, static_cast<double>(count - k), transform.samples, size, wraps);
    zero += "0.5 " + height + ' ' + std::to_string(transform.samples) + " 0\n";
    names += (k == 0 ? "'" : ", '") + level.name + "' " + height;
    if (std::isfinite(level.share)) {
      shares += "set label '" + fixedPoint(100 * level.share, 1) + " %' at graph 1.01, first " +
                height + " left textcolor rgb grey font ',9'\n";
    }
  }
  // A level without marks must not leave its block empty.
  for (std::string* block : {&marks, &smooth}) *block += "-9 -9 -9 -9 -9 -9\nEOD\n";
  const auto [least, most] = std::minmax_element(series.begin(), series.end());
  double room = 0.04 * (*most - *least);
  if (room == 0) room = *least == 0 ? 1 : std::abs(*least) / 10;
  constexpr double kHead = 0.70, kSeriesHeight = 1.6, kGap = 0.2, kFoot = 0.6;  // inches
  const double levelsHeight = 0.42 * static_cast<double>(count) + 0.2;
  const double height = kHead + kSeriesHeight + kGap + levelsHeight + kFoot;
  const auto fromTop = [&](double inches) { return shortest(1 - inches / height); };
  const std::string script = curveBlock("$series", series, 1, 1) + marks + smooth + zero + "EOD\n" +
                             gnuplotVariable("title", gnuplotText(title, 95)) +
                             gnuplotVariable("subtitle", gnuplotText(subtitle, 110)) +
                             gnuplotVariable("yTitle", gnuplotText(yTitle, 24)) +
                             gnuplotVariable("last", std::to_string(transform.samples)) +
                             gnuplotVariable("bottom", shortest(*least - room)) +
                             gnuplotVariable("top", shortest(*most + room)) +
                             gnuplotVariable("levels", std::to_string(count)) +
                             gnuplotVariable("titleHeight", fromTop(0.23)) +
                             gnuplotVariable("subtitleHeight", fromTop(0.48)) +
                             gnuplotVariable("seriesTop", fromTop(kHead)) +
                             gnuplotVariable("seriesBottom", fromTop(kHead + kSeriesHeight)) +
                             gnuplotVariable("levelsTop", fromTop(kHead + kSeriesHeight + kGap)) +
                             gnuplotVariable("levelsBottom", shortest(kFoot / height)) + kSeries +
                             names + ")\n" + shares + kLevels;
  drawPicture(fileName, {8, height}, script);
}

}  // namespace tool
