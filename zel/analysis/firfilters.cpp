#include "zel/analysis/firfilters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <utility>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/analysis/signal_range_impl.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/weighted_windows.h"
#include "zel/kernels/windows.h"

namespace zel {

namespace {

using detail::Numbers;

/// sin(2 pi x), exactly 0 at multiples of one half.
double sineOfTurns(double x) {
  double turns = std::remainder(x, 1.0);
  if (std::abs(turns) > 0.25) turns = std::copysign(0.5, turns) - turns;
  return std::sin(2 * std::numbers::pi * turns);
}

/// Weight of tap i = 1..n, the same from both ends.
double windowWeight(int winType, std::size_t i, std::size_t n) {
  const double t = static_cast<double>(std::min(i, n + 1 - i)) / static_cast<double>(n + 1);
  if (winType == 1) return kernels::cosineSum({0.54, -0.46, 0, 0}, t);
  if (winType == 2) return kernels::cosineSum({0.42, -0.5, 0.08, 0}, t);
  return 1;
}

/// Index of the centre.
std::size_t centreOf(const Numbers& taps) { return taps.size() / 2; }

Numbers lowPass(std::size_t n, double fc, int winType) {
  fc = std::clamp(fc, 0.0, 0.5);
  Numbers taps(n);
  const auto centre = static_cast<double>(centreOf(taps));
  for (std::size_t i = 0; i < n; ++i) {
    const double lag = static_cast<double>(i) - centre;
    const double sinc = lag == 0 ? 2 * std::numbers::pi * fc : sineOfTurns(fc * lag) / lag;
    taps[i] = sinc * windowWeight(winType, i + 1, n);
  }
  const double sum = kernels::sum(taps).hi;
  if (sum != 0) {
    for (double& tap : taps) tap /= sum;
  }
  return taps;
}

/// The unit impulse less the kernel: what the kernel keeps out.
Numbers complement(Numbers taps) {
  for (double& tap : taps) tap = -tap;
  if (!taps.empty()) taps[centreOf(taps)] += 1;
  return taps;
}

Numbers bandStop(std::size_t n, double fc1, double fc2, int winType) {
  if (fc1 > fc2) std::swap(fc1, fc2);
  Numbers taps = lowPass(n, fc1, winType);
  const Numbers high = complement(lowPass(n, fc2, winType));
  for (std::size_t i = 0; i < n; ++i) taps[i] += high[i];
  return taps;
}

template <class Design>
void make(const char* routine, int length, TVector* kernel, Design&& design) {
  if (!kernel || length < 1) return;
  detail::TResults results;
  detail::GuardFit(routine, [&] { results.Add(kernel, design(static_cast<std::size_t>(length))); });
  results.Commit();
}

template <class Design>
void make(const char* routine, int length, TDoubleArray& kernel, Design&& design) {
  kernel = detail::GuardFit(routine,
                            [&] { return design(static_cast<std::size_t>(std::max(length, 0))); });
}

template <class Kernel>
void makeLowPass(int length, double fc, int winType, Kernel&& kernel) {
  make("CalcSincLPKernel", length, kernel, [=](std::size_t n) { return lowPass(n, fc, winType); });
}

template <class Kernel>
void makeHighPass(int length, double fc, int winType, Kernel&& kernel) {
  make("CalcSincHPKernel", length, kernel,
       [=](std::size_t n) { return complement(lowPass(n, fc, winType)); });
}

template <class Kernel>
void makeBandStop(int length, double fc1, double fc2, int winType, Kernel&& kernel) {
  make("CalcSincBSKernel", length, kernel,
       [=](std::size_t n) { return bandStop(n, fc1, fc2, winType); });
}

template <class Kernel>
void makeBandPass(int length, double fc1, double fc2, int winType, Kernel&& kernel) {
  make("CalcSincBPKernel", length, kernel,
       [=](std::size_t n) { return complement(bandStop(n, fc1, fc2, winType)); });
}

}  // namespace

void MovingKernelFilter(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                        const TVector* FilterKernel) {
  if (!SourceVec || !DestVec || !FilterKernel) {
    throw EZELMath2Error("MovingKernelfilter: SourceVec, DestVec and/or FilterKernel is undefined");
  }
  const std::span<const double> range = detail::SignalRange(*SourceVec, LowElem, HighElem);
  if (range.size() - 1 < FilterKernel->size()) {
    throw EZELMath2Error(
        "MovingKernelfilter: specified range for smoothing is smaller than the length of the "
        "kernel");
  }
  Numbers results;
  detail::GuardFit("MovingKernelfilter", [&] {
    results.resize(range.size());
    const double* const row = range.data();
    const std::size_t length = FilterKernel->size();
    kernels::ClampedWindows windows({FilterKernel->data(), 1, length, length / 2}, range.size());
    windows.inner(&row, results.data());
    windows.edges(&row, results.data());
    DestVec->Resize(SourceVec->NrOfElem());
  });
  // A handler of the resize may have made the vector shorter again.
  const std::span<double> out = detail::TResults::ElementsOf(*DestVec);
  std::copy_n(results.begin(), std::min(results.size(), out.size()), out.begin());
  detail::TResults::Filled(*DestVec);
}

void CalcSincLPKernel(int KernelLeng, double Fc, int WinType, TVector* Kernel) {
  makeLowPass(KernelLeng, Fc, WinType, Kernel);
}
void CalcSincLPKernel(int KernelLeng, double Fc, int WinType, TDoubleArray& Kernel) {
  makeLowPass(KernelLeng, Fc, WinType, Kernel);
}
void CalcSincHPKernel(int KernelLeng, double Fc, int WinType, TVector* Kernel) {
  makeHighPass(KernelLeng, Fc, WinType, Kernel);
}
void CalcSincHPKernel(int KernelLeng, double Fc, int WinType, TDoubleArray& Kernel) {
  makeHighPass(KernelLeng, Fc, WinType, Kernel);
}
void CalcSincBSKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TVector* Kernel) {
  makeBandStop(KernelLeng, Fc1, Fc2, WinType, Kernel);
}
void CalcSincBSKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TDoubleArray& Kernel) {
  makeBandStop(KernelLeng, Fc1, Fc2, WinType, Kernel);
}
void CalcSincBPKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TVector* Kernel) {
  makeBandPass(KernelLeng, Fc1, Fc2, WinType, Kernel);
}
void CalcSincBPKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TDoubleArray& Kernel) {
  makeBandPass(KernelLeng, Fc1, Fc2, WinType, Kernel);
}

}  // namespace zel
