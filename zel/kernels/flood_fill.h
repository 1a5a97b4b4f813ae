/// @file
/// Filling of a 4-connected region of cells.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zel/kernels/dense.h"

namespace zel::kernels {

/// Where a region lies and how many cells it has.
struct Region {
  std::size_t lowRow = 0;
  std::size_t highRow = 0;
  std::size_t lowColumn = 0;
  std::size_t highColumn = 0;
  std::int64_t cells = 0;
};

/// Fills the region of the seed: the cells that belong and that steps to a neighbouring row or
/// column over such cells reach. Runs of contiguous cells are filled at a time; a work list of runs
/// takes the place of recursion.
/// @param belongs  belongs(cell), false for every filled cell
/// @param fill     fill(column, row, count) fills that many cells of the column from the row on
/// @return without cells, at the seed, if it does not belong
/// @throws std::bad_alloc  part of the region may be filled then
template <class T, class Belongs, class Fill>
Region floodFill(MatrixSpan<T> m, std::size_t row, std::size_t column, Belongs&& belongs,
                 Fill&& fill) {
  struct Run {
    std::size_t column;
    std::size_t first;
    std::size_t last;
  };
  Region region{row, row, column, column, 0};
  std::vector<Run> runs;
  const auto fillFrom = [&](std::size_t c, std::size_t r) {
    const auto cells = m[c];
    std::size_t first = r;
    while (first > 0 && belongs(cells[first - 1])) --first;
    std::size_t last = r;
    while (last + 1 < cells.size() && belongs(cells[last + 1])) ++last;
    runs.push_back({c, first, last});
    fill(c, first, last - first + 1);
    region.lowRow = std::min(region.lowRow, first);
    region.highRow = std::max(region.highRow, last);
    region.lowColumn = std::min(region.lowColumn, c);
    region.highColumn = std::max(region.highColumn, c);
    region.cells += static_cast<std::int64_t>(last - first + 1);
    return last;
  };
  const auto fillBeside = [&](std::size_t c, const Run& run) {
    for (std::size_t r = run.first; r <= run.last; ++r) {
      if (belongs(m(r, c))) r = fillFrom(c, r);
    }
  };
  if (belongs(m(row, column))) fillFrom(column, row);
  while (!runs.empty()) {
    const Run run = runs.back();
    runs.pop_back();
    if (run.column > 0) fillBeside(run.column - 1, run);
    if (run.column + 1 < m.columns) fillBeside(run.column + 1, run);
  }
  return region;
}

}  // namespace zel::kernels
