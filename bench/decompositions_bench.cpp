// Decompositions of square matrices beside LAPACK.

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "bench/peers_blas.h"
#include "bench/rivals.h"
#include "zel/kernels/decompositions.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

/// Symmetric positive definite, by dominance of its diagonal.
const Data& positiveDefinite(std::size_t n) {
  static std::map<std::size_t, Data> all;
  Data& a = all[n];
  if (a.empty()) {
    a = normalData(n * n);
    for (std::size_t c = 0; c < n; ++c) {
      for (std::size_t r = c; r < n; ++r) a[r * n + c] = a[c * n + r];
      a[c * n + c] += 10 * static_cast<double>(n);
    }
  }
  return a;
}

kernels::Matrix view(Data& a, std::size_t n) { return {a.data(), n, n, n}; }

/// A copy of the data that is made anew for each run, in memory that is not: the next copy ends the
/// last.
Data& fresh(const Data& data) {
  static Data work;
  work.resize(data.size());
  std::copy(data.begin(), data.end(), work.begin());
  return work;
}

bool areClose(const Data& a, const Data& b) {
  double scale = 0;
  for (const double v : b) scale = std::max(scale, std::abs(v));
  return std::equal(a.begin(), a.end(), b.begin(),
                    [scale](double x, double y) { return std::abs(x - y) <= 1e-8 * scale; });
}

Data& zelLu(std::size_t n) {
  Data& a = fresh(normalData(n * n));
  std::vector<std::size_t> pivots(n);
  int sign = 0;
  const kernels::LuStatus status = kernels::luDecompose(view(a, n), pivots, sign);
  keep(static_cast<double>(status) + sign);
  return a;
}

/// As matrices call it: each step asks whether to go on, and the result serves as scratch memory.
Data& zelInverse(std::size_t n) {
  Data& a = fresh(normalData(n * n));
  static Data inverse;
  inverse.resize(n * n);
  std::vector<std::size_t> pivots(n);
  int sign = 0;
  const auto goOn = [] { return true; };
  const kernels::LuStatus status =
      kernels::luDecompose(view(a, n), pivots, sign, goOn, goOn, view(inverse, n));
  keep(static_cast<double>(status));
  keep(kernels::luInverse(view(a, n), pivots, view(inverse, n), goOn));
  return inverse;
}

Data& zelCholesky(std::size_t n) {
  Data& a = fresh(positiveDefinite(n));
  std::vector<double> diagonal(n);
  keep(kernels::choleskyDecompose(view(a, n), diagonal));
  for (std::size_t i = 0; i < n; ++i) a[i * n + i] = diagonal[i];
  return a;
}

Data& peer(const Data& data, std::size_t n, int (*run)(double*, int*, std::size_t)) {
  Data& a = fresh(data);
  std::vector<int> pivots(n);
  keep(static_cast<double>(run(a.data(), pivots.data(), n)));
  return a;
}

int cholesky(double* a, int*, std::size_t n) { return lapackCholesky(a, n); }

/// The factors depend on the order of pivots, which is the peer's own; their product is not.
double logDeterminant(const Data& a, std::size_t n) {
  double sum = 0;
  for (std::size_t i = 0; i < n; ++i) sum += std::log(std::abs(a[i * n + i]));
  return sum;
}

void add(std::size_t n) {
  const auto data = [n]() -> const Data& { return normalData(n * n); };
  compete("LU", n,
          [data, n] {
            const double zel = logDeterminant(zelLu(n), n);
            return std::abs(zel - logDeterminant(peer(data(), n, lapackLu), n)) <=
                   1e-10 * static_cast<double>(n);
          },
          {{"Zel", [n] { keep(zelLu(n)[0]); }},
           {"OpenBLAS", [data, n] { keep(peer(data(), n, lapackLu)[0]); }}});
  compete("inverse", n,
          [data, n] {
            const Data zel = zelInverse(n);
            return areClose(zel, peer(data(), n, lapackInverse));
          },
          {{"Zel", [n] { keep(zelInverse(n)[0]); }},
           {"OpenBLAS", [data, n] { keep(peer(data(), n, lapackInverse)[0]); }}});
  compete("Cholesky", n,
          [n] {
            Data zel = zelCholesky(n);  // L above the diagonal, the peer's below it
            for (std::size_t c = 0; c < n; ++c) {
              for (std::size_t r = c + 1; r < n; ++r) zel[c * n + r] = zel[r * n + c];
            }
            Data other = peer(positiveDefinite(n), n, cholesky);
            for (std::size_t c = 0; c < n; ++c) {
              for (std::size_t r = c + 1; r < n; ++r) other[r * n + c] = zel[r * n + c];
            }
            return areClose(zel, other);
          },
          {{"Zel", [n] { keep(zelCholesky(n)[0]); }},
           {"OpenBLAS", [n] { keep(peer(positiveDefinite(n), n, cholesky)[0]); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {100u, 500u, 1000u}) add(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
