/// @file
/// Discrete Fourier transform of a signal, and its spectrum.
#pragma once

#include <cstdint>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"
#include "zel/base/types.h"

namespace zel {

/// Weighting windows. Point i = 1..N of the signal lies at t = (i - N/2) / N:
///
/// | window | weight |
/// |---|---|
/// | fwRectangle | 1 |
/// | fwTriangle | 2 i / N for i <= N/2, and the same from the other end |
/// | fwCos2 | cos(pi t)^2 |
/// | fwGauss | exp(-(6 t)^2 / 2) |
/// | fwHamming | 0.543478261 + 0.456521739 cos(2 pi t) |
/// | fwBlackman | 0.42659 + 0.49656 cos(2 pi t) + 0.076848 cos(4 pi t) |
/// | fwBlkmHarris | 0.35875 + 0.48829 cos(2 pi t) + 0.14128 cos(4 pi t) + 0.01168 cos(6 pi t) |
/// | fwBlkmNuttall | 0.3635819 + 0.4891775 cos(2 pi t) + 0.1365995 cos(4 pi t) + 0.0106411 cos(6 pi
/// t) | | fwUserDef | SetWgtVal |
///
/// The weight of a one-point signal is 1 but for fwUserDef. (Harris, Proc. IEEE 66 (1978) 51;
/// Nuttall, IEEE Trans. ASSP 29 (1981) 84.)
enum TFastFourierWgtWin : std::uint8_t {
  fwRectangle,
  fwTriangle,
  fwCos2,
  fwGauss,
  fwHamming,
  fwBlackman,
  fwBlkmHarris,
  fwBlkmNuttall,
  fwUserDef
};

/// Holds a signal of N complex points, N a power of two, and replaces it by its discrete Fourier
/// transform or back. At first 256 zeros and no window.
///
/// Transform gives X_k = sum over n = 0..N-1 of x_n e^(+2 pi i n k / N), not divided;
/// InverseTransform has the opposite sign and divides by N. Point p of the signal is x_(p-1), and
/// of the transform X_(p-1). The spectral line k = 0..N/2 stands for X_k and X_(N-k), whose indices
/// count modulo N. What is read beyond points or lines is 0, what is written there is dropped.
///
/// The relative error of a transform (root mean square) is about 2e-17 (6 + log2 N), its bits are
/// the same on every machine. After the first transform of more than 32 points the object keeps
/// working memory as large as the signal; factors of a length, less than 3 percent of a long
/// signal, are shared by all objects and threads and kept until the program ends.
class ZEL_API TFastFourier : public TComponent {
 public:
  /// @throws EZELFourierError  `Component "": not enough memory on heap`
  explicit TFastFourier(TComponent* AOwner = nullptr);
  ~TFastFourier() override;
  [[nodiscard]] std::string_view ClassName() const override;

  // Settings.

  /// Number of points N.
  [[nodiscard]] int SpectrumSize() const { return FNumData; }
  /// Makes the signal n zeros and all weights of the user's window 0.
  /// @param n  1, 2, 4, ..., 2^23
  /// @throws EZELFourierError  `Component "N": data length must be power of 2` for any other n,
  ///   `Component "N": not enough memory on heap`; nothing changes then
  void SetNumData(int n);
  [[nodiscard]] TFastFourierWgtWin WeightingWindow() const { return FWgtWin; }
  /// The window that Transform applies.
  void SetWgtWin(TFastFourierWgtWin w) { FWgtWin = w; }
  /// The weight of a window at t in [-1/2, 1/2], 0 outside, to put it over a part of the signal by
  /// fwUserDef; fwTriangle is 1 - 2 |t| here, fwUserDef 1.
  [[nodiscard]] static double WeightAt(TFastFourierWgtWin w, double t);

  // The signal.

  /// Real and imaginary part of point i = 1..N at 2 (i - 1) and 2 (i - 1) + 1. Whoever writes here
  /// after an extreme has been read, or changes the size, writes a point by SetRealVal afterwards,
  /// so that the extremes are found again; the size is set right by the next transform.
  TDoubleArray FData;

  /// Parts of point ix = 1..N, and weight ix of the user's window (at first 1).
  [[nodiscard]] double GetRealVal(int ix) const;
  [[nodiscard]] double GetImagVal(int ix) const;
  [[nodiscard]] double GetWgtVal(int ix) const;
  void SetRealVal(int ix, double v);
  void SetImagVal(int ix, double v);
  void SetWgtVal(int ix, double v);
  /// Sets all parts, the real or the imaginary parts to 0.
  void Clear();
  void ClearReal();
  void ClearImag();

