// Eigenvectors, singular values, least squares and covariances beside Eigen.

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <vector>

#include "bench/peers_multivariate.h"
#include "bench/rivals.h"
#include "zel/analysis/multivariate.h"
#include "zel/kernels/jacobi.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/svd.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

kernels::ConstMatrix view(const Data& a, std::size_t columns) {
  const std::size_t rows = a.size() / columns;
  return {a.data(), rows, columns, rows};
}
kernels::Matrix view(Data& a, std::size_t columns) {
  const std::size_t rows = a.size() / columns;
  return {a.data(), rows, columns, rows};
}

bool areClose(const Data& a, const Data& b) {
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](double x, double y) { return std::abs(x - y) <= 1e-9 * (1 + std::abs(y)); });
}

/// Covariances of normal deviates, as in a principal component analysis.
const Data& symmetric(std::size_t n) {
  static std::map<std::size_t, Data> all;
  Data& a = all[n];
  if (a.empty()) {
    a.resize(n * n);
    eigenCovariance(normalData(2 * n * n).data(), static_cast<long>(2 * n), static_cast<long>(n),
                    a.data());
    for (std::size_t c = 0; c < n; ++c) {
      for (std::size_t r = 0; r < c; ++r) a[c * n + r] = a[r * n + c];
    }
  }
  return a;
}

double zelSymmetric(std::size_t n) {
  Data a = symmetric(n), values(n), vectors(n * n);
  keep(static_cast<double>(kernels::jacobiEigenvectors(view(a, n), values, view(vectors, n))));
  return *std::max_element(values.begin(), values.end());
}

double zelSvd(std::size_t rows, std::size_t columns) {
  Data a = normalData(rows * columns), w(columns), v(columns * columns);
  keep(static_cast<double>(kernels::singularValueDecompose(view(a, columns), w, view(v, columns))));
  return *std::max_element(w.begin(), w.end());
}

/// Two functions that return numbers.
void add(const std::string& kernel, std::size_t n, std::function<Data()> zel,
         std::function<Data()> eigen) {
  compete(kernel, n, [zel, eigen] { return areClose(zel(), eigen()); },
          {{"Zel", [zel] { keep(zel()[0]); }}, {"Eigen", [eigen] { keep(eigen()[0]); }}});
}

void addDecompositions() {
  for (const std::size_t n : {100u, 300u}) {
    add(
        "symmetric eigenvectors", n, [n] { return Data{zelSymmetric(n)}; },
        [n] { return Data{eigenSymmetric(symmetric(n).data(), static_cast<long>(n))}; });
  }
  const auto svd = [](const std::string& kernel, std::size_t n, std::size_t columns) {
    add(
        kernel, n, [n, columns] { return Data{zelSvd(n, columns)}; },
        [n, columns] {
          return Data{eigenSvd(normalData(n * columns).data(), static_cast<long>(n),
                               static_cast<long>(columns))};
        });
  };
  svd("SVD", 100, 100);
  svd("SVD", 300, 300);
  svd("SVD of 50 columns", 10000, 50);
}

void addLeastSquares() {
  constexpr std::size_t kColumns = 20;
  constexpr std::size_t kRows = 10000;
  add(
      "least squares of 20 columns", kRows,
      [] {
        Data x(kColumns);
        bool isNearSingular = false;
        const Data& b = normalData(kRows);
        keep(kernels::svdLeastSquares(view(normalData(kRows * kColumns), kColumns), b, x, {},
                                      isNearSingular));
        return x;
      },
      [] {
        Data x(kColumns);
        eigenLeastSquares(normalData(kRows * kColumns).data(), kRows, kColumns,
                          normalData(kRows).data(), x.data());
        return x;
      });
  // The peer takes time and memory with the square of the rows.
  constexpr std::size_t kFewer = 1000;
  add(
      "pseudo-inverse of 20 columns", kFewer,
      [] {
        Data inverse(kFewer * kColumns);
        keep(kernels::pseudoInverse(view(normalData(kFewer * kColumns), kColumns), 0,
                                    view(inverse, kFewer)));
        return inverse;
      },
      [] {
        Data inverse(kFewer * kColumns);
        eigenPseudoInverse(normalData(kFewer * kColumns).data(), kFewer, kColumns, inverse.data());
        return inverse;
      });
}

void addCovariances() {
  constexpr int kRows = 100000;
  constexpr int kColumns = 50;
  struct Matrices {
    TMatrix data, result;
    Matrices() {
      data.Resize(kColumns, kRows);
      std::ranges::copy(normalData(std::size_t{kRows} * kColumns), data.data());
      result.Resize(kColumns, kColumns);
    }
  };
  const auto zel = [] {
    static Matrices m;
    keep(CalcCovar(&m.data, &m.result, 0, 0, 0, 0, 1));
    Data lower(m.result.begin(), m.result.end());
    for (std::size_t c = 0; c < kColumns; ++c) {
      for (std::size_t r = 0; r < c; ++r) lower[c * kColumns + r] = 0;
    }
    return lower;
  };
  add("covariances of 50 columns", kRows, zel, [] {
    Data result(kColumns * kColumns);
    eigenCovariance(normalData(std::size_t{kRows} * kColumns).data(), kRows, kColumns,
                    result.data());
    return result;
  });
}

[[maybe_unused]] const bool kRegistered = [] {
  addDecompositions();
  addLeastSquares();
  addCovariances();
  return true;
}();

}  // namespace
}  // namespace zel::bench
