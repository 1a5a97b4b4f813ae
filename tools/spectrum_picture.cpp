#include "spectrum_picture.h"

#include <algorithm>
#include <cmath>

#include "gnuplot.h"
#include "number_text.h"
#include "series.h"

namespace tool {
namespace {

constexpr std::size_t kLabels = 5;

/// Uses the variables and the data that the caller puts before it.
constexpr const char* kScript = R"(
set grid lt 1 lc rgb '#e6e6e6' lw 0.6
set lmargin at screen 0.105
set rmargin at screen 0.97
set label 1 title at screen 0.03, screen 0.96 left noenhanced textcolor rgb ink font ',10.5'
set label 2 subtitle at screen 0.03, screen 0.922 left noenhanced textcolor rgb grey font ',9'
set label 3 yTitle at screen 0.022, graph 0.5 center rotate noenhanced textcolor rgb ink
set multiplot
set tmargin at screen 0.885
set bmargin at screen 0.655
set xrange [0:last]
set yrange [*:*]
set autoscale yfix
set offsets 0, 0, graph 0.05, graph 0.05
set xlabel 'time' textcolor rgb ink offset 0, 0.6
plot $series using 1:2 with lines lc rgb blue lw 1
unset label 1
unset label 2
unset offsets
set label 3 'magnitude'
set tmargin at screen 0.545
set bmargin at screen 0.105
set xrange [0:highest]
set yrange [0:top > 0 ? 1.14 * top : 1]
set xlabel 'frequency' offset 0, 0.3
plot $magnitudes using 1:2 with lines lc rgb blue lw 1.2, \
  $peaks using 1:2 with points pt 7 ps 0.5 lc rgb red, \
  $peaks using 1:2:3 with labels offset 0, 0.9 noenhanced textcolor rgb red font ',9'
unset multiplot
)";

}  // namespace

void drawSpectrum(const std::string& fileName, const std::string& title, const std::string& yTitle,
                  const std::string& subtitle, std::span<const double> series, double sampleTime,
                  const Spectrum& spectrum) {
  std::string peaks = "$peaks << EOD\n";
  for (std::size_t k = 0; k < std::min(kLabels, spectrum.peaks.size()); ++k) {
    const SpectralLine& line = spectrum.peaks[k];
    peaks += shortest(line.frequency) + ' ' + shortest(line.magnitude) + " \"" +
             significant(line.period, 4) + "\"\n";
  }
  // Without peaks the block must not be empty.
  peaks += "-9 -9 \"\"\nEOD\n";
  const auto lines = static_cast<double>(spectrum.magnitudes.size() - 1);
  const double largest =
      *std::max_element(spectrum.magnitudes.begin() + 1, spectrum.magnitudes.end());
  const std::string script =
      curveBlock("$series", series, 0, sampleTime) +
      curveBlock("$magnitudes", spectrum.magnitudes, 0, spectrum.step) + peaks +
      gnuplotVariable("title", gnuplotText(title, 95)) +
      gnuplotVariable("subtitle", gnuplotText(subtitle, 110)) +
      gnuplotVariable("yTitle", gnuplotText(yTitle, 20)) +
      gnuplotVariable("last", shortest(sampleTime * (spectrum.samples - 1))) +
      gnuplotVariable("highest", shortest(spectrum.step * lines)) +
      gnuplotVariable("top", shortest(largest)) + kScript;
  drawPicture(fileName, {8, 6}, script);
}

}  // namespace tool
