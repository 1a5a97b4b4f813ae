// TMatrix: inverse, decompositions, determinant.
#include "zel/kernels/decompositions.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zel/base/progress.h"
#include "zel/kernels/products.h"
#include "zel/matrix/TMatrix.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/rules_impl.h"

namespace zel {

using kernels::LuStatus;

namespace {

constexpr auto kMayGoOn = [] { return !AbortMathProc; };

constexpr auto kStepAndAsk = [] {
  ProgressStep();
  return kMayGoOn();
};

/// sign times the product of the diagonal, upwards. Only if that leaves the normal range, the
/// exponents are kept apart.
double DiagonalProduct(double sign, kernels::ConstMatrix m) {
  double product = sign;
  for (std::size_t i = 0; i < m.columns; ++i) product *= m(i, i);
  if (std::isnormal(product)) return product;
  product = sign;
  int exponent = 0;
  for (std::size_t i = 0; i < m.columns; ++i) {
    int e = 0;
    const double factor = std::frexp(m(i, i), &e);
    exponent += e;
    product = std::frexp(product * factor, &e);
    exponent += e;
  }
  return std::ldexp(product, exponent);
}

}  // namespace

bool detail::InvertCells(TDouble2DArray& cells) {
  const std::size_t n = cells.Length(0);
  TDouble2DArray inverse(n, n);
  const auto view = [n](TDouble2DArray& a) { return kernels::Matrix{a.data(), n, n, n}; };
  std::vector<std::size_t> pivots(n);
  int sign = 1;
  const auto status =
      kernels::luDecompose(view(cells), pivots, sign, kMayGoOn, kStepAndAsk, view(inverse));
  if (status != LuStatus::done ||
      !kernels::luInverse(view(cells), pivots, view(inverse), kStepAndAsk)) {
    return false;
  }
  cells.swap(inverse);
  return true;
}

bool TMatrix::Invert() {
  const int n = NrOfColumns();
  if (n != NrOfRows() || n < 1) return false;
  // On a copy, so that a lack of storage or a hook that throws leaves the matrix as it was.
  TDouble2DArray cells;
  const bool done = Guarded([&] {
    CopyToArray(cells, 0, 0, 0, 0);
    return detail::InvertCells(cells);
  });
  TakeOver(cells, n, n);
  Changed();
  return done;
}

bool TMatrix::LUdecomposition(TMatrix* MatL, TMatrix* MatU, int& NumPerm) const {
  NumPerm = 1;
  const int n = NrOfColumns();
  if (n != NrOfRows() || !MatL || !MatU || MatL == MatU || MatL == this) return false;
  MatL->ResizeAndClear(n, n);
  MatU->Clone(this);
  const auto lower = MatL->View();
  const auto upper = MatU->View();
  const LuStatus status = Guarded([&] {
    std::vector<std::size_t> pivots(upper.columns);
    return kernels::luDecompose(upper, pivots, NumPerm);
  });
  if (status == LuStatus::done) {
    for (std::size_t c = 0; c < upper.columns; ++c) {
      lower(c, c) = 1;
      for (std::size_t r = c + 1; r < upper.rows; ++r) {
        lower(r, c) = upper(r, c);
        upper(r, c) = 0;
      }
    }
  }
  MatL->Changed();
  MatU->Changed();
  return status == LuStatus::done;
}

bool TMatrix::CholeskyDecomp(TMatrix* MatL) {
  const int n = NrOfColumns();
  if (n != NrOfRows() || !MatL || MatL == this) return false;
  std::vector<double> diagonal;
  Guarded([&] { diagonal.resize(static_cast<std::size_t>(n)); });
  MatL->ResizeAndClear(n, n);
  const auto upper = View();
  const bool positive = Guarded([&] { return kernels::choleskyDecompose(upper, diagonal); });
  const auto lower = MatL->View();
  kernels::transpose(upper, lower);
  for (std::size_t c = 0; c < lower.columns; ++c) {
    std::fill_n(lower.column(c), c, 0.0);
    lower(c, c) = diagonal[c];
  }
  MatL->Changed();
  return positive;
}

double TMatrix::Determinant() const {
  if (NrOfColumns() != NrOfRows()) return 0;
  return Guarded([&] {
    TDouble2DArray factors;
    CopyToArray(factors, 0, 0, 0, 0);
    const auto n = static_cast<std::size_t>(NrOfColumns());
    const kernels::Matrix view{factors.data(), n, n, n};
    std::vector<std::size_t> pivots(n);
    int sign = 1;
    const LuStatus status = kernels::luDecompose(view, pivots, sign);
    return status == LuStatus::done ? DiagonalProduct(sign, view) : 0.0;
  });
}

}  // namespace zel
