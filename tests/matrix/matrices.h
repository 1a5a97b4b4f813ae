/// @file
/// Matrices for tests.
#pragma once

#include <cmath>
#include <random>

#include "tests/support/containers.h"
#include "zel/matrix/Zel_matrix.h"

namespace zel::test {

/// Normal deviates, or integers of all sizes; the same for the same arguments.
template <class Matrix>
void fillNormal(Matrix& m, int columns, int rows, unsigned seed = 1) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> normal;
  m.Resize(columns, rows);
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= rows; ++r) {
      if constexpr (std::is_same_v<typename Matrix::value_type, int>) {
        m.SetVal(c, r, static_cast<int>(random()));
      } else {
        m.SetVal(c, r, normal(random));
      }
    }
  }
}

/// Resets the progress globals on both ends.
class WithProgress : public testing::Test {
 protected:
  WithProgress() { reset(); }
  ~WithProgress() override { reset(); }
  static void reset() {
    ProcStat = 0;
    MathFeedBackProc = nullptr;
    AbortMathProc = false;
  }
};

}  // namespace zel::test
