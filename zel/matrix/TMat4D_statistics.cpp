// TMat4D: search, statistics, fingerprint.
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "zel/base/progress.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/mat4d_impl.h"

namespace zel {

using detail::TGridBlock;
using detail::TGridIndex;

namespace {

/// The progress steps of a block, spread over its cells.
class TPixelSteps {
 public:
  explicit TPixelSteps(const TGridBlock<4>& block) : FCells(block.Count()) {
    const std::size_t pixels = block.Size(0) * block.Size(1);
    FSteps = pixels / (pixels / 100 + 1);
  }
  void operator()(std::size_t cells) {
    FDone += cells;
    const double share = static_cast<double>(FDone) / static_cast<double>(FCells);
    const auto due =
        FDone == FCells ? FSteps : static_cast<std::size_t>(share * static_cast<double>(FSteps));
    for (; FMade < due; ++FMade) ProgressStep();
  }

 private:
  std::size_t FCells;
  std::size_t FSteps;
  std::size_t FDone = 0;
  std::size_t FMade = 0;
};

}  // namespace

void TMat4D::Find(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                  int LowTimeSlot, int HighTimeSlot, double Value, int& ColIx, int& RowIx,
                  int& LayerIx, int& TimeSlotIx) const {
  const auto found = detail::NearestIn(
      View(),
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      Value);
  ColIx = found[0];
  RowIx = found[1];
  LayerIx = found[2];
  TimeSlotIx = found[3];
}

void TMat4D::MinMax(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                    int LowTimeSlot, int HighTimeSlot, double& Minimum, double& Maximum) const {
  const auto block =
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot);
  const auto range = detail::ExtremesIn(View(), block, TPixelSteps(block));
  Minimum = range.minimum;
  Maximum = range.maximum;
}

void TMat4D::MeanVar(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                     int LowTimeSlot, int HighTimeSlot, double& Mean, double& Variance) const {
  const auto block =
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot);
  const auto m = Guarded([&] {
    return detail::WithCells(View(), block,
                             [](std::span<const double> x) { return kernels::meanVariance(x); });
  });
  TPixelSteps{block}(block.Count());
  Mean = m.mean;
  Variance = m.variance;
}

/// @param reduce  the accurate sum over some cells
template <class Reduce>
double TMat4D::SumBy(const TGridBlock<4>& block, Reduce&& reduce) const {
  TPixelSteps steps(block);
  kernels::DoubleDouble sum{0, 0};
  detail::ForEachRun(View(), block, [&](const TGridIndex<4>&, std::span<const double> cells) {
    sum = sum + reduce(cells);
    steps(cells.size());
  });
  if (kernels::isFinite(sum)) return sum.hi;
  // An infinite part may be one of a finite whole.
  return Guarded([&] {
    return detail::WithCells(View(), block,
                             [&](std::span<const double> x) { return reduce(x).hi; });
  });
}

double TMat4D::Sum(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                   int LowTimeSlot, int HighTimeSlot) const {
  return SumBy(
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      [](std::span<const double> x) { return kernels::sum(x); });
}

double TMat4D::SquaredSum(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                          int HighLayer, int LowTimeSlot, int HighTimeSlot) const {
  return SumBy(
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      [](std::span<const double> x) { return kernels::sumOfSquares(x); });
}

int TMat4D::CountValues(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                        int HighLayer, int LowTimeSlot, int HighTimeSlot, double RangeLow,
                        double RangeHigh) const {
  std::size_t count = 0;
  detail::ForEachRun(
      View(),
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      [&](const TGridIndex<4>&, std::span<const double> cells) {
        for (const double x : cells) count += RangeLow <= x && x <= RangeHigh;
      });
  return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

double TMat4D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot) const {
  const auto block =
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot);
  constexpr std::ptrdiff_t kFrequent = 7;
  std::array<double, 15> samples{};
  for (double& x : samples) x = detail::DrawnFrom(View(), block);
  double candidate = *std::min_element(samples.begin(), samples.end());
  for (const double x : samples) {
    if (std::count(samples.begin(), samples.end(), x) < kFrequent) continue;
    candidate = x;
    break;
  }
  std::size_t equal = 0;
  detail::ForEachRun(View(), block, [&](const TGridIndex<4>&, std::span<const double> cells) {
    equal += static_cast<std::size_t>(std::count(cells.begin(), cells.end(), candidate));
  });
  const std::size_t rank = kernels::percentileRank(block.Count(), std::isnan(prob) ? 0 : prob);
  if (rank < equal) return candidate;
  return Guarded([&] {
    return detail::WithCells(
        View(), block, [&](std::span<const double> x) { return detail::RankedValue(x, prob); });
  });
}

double TMat4D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                          int SampleSize) const {
  const auto block =
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot);
  if (!detail::IsSampled(block, SampleSize)) {
    return Percentile(prob, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot,
                      HighTimeSlot);
  }
  return Guarded([&] { return detail::SampledPercentile(View(), block, prob, SampleSize); });
}

std::string TMat4D::CRCofData(int Sample) const {
  const auto every = static_cast<std::size_t>(std::clamp(Sample, 1, FNumZ));
  const std::size_t layers = static_cast<std::size_t>(FNumZ) / every;
  const auto columns = static_cast<std::size_t>(FNumX);
  const auto rows = static_cast<std::size_t>(FNumY);
  const auto slots = static_cast<std::size_t>(FNumT);
  const std::size_t pixel = layers * slots;
  // The storage runs the other way. Neighbouring columns are gathered together, since they share
  // cache lines, as long as that needs little memory.
  constexpr std::size_t kMost = std::size_t{1} << 20;
  constexpr std::size_t kTogether = 8;
  const bool fits = rows <= kMost / kTogether && pixel <= kMost / kTogether / rows;
  const std::size_t width = fits ? kTogether : 1;
  const std::size_t height = fits ? rows : std::max<std::size_t>(1, kMost / pixel);
  const std::size_t piece = std::max<std::size_t>(1, (kMost / 16) / pixel);

  std::vector<double> cells;
  Guarded([&] { cells.resize(width * std::min(height, rows) * pixel); });
  std::array<std::uint32_t, 8> registers;
  registers.fill(kernels::kCrc32Start);
  TPercent percent(*this, SliceSize());
  for (std::size_t x = 0; x < columns; x += width) {
    const std::size_t nx = std::min(width, columns - x);
    for (std::size_t y = 0; y < rows; y += height) {
      const std::size_t ny = std::min(height, rows - y);
      for (std::size_t t = 0; t < slots; ++t) {
        for (std::size_t k = 0; k < layers; ++k) {
          const std::size_t z = (k + 1) * every - 1;
          for (std::size_t j = 0; j < ny; ++j) {
            const double* const row = &Mat(t, z, y + j, x);
            const std::size_t place = j * pixel + k * slots + t;
            for (std::size_t i = 0; i < nx; ++i) cells[i * ny * pixel + place] = row[i];
          }
        }
      }
      for (std::size_t i = 0; i < nx * ny; i += piece) {
        const std::size_t pixels = std::min(piece, nx * ny - i);
        kernels::fingerprint(std::span<const double>(cells.data() + i * pixel, pixels * pixel),
                             registers);
        for (std::size_t k = 0; k < pixels; ++k) percent.Step();
      }
    }
  }
  return kernels::fingerprintText(std::span<const std::uint32_t>(registers));
}

}  // namespace zel
