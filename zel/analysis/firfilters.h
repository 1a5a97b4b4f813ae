/// @file
/// Filters with a finite impulse response: convolution with a kernel, windowed-sinc kernels.
#pragma once

#include "zel/base/Zel_zelbase.h"
#include "zel/base/api.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Applies a filter kernel to the elements LowElem..HighElem of a signal (bounds limited to the
/// vector, then ordered; (0, 0) is element 1). With L taps, result i is the sum over j = 1..L of
/// FilterKernel[j] times element i - L div 2 + j - 1; where that lies outside the range, the first
/// or last element of the range stands for it. The kernel is not turned round. Result LowElem goes
/// to DestVec[1].
/// @param DestVec  resized to the length of SourceVec; elements behind the results keep their
///   values. May be one of the other vectors: the result is then that of copies of them. OnChange
///   fires for a resize and once at the end.
/// @throws EZELMath2Error  "MovingKernelfilter: " and "SourceVec, DestVec and/or FilterKernel is
///   undefined" (null); "specified range for smoothing is smaller than the length of the kernel" if
///   L exceeds HighElem - LowElem; "not enough memory". DestVec is unchanged then.
/// O(n L).
ZEL_API void MovingKernelFilter(const TVector* SourceVec, int LowElem, int HighElem,
                                TVector* DestVec, const TVector* FilterKernel);

// Windowed-sinc kernels (S. W. Smith, The Scientist and Engineer's Guide to Digital Signal
// Processing, 1997, ch. 16), of unit gain at frequency 0 (low-pass, band-stop) or at 0.5.

/// Low-pass kernel of KernelLeng taps, centred on tap KernelLeng div 2 + 1; the taps add up to 1.
/// @param Fc       cut-off frequency as a fraction of the sampling rate, limited to 0..0.5; at 0
///   all taps are 0
/// @param WinType  1: Hamming, 2: Blackman, otherwise no window
/// @param Kernel   resized to KernelLeng. A length below 1 leaves a vector alone and an array
///   empty. OnChange fires once. Nothing happens for null.
/// @throws EZELMath2Error  "CalcSincLPKernel: not enough memory"; Kernel is unchanged then
ZEL_API void CalcSincLPKernel(int KernelLeng, double Fc, int WinType, TVector* Kernel);
ZEL_API void CalcSincLPKernel(int KernelLeng, double Fc, int WinType, TDoubleArray& Kernel);

/// High-pass kernel: the unit impulse less the low-pass kernel of CalcSincLPKernel, for the same
/// arguments.
ZEL_API void CalcSincHPKernel(int KernelLeng, double Fc, int WinType, TVector* Kernel);
ZEL_API void CalcSincHPKernel(int KernelLeng, double Fc, int WinType, TDoubleArray& Kernel);

/// Band-stop kernel: the low-pass kernel of Fc1 plus the high-pass kernel of Fc2, which are
/// exchanged if reversed; otherwise as CalcSincLPKernel.
ZEL_API void CalcSincBSKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TVector* Kernel);
ZEL_API void CalcSincBSKernel(int KernelLeng, double Fc1, double Fc2, int WinType,
                              TDoubleArray& Kernel);

/// Band-pass kernel: the unit impulse less the band-stop kernel of CalcSincBSKernel, for the same
/// arguments.
ZEL_API void CalcSincBPKernel(int KernelLeng, double Fc1, double Fc2, int WinType, TVector* Kernel);
ZEL_API void CalcSincBPKernel(int KernelLeng, double Fc1, double Fc2, int WinType,
                              TDoubleArray& Kernel);

}  // namespace zel
