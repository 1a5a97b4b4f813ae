#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "zel/kernels/decompositions.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/lu_inverse.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_LU_INVERSE_ONCE
#define ZEL_KERNELS_LU_INVERSE_ONCE
namespace zel::kernels::lu {

// Doubles for the packed factors and the right-hand sides, for any width of vectors.
inline std::size_t inverseWorkspace(std::size_t n) {
  constexpr std::size_t kWidestPanel = 96;
  return n * (n + 1) / 2 + (n + 4) * (n + 4) / 2 + 4 * (n + 4) + n * kWidestPanel;
}

}  // namespace zel::kernels::lu
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/triangular-inl.h"

// Right-hand sides that are solved together. A row of the back substitution reads all solutions
// below it once, and its subtractions form one chain, so only other right-hand sides can hide the
// latency; more of them would leave the second-level cache.
constexpr std::size_t kPanelVecs = 2 * kVecs;
constexpr std::size_t kPanel = kPanelVecs * kLanes;

class Inversion {
 public:
  Inversion(ConstMatrix lu, double* work)
      : lu_(lu),
        n_(lu.rows),
        lower_(work),
        upper_(lower_ + packedTriangle(n_)),
        b_(upper_ + n_ * (n_ + 1) / 2) {
    packTriangle(
        n_, [&](std::size_t i, std::size_t k) { return lu(i, k); }, lower_);
    // Row i of U from the diagonal on.
    for (std::size_t c = 0; c < n_; ++c) {
      const double* x = lu.column(c);
      for (std::size_t i = 0; i <= c; ++i) upperRow(i)[c - i] = x[i];
    }
    for (std::size_t c = 0; c < n_; ++c) {
      for (std::size_t i = c + 1; i < n_; ++i) isFinite_ &= std::isfinite(lu(i, c));
    }
  }

  /// Columns first..first+columns-1 of U^-1 L^-1, as rows of kPanel values.
  const double* solve(std::size_t first, std::size_t columns) {
    for (std::size_t i = 0; i < n_ * kPanel; ++i) b_[i] = 0;
    for (std::size_t c = 0; c < columns; ++c) b_[(first + c) * kPanel + c] = 1;
    if (isFinite_) {
      for (std::size_t c = 0; c < kPanel; c += kSliver) {
        solveTriangleFrom(first, b_ + c);
      }
    } else {
      for (std::size_t c = 0; c < columns; ++c) substituteForward(first + c, b_ + c);
    }
    for (std::size_t i = n_; i-- > 0;) substituteBack(i);
    return b_;
  }

 private:
  double* upperRow(std::size_t i) { return upper_ + i * n_ - i * (i - 1) / 2; }

  /// Rows before `first` are zero, and what they would subtract from the others is an exact zero.
  void solveTriangleFrom(std::size_t first, double* b) {
    solveTriangle(lower_, first / kStep * kStep, n_, nullptr, b, kPanel);
  }

  /// One column, without touching the multipliers that meet its leading zeros: not-a-number and
  /// infinity do not vanish when multiplied by zero.
  void substituteForward(std::size_t first, double* b) {
    for (std::size_t i = first + 1; i < n_; ++i) {
      double s = b[i * kPanel];
      for (std::size_t k = first; k < i; ++k) s = std::fma(-lu_(i, k), b[k * kPanel], s);
      b[i * kPanel] = s;
    }
  }

  void substituteBack(std::size_t i) {
    const Tag d;
    const double* HWY_RESTRICT u = upperRow(i);
    double* HWY_RESTRICT row = b_ + i * kPanel;
    const double* HWY_RESTRICT x = row + kPanel;
    const std::size_t inner = n_ - i;
    Vec s[kPanelVecs];
    for (std::size_t v = 0; v < kPanelVecs; ++v) s[v] = hn::LoadU(d, row + v * kLanes);
    for (std::size_t k = 1; k < inner; ++k) {
      const Vec factor = hn::Set(d, u[k]);
      for (std::size_t v = 0; v < kPanelVecs; ++v) {
        s[v] = fusedSubtract(factor, hn::LoadU(d, x + v * kLanes), s[v]);
      }
      x += kPanel;
    }
    const Vec divisor = hn::Set(d, u[0]);
    for (std::size_t v = 0; v < kPanelVecs; ++v) {
      hn::StoreU(hn::Div(s[v], divisor), d, row + v * kLanes);
    }
  }

  ConstMatrix lu_;
  std::size_t n_;
  double* lower_;
  double* upper_;
  double* b_;
  bool isFinite_ = true;
};

bool invert(ConstMatrix lu, const std::size_t* unit, double* work, Matrix inverse, Poll step) {
  const std::size_t n = lu.rows;
  Inversion inversion(lu, work);
  for (std::size_t first = 0; first < n; first += kPanel) {
    const std::size_t columns = HWY_MIN(kPanel, n - first);
    for (std::size_t c = 0; c < columns; ++c) {
      if (!step()) return false;
    }
    const double* x = inversion.solve(first, columns);
    for (std::size_t c = 0; c < columns; ++c) {
      double* to = inverse.column(unit[first + c]);
      for (std::size_t i = 0; i < n; ++i) to[i] = x[i * kPanel + c];
    }
  }
  return true;
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(invert);

bool luInverse(ConstMatrix lu, std::span<const std::size_t> pivots, Matrix inverse, Poll step) {
  const std::size_t n = lu.rows;
  const auto work = std::make_unique_for_overwrite<double[]>(lu::inverseWorkspace(n));
  // The exchanges turn unit vector unit[i] into unit vector i, whose leading zeros are known.
  const auto unit = std::make_unique_for_overwrite<std::size_t[]>(n);
  for (std::size_t i = 0; i < n; ++i) unit[i] = i;
  for (std::size_t i = 0; i < n; ++i) std::swap(unit[i], unit[pivots[i]]);
  return HWY_DYNAMIC_DISPATCH(invert)(lu, unit.get(), work.get(), inverse, step);
}

}  // namespace zel::kernels
#endif
