/// @file
/// Discrete Fourier transform of 2^bits complex numbers.
///
/// Short lengths are one codelet. Others are split into rows and columns (Gentleman and Sande 1966;
/// Bailey, J. Supercomput. 4 (1990) 23): transforms of all columns, twiddle factors, a
/// transposition on the way to the working memory, transforms of all columns there. A column of up
/// to 64 numbers is one codelet of radix 4 and 8, a longer one is split the same way once more, so
/// that the data pass through the memory twice whatever their number. Vectors run across columns,
/// which gives the same bits for every instruction set; there is no fused multiply-add.
///
/// The twiddle factors come from tables of correctly rounded roots of unity, about 16 sqrt(N) of
/// them; above 4096 numbers those between the two passes are products of two and three roots. The
/// error grows like log N.
#pragma once

#include <cstddef>

namespace zel::kernels {

constexpr int kMostFourierBits = 23;

/// Numbers of working memory that a transform of 2^bits complex numbers needs.
/// @param bits  0..kMostFourierBits
[[nodiscard]] std::size_t fourierWorkSize(int bits);

/// Makes the tables of a length, unless they exist. They are shared by all threads and stay.
/// @throws std::bad_alloc
void prepareFourier(int bits);

/// X_k = sum over n of x_n e^(2 pi i n k / N), in place, without a factor in front.
/// @param data  real and imaginary parts of 2^bits numbers in turn
/// @param work  fourierWorkSize(bits) numbers, best aligned to 64 bytes
/// @throws std::bad_alloc  with data unchanged, unless prepareFourier has been called
void fourier(double* data, int bits, double* work);
/// x_n = 1 / N sum over k of X_k e^(-2 pi i n k / N), likewise.
void inverseFourier(double* data, int bits, double* work);

}  // namespace zel::kernels
