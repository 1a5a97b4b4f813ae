#include "zel/analysis/smoothing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/analysis/signal_range_impl.h"
#include "zel/kernels/moving_median.h"
#include "zel/kernels/weighted_windows.h"
#include "zel/kernels/window_means.h"

namespace zel {

namespace {

using Signal = std::span<const double>;

/// What a routine calls itself, its purpose and its window, and the lengths that it takes.
struct Smoother {
  std::string_view name;
  std::string_view purpose;
  std::string_view window;
  std::string_view windows;
  int shortest;
  int longest;
};

constexpr int kNoLimit = std::numeric_limits<int>::max();

constexpr Smoother averaging(std::string_view name) {
  return {name, "smoothing", "smoothing window", "smoothing windows", 3, kNoLimit};
}

constexpr Smoother polynomial(std::string_view name, std::string_view purpose) {
  return {name, purpose, "polynomial", "polynomial", 5, 25};
}

[[noreturn]] void raise(const Smoother& smoother, std::initializer_list<std::string_view> parts) {
  std::string message(smoother.name);
  message += ": ";
  for (const std::string_view part : parts) message += part;
  throw EZELMath2Error(message);
}

/// Checks the arguments and gives the results of the whole windows, which compute(range, out)
/// makes, their places.
template <class Compute>
void smooth(const Smoother& smoother, const TVector* source, int low, int high, TVector* dest,
            int winSize, Compute&& compute) {
  if (!source || !dest) raise(smoother, {"either SourceVec or DestVec is undefined"});
  Signal range = detail::SignalRange(*source, low, high);
  if (winSize > static_cast<int>(range.size()) - 1) {
    raise(smoother, {"specified range for ", smoother.purpose,
                     " is smaller than the length of the ", smoother.windows});
  }
  if (winSize < smoother.shortest || winSize > smoother.longest) {
    raise(smoother, {"length of ", smoother.window, " is out of range"});
  }
  if (winSize % 2 == 0) raise(smoother, {"length of ", smoother.window, " must be odd"});

  const std::span<double> out = detail::TResults::ElementsOf(*dest);
  const std::size_t half = static_cast<std::size_t>(winSize) / 2;
  const std::size_t whole = range.size() - 2 * half;
  detail::GuardFit(smoother.name, [&] {
    const bool isInPlace = source == dest;
    // Windows that the result has no room for are not computed.
    const std::size_t room = out.size() > half ? std::min(out.size() - half, whole) : 0;
    if (room == 0) return;
    range = range.first(room + 2 * half);
    if (!isInPlace) return compute(range, out.data() + half);
    detail::Numbers results(room);
    compute(range, results.data());
    std::ranges::copy(results, out.begin() + static_cast<std::ptrdiff_t>(half));
  });
  const double first = out.size() > half ? out[half] : 0;
  std::fill_n(out.begin(), std::min(half, out.size()), first);
  for (std::size_t i = half + whole; i < std::min(whole + 2 * half, out.size()); ++i) {
    out[i] = out[half + whole - 1];
  }
  detail::TResults::Filled(*dest);
}

/// Means over windows of width + width - 1 values if triangular, else of width values.
void smoothByMeans(std::string_view name, const TVector* source, int low, int high, TVector* dest,
                   int winSize, kernels::WindowShape shape) {
  smooth(averaging(name), source, low, high, dest, winSize, [&](Signal range, double* out) {
    const auto length = static_cast<std::size_t>(winSize);
    const bool isFlat = shape == kernels::WindowShape::flat;
    kernels::windowMeans(range, isFlat ? length : length / 2 + 1, shape, out);
  });
}

/// Savitzky-Golay: weights weight(k) at the distances k = 1..m of the centre.
template <class Weight>
void fitParabolas(const Smoother& smoother, const TVector* source, int low, int high, TVector* dest,
                  int winSize, kernels::SymmetricForm form, Weight&& weight, double factor,
                  double divisor) {
  smooth(smoother, source, low, high, dest, winSize, [&](Signal range, double* out) {
    std::array<double, 12> weights{};
    const auto half = static_cast<std::size_t>(winSize) / 2;
    for (std::size_t k = 1; k <= half; ++k) weights[k - 1] = weight(static_cast<double>(k));
    kernels::symmetricSums(range.data() + half,
                           {form, std::span(weights).first(half), factor, divisor}, out,
                           range.size() - 2 * half);
  });
}

}  // namespace

void MovingAverageSmooth(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                         int WinSize) {
  smoothByMeans("MovingAverageSmooth", SourceVec, LowElem, HighElem, DestVec, WinSize,
                kernels::WindowShape::flat);
}

void WeightedAverageSmooth(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                           int WinSize) {
  smoothByMeans("WeightedAverageSmooth", SourceVec, LowElem, HighElem, DestVec, WinSize,
                kernels::WindowShape::triangular);
}

void MovingMedianSmooth(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                        int WinSize) {
  smooth(averaging("MovingMedianSmooth"), SourceVec, LowElem, HighElem, DestVec, WinSize,
         [&](Signal range, double* out) {
           kernels::movingMedians(range, static_cast<std::size_t>(WinSize), out);
         });
}

void PolynomialSmooth(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                      int WinSize) {
  const double m = WinSize / 2;
  fitParabolas(
      polynomial("PolynomialSmooth", "smoothing"), SourceVec, LowElem, HighElem, DestVec, WinSize,
      kernels::SymmetricForm::smoothing,
      [=](double k) { return 3 * m * m + 3 * m - 1 - 5 * k * k; }, 1,
      (2 * m + 3) * (2 * m + 1) * (2 * m - 1) / 3);
}

void FirstDeriv(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                int WinSize) {
  const double m = WinSize / 2;
  fitParabolas(
      polynomial("FirstDeriv", "calculation"), SourceVec, LowElem, HighElem, DestVec, WinSize,
      kernels::SymmetricForm::slope, [](double k) { return k; }, 1, m * (m + 1) * (2 * m + 1) / 3);
}

void SecondDeriv(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                 int WinSize) {
  const double m = WinSize / 2;
  fitParabolas(
      polynomial("SecondDeriv", "smoothing"), SourceVec, LowElem, HighElem, DestVec, WinSize,
      kernels::SymmetricForm::curvature, [=](double k) { return 3 * k * k - m * (m + 1); }, 30,
      m * (m + 1) * (2 * m + 1) * (2 * m - 1) * (2 * m + 3));
}

}  // namespace zel
