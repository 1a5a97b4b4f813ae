#include "zel/transforms/TFastFourier.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "zel/base/Zel_univconst.h"
#include "zel/base/guard_impl.h"
#include "zel/base/rounding.h"
#include "zel/kernels/fourier.h"
#include "zel/kernels/windows.h"
#include "zel/transforms/length_impl.h"

namespace zel {

namespace {

/// The windows that are sums of cosines.
constexpr std::array<double, 4> cosinesOf(TFastFourierWgtWin window) {
  switch (window) {
    case fwHamming:
      return {0.543478261, 0.456521739};
    case fwBlackman:
      return {0.42659, 0.49656, 0.076848};
    case fwBlkmHarris:
      return {0.35875, 0.48829, 0.14128, 0.01168};
    case fwBlkmNuttall:
      return {0.3635819, 0.4891775, 0.1365995, 0.0106411};
    default:
      return {1};
  }
}

int bitsOf(int n) { return std::countr_zero(static_cast<unsigned>(n)); }

}  // namespace

TFastFourier::TFastFourier(TComponent* AOwner) : TComponent(AOwner) {
  SetNumData(256);
  std::fill(FUserWgt.begin(), FUserWgt.end(), 1.0);
}

TFastFourier::~TFastFourier() = default;

std::string_view TFastFourier::ClassName() const { return "TFastFourier"; }

void TFastFourier::SetNumData(int n) {
  if (!isTransformLength(n)) Raise<EZELFourierError>(transformLengthMessage);
  const auto size = static_cast<std::size_t>(n);
  Guarded([&] {
    TDoubleArray data(2 * size);
    TDoubleArray weights(size);
    FData = std::move(data);
    FUserWgt = std::move(weights);
  });
  FWork = {};
  FNumData = n;
  MaxValuesValid = false;
}

double TFastFourier::WeightAt(TFastFourierWgtWin w, double t) {
  if (!(std::abs(t) <= 0.5)) return 0;
  if (w == fwTriangle) return 1 - 2 * std::abs(t);
  if (w == fwGauss) return std::exp(-18 * t * t);
  if (w != fwCos2) return kernels::cosineSum(cosinesOf(w), t);
  const double cosine = std::cos(std::numbers::pi * t);
  return cosine * cosine;
}

template <class Work>
void TFastFourier::Guarded(Work work) {
  detail::GuardMemory(work, [&] { return EZELFourierError(ComponentMessage(detail::kNoMemory)); });
}

double TFastFourier::GetRealVal(int ix) const {
  return ix >= 1 && ix <= FNumData ? static_cast<double>(At(ix - 1).re) : 0;
}

double TFastFourier::GetImagVal(int ix) const {
  return ix >= 1 && ix <= FNumData ? static_cast<double>(At(ix - 1).im) : 0;
}

double TFastFourier::GetWgtVal(int ix) const {
  return ix >= 1 && ix <= FNumData ? FUserWgt[static_cast<std::size_t>(ix - 1)] : 0;
}

void TFastFourier::SetPart(std::size_t part, int ix, double v) {
  if (ix < 1 || ix > FNumData) return;
  const std::size_t at = 2 * static_cast<std::size_t>(ix - 1) + part;
  if (at < FData.size()) FData[at] = v;
  MaxValuesValid = false;
}

void TFastFourier::SetRealVal(int ix, double v) { SetPart(0, ix, v); }

void TFastFourier::SetImagVal(int ix, double v) { SetPart(1, ix, v); }

void TFastFourier::SetWgtVal(int ix, double v) {
  if (ix >= 1 && ix <= FNumData) FUserWgt[static_cast<std::size_t>(ix - 1)] = v;
}

void TFastFourier::ClearPart(std::size_t part) {
  for (std::size_t at = part; at < FData.size(); at += 2) FData[at] = 0;
  MaxValuesValid = false;
}

void TFastFourier::ClearReal() { ClearPart(0); }

void TFastFourier::ClearImag() { ClearPart(1); }

void TFastFourier::Clear() {
  ClearReal();
  ClearImag();
}

void TFastFourier::Prepare() {
  const int bits = bitsOf(FNumData);
  kernels::prepareFourier(bits);
  if (FWork.empty()) FWork = TDynArray<double, 1>(kernels::fourierWorkSize(bits));
  FData.resize(2 * static_cast<std::size_t>(FNumData));
}

void TFastFourier::ApplyWindow() {
  double* const data = FData.data();
  const int bits = bitsOf(FNumData);
  switch (FWgtWin) {
    case fwTriangle:
      return kernels::triangleWindow(data, bits);
    case fwCos2:
      return kernels::squaredCosineWindow(data, bits);
    case fwGauss:
      return kernels::gaussWindow(data, bits);
    case fwHamming:
    case fwBlackman:
    case fwBlkmHarris:
    case fwBlkmNuttall:
      return kernels::cosineSumWindow(data, bits, cosinesOf(FWgtWin));
    case fwUserDef:
      for (std::size_t i = 0; i < FUserWgt.size(); ++i) {
        data[2 * i] *= FUserWgt[i];
        data[2 * i + 1] *= FUserWgt[i];
      }
      return;
    default:
      return;
  }
}

void TFastFourier::DoFFT(int isign) {
  const auto run = isign > 0 ? kernels::fourier : kernels::inverseFourier;
  run(FData.data(), bitsOf(FNumData), FWork.data());
  MaxValuesValid = false;
}

void TFastFourier::Transform() {
  Guarded([&] {
    Prepare();
    ApplyWindow();
  });
  DoFFT(1);
}

void TFastFourier::InverseTransform() {
  Guarded([&] { Prepare(); });
  DoFFT(-1);
}

TFastFourier::TPoint TFastFourier::At(int k) const {
  const std::size_t at = 2 * static_cast<std::size_t>(k % FNumData);
  if (at + 1 >= FData.size()) return {0, 0};
  return {FData[at], FData[at + 1]};
}

Extended TFastFourier::PowerOf(int line) const {
  const auto square = [](const TPoint& x) { return x.re * x.re + x.im * x.im; };
  const Extended power = square(At(line));
  return line == 0 ? power : power + square(At(FNumData - line));
}

Extended TFastFourier::MagnitudeOf(int line) const {
  if (line == 0) return std::sqrt(PowerOf(0));
  const TPoint x = At(line);
  const TPoint mirror = At(FNumData - line);
  const Extended re = x.re + mirror.re;
  const Extended im = x.im - mirror.im;
  return std::sqrt(re * re + im * im);
}

double TFastFourier::GetPowerSpec(int ix) const {
  return IsLine(ix) ? static_cast<double>(PowerOf(ix) / FNumData) : 0;
}

double TFastFourier::GetMagnitude(int ix) const {
  return IsLine(ix) ? static_cast<double>(MagnitudeOf(ix) / FNumData) : 0;
}

double TFastFourier::GetPhase(int ix) const {
  if (!IsLine(ix) || ix == 0) return 0;
  const TPoint x = At(ix);
  constexpr double kRight = std::numbers::pi / 2;
  if (x.re == 0) return x.im > 0 ? kRight : -kRight;
  return static_cast<double>(std::atan(x.im / x.re));
}

double TFastFourier::GetFSerSin(int n) const {
  if (!IsLine(n) || n == 0) return 0;
  return static_cast<double>((At(n).im - At(FNumData - n).im) / FNumData);
}

double TFastFourier::GetFSerCos(int n) const {
  if (!IsLine(n)) return 0;
  const Extended re = n == 0 ? At(0).re : At(n).re + At(FNumData - n).re;
  return static_cast<double>(re / FNumData);
}

double TFastFourier::RMS(int FirstIx, int LastIx) const {
  const auto [first, last] =
      std::minmax({std::clamp(FirstIx, 0, FNumData / 2), std::clamp(LastIx, 0, FNumData / 2)});
  Extended sum = 0;
  for (int line = first; line <= last; ++line) sum += PowerOf(line);
  return static_cast<double>(std::sqrt(sum) / FNumData);
}

double TFastFourier::FreqOfLine(int ix, double SampleTime) const {
  return IsLine(ix) && ix > 0 ? ix / (SampleTime * FNumData) : 0;
}

int TFastFourier::LineOfFreq(double f, double SampleTime) const {
  const int line = RoundToInt<int>(FNumData * SampleTime * f);
  return IsLine(line) ? line : 0;
}

void TFastFourier::CalcMaxValues() const {
  FMaxReal = FMaxImag = -uc_MaxDouble;
  FMinReal = FMinImag = uc_MaxDouble;
  const auto include = [](double v, double& least, double& largest) {
    if (v > largest) largest = v;
    if (v < least) least = v;
  };
  for (int ix = 1; ix <= FNumData; ++ix) {
    include(GetRealVal(ix), FMinReal, FMaxReal);
    include(GetImagVal(ix), FMinImag, FMaxImag);
  }
  Extended power = 0;
  Extended magnitude = 0;
  for (int line = 1; line <= FNumData / 2; ++line) {
    if (const Extended p = PowerOf(line); line < FNumData / 2 && p > power) power = p;
    if (const Extended m = MagnitudeOf(line); m > magnitude) magnitude = m;
  }
  FMaxPower = static_cast<double>(power / FNumData);
  FMaxMagni = static_cast<double>(magnitude / FNumData);
  MaxValuesValid = true;
}

}  // namespace zel
