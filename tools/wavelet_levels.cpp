#include "wavelet_levels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>

#include "failure.h"
#include "number_text.h"
#include "zel/vector/Zel_vector.h"

namespace tool {
namespace {

constexpr std::size_t kMostSamples = std::size_t{1} << 23;

/// Place of the centre of energy of a filter among its taps, from 0.
double centreOf(std::span<const zel::Extended> taps) {
  double centre = 0, sum = 0;
  for (std::size_t k = 0; k < taps.size(); ++k) {
    const auto square = static_cast<double>(taps[k] * taps[k]);
    centre += square * static_cast<double>(k);
    sum += square;
  }
  return centre / sum;
}

/// Where coefficient 0 of a level lies: coefficient u of one step is at 2 u + shift of the level
/// below.
double centreOfLevel(const zel::TWavelet1D& transform, const WaveletLevel& level) {
  const double reach = 2.0 * transform.Order() - 2;
  const double low = centreOf(transform.LowPass()) - reach;
  const double last = level.isApproximation ? low : centreOf(transform.HighPass()) - reach;
  const double step = std::ldexp(1, level.level - 1);
  return step * last + (step - 1) * low;
}

}  // namespace

WaveletLevels waveletLevels(std::span<const double> series, const std::string& what, int order,
                            int levels, zel::TWLSigExtMode mode) {
  if (series.size() < 2) throw Failure(what + ": a transform takes at least two values");
  if (series.size() > kMostSamples) {
    throw Failure(what + ": it has " + std::to_string(series.size()) +
                  " values, and a transform takes at most " + std::to_string(kMostSamples));
  }
  const std::size_t size = std::bit_ceil(series.size());
  const int mostLevels = std::countr_zero(size);
  if (levels > mostLevels) {
    throw Failure("--levels: " + std::to_string(series.size()) + " values have at most " +
                  counted(mostLevels, "level"));
  }
  if (levels == 0) levels = mostLevels;
  WaveletLevels result;
  result.samples = static_cast<int>(series.size());
  result.zeros = static_cast<int>(size) - result.samples;
  double variance = 0;
  zel::TVector(series).MeanVar(0, 0, result.mean, variance);
  zel::TWavelet1D transform;
  transform.SetOrder(order);
  transform.SetSigExtMode(mode);
  transform.SetNumData(static_cast<int>(size));
  for (int i = 0; i < result.samples; ++i) {
    transform.SetDataVal(i + 1, series[static_cast<std::size_t>(i)] - result.mean);
  }
  const auto squares = [](std::span<const zel::Extended> values) {
    zel::Extended sum = 0;
    for (const zel::Extended v : values) sum += v * v;
    return static_cast<double>(sum);
  };
  result.energy = squares(transform.Data());
  transform.Transform(levels);
  result.transformed = squares(transform.Data());
  if (!std::isfinite(result.energy) || !std::isfinite(result.transformed)) {
    throw Failure(what + ": the squares of its values exceed the range of numbers");
  }
  const auto add = [&](const char* letter, int level, std::size_t first) {
    const auto values = transform.Data().subspan(first, size >> level);
    WaveletLevel added;
    added.name = letter + std::to_string(level);
    added.level = level;
    added.isApproximation = first == 0;
    added.coefficients.assign(values.begin(), values.end());
    added.energy = squares(values);
    added.share = result.transformed > 0 ? added.energy / result.transformed
                                         : std::numeric_limits<double>::quiet_NaN();
    added.centre = centreOfLevel(transform, added);
    result.levels.push_back(std::move(added));
  };
  for (int level = 1; level <= levels; ++level) add("D", level, size >> level);
  add("A", levels, 0);
  return result;
}

}  // namespace tool
