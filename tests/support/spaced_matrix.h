/// @file
/// Matrices for tests of kernels.
#pragma once

#include <functional>
#include <limits>
#include <new>
#include <random>

#include "tests/support/failing_new.h"
#include "tests/support/same_bits.h"
#include "zel/kernels/dense.h"

namespace zel::test {

using CellRule = std::function<double(int, int)>;

/// A matrix whose columns stand apart. The gaps hold not-a-number, and must keep it.
class SpacedMatrix {
 public:
  SpacedMatrix(std::size_t rows, std::size_t columns, const CellRule& rule, std::size_t gap = 3)
      : FRows(rows),
        FColumns(columns),
        FStride(rows + gap),
        FCells(FStride * columns + 1, std::numeric_limits<double>::quiet_NaN()) {
    for (std::size_t c = 0; c < columns; ++c) {
      for (std::size_t r = 0; r < rows; ++r) {
        view()(r, c) = rule(static_cast<int>(r), static_cast<int>(c));
      }
    }
  }
  [[nodiscard]] kernels::Matrix view() { return {FCells.data(), FRows, FColumns, FStride}; }
  double& operator()(std::size_t r, std::size_t c) { return view()(r, c); }
  /// With those in the gaps.
  [[nodiscard]] const std::vector<double>& cells() const { return FCells; }
  [[nodiscard]] bool gapsIntact() const {
    for (std::size_t i = 0; i < FCells.size(); ++i) {
      if ((i % FStride >= FRows || i >= FStride * FColumns) && !std::isnan(FCells[i])) return false;
    }
    return true;
  }

 private:
  std::size_t FRows, FColumns, FStride;
  std::vector<double> FCells;
};

/// Random numbers, one after the other.
inline CellRule normalCells(std::size_t seed) {
  return [random = std::mt19937_64(seed), deviate = std::normal_distribution<double>()](
             int, int) mutable { return deviate(random); };
}

/// Each of the allocations of a call fails once: the call says so and leaves the matrix alone.
template <class Call>
void expectFailsCleanly(int allocations, SpacedMatrix& result, Call call) {
  const std::vector<double> before = result.cells();
  for (int k = 0; k < allocations; ++k) {
    {
      const FailingNew fail(k);
      EXPECT_THROW(call(), std::bad_alloc) << k;
    }
    EXPECT_EQ(firstDifference(result.cells(), before), "") << k;
  }
}

}  // namespace zel::test
