/// @file
/// Gaussian kernel functions: the similarity of two points.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// exp(-d^2 / Sigma^2), d being the Euclidean distance of x and y; d^2 / Sigma^2 is limited to 20,
/// so the result is at least 2.1E-9.
/// @param x  read as 0 behind its end; elements behind the length of y have no part in it
/// A null argument gives 0. Sigma 0: not-a-number for equal points, else exp(-20).
[[nodiscard]] ZEL_API double CalcGaussKernel(const TVector* x, const TVector* y, double Sigma);

/// The same for the point in a row of a matrix; a row outside the matrix is 0.
[[nodiscard]] ZEL_API double CalcGaussKernelMat(const TVector* x, const TMatrix* Mat, int Row,
                                                double Sigma);

}  // namespace zel
