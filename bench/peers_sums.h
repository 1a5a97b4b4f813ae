/// @file
/// What a user would call instead. Compiled apart, with -O3 -march=native.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::bench {

double eigenSum(const double* x, std::size_t n);
double eigenDot(const double* x, const double* y, std::size_t n);
/// Mean, then the mean squared deviation with divisor n - 1: two passes.
void eigenMeanVariance(const double* x, std::size_t n, double& mean, double& variance);
void eigenMinMax(const double* x, std::size_t n, double& minimum, double& maximum,
                 std::ptrdiff_t& minIndex, std::ptrdiff_t& maxIndex);

void gslMeanVariance(const double* x, std::size_t n, double& mean, double& variance);

/// CRC-32 of eight byte planes of n bytes each.
void zlibCrcOfPlanes(const unsigned char* planes, std::size_t n, std::uint32_t* crcs);

}  // namespace zel::bench
