#include "zel/kernels/svd.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "zel/kernels/bidiagonal.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/scratch.h"

namespace zel::kernels {

namespace {

constexpr int kMostIterations = 30;
// Sweeps of rotations that are collected before they reach the columns of U and V.
constexpr std::size_t kMostSweeps = 8;

/// sqrt(a^2 + b^2) without overflow; unlike the library function the same on every machine.
double hypotenuse(double a, double b) {
  const double big = std::max(std::abs(a), std::abs(b));
  const double small = std::min(std::abs(a), std::abs(b));
  if (big == 0) return 0;
  const double ratio = small / big;
  return big * std::sqrt(1 + ratio * ratio);
}

struct Rotation {
  double c = 1;
  double s = 0;
  double length = 0;

  /// The one that turns (a, b) into (length, 0).
  Rotation(double a, double b) : length(hypotenuse(a, b)) {
    if (length == 0) return;
    c = a / length;
    s = b / length;
  }
};

/// QR iterations on a bidiagonal matrix, whose rotations go to the columns of U and V if these are
/// wanted.
class Diagonalisation {
 public:
  /// @param rotations  4 * kMostSweeps * columns numbers of scratch memory; null: u and v are not
  ///   wanted
  Diagonalisation(const Bidiagonal& b, std::size_t columns, Matrix u, Matrix v, double* rotations)
      : d_(b.diagonal), e_(b.above), columns_(columns), u_(u), v_(v), rotations_(rotations) {
    double norm = 0;
    for (std::size_t i = 0; i < columns; ++i) {
      norm = std::max(norm, std::abs(d_[i]) + std::abs(e_[i]));
    }
    negligible_ = norm * (std::numeric_limits<double>::epsilon() / 2);
  }

  /// Carries out the rotations that have been collected.
  void flush() {
    rotateColumns(v_, {right_, sweeps_});
    rotateColumns(u_, {left_, sweeps_});
    sweeps_ = 0;
  }

  /// Isolates element k of the diagonal, those after it being isolated.
  /// @return false if that takes too many iterations
  bool isolate(std::size_t k) {
    for (int iteration = 0;; ++iteration) {
      std::size_t l = k;
      while (l > 0 && std::abs(e_[l]) > negligible_ && std::abs(d_[l - 1]) > negligible_) --l;
      if (l > 0 && std::abs(e_[l]) > negligible_) cancel(l, k);
      const bool isConverged = l == k;
      if (isConverged || iteration == kMostIterations) return isConverged;
      sweep(l, k);
    }
  }

 private:
  /// d[l - 1] is negligible, so rotations of rows l - 1 and l .. k push e[l] out of the matrix.
  void cancel(std::size_t l, std::size_t k) {
    double f = e_[l];
    e_[l] = 0;
    for (std::size_t i = l; i <= k && std::abs(f) > negligible_; ++i) {
      const Rotation r(d_[i], f);
      d_[i] = r.length;
      if (i < k) {
        f = -r.s * e_[i + 1];
        e_[i + 1] *= r.c;
      }
      if (rotations_ == nullptr) continue;
      flush();
      double* x = u_.column(l - 1);
      double* y = u_.column(i);
      for (std::size_t row = 0; row < u_.rows; ++row) {
        const double old = x[row];
        x[row] = r.c * old - r.s * y[row];
        y[row] = r.c * y[row] + r.s * old;
      }
    }
  }

