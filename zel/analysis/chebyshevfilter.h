/// @file
/// Recursive filters: Chebyshev and Butterworth design, zero-phase filtering.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Coefficients of a Chebyshev filter (type 1), a cascade of sections of two poles, multiplied out:
/// y[i] = A0 x[i] + sum over k = 1..NPoles of (A_k x[i - k] + B_k y[i - k]). The gain is 1 at
/// frequency 0, of a high-pass at one half of the sampling rate.
/// @param NPoles  even, at most 20: with more, the rounding of the coefficients alone would move
///   the poles out of the unit circle. 0 or less: A0 = 1, and Coeffs has one row of zeros.
/// @param Cutoff  as a fraction of the sampling rate, 0..0.5. A low-pass of 0 and a high-pass of
///   0.5 pass nothing: all coefficients are 0.
/// @param Ripple  of the pass band, in percent, 0..29; 0 gives a Butterworth filter
/// @param Coeffs  2 columns and NPoles rows: A_k in column 1, B_k in column 2 of row k. OnChange
///   fires once. Null: nothing is done beyond A0.
/// @throws EZELMath2Error  "CalcChebFilterCoeffs: " and "NPoles must be even", "invalid Ripple
///   value", "invalid cutoff frequency", "NPoles must not exceed 20" or "not enough memory";
///   nothing is changed then
/// Method: S. W. Smith, The Scientist and Engineer's Guide to Digital Signal Processing (1997),
/// ch. 20. Low cut-offs with many poles lose digits: the poles crowd together at 1.
ZEL_API void CalcChebFilterCoeffs(int NPoles, bool HighPass, double Cutoff, double Ripple,
                                  double& A0, TMatrix* Coeffs);

/// Filters a signal forwards, then the result backwards, so that no phase shift remains and the
/// gain is the squared one of the filter. The signal is continued with zeros before its first
/// element and behind its last one; with P rows of Coeffs, the passes run over elements -P to
/// HighElem + P + 1.
/// @param LowElem, HighElem  elements of the result that are wanted, neither limited nor ordered: a
///   reversed range gives nothing. The filter always starts at the beginning of the signal,
///   whatever LowElem, and reads up to P + 1 elements of the signal behind HighElem.
/// @param DestVec  element i is the result at element i of the signal; not resized, what falls
///   outside it is dropped. May be SourceVec. OnChange is not fired.
/// @param A0, Coeffs  of CalcChebFilterCoeffs; a filter that is not stable may overflow
/// A null argument: nothing happens. Behind the signal, once P results in a row are below the range
/// of normal numbers (2.2E-308), all others are taken as 0.
/// @throws EZELMath2Error  "ChebychevFilter: not enough memory"; DestVec is unchanged then
/// O((HighElem + P) P) time, in which a stable filter ends soon behind the signal; memory in
/// proportion to the signal, however large HighElem is.
ZEL_API void ChebychevFilter(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                             double A0, const TMatrix* Coeffs);

}  // namespace zel
