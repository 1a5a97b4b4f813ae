#include "zel/kernels/least_squares.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "zel/kernels/products.h"
#include "zel/kernels/residuals.h"
#include "zel/kernels/row_qr.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/svd.h"

namespace zel::kernels {

namespace {

/// A 2^-exponent = Q (U; 0) diag(w) V^T, where U and V are square with the columns of A.
class Decomposition {
 public:
  Decomposition(ConstMatrix a, int exponent)
      : rows_(a.rows),
        n_(a.columns),
        exponent_(exponent),
        storage_(n_ * (rows_ + 2 * n_ + RowQr::blocks(rows_, n_) + 3)),
        reflections_{storage_.data(), rows_, n_, rows_},
        u_{storage_.data() + rows_ * n_, n_, n_, n_},
        v_{u_.data + n_ * n_, n_, n_, n_},
        w_(v_.data + n_ * n_, n_),
        work_{w_.data() + n_, w_.data() + 2 * n_},
        q_(scaledCopy(a), {w_.data() + 3 * n_, n_ * RowQr::blocks(rows_, n_)}, u_),
        isDone_(singularValueDecompose(u_, w_, v_) == SvdStatus::done) {}

  [[nodiscard]] bool isDone() const { return isDone_; }
  [[nodiscard]] std::size_t columns() const { return n_; }
  [[nodiscard]] int exponent() const { return exponent_; }
  [[nodiscard]] double largest() const {
    return n_ == 0 ? 0 : *std::max_element(w_.begin(), w_.end());
  }
  /// Sets the singular values below the limit to 0.
  /// @return whether there were any
  bool drop(double limit) {
    bool any = false;
    for (double& w : w_) {
      if (w < limit) {
        w = 0;
        any = true;
      }
    }
    return any;
  }

  /// One step to the solution of r + A x = f, A^T r = g, for the scaled A.
  /// @param f  taken over by the change of r
  /// @param g  empty means 0
  /// @param x  takes the change of x
  void solve(std::span<double> f, std::span<const double> g, std::span<double> x) {
    std::vector<double> top(n_, 0.0);
    const Matrix head{top.data(), n_, 1, n_};
    const Matrix rest{f.data(), f.size(), 1, f.size()};
    q_.applyTransposed(head, rest);
    double* const inside = work_[0];  // coordinates in the directions of U
    double* const fromG = work_[1];
    multiplyVector(u_, Factor::transposed, top, {inside, n_});
    multiplyVector(u_, Factor::plain, {inside, n_}, x);
    for (std::size_t i = 0; i < n_; ++i) top[i] -= x[i];
    if (!g.empty()) {
      multiplyVector(v_, Factor::transposed, g, {fromG, n_});
      for (std::size_t k = 0; k < n_; ++k) {
        fromG[k] = w_[k] == 0 ? 0 : fromG[k] / w_[k];
        inside[k] -= fromG[k];
      }
      multiplyVector(u_, Factor::plain, {fromG, n_}, x);
      for (std::size_t i = 0; i < n_; ++i) top[i] += x[i];
    }
    for (std::size_t k = 0; k < n_; ++k) inside[k] = w_[k] == 0 ? 0 : inside[k] / w_[k];
    multiplyVector(v_, Factor::plain, {inside, n_}, x);
    q_.apply(head, rest);
  }

  void errorFactors(std::span<double> c) const {
    kernels::errorFactors(v_, w_, c);
    for (double& x : c) x = std::ldexp(x, -exponent_);
  }

  /// Transposed pseudo-inverse: Q (U diag(1 / w) V^T; 0).
  void invert(Matrix transposed) {
    for (std::size_t k = 0; k < n_; ++k) {
      for (double& x : v_[k]) x = w_[k] == 0 ? 0 : x / w_[k];
    }
    std::vector<double> top(n_ * n_);
    const Matrix head{top.data(), n_, n_, n_};
    multiply(u_, Factor::plain, v_, Factor::transposed, head);
    for (std::size_t c = 0; c < n_; ++c) std::fill_n(transposed.column(c), rows_, 0.0);
    q_.apply(head, transposed);
  }

 private:
  [[nodiscard]] Matrix scaledCopy(ConstMatrix a) const {
    for (std::size_t c = 0; c < n_; ++c) std::copy_n(a.column(c), rows_, reflections_.column(c));
    scaleByPower(reflections_, -exponent_);
    return reflections_;
  }

