/// @file
/// Distances and similarities between the rows of a matrix that is stored by columns.
#pragma once

#include <cstddef>
#include <span>

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

/// Squared Euclidean distance of two points, the shorter one of which goes on with zeros. Plain
/// sums, over four lanes for fewer than 32 coordinates, else over sixteen.
[[nodiscard]] double squaredDistance(std::span<const double> x, std::span<const double> y);

/// What the distances of the rows of m from each of some points sum up: squared differences, or for
/// dmManhattan magnitudes of differences. Bit for bit the sums of rowDistance.
/// @param points  one in each row, with as many columns as m
/// @param mode    not one of the similarities
/// @param sums    a column for each point, of as many rows as m
void sumsFromPoints(ConstMatrix points, TDistMode mode, ConstMatrix m, Matrix sums);

/// For each row of m the point of least squared Euclidean distance, the first of several; point 0
/// if no distance is finite.
void nearestPoints(ConstMatrix points, ConstMatrix m, std::span<int> nearest);

}  // namespace zel::kernels
