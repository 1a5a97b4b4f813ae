/// @file
/// Weighting windows of spectral analysis, applied to complex numbers in place. N = 2^bits numbers,
/// real and imaginary parts in turn; number i = 1..N lies at t = (i - N/2) / N, so the windows have
/// their peak at number N/2 and fall alike on both sides. The window of a single number is 1. The
/// cosines come from RootsOfUnity; every machine gets the same bits.
#pragma once

#include <array>

namespace zel::kernels {

/// a[0] + a[1] cos(2 pi t) + a[2] cos(4 pi t) + a[3] cos(6 pi t), for any t.
[[nodiscard]] double cosineSum(const std::array<double, 4>& a, double t);

/// Weights a[0] + a[1] cos(2 pi t) + a[2] cos(4 pi t) + a[3] cos(6 pi t).
/// @throws std::bad_alloc  with data unchanged
void cosineSumWindow(double* data, int bits, const std::array<double, 4>& a);
/// Weights cos(pi t)^2.
/// @throws std::bad_alloc  with data unchanged
void squaredCosineWindow(double* data, int bits);
/// Weights 2 i / N for i <= N/2, and the same from the other end.
void triangleWindow(double* data, int bits);
/// Weights exp(-(6 t)^2 / 2), within an ulp.
void gaussWindow(double* data, int bits);

}  // namespace zel::kernels
