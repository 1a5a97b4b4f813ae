// The eigenvectors of the process and the principal components.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/multivariate.h"
#include "zel/base/progress.h"
#include "zel/kernels/jacobi.h"
#include "zel/kernels/range.h"

namespace zel {

namespace {

struct TEigenStorage {
  int EigenSize = 0;
  std::vector<double> values;
  std::vector<double> vectors;  // one after the other
};

TEigenStorage Eigen;

}  // namespace

bool CalcEigVec(TMatrix* Mat) {
  constexpr int kMostVariables = 10000;
  if (!Mat) return false;
  const int n = Mat->NrOfColumns();
  if (n > kMostVariables || Mat->NrOfRows() < n) return false;
  return detail::GuardFit("CalcEigVec", [&] {
    const auto size = static_cast<std::size_t>(n);
    std::vector<double> values(size);
    std::vector<double> vectors(size * size);
    AbortMathProc = false;
    // The storage takes what there is, whatever the outcome, also if the feedback throws.
    Eigen = {n, std::move(values), std::move(vectors)};
    const auto sweep = [] {
      ProgressStep();
      return true;
    };
    const auto step = [] {
      ProgressStep();
      return !AbortMathProc;
    };
    const kernels::Matrix a{Mat->data(), size, size, static_cast<std::size_t>(Mat->NrOfRows())};
    return kernels::jacobiEigenvectors(a, Eigen.values, {Eigen.vectors.data(), size, size, size},
                                       sweep, step) == kernels::JacobiStatus::done;
  });
}

double GetEigenResult(int EigIx, int VecElem) {
  const int n = Eigen.EigenSize;
  if (Eigen.values.empty() || EigIx < 1 || EigIx > n || VecElem < 0 || VecElem > n) return 0;
  const auto k = static_cast<std::size_t>(EigIx - 1);
  if (VecElem == 0) return Eigen.values[k];
  return Eigen.vectors[k * static_cast<std::size_t>(n) + static_cast<std::size_t>(VecElem - 1)];
}

int GetEigenSize() { return Eigen.EigenSize; }

void RemoveEigenMatrix() {
  Eigen.values = {};
  Eigen.vectors = {};
}

bool CalcPrincComp(const TMatrix* Mat, int LowCol, int HighCol, int LowRow, int HighRow, int Mode,
                   bool Scaled) {
  if (!Mat) return false;
  const bool done = detail::GuardFit("CalcPrincComp", [&] {
    kernels::clampRange(LowCol, HighCol, Mat->NrOfColumns());
    TMatrix association;
    association.Resize(HighCol - LowCol + 1, HighCol - LowCol + 1);
    return CalcCovar(Mat, &association, LowCol, HighCol, LowRow, HighRow, Mode) &&
           CalcEigVec(&association);
  });
  if (!done) return false;
  std::vector<double>& values = Eigen.values;
  const std::size_t n = values.size();
  double total = 0;
  for (const double value : values) total += std::abs(value);
  if (Scaled && total != 0) {
    for (double& value : values) value /= total;
  }
  for (std::size_t i = 0; i < n; ++i) {
    std::size_t best = i;
    double largest = 0;
    for (std::size_t k = i; k < n; ++k) {
      if (values[k] > largest) {
        largest = values[k];
        best = k;
      }
    }
    if (best == i) continue;
    std::swap(values[i], values[best]);
    const auto vector = [&](std::size_t k) {
      return Eigen.vectors.begin() + static_cast<std::ptrdiff_t>(k * n);
    };
    std::swap_ranges(vector(i), vector(i + 1), vector(best));
  }
  return true;
}

bool CalcPrincComp(const TMatrix* Mat, int LowCol, int HighCol, int LowRow, int HighRow, int Mode) {
  return CalcPrincComp(Mat, LowCol, HighCol, LowRow, HighRow, Mode, true);
}

}  // namespace zel
