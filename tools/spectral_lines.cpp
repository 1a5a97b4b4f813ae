#include "spectral_lines.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "failure.h"
#include "zel/vector/Zel_vector.h"

namespace tool {
namespace {

constexpr std::size_t kMostPoints = std::size_t{1} << 23;
constexpr std::size_t kPadding = 4;
/// Peaks below this part of the largest are rounding.
constexpr double kNoise = 1e-12;

SpectralLine lineOf(const zel::TFastFourier& transform, int line, double sampleTime,
                    double magnitude) {
  SpectralLine found;
  found.line = line;
  found.frequency = transform.FreqOfLine(line, sampleTime);
  found.period = 1 / found.frequency;
  found.magnitude = magnitude;
  // C cos a + S sin a = A cos(a + phase)
  found.phase =
      std::atan2(-transform.GetFSerSin(line), transform.GetFSerCos(line)) * 180 / std::numbers::pi;
  return found;
}

}  // namespace

Spectrum spectrumOf(std::span<const double> series, const std::string& what, double sampleTime,
                    zel::TFastFourierWgtWin window, int most) {
  if (series.size() < 4) throw Failure(what + ": a spectrum takes at least four values");
  if (series.size() > kMostPoints) {
    throw Failure(what + ": it has " + std::to_string(series.size()) +
                  " values, and a spectrum takes at most " + std::to_string(kMostPoints));
  }
  Spectrum result;
  result.samples = static_cast<int>(series.size());
  result.points = static_cast<int>(std::min(std::bit_ceil(kPadding * series.size()), kMostPoints));
  double variance = 0;
  zel::TVector(series).MeanVar(0, 0, result.mean, variance);

  zel::TFastFourier transform;
  transform.SetNumData(result.points);
  transform.SetWgtWin(zel::fwUserDef);
  double weights = 0;
  for (int i = 1; i <= result.samples; ++i) {
    // In the middle of its part of the window, so that the ends are alike.
    const double weight = zel::TFastFourier::WeightAt(window, (i - 0.5) / result.samples - 0.5);
    weights += weight;
    transform.SetWgtVal(i, weight);
    transform.SetRealVal(i, series[static_cast<std::size_t>(i - 1)] - result.mean);
  }
  transform.Transform();

  result.step = transform.FreqOfLine(1, sampleTime);
  const int lines = result.points / 2;
  for (int line = 0; line <= lines; ++line) {
    // What the highest line holds is a single cosine, not a pair of them.
    const double pair = line == lines ? 2 : 1;
    result.magnitudes.push_back(transform.GetMagnitude(line) * result.points / (weights * pair));
  }
  const std::vector<double>& m = result.magnitudes;
  const double largest = *std::max_element(m.begin() + 1, m.end());
  if (!std::isfinite(largest) || !std::isfinite(result.step) || !(result.step > 0)) {
    throw Failure(what + ": its spectrum exceeds the range of numbers");
  }
  for (int line = 1; line <= lines; ++line) {
    const auto k = static_cast<std::size_t>(line);
    const bool isPeak = m[k] > m[k - 1] && (line == lines || m[k] >= m[k + 1]);
    if (isPeak && m[k] > kNoise * largest && m[k] > kNoise * kNoise) {
      result.peaks.push_back(lineOf(transform, line, sampleTime, m[k]));
    }
  }
  std::stable_sort(
      result.peaks.begin(), result.peaks.end(),
      [](const SpectralLine& a, const SpectralLine& b) { return a.magnitude > b.magnitude; });
  if (result.peaks.size() > static_cast<std::size_t>(most)) {
    result.peaks.resize(static_cast<std::size_t>(most));
  }
  return result;
}

}  // namespace tool
