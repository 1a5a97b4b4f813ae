/// @file
/// Singular value decomposition.
#pragma once

#include <cstdint>
#include <span>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

enum class SvdStatus : std::uint8_t {
  done,
  notConverged,  ///< a singular value took more than 30 iterations, or a value is not finite
  stopped        ///< the poll said no
};

/// Singular value decomposition A = U diag(w) V^T of a matrix of any shape: Householder reduction
/// to bidiagonal form, accumulation of the right-hand and of the left-hand reflections, implicitly
/// shifted QR iterations (Golub and Reinsch, Numer. Math. 14 (1970) 403). The error of the values
/// is a small multiple of the roundoff times the largest one, at any magnitude of the matrix.
/// @param a  replaced by U, whose columns are orthonormal where w is not 0; with fewer rows than
///   columns at least columns - rows of them are 0 or belong to a value of 0
/// @param w  of the number of columns: the singular values, not negative, in no particular order
/// @param v  square with the columns of a
/// @param step  asked once per column in each of the four phases
/// If a value does not converge, the others are still brought as far as possible; values that are
/// not finite leave everything as it was, and no step is asked.
/// @throws std::bad_alloc  before anything is changed
[[nodiscard]] SvdStatus singularValueDecompose(Matrix a, std::span<double> w, Matrix v,
                                               Poll step = {});

/// The singular values only, with as many questions; a is overwritten by working values.
[[nodiscard]] SvdStatus singularValues(Matrix a, std::span<double> w, Poll step = {});

}  // namespace zel::kernels
