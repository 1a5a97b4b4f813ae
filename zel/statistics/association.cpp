#include "zel/statistics/association.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zel {

namespace {

/// The lines of a table in one direction.
struct Lines {
  std::int64_t sumOfLargest = 0;  ///< of the largest cell of each line
  std::int64_t largestSum = 0;
  std::int64_t total = 0;
};

/// Nothing if the sum of a line does not fit its cells. cell(i, size) is the sum of line i.
template <class Cell>
std::optional<Lines> tally(std::size_t count, std::size_t size, Cell&& cell) {
  Lines lines;
  lines.largestSum = cell(0, size);
  for (std::size_t i = 0; i < count; ++i) {
    std::int64_t sum = 0;
    int largest = cell(i, 0);
    for (std::size_t j = 0; j < size; ++j) {
      sum += cell(i, j);
      largest = std::max(largest, cell(i, j));
    }
    if (sum != cell(i, size)) return std::nullopt;
    lines.sumOfLargest += largest;
    lines.largestSum = std::max(lines.largestSum, sum);
    lines.total += sum;
  }
  return lines;
}

/// Errors of the blind prediction that knowing the other variable avoids.
double gain(const Lines& known, const Lines& predicted) {
  const std::int64_t errors = known.total - predicted.largestSum;
  return errors == 0 ? 0
                     : static_cast<double>(known.sumOfLargest - predicted.largestSum) /
                           static_cast<double>(errors);
}

}  // namespace

int Lambda(const TInt2DArray& ContTab, double& LambdaA, double& LambdaB) {
  LambdaA = 0;
  LambdaB = 0;
  if (ContTab.Length(0) < 2 || ContTab.Length(1) < 2) return -1;
  const std::size_t nRows = ContTab.Length(0) - 1;
  const std::size_t nColumns = ContTab.Length(1) - 1;
  const auto rows =
      tally(nRows, nColumns, [&](std::size_t i, std::size_t j) { return ContTab[i][j]; });
  const auto columns =
      tally(nColumns, nRows, [&](std::size_t j, std::size_t i) { return ContTab[i][j]; });
  if (!rows || !columns || rows->total != ContTab[nRows][nColumns]) return -1;
  LambdaA = gain(*rows, *columns);
  LambdaB = gain(*columns, *rows);
  return 0;
}

}  // namespace zel
