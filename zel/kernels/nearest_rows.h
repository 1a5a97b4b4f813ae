/// @file
/// Nearest rows of a matrix.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "zel/kernels/distances.h"
#include "zel/kernels/nearest.h"

namespace zel::kernels {

/// Calls use(i, list) for each point i in order, with the list of its nearest rows, numbered
/// from 1.
/// @param points  one in each row, with as many columns as m
/// @param mode    dmManhattan, dmEuclid or dmSqrEuclid
/// @param length  of the lists
/// @throws std::bad_alloc  before the first call
/// O(rows * points * columns). Blocks of rows meet several points while they are in the cache.
template <class Use>
void nearestRows(ConstMatrix m, TDistMode mode, ConstMatrix points, std::size_t length, Ties ties,
                 Use&& use) {
  constexpr std::size_t kPoints = 16;
  constexpr std::size_t kRows = 256;
  const std::size_t group = std::min(kPoints, points.rows);
  std::vector<NearestList> lists(group, NearestList(length, ties));
  std::vector<double> room(group * kRows);
  for (std::size_t i = 0; i < points.rows; i += group) {
    const ConstMatrix some = points.block(i, 0, std::min(group, points.rows - i), points.columns);
    for (auto& list : lists) list.clear();
    for (std::size_t r = 0; r < m.rows; r += kRows) {
      const std::size_t count = std::min(kRows, m.rows - r);
      const Matrix sums{room.data(), count, some.rows, kRows};
      sumsFromPoints(some, mode, m.block(r, 0, count, m.columns), sums);
      const int first = static_cast<int>(r) + 1;
      for (std::size_t k = 0; k < some.rows; ++k) {
        if (mode == dmEuclid) {
          lists[k].offerRoots(sums[k], first);
        } else {
          lists[k].offerAll(sums[k], first);
        }
      }
    }
    for (std::size_t k = 0; k < some.rows; ++k) use(i + k, std::as_const(lists[k]));
  }
}

}  // namespace zel::kernels