  // Transforms, in O(N log N).

  /// Multiplies the signal by the window and transforms it.
  /// @throws EZELFourierError  `Component "N": not enough memory on heap`, with the signal
  /// unchanged
  void Transform();
  /// The inverse transform; windows are not undone.
  /// @throws EZELFourierError  `Component "N": not enough memory on heap`, with the signal
  /// unchanged
  void InverseTransform();

  // The spectrum, computed in extended precision. N/2 rounds down; for a single point there is line
  // 0 only.

  /// (|X_k|^2 + |X_(N-k)|^2) / N for a line ix = k >= 1, |X_0|^2 / N for line 0.
  [[nodiscard]] double GetPowerSpec(int ix) const;
  /// |X_k + conj X_(N-k)| / N for a line ix = k >= 1, which for a real signal is the amplitude of
  /// its oscillation (twice that for k = N/2); |X_0| / N for line 0.
  [[nodiscard]] double GetMagnitude(int ix) const;
  /// arctan(im X_k / re X_k) in [-pi/2, pi/2], in radians, for a line ix = k >= 1. Where the real
  /// part is 0 it is pi/2 for a positive imaginary part, otherwise -pi/2. 0 for line 0.
  [[nodiscard]] double GetPhase(int ix) const;
  /// Coefficients of sin and cos(2 pi n t / T) in the Fourier series of the signal over its whole
  /// time T: (im X_n - im X_(N-n)) / N and (re X_n + re X_(N-n)) / N for n >= 1; 0 and re X_0 / N
  /// for n = 0.
  [[nodiscard]] double GetFSerSin(int n) const;
  [[nodiscard]] double GetFSerCos(int n) const;
  /// Root of the sum of |X_k|^2 + |X_(N-k)|^2 (line 0: |X_0|^2) over the lines of a band, divided
  /// by N. The ends may come in either order and are limited to 0..N/2.
  [[nodiscard]] double RMS(int FirstIx, int LastIx) const;

  /// Frequency of a line ix >= 1, in cycles per unit of SampleTime, the time between two points:
  /// ix / (SampleTime N). 0 for line 0.
  [[nodiscard]] double FreqOfLine(int ix, double SampleTime) const;
  /// The line nearest to a frequency, ties to even: round(N SampleTime f). 0 if it is not one of
  /// 1..N/2.
  [[nodiscard]] int LineOfFreq(double f, double SampleTime) const;

  // Extremes, found in O(N) at the first reading after a change. Not-a-numbers do not count.

  /// Largest power of the lines 1..N/2 - 1; at least 0.
  [[nodiscard]] double PowerMax() const { return Extremes().FMaxPower; }
  /// Largest magnitude of the lines 1..N/2; at least 0.
  [[nodiscard]] double MagniMax() const { return Extremes().FMaxMagni; }
  /// Extremes of the parts of all points.
  [[nodiscard]] double RealMax() const { return Extremes().FMaxReal; }
  [[nodiscard]] double ImagMax() const { return Extremes().FMaxImag; }
  [[nodiscard]] double RealMin() const { return Extremes().FMinReal; }
  [[nodiscard]] double ImagMin() const { return Extremes().FMinImag; }

 private:
  struct TPoint {
    Extended re;
    Extended im;
  };

  /// X_k, for any k >= 0.
  [[nodiscard]] TPoint At(int k) const;
  [[nodiscard]] bool IsLine(int ix) const { return ix >= 0 && ix <= FNumData / 2; }
  /// |X_k|^2 + |X_(N-k)|^2, or |X_0|^2.
  [[nodiscard]] Extended PowerOf(int line) const;
  [[nodiscard]] Extended MagnitudeOf(int line) const;
  void SetPart(std::size_t part, int ix, double v);
  void ClearPart(std::size_t part);
  void ApplyWindow();
  /// Makes all that a transform allocates.
  void Prepare();
  /// Does work that allocates, and says so if there is no memory.
  template <class Work>
  void Guarded(Work work);
  void DoFFT(int isign);
  void CalcMaxValues() const;
  const TFastFourier& Extremes() const {
    if (!MaxValuesValid) CalcMaxValues();
    return *this;
  }

  int FNumData = 256;
  TFastFourierWgtWin FWgtWin = fwRectangle;
  mutable bool MaxValuesValid = false;
  mutable double FMaxReal = 0;
  mutable double FMaxImag = 0;
  mutable double FMinReal = 0;
  mutable double FMinImag = 0;
  mutable double FMaxPower = 0;
  mutable double FMaxMagni = 0;
  TDoubleArray FUserWgt;
  TDynArray<double, 1> FWork;
};

}  // namespace zel
