/// @file
/// Moving averages and medians, Savitzky-Golay smoothing and derivatives of a signal.
///
/// All take the elements LowElem..HighElem of SourceVec; each bound is limited to the elements of
/// the vector, a reversed pair is exchanged, (0, 0) is element 1. Results go to DestVec[1..n],
/// n = HighElem - LowElem + 1; DestVec is not resized, and what falls outside it is dropped. With
/// m = WinSize div 2, the results 1..m repeat that of the first whole window (DestVec[m + 1], so 0
/// if DestVec is shorter), and the last m that of the last one. DestVec may be SourceVec: the
/// result is then that of a copy of it. OnChange of DestVec fires once, at the end.
///
/// @throws EZELMath2Error  "<routine>: " and, in this order, "either SourceVec or DestVec is
///   undefined" (a null vector); "specified range for ... is smaller than the length of ..." if
///   WinSize exceeds HighElem - LowElem; "length of ... is out of range"; "length of ... must be
///   odd"; "not enough memory". DestVec is unchanged then.
#pragma once

#include "zel/base/api.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Moving average: the mean of WinSize values.
/// @param WinSize  odd, at least 3
/// Every window is summed for itself, in double-double: right to an ulp, and a value that is huge,
/// infinite or not a number leaves no trace once it has left the window. O(n log WinSize).
ZEL_API void MovingAverageSmooth(const TVector* SourceVec, int LowElem, int HighElem,
                                 TVector* DestVec, int WinSize);

/// Moving median: the second quartile (TVector::Quartiles) of WinSize values, also where one of
/// them is infinite or not a number.
/// @param WinSize  odd, at least 3
/// O(n log WinSize), for windows with values that are not finite O(WinSize log WinSize) each.
/// Method: Suomela, arXiv:1406.1717 (2014).
ZEL_API void MovingMedianSmooth(const TVector* SourceVec, int LowElem, int HighElem,
                                TVector* DestVec, int WinSize);

/// Triangular moving average: the mean of WinSize values with the weights 1, 2, ..., m + 1, ..., 2,
/// 1. As accurate as MovingAverageSmooth.
/// @param WinSize  odd, at least 3
/// O(n log WinSize).
ZEL_API void WeightedAverageSmooth(const TVector* SourceVec, int LowElem, int HighElem,
                                   TVector* DestVec, int WinSize);

/// Savitzky-Golay smoothing: the value at the centre of the parabola (or cubic) fitted to WinSize
/// values by least squares. A constant comes out unchanged to the last bit. A value that is not
/// finite makes the windows that hold it not finite.
/// @param WinSize  odd, 5..25
/// O(n WinSize). Method: Savitzky and Golay, Anal. Chem. 36 (1964) 1627; weights by Madden, Anal.
/// Chem. 50 (1978) 1383.
ZEL_API void PolynomialSmooth(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                              int WinSize);

/// First derivative per unit sample spacing: the slope at the centre of the parabola fitted to
/// WinSize values, as PolynomialSmooth. The value at the centre has no part in it.
/// @param WinSize  odd, 5..25
ZEL_API void FirstDeriv(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                        int WinSize);

/// Second derivative per squared sample spacing: that of the parabola fitted to WinSize values, as
/// PolynomialSmooth.
/// @param WinSize  odd, 5..25
ZEL_API void SecondDeriv(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                         int WinSize);

}  // namespace zel
