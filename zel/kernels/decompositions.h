/// @file
/// Decompositions of square matrices. They work in blocks, and every element still receives its
/// subtractions one by one in ascending order of the inner index, by fused multiply-add, so the bits
/// are those of the plain column-by-column algorithm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

enum class LuStatus : std::uint8_t {
  done,
  zeroRow,    ///< a row is all zero; the matrix is untouched
  tinyPivot,  ///< a pivot below 1E-100 in magnitude was replaced by it; the factors are complete
  stopped     ///< the poll said no; columns before that step are decomposed, the others are the
              ///< original ones with the row exchanges so far
};

/// LU decomposition in place with partial pivoting and implicit row scaling (Crout; Forsythe and
/// Moler 1967): U on and above the diagonal, the multipliers of the unit lower L below it. Among
/// equal candidates the last row becomes the pivot row. NaN candidates are never chosen; if no
/// candidate is, row j stays.
/// @param pivots  of the length of a; takes the row exchanged with row j in step j
/// @param sign    takes +1 or -1 for an even or odd number of exchanges
/// @param scaled  asked before each row of the scaling; false: stopped, the matrix is untouched
/// @param step    asked before each column
/// @param scratch of the shape of a, not overlapping it; used only if step is set, and then, if it
///   has no data, memory for it is allocated
/// @throws std::bad_alloc  before a is touched
[[nodiscard]] LuStatus luDecompose(Matrix a, std::span<std::size_t> pivots, int& sign,
                                   Poll scaled = {}, Poll step = {}, Matrix scratch = {});

/// Inverse from the factors and pivots of luDecompose: column by column, forward substitution in
/// pivot order, then back substitution, both in ascending order of the inner index.
/// @param inverse  of the shape of lu, not overlapping it
/// @param step     asked before each column
/// @return false if a step said no
/// @throws std::bad_alloc  before the first step
[[nodiscard]] bool luInverse(ConstMatrix lu, std::span<const std::size_t> pivots, Matrix inverse,
                             Poll step = {});

/// Cholesky decomposition A = L L^T of a symmetric positive definite matrix of which the diagonal
/// and the lower triangle are read. The strict upper triangle takes L^T, diagonal the diagonal of L;
/// the rest of a stays.
/// @return false if a pivot is not positive (its diagonal element and what follows from it are
///   then not-a-number)
[[nodiscard]] bool choleskyDecompose(Matrix a, std::span<double> diagonal);

}  // namespace zel::kernels
