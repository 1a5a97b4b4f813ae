#include "zel/analysis/kmeans.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/base/random.h"
#include "zel/base/rounding.h"
#include "zel/kernels/lloyd.h"
#include "zel/matrix/TIntMatrix.h"

namespace zel {

namespace {

constexpr int kMaxPasses = 1000;

/// The clusters in the order of their sizes, counted from 0.
std::vector<std::size_t> bySize(const std::vector<int>& sizes) {
  const int n = static_cast<int>(sizes.size());
  TIntMatrix table;
  table.Resize(2, n);
  for (int c = 1; c <= n; ++c) {
    table.SetVal(1, c, sizes[static_cast<std::size_t>(c - 1)]);
    table.SetVal(2, c, c - 1);
  }
  table.SortRows(1, false, 0, 0, 0, 0);
  const auto order = table.Column(2);
  return {order.begin(), order.end()};
}

struct Partition {
  Partition(std::size_t objects, std::size_t clusters, std::size_t variables)
      : centres(clusters * variables), assignment(objects), sizes(clusters) {}
  [[nodiscard]] kernels::Matrix view() {
    return {centres.data(), sizes.size(), centres.size() / sizes.size(), sizes.size()};
  }

  detail::Numbers centres;
  std::vector<int> assignment;
  std::vector<int> sizes;
};

void store(Partition& p, TMatrix* Centers, TIntVector* ClustAssign, TIntVector* ClustSize,
           bool renumber) {
  const std::size_t n = p.sizes.size();
  std::vector<std::size_t> order(n);
  for (std::size_t c = 0; c < n; ++c) order[c] = c;
  if (renumber) order = bySize(p.sizes);
  detail::TResults results;
  const kernels::Matrix centres = results.Add(Centers, n, p.view().columns);
  const auto sizes = results.Add(ClustSize, ClustSize ? n : 0);
  const auto assignment = results.Add(ClustAssign, ClustAssign ? p.assignment.size() : 0);
  std::vector<int> numbers(n);
  for (std::size_t c = 0; c < n; ++c) {
    numbers[order[c]] = static_cast<int>(c) + 1;
    if (!sizes.empty()) sizes[c] = p.sizes[order[c]];
    for (std::size_t v = 0; v < centres.columns; ++v) centres(c, v) = p.view()(order[c], v);
  }
  for (std::size_t r = 0; r < assignment.size(); ++r) {
    assignment[r] = numbers[static_cast<std::size_t>(p.assignment[r])];
  }
  results.Commit();
}

}  // namespace

double kMeansClustering(const TMatrix* DataMat, int, int, int NumClust, int RandInit,
                        TMatrix* Centers, TIntVector* ClustAssign, TIntVector* ClustSize) {
  if (!DataMat) return 0;
  NumClust = std::max(NumClust, 1);
  const int rows = DataMat->NrOfRows();
  if (NumClust > rows) {
    throw EZELMath2Error("kMeansClustering: number of clusters is greater than number of objects");
  }
  double within = -1;
  const kernels::LloydEnd end = detail::GuardFit("kMeansClustering", [&] {
    const kernels::ConstMatrix data = detail::ViewOf(*DataMat);
    Partition p(data.rows, static_cast<std::size_t>(NumClust), data.columns);
    if (RandInit > 0) SetRandSeed(static_cast<std::uint64_t>(RandInit));
    for (std::size_t c = 0; c < p.sizes.size(); ++c) {
      const std::size_t row = RandInit > 0 ? static_cast<std::size_t>(Random(rows)) : c;
      for (std::size_t v = 0; v < data.columns; ++v) p.view()(c, v) = data(row, v);
    }
    ProgressStep();
    const kernels::LloydEnd reached =
        kernels::lloyd(data, p.view(), p.assignment, p.sizes, kMaxPasses, [] {
          if (AbortMathProc) return false;
          ProgressStep();
          return true;
        });
    const bool complete = reached != kernels::LloydEnd::stopped;
    if (complete) within = kernels::sumOfSquaresWithin(data, p.view(), p.assignment);
    store(p, Centers, ClustAssign, ClustSize, complete);
    return reached;
  });
  if (end == kernels::LloydEnd::tooManyPasses) {
    throw EZELMath2Error("kMeansClustering: max. number of iterations exceeded");
  }
  return within;
}

double kMeansClustering(const TMatrix* DataMat, int Reserved1, int Reserved2, int NumClust,
                        TMatrix* Centers, TIntVector* ClustAssign) {
  return kMeansClustering(DataMat, Reserved1, Reserved2, NumClust, 0, Centers, ClustAssign,
                          nullptr);
}

int kMeansEstimatedSteps(int NumA, int NumB, int NumC) {
  const double a = NumA;
  const double b = NumB;
  const double c = NumC;
  const double steps = 0.18232 * std::sqrt(a * b) - 108 - 0.00092427 * a - 0.00017557 * a * c +
                       0.38775 * std::sqrt(a * c);
  return std::max(20, RoundToInt<int>(steps));
}

}  // namespace zel
