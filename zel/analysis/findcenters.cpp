#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "zel/analysis/kmeans.h"
#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/kernels/distances.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/nearest_pairs.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

constexpr double kFarSquare = 1e10;
constexpr char kFileName[] = "MAT.$$$";

/// Removes the file when it goes.
struct TemporaryFile {
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::remove(kFileName); }
};

/// Objects that are merged pair by pair, in the first rows of their storage.
class Agglomerate {
 public:
  explicit Agglomerate(kernels::ConstMatrix objects)
      : FStorage(objects.rows * objects.columns),
        FRows(objects.rows),
        FColumns(objects.columns),
        FStride(objects.rows),
        FWeights(objects.rows, 1.0),
        FPairs(objects.rows),
        FSquares(objects.rows) {
    for (std::size_t c = 0; c < FColumns; ++c) std::ranges::copy(objects[c], View().column(c));
  }

  [[nodiscard]] std::size_t Rows() const { return FRows; }
  [[nodiscard]] kernels::Matrix View() { return {FStorage.data(), FRows, FColumns, FStride}; }

  /// At least two objects are left.
  void MergeNearest() {
    auto [i, j] = FPairs.nearest([&](std::size_t k) { return Search(k); });
    if (i == kernels::kNoIndex) {
      i = 0;
      j = 1;
    }
    const std::size_t last = FRows - 1;
    const double sum = FWeights[i] + FWeights[j];
    for (std::size_t c = 0; c < FColumns; ++c) {
      double* const x = View().column(c);
      x[i] = (FWeights[i] * x[i] + FWeights[j] * x[j]) / sum;
      x[j] = x[last];
    }
    FWeights[i] = sum;
    FWeights[j] = FWeights[last];
    FRows = last;
    FPairs.shrink(last);
    for (std::size_t k = 0; k < last; ++k) {
      for (const std::size_t gone : {i, j, last}) FPairs.invalidate(k, gone);
    }
    Reenter(i);
    if (j < last) Reenter(j);
  }

  /// Squared distances of row i from the first n rows.
  std::span<const double> SquaresFrom(std::size_t i, std::size_t first, std::size_t n) {
    const kernels::Matrix all = View();
    const kernels::Matrix sums{FSquares.data(), n, 1, n};
    kernels::sumsFromPoints(all.block(i, 0, 1, FColumns), dmSqrEuclid,
                            all.block(first, 0, n, FColumns), sums);
    return sums[0];
  }

 private:
  kernels::NearestPairs::Partner Search(std::size_t i) {
    const auto squares = SquaresFrom(i, i + 1, FRows - i - 1);
    const auto found = kernels::least(squares);
    if (found.minIndex == kernels::kNoIndex) return {};
    return {i + 1 + found.minIndex, found.minimum};
  }
  /// Row i holds another object.
  void Reenter(std::size_t i) {
    const auto squares = SquaresFrom(i, 0, i);
    for (std::size_t k = 0; k < i; ++k) FPairs.offer(k, i, squares[k]);
    FPairs.refresh(i);
  }

  std::vector<double> FStorage;
  std::size_t FRows, FColumns, FStride;
  std::vector<double> FWeights;
  kernels::NearestPairs FPairs;
  std::vector<double> FSquares;
};

double meanNearestDistance(Agglomerate& centres) {
  const std::size_t n = centres.Rows();
  std::vector<double> distances(n);
  for (std::size_t i = 0; i < n; ++i) {
    const auto squares = centres.SquaresFrom(i, 0, n);
    double least = kFarSquare;
    for (std::size_t k = 0; k < n; ++k) {
      if (k != i && squares[k] < least) least = squares[k];
    }
    distances[i] = std::sqrt(least);
  }
  return kernels::mean(distances);
}

}  // namespace

void FindCenters(const TMatrix* DataMat, int LowRow, int HighRow, int NumCenters, TMatrix* Centers,
                 double& MeanDist) {
  if (!DataMat || DataMat->NrOfRows() < 1) return;
  detail::GuardFit("FindCenters", [&] {
    DataMat->MakeValidRowRange(LowRow, HighRow);
    if (!DataMat->StoreOnFile(0, 0, 0, 0, kFileName)) return;
    const TemporaryFile remover;
    const auto first = static_cast<std::size_t>(LowRow - 1);
    const auto count = static_cast<std::size_t>(HighRow) - first;
    const kernels::ConstMatrix data = detail::ViewOf(*DataMat);
    Agglomerate objects(data.block(first, 0, count, data.columns));
    const auto wanted = static_cast<std::size_t>(std::max(NumCenters, 1));
    while (objects.Rows() > wanted) {
      ProgressStep();
      if (AbortMathProc) return;
      objects.MergeNearest();
    }
    MeanDist = meanNearestDistance(objects);
    if (!Centers) return;
    const kernels::Matrix found = objects.View();
    const auto to = detail::ViewOf(*Centers);
    const std::size_t rows = std::min(found.rows, to.rows);
    for (std::size_t c = 0; c < to.columns; ++c) {
      for (std::size_t r = 0; r < rows; ++r) to(r, c) = c < found.columns ? found(r, c) : 0;
    }
    Centers->Changed();
  });
}

}  // namespace zel
