/// @file
/// What a user would call or write instead. Compiled apart, with -O3 -march=native.
#pragma once

#include <cstddef>

namespace zel::bench {

/// gsl_fit_linear; returns the slope.
double gslFitLine(const double* x, const double* y, std::size_t n);
/// Tau-b by counting over all pairs of points.
double plainKendall(const double* x, const double* y, std::size_t n);

}  // namespace zel::bench
