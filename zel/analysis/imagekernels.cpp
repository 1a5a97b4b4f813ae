#include "zel/analysis/imagekernels.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "zel/analysis/memory_impl.h"
#include "zel/kernels/weighted_windows.h"

namespace zel {

namespace {

int faultOf(const TDouble2DArray& kernel) {
  const std::size_t n = kernel.Length(0);
  if (n < 2) return -3;
  if (n % 2 == 0) return -2;
  return kernel.Length(1) == n ? 0 : -1;
}

/// Counts inner cells and reports every step-th of them.
class Progress {
 public:
  Progress(std::size_t rows, std::size_t columns, std::size_t n, const TOnPercentDoneEvent& event)
      : FEvent(event), FStep(std::max<std::int64_t>(1, less(rows, n) * less(columns, n) / 100)) {}
  void add(std::size_t cells) {
    const std::int64_t before = FDone / FStep;
    FDone += static_cast<std::int64_t>(cells);
    if (!FEvent) return;
    for (std::int64_t k = before + 1; k <= FDone / FStep; ++k) {
      FEvent(nullptr, static_cast<int>(k));
    }
  }

 private:
  static std::int64_t less(std::size_t a, std::size_t b) {
    return static_cast<std::int64_t>(a) - static_cast<std::int64_t>(b);
  }

  const TOnPercentDoneEvent& FEvent;
  std::int64_t FStep;
  std::int64_t FDone = 0;
};

/// @param result  of the shape of the data; not the data
void convolve(const TDouble2DArray& kernel, const TDouble2DArray& data, TDouble2DArray& result,
              const TOnPercentDoneEvent& feedback) {
  const std::size_t n = kernel.Length(0);
  const std::size_t half = n / 2;
  const std::size_t rows = data.Length(0);
  const std::size_t columns = data.Length(1);
  if (result.empty()) return;
  kernels::ClampedWindows windows({kernel.data(), n, n, half}, columns);
  std::vector<const double*> around(n);
  const auto about = [&](std::size_t row) {
    for (std::size_t i = 0; i < n; ++i) {
      around[i] = data[std::min(std::max(row + i, half) - half, rows - 1)].data();
    }
    return around.data();
  };
  Progress progress(rows, columns, n, feedback);
  const auto isInner = [&](std::size_t row) { return row >= half && row + half < rows; };
  const std::size_t innerColumns = windows.innerEnd() - windows.innerBegin();
  for (std::size_t row = half; isInner(row) && innerColumns > 0; ++row) {
    windows.inner(about(row), result[row].data());
    progress.add(innerColumns);
  }
  for (std::size_t row = 0; row < rows; ++row) {
    windows.edges(about(row), result[row].data());
    if (!isInner(row)) windows.inner(around.data(), result[row].data());
  }
}

using Compass = std::array<double, 9>;

// The outer cells of a kernel clockwise.
constexpr std::array<std::size_t, 8> kAround{0, 1, 2, 5, 8, 7, 6, 3};

int applyTurned(const Compass& kernel, int direction, const TDouble2DArray& data,
                TDouble2DArray& result, const TOnPercentDoneEvent& feedback) {
  if (direction < 0 || direction > 7) return -1;
  return detail::GuardFit("KernelConvolve", [&] {
    TDouble2DArray turned{{0, 0, 0}, {0, kernel[4], 0}, {0, 0, 0}};
    for (std::size_t k = 0; k < 8; ++k) {
      turned.data()[kAround[(k + static_cast<std::size_t>(direction)) % 8]] = kernel[kAround[k]];
    }
    return KernelConvolve(turned, data, result, feedback);
  });
}

}  // namespace

int KernelConvolve(const TDouble2DArray& Kernel, const TDouble2DArray& Data, TDouble2DArray& Result,
                   const TOnPercentDoneEvent& Feedback) {
  if (const int fault = faultOf(Kernel); fault != 0) return fault;
  detail::GuardFit("KernelConvolve", [&] {
    // Nothing but the handler may fail once the first cell is written, so without one a result of
    // the right shape takes the cells itself.
    const bool fits = Result.Length(0) == Data.Length(0) && Result.Length(1) == Data.Length(1);
    if (fits && !Feedback && &Result != &Data && &Result != &Kernel) {
      return convolve(Kernel, Data, Result, Feedback);
    }
    TDouble2DArray fresh;
    fresh.SetLength(Data.Length(0), Data.Length(1));
    convolve(Kernel, Data, fresh, Feedback);
    Result = std::move(fresh);
  });
  return 0;
}

int ApplyCompassKernel(int Direction, const TDouble2DArray& Data, TDouble2DArray& Result,
                       const TOnPercentDoneEvent& Feedback) {
  return applyTurned({-1, -1, -1, 1, -2, 1, 1, 1, 1}, Direction, Data, Result, Feedback);
}

int ApplyKirschKernel(int Direction, const TDouble2DArray& Data, TDouble2DArray& Result,
                      const TOnPercentDoneEvent& Feedback) {
  return applyTurned({-3, -3, -3, -3, 0, -3, 5, 5, 5}, Direction, Data, Result, Feedback);
}

}  // namespace zel
