// TMatrix: norms, balancing, trace, differences, sum, correlation.
#include <algorithm>
#include <cmath>

#include "zel/kernels/moments.h"
#include "zel/kernels/rows.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/TMatrix.h"
#include "zel/matrix/container_impl.h"

namespace zel {

namespace {

/// Off-diagonal absolute sums of row and column i.
struct EdgeSums {
  double row = 0;
  double column = 0;
};

EdgeSums SumsBeside(kernels::ConstMatrix m, std::size_t i) {
  EdgeSums sums;
  for (std::size_t j = 0; j < m.columns; ++j) {
    if (j == i) continue;
    sums.row += std::fabs(m(i, j));
    sums.column += std::fabs(m(j, i));
  }
  return sums;
}

}  // namespace

double TMatrix::Norm(TNormType nt) const {
  double largest = 0;
  const auto keepLargest = [&](double x) {
    if (x > largest) largest = x;
  };
  return Guarded([&] {
    switch (nt) {
      case ntColwise:
        kernels::forEachColumn(View(), [&](std::size_t, std::span<const double> x) {
          keepLargest(kernels::sumOfMagnitudes(x));
        });
        break;
      case ntRowwise:
        kernels::forEachRow(View(), [&](std::size_t, std::span<const double> x) {
          keepLargest(kernels::sumOfMagnitudes(x));
        });
        break;
      case ntSpectral:
        throw EZELMatrixError("near singular covariance matrix");
      case ntFrobenius:
        return kernels::euclideanNorm(Elements());
    }
    return largest;
  });
}

bool TMatrix::Balance() {
  if (NrOfColumns() != NrOfRows()) return false;
  constexpr int kMostPasses = 1000;
  const auto m = View();
  double largest = 2;
  for (int pass = 0; pass < kMostPasses && largest >= 1.05; ++pass) {
    largest = 0;
    for (std::size_t i = 0; i < m.columns; ++i) {
      const EdgeSums sums = SumsBeside(m, i);
      if (sums.row == 0 || sums.column == 0) continue;
      const double f = std::sqrt(sums.row / sums.column);
      largest = std::max(largest, f);
      for (std::size_t j = 0; j < m.columns; ++j) {
        if (j == i) continue;
        m(i, j) /= f;
        m(j, i) *= f;
      }
    }
  }
  return true;
}

double TMatrix::Trace() const {
  if (NrOfColumns() != NrOfRows()) return 0;
  const auto m = View();
  // The diagonal is a row of a matrix with longer columns.
  const kernels::ConstMatrix diagonal{m.data, m.columns == 0 ? 0U : 1U, m.columns, m.stride + 1};
  double trace = 0;
  Guarded([&] {
    kernels::forEachRow(
        diagonal, [&](std::size_t, std::span<const double> x) { trace = kernels::sum(x).hi; });
  });
  return trace;
}

void TMatrix::Diff(int Order) {
  if (Order < 1 || Order > 10 || Order >= NrOfRows()) return;
  kernels::forEachColumn(View(), [&](std::size_t, std::span<double> x) {
    for (int k = 0; k < Order; ++k) {
      for (std::size_t r = 0; r + 1 < x.size(); ++r) x[r] = x[r + 1] - x[r];
    }
  });
  Resize(NrOfColumns(), NrOfRows() - Order);
}

double TMatrix::Sum(int LoC, int LoR, int HiC, int HiR) const {
  return WithCells(Clamped(LoC, LoR, HiC, HiR),
                   [](std::span<const double> x) { return kernels::sum(x).hi; });
}

double TMatrix::Correlate(const TMatrix* OtherMat) const {
  if (!OtherMat) return 0;
  if (!HasSizeOf(*OtherMat)) Raise<EZELMatrixError>("\": matrices do not match");
  if (NrOfElements() < 3) return 0;
  return kernels::pearsonCorrelation(Elements(), OtherMat->Elements());
}

}  // namespace zel
