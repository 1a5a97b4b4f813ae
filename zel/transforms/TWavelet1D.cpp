#include "zel/transforms/TWavelet1D.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "zel/base/guard_impl.h"
#include "zel/kernels/wavelet.h"
#include "zel/transforms/length_impl.h"

namespace zel {
namespace {

constexpr int kLargestOrder = 3;

// Daubechies, Ten Lectures on Wavelets (1992), table 6.1.
constexpr std::array<std::array<Extended, std::size_t{2} * kLargestOrder>, kLargestOrder> kLowPass{
    {{0.7071067811865476L, 0.7071067811865476L},
     {0.48296291314453416L, 0.8365163037378079L, 0.2241438680420134L, -0.12940952255126037L},
     {0.33267055295008263L, 0.8068915093110925L, 0.45987750211849154L, -0.13501102001025458L,
      -0.08544127388202666L, 0.03522629188570953L}}};

kernels::BlockStart startOf(TWLSigExtMode mode) {
  switch (mode) {
    case wseZeroPad:
      return kernels::BlockStart::isZero;
    case wseSymmetric:
      return kernels::BlockStart::isMirrored;
    default:
      return kernels::BlockStart::wraps;
  }
}

}  // namespace

TWavelet1D::TWavelet1D(TComponent* AOwner) : TComponent(AOwner) {
  SetNumData(256);
  SetOrder(2);
}

TWavelet1D::~TWavelet1D() = default;

std::string_view TWavelet1D::ClassName() const { return "TWavelet1D"; }

TWavelet1D::TExtendedArray TWavelet1D::Zeros(int n) const {
  return detail::GuardMemory([&] { return TExtendedArray(static_cast<std::size_t>(n)); },
                             [&] { return EZELWaveletError(ComponentMessage(detail::kNoMemory)); });
}

void TWavelet1D::SetNumData(int n) {
  if (!isTransformLength(n)) Raise<EZELWaveletError>(transformLengthMessage);
  FData = Zeros(n);
  FNumData = n;
}

void TWavelet1D::SetOrder(int Order) {
  if (Order < 1 || Order > kLargestOrder) {
    Raise<EZELWaveletError>("\": invalid order of Daubechies wavelet family");
  }
  const int taps = 2 * Order;
  TExtendedArray lowPass = Zeros(taps);
  TExtendedArray highPass = Zeros(taps);
  std::copy_n(kLowPass[static_cast<std::size_t>(Order - 1)].begin(), taps, lowPass.begin());
  std::reverse_copy(lowPass.begin(), lowPass.end(), highPass.begin());
  for (std::size_t k = 1; k < highPass.size(); k += 2) highPass[k] = -highPass[k];
  FCoeffsLP = std::move(lowPass);
  FCoeffsHP = std::move(highPass);
  FOrder = Order;
}

void TWavelet1D::Clear() { std::fill(FData.begin(), FData.end(), Extended{0}); }

double TWavelet1D::GetDataVal(int ix) const {
  if (ix < 1 || ix > FNumData) return 0;
  return static_cast<double>(FData[static_cast<std::size_t>(ix - 1)]);
}

void TWavelet1D::SetDataVal(int ix, double v) {
  if (ix >= 1 && ix <= FNumData) FData[static_cast<std::size_t>(ix - 1)] = v;
}

void TWavelet1D::PartialWLT(int Len, int Offset, bool inverse, std::span<Extended> Scratch) {
  const auto block =
      std::span(FData).subspan(static_cast<std::size_t>(Offset), static_cast<std::size_t>(Len));
  const auto step = inverse ? kernels::waveletInverse : kernels::waveletForward;
  step(block, LowPass(), startOf(FWLSigExtMode), Scratch);
}

void TWavelet1D::DoWLT(int Level, bool inverse) {
  TExtendedArray scratch = Zeros(FNumData / 2);
  int levels = std::max(Level, 1);
  if (inverse) {
    for (int length = 2; length <= FNumData && levels > 0; length *= 2, --levels) {
      PartialWLT(length, 0, true, std::span(scratch));
    }
  } else {
    for (int length = FNumData; length >= 2 && levels > 0; length /= 2, --levels) {
      PartialWLT(length, 0, false, std::span(scratch));
    }
  }
}

void TWavelet1D::Transform(int Level) { DoWLT(Level, false); }

void TWavelet1D::InverseTransform(int Level) { DoWLT(Level, true); }

void TWavelet1D::SingleStep(bool inverse) {
  TExtendedArray scratch = Zeros(FNumData / 2);
  PartialWLT(FNumData, 0, inverse, std::span(scratch));
}

}  // namespace zel
