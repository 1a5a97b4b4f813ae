/// @file
/// Distances and similarities between the rows of a matrix that is stored by columns.
#pragma once

#include <cstddef>

#include "zel/base/types.h"
#include "zel/kernels/dense.h"

namespace zel::kernels {

/// True for the modes that are computed from the elements: all but dmUser.
[[nodiscard]] bool isStandardDistance(TDistMode mode);

/// Distance of rows i and j; a row beyond the matrix counts as zeros. The sums run over the
/// columns, upwards, in plain double arithmetic. Not of mode dmUser.
[[nodiscard]] double rowDistance(ConstMatrix m, TDistMode mode, std::size_t i, std::size_t j);

/// All distances of pairs of rows, bit for bit those of rowDistance, with a zero diagonal.
/// @param distances  square, with as many columns as m has rows; not overlapping m
/// @throws std::bad_alloc  before anything is written
void rowDistances(ConstMatrix m, TDistMode mode, Matrix distances);

}  // namespace zel::kernels
