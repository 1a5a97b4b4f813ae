/// @file
/// What a user of Eigen would write for whole matrices. Compiled apart, with -O3 -march=native.
#pragma once

#include <cstddef>

namespace zel::bench {

/// A square matrix in place.
void eigenTranspose(double* a, std::size_t n);

}  // namespace zel::bench
