/// @file
/// Signals for trying out filters and fits: sigmoid, Gaussian peaks in one and two dimensions.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/api.h"

namespace zel {

/// Position, width and height of a Gaussian peak, in this order.
using TGaussPeakParams = std::array<double, 3>;
using TPeakParamsList = std::vector<TGaussPeakParams>;

/// Logistic curve: element i = 1..n becomes Amplitude / (1 + exp(-Slope (i - Center))) + Offset.
/// @return 0; -1, with nothing changed, for fewer than 3 elements
ZEL_API int CreateSigmoidArray(std::span<double> Data, double Slope, double Offset,
                               double Amplitude, int Center);

/// Sum of peaks: element i = 1..n becomes the sum of height exp(-((i - position) / width)^2). A
/// width of 0 gives nothing but a not-a-number at the position.
/// @return 0; -2 for fewer than 3 elements, else -1 without peaks; Data is unchanged then
ZEL_API int CreateGaussianPeaks(std::span<const TGaussPeakParams> PeakParams, TDoubleArray& Data);

/// Peak in two dimensions: Data[i - 1][j - 1] becomes Amplitude exp(-((i - CenterX)^2 + (j -
/// CenterY)^2) / Width^2).
/// @return 0; -2 for fewer than two rows or columns, else -1 for a width that is not above 0; Data
///   is unchanged then
/// @throws EZELMath2Error  "Gauss2D: not enough memory"; Data is unchanged then
ZEL_API int Gauss2D(int CenterX, int CenterY, double Width, double Amplitude, TDouble2DArray& Data);

}  // namespace zel
