/// @file
/// Eigenvalues and eigenvectors of symmetric matrices by plane rotations.
#pragma once

#include <cstdint>
#include <span>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

enum class JacobiStatus : std::uint8_t {
  done,
  notConverged,  ///< elements above the diagonal are left after 100 sweeps
  stopped        ///< the poll said no
};

/// Cyclic Jacobi method with thresholds (Jacobi 1846; Rutishauser, Numer. Math. 9 (1966) 1): sweeps
/// over all elements above the diagonal, row by row, each of which a rotation makes zero. The
/// eigenvalues come in the order in which the rotations leave them. The rotations are self-scaling
/// (Anda and Park, SIAM J. Matrix Anal. Appl. 15 (1994) 162), and products are rounded before they
/// are added: the same bits on every machine.
/// @param a        symmetric; the diagonal and what is above are read, what is above is destroyed
/// @param values   the eigenvalues
/// @param vectors  square with the columns of a: column k takes the unit eigenvector to value k
/// @param sweep    called before each sweep, and once more at the end
/// @param step     asked after each element of a sweep whether to go on
/// @throws std::bad_alloc  before anything is changed
[[nodiscard]] JacobiStatus jacobiEigenvectors(Matrix a, std::span<double> values, Matrix vectors,
                                              Poll sweep = {}, Poll step = {});

}  // namespace zel::kernels
