/// @file
/// What a user would call to filter. Compiled apart, with -O3 -march=native. Results have the
/// length of the signal x unless it is said otherwise; windows are centred.
#pragma once

#include <cstddef>
#include <span>

namespace zel::bench {

/// Shortened windows at the ends.
void gslMovingMean(std::span<const double> x, std::size_t width, std::span<double> y);
/// Windows padded with the first and the last value.
void gslMovingMedian(std::span<const double> x, std::size_t width, std::span<double> y);
/// Convolution with a Gaussian of this many taps; padded likewise.
void gslGaussian(std::span<const double> x, std::size_t taps, std::span<double> y);
/// The kernel of gslGaussian.
void gslGaussianKernel(std::span<double> kernel);

/// Means of whole windows from one sum that takes in a value and lets go of one: y is shorter by
/// width - 1 numbers. What rounding leaves in the sum stays there.
void runningMeans(std::span<const double> x, std::size_t width, std::span<double> y);
/// Weighted sums over whole windows, one tap after the other; y as in runningMeans.
void eigenConvolve(std::span<const double> x, std::span<const double> kernel, std::span<double> y);

/// Forwards and backwards over the signal with p + 1 zeros around it; a and b hold p coefficients.
void plainBothWays(std::span<const double> x, double a0, std::span<const double> a,
                   std::span<const double> b, std::span<double> y);

/// Weighted sums over the windows that lie within a picture stored by columns, others stay.
void eigenPictureKernel(const double* picture, long rows, long columns, const double* kernel,
                        long n, double* result);

double eigenGaussKernel(std::span<const double> x, std::span<const double> y, double sigma);

/// Sum of Gaussian peaks of (position, width, height) at 1, 2, ...
void eigenPeaks(std::span<const double> peaks, std::span<double> y);
/// As the product of a column and a row.
void eigenPeak2D(double x, double y, double width, double height, double* picture, long rows,
                 long columns);

/// Mean ranks by an argsort; returns the tie sum.
double plainRanks(std::span<const double> x, std::span<double> ranks);

/// Pearson's correlation of two parts of pictures in grey; the pixels are the bytes R, G, B, 0.
/// @param stride  pixels of a line
double plainGreyCorrelation(const unsigned char* first, const unsigned char* second,
                            std::size_t width, std::size_t height, std::size_t stride);

}  // namespace zel::bench
