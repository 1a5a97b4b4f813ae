/// @file
/// Discrete wavelet transform of a signal.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"
#include "zel/base/types.h"

namespace zel {

/// Families of wavelets.
enum TWaveletFamily : std::uint8_t { wlfDaubechies };

/// The signal before its start: periodic, zero, or mirrored at the start.
enum TWLSigExtMode : std::uint8_t { wseWrap, wseZeroPad, wseSymmetric };

/// Holds a signal of n values, n a power of two, and replaces it by its discrete wavelet transform
/// with the orthonormal Daubechies filters of 1, 2 or 3 vanishing moments, or back. At first 256
/// zeros, order 2, periodic.
///
/// After L levels the first n / 2^L values are the approximations of the coarsest level, which the
/// details of that level follow (as many), then those of the next finer level (twice as many), up
/// to the finest in the second half. Approximation and detail i (from 0) of a level are the sums
/// over j = 1..2K of h_j and g_j times value 2i + j - 2K + 1 (from 0) of the level below, so the
/// filters reach beyond the start of the signal and never beyond its end. Values are kept in
/// extended precision.
///
/// Only with wseWrap are the transforms orthogonal, hence keep the sum of squares, and
/// InverseTransform undoes Transform; otherwise it is the transposed operation.
/// Method: Daubechies, Comm. Pure Appl. Math. 41 (1988) 909; Mallat, IEEE Trans. PAMI 11 (1989)
/// 674.
class ZEL_API TWavelet1D : public TComponent {
 public:
  /// @throws EZELWaveletError  `Component "": not enough memory on heap`
  explicit TWavelet1D(TComponent* AOwner = nullptr);
  ~TWavelet1D() override;
  [[nodiscard]] std::string_view ClassName() const override;

  // Settings.

  /// Number of values.
  [[nodiscard]] int Size() const { return FNumData; }
  /// Makes the signal n zeros.
  /// @param n  1, 2, 4, ..., 2^23
  /// @throws EZELWaveletError  `Component "N": data length must be power of 2` for any other n,
  ///   `Component "N": not enough memory on heap`; nothing changes then
  void SetNumData(int n);
  /// Vanishing moments of the wavelet; its filters have twice as many taps.
  [[nodiscard]] int Order() const { return FOrder; }
  /// @param Order  1 (Haar), 2 or 3
  /// @throws EZELWaveletError  `Component "N": invalid order of Daubechies wavelet family` for any
  ///   other; nothing changes then
  void SetOrder(int Order);
  [[nodiscard]] TWLSigExtMode SignalExtMode() const { return FWLSigExtMode; }
  void SetSigExtMode(TWLSigExtMode m) { FWLSigExtMode = m; }
  [[nodiscard]] TWaveletFamily WaveletFamily() const { return FWaveletFam; }
  void SetWaveletFam(TWaveletFamily f) { FWaveletFam = f; }
  /// The filters h_1..h_2K and g_1..g_2K, with g_(2K+1-j) = (-1)^j h_j. They are given to 16
  /// digits, so their sums of squares are 1 to within 1e-15.
  [[nodiscard]] std::span<const Extended> LowPass() const { return std::span(FCoeffsLP); }
  [[nodiscard]] std::span<const Extended> HighPass() const { return std::span(FCoeffsHP); }

  // Values.

  /// Sets all values to 0.
  void Clear();
  /// Value ix of 1..Size, rounded to double; 0 outside.
  [[nodiscard]] double GetDataVal(int ix) const;
  /// Nothing happens outside 1..Size.
  void SetDataVal(int ix, double v);
  /// All values, for reading; valid until the size changes.
  [[nodiscard]] std::span<const Extended> Data() const { return std::span(FData); }

  // Transforms. Each needs memory for half a signal for a while, and changes nothing if there is
  // none.

  /// Level steps from the signal on, each of them on the approximations of the one before; fewer if
  /// a single approximation is left earlier. O(n Order).
  /// @param Level  below 1 counts as 1
  /// @throws EZELWaveletError  `Component "N": not enough memory on heap`
  void Transform(int Level);
  /// Level steps back, the first from the coarsest level, which has two values, whatever Transform
  /// was called with; fewer if the whole signal is reached earlier. It undoes a transform over all
  /// log2(Size) levels.
  /// @param Level  below 1 counts as 1
  /// @throws EZELWaveletError  `Component "N": not enough memory on heap`
  void InverseTransform(int Level);
  /// One step, or one back, over the whole signal.
  /// @throws EZELWaveletError  `Component "N": not enough memory on heap`
  void SingleStep(bool inverse);

 private:
  using TExtendedArray = TDynArray<Extended, 1>;

  [[nodiscard]] TExtendedArray Zeros(int n) const;
  /// One step on the Len values after position Offset.
  /// @param Scratch  at least Len / 2 values
  void PartialWLT(int Len, int Offset, bool inverse, std::span<Extended> Scratch);
  void DoWLT(int Level, bool inverse);

  int FNumData = 0;
  TExtendedArray FData;
  int FOrder = 0;
  TExtendedArray FCoeffsLP;
  TExtendedArray FCoeffsHP;
  TWLSigExtMode FWLSigExtMode = wseWrap;
  TWaveletFamily FWaveletFam = wlfDaubechies;
};

}  // namespace zel
