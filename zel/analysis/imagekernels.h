/// @file
/// Convolution of two-dimensional arrays with small kernels, edge operators. Arrays are indexed
/// [row][column].
#pragma once

#include "zel/base/Zel_zelbase.h"
#include "zel/base/api.h"

namespace zel {

/// Convolves an array with a square kernel of n rows, which is not turned round: each result is the
/// sum of the kernel's cells times the cells of Data around its place. Beyond the border the
/// outermost cells repeat.
/// @param Result    gets the shape of Data; may be Data
/// @param Feedback  called while the inner cells (those at least n div 2 from the border) are
///   computed, before the others: with a null sender, and the number of cells done divided by
///   max(1, (rows - n)(columns - n) div 100) whenever that divides it. That is about the percentage
///   for large arrays; it goes beyond 100 for small ones. If it throws, Result is unchanged.
/// @return 0; -1 if the kernel is not square, -2 if n is even, -3 if n is 0 or 1, the last that
///   applies; Result is unchanged then
/// @throws EZELMath2Error  "KernelConvolve: not enough memory"; Result is unchanged then
/// O(rows columns n^2).
ZEL_API int KernelConvolve(const TDouble2DArray& Kernel, const TDouble2DArray& Data,
                           TDouble2DArray& Result, const TOnPercentDoneEvent& Feedback);

/// Convolves with the compass operator (J. M. S. Prewitt, 1970) of a direction: the kernel with the
/// rows (-1 -1 -1), (1 -2 1), (1 1 1) for 0, its outer cells turned clockwise by one place for each
/// further direction.
/// @param Direction  0..7
/// @return -1, with nothing changed, for another direction; else that of KernelConvolve
ZEL_API int ApplyCompassKernel(int Direction, const TDouble2DArray& Data, TDouble2DArray& Result,
                               const TOnPercentDoneEvent& Feedback);

/// The same with the operator of R. A. Kirsch (Comput. Biomed. Res. 4 (1971) 315): (-3 -3 -3),
/// (-3 0 -3), (5 5 5) for 0.
ZEL_API int ApplyKirschKernel(int Direction, const TDouble2DArray& Data, TDouble2DArray& Result,
                              const TOnPercentDoneEvent& Feedback);

}  // namespace zel