  std::size_t rows_;
  std::size_t n_;
  int exponent_;
  Scratch storage_;
  Matrix reflections_;
  Matrix u_;
  Matrix v_;
  std::span<double> w_;
  double* work_[2];
  RowQr q_;
  bool isDone_;
};

double largestMagnitude(std::span<const double> x) {
  double big = 0;
  for (const double v : x) big = std::max(big, std::abs(v));
  return big;
}

bool isFinite(std::span<const double> x) {
  return std::all_of(x.begin(), x.end(), [](double v) { return std::isfinite(v); });
}

/// Improves a solution x with residual r as long as the corrections shrink.
void refine(Decomposition& a, ConstMatrix matrix, std::span<const double> b, std::span<double> r,
            std::span<double> x) {
  constexpr int kMostSteps = 4;
  std::vector<double> f(b.size());
  std::vector<double> g(x.size());
  std::vector<double> change(x.size());
  double last = std::numeric_limits<double>::infinity();
  for (int step = 0; step < kMostSteps; ++step) {
    accurateResidual(matrix, x, b, r, f);
    for (std::size_t c = 0; c < g.size(); ++c) g[c] = -sumOfProducts(matrix[c], r).hi;
    if (!isFinite(f) || !isFinite(g)) return;
    a.solve(f, g, change);
    const double largest = largestMagnitude(x);
    double relative = 0;
    for (std::size_t c = 0; c < x.size(); ++c) {
      const double size = std::max(std::abs(x[c]), 1e-16 * largest);
      if (change[c] != 0) relative = std::max(relative, std::abs(change[c]) / size);
    }
    if (!(relative < last / 4) || !isFinite(change)) return;
    for (std::size_t c = 0; c < x.size(); ++c) x[c] += change[c];
    for (std::size_t i = 0; i < r.size(); ++i) r[i] += f[i];
    // The next correction would be smaller by at least this factor, and so negligible.
    if (relative <= 1e-9) return;
    last = relative;
  }
}

}  // namespace

void errorFactors(ConstMatrix v, std::span<const double> w, std::span<double> c) {
  for (std::size_t j = 0; j < c.size(); ++j) {
    double sum = 0;
    for (std::size_t k = 0; k < w.size(); ++k) {
      if (w[k] == 0) continue;
      const double ratio = v(j, k) / w[k];
      sum += ratio * ratio;
    }
    c[j] = std::sqrt(sum);
  }
}

bool svdLeastSquares(ConstMatrix a, std::span<const double> b, std::span<double> x,
                     std::span<double> errorFactors, bool& nearSingular) {
  nearSingular = false;
  const std::optional<int> exponent = extremeExponent(a);
  if (!exponent || !isFinite(b)) return false;
  Decomposition decomposition(a, *exponent);
  if (!decomposition.isDone()) return false;
  const bool isNearSingular =
      decomposition.drop(kNegligibleSingularValue * decomposition.largest());
  std::vector<double> r(b.begin(), b.end());
  std::vector<double> solution(x.size());
  decomposition.solve(r, {}, solution);
  // Scaled matrices are too far from 1 for error terms of products.
  if (*exponent == 0) refine(decomposition, a, b, r, solution);
  nearSingular = isNearSingular;
  for (std::size_t c = 0; c < x.size(); ++c) x[c] = std::ldexp(solution[c], -*exponent);
  if (!errorFactors.empty()) decomposition.errorFactors(errorFactors);
  return true;
}

bool pseudoInverse(ConstMatrix a, double tolerance, Matrix p) {
  const std::optional<int> exponent = extremeExponent(a);
  if (!exponent) return false;
  Decomposition decomposition(a, *exponent);
  if (!decomposition.isDone()) return false;
  const double limit = tolerance == 0 ? static_cast<double>(std::max(a.rows, a.columns)) *
                                            decomposition.largest() * 1.2e-16
                                      : std::ldexp(tolerance, -*exponent);
  decomposition.drop(limit);
  std::vector<double> transposed(a.rows * a.columns);
  const Matrix result{transposed.data(), a.rows, a.columns, a.rows};
  decomposition.invert(result);
  scaleByPower(result, -*exponent);
  transpose(result, p);
  return true;
}

}  // namespace zel::kernels