  /// One implicit QR step on rows l..k with the eigenvalue of the trailing 2 x 2 block of B^T B
  /// that is nearer to its last element as the shift.
  void sweep(std::size_t l, std::size_t k) {
    double x = d_[l];
    double y = d_[k - 1];
    double z = d_[k];
    double g = k - 1 > l ? e_[k - 1] : 0;
    double h = e_[k];
    double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
    f = ((x - z) * (x + z) + h * (y / (f + std::copysign(hypotenuse(f, 1), f)) - h)) / x;
    h = e_[l + 1];
    // Four series of numbers: cosines and sines of the rotations of V and of U.
    double* const series = rotations_ + sweeps_ * 4 * columns_;
    for (std::size_t j = l; j < k; ++j) {
      // f and h: what the right rotation of columns j and j + 1 brings together.
      const Rotation right(f, h);
      if (j > l) e_[j] = right.length;
      f = right.c * x + right.s * e_[j + 1];
      g = right.c * e_[j + 1] - right.s * x;
      h = right.s * d_[j + 1];
      y = right.c * d_[j + 1];
      const Rotation left(f, h);
      d_[j] = left.length;
      f = left.c * g + left.s * y;
      x = left.c * y - left.s * g;
      if (j + 1 < k) {
        h = left.s * e_[j + 2];
        e_[j + 2] *= left.c;
      }
      if (rotations_ != nullptr) {
        series[j] = right.c;
        series[columns_ + j] = right.s;
        series[2 * columns_ + j] = left.c;
        series[3 * columns_ + j] = left.s;
      }
      e_[j + 1] = f;
      d_[j + 1] = x;
    }
    if (rotations_ == nullptr) return;
    const double* const right = series + l;
    const double* const left = right + 2 * columns_;
    right_[sweeps_] = {l, k - l, right, right + columns_};
    left_[sweeps_] = {l, k - l, left, left + columns_};
    if (++sweeps_ == kMostSweeps) flush();
  }

  double* d_;
  double* e_;
  std::size_t columns_;
  Matrix u_;
  Matrix v_;
  double* rotations_;
  std::size_t sweeps_ = 0;
  RotationSweep right_[kMostSweeps];
  RotationSweep left_[kMostSweeps];
  double negligible_ = 0;
};

SvdStatus decompose(Matrix a, std::span<double> w, Matrix v, Poll step) {
  const std::size_t n = a.columns;
  const bool isWanted = v.data != nullptr;
  const Scratch scratch(3 * n + std::max(n + a.rows, isWanted ? 4 * kMostSweeps * n : 0));
  const Bidiagonal b{w.data(), scratch.data(), scratch.data() + n, scratch.data() + 2 * n};
  double* const work = scratch.data() + 3 * n;

  // An exact factor keeps the squares of the values that matter in range. What falls below the
  // range of doubles is far below the roundoff of the rest.
  const std::optional<int> found = extremeExponent(a);
  if (!found) return SvdStatus::notConverged;
  const int exponent = *found;
  scaleByPower(a, -exponent);

  if (!reduceToBidiagonal(a, v, b, work, step)) return SvdStatus::stopped;
  if (isWanted) {
    if (!multiplyReflections(v, 1, b.right, step)) return SvdStatus::stopped;
    if (!multiplyReflections(a, 0, b.left, step)) return SvdStatus::stopped;
  } else {
    for (std::size_t i = 0; i < 2 * n; ++i) {
      if (!step()) return SvdStatus::stopped;
    }
  }
  Diagonalisation diagonalisation(b, n, a, v, isWanted ? work : nullptr);
  bool isConverged = true;
  for (std::size_t k = n; k-- > 0;) {
    if (!step()) return SvdStatus::stopped;
    isConverged &= diagonalisation.isolate(k);
  }
  if (isWanted) diagonalisation.flush();
  for (std::size_t k = 0; k < n; ++k) {
    if (std::signbit(w[k]) && isWanted) {
      for (double& x : v[k]) x = -x;
    }
    w[k] = std::ldexp(std::abs(w[k]), exponent);
  }
  return isConverged ? SvdStatus::done : SvdStatus::notConverged;
}

}  // namespace

SvdStatus singularValueDecompose(Matrix a, std::span<double> w, Matrix v, Poll step) {
  return decompose(a, w, v, step);
}

SvdStatus singularValues(Matrix a, std::span<double> w, Poll step) {
  return decompose(a, w, {}, step);
}

}  // namespace zel::kernels
