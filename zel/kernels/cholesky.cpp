#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "zel/kernels/decompositions.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/cholesky.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_CHOLESKY_ONCE
#define ZEL_KERNELS_CHOLESKY_ONCE
namespace zel::kernels::cholesky {

// Rows of L^T that are finished before they are subtracted from the rest.
constexpr std::size_t kPanel = 64;
// Slivers of the widest vectors.
constexpr std::size_t kWidestSliver = 24;

struct Workspace {
  static std::size_t length(std::size_t n) {
    return (n + 2 * kWidestSliver) * kPanel + 3 * kPanel * kPanel;
  }
  explicit Workspace(double* at)
      : block(at), triangle(block + kPanel * kPanel), slivers(triangle + 2 * kPanel * kPanel) {}

  double* block;     // diagonal block, stored by rows
  double* triangle;  // the same, packed
  double* slivers;   // the rest of the rows
};

}  // namespace zel::kernels::cholesky
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/fused_multiply_add-inl.h"

#include "zel/kernels/triangular-inl.h"

using cholesky::kPanel;

/// Upper triangle U of a diagonal block A = U^T U, in place, stored by rows of kPanel values.
bool factorBlock(std::size_t n, double* HWY_RESTRICT u) {
  const Tag d;
  bool isPositive = true;
  for (std::size_t k = 0; k < n; ++k) {
    double* HWY_RESTRICT x = u + k * kPanel;
    isPositive &= x[k] > 0;
    x[k] = x[k] > 0 ? std::sqrt(x[k]) : std::numeric_limits<double>::quiet_NaN();
    for (std::size_t j = k + 1; j < n; ++j) x[j] /= x[k];
    for (std::size_t i = k + 1; i < n; ++i) {
      const Vec factor = hn::Set(d, x[i]);
      double* HWY_RESTRICT y = u + i * kPanel;
      // What lies before the diagonal is not used; starting there keeps the vectors whole.
      for (std::size_t j = i / kLanes * kLanes; j < n; j += kLanes) {
        hn::StoreU(fusedSubtract(factor, hn::LoadU(d, x + j), hn::LoadU(d, y + j)), d, y + j);
      }
    }
  }
  return isPositive;
}

/// a is symmetric by its upper triangle; its strict lower triangle is neither read nor written.
bool choleskyFactor(Matrix a, double* storage) {
  const cholesky::Workspace work(storage);
  const std::size_t n = a.rows;
  bool isPositive = true;
  for (std::size_t at = 0; at < n; at += kPanel) {
    const std::size_t width = HWY_MIN(kPanel, n - at);
    const Matrix block = a.block(at, at, width, width);
    for (std::size_t i = 0; i < width; ++i) {
      for (std::size_t j = 0; j < kPanel; ++j) {
        work.block[i * kPanel + j] = j >= i && j < width ? block(i, j) : 0;
      }
    }
    isPositive &= factorBlock(width, work.block);
    double diagonal[kPanel];
    for (std::size_t j = 0; j < width; ++j) {
      for (std::size_t i = 0; i <= j; ++i) block(i, j) = work.block[i * kPanel + j];
      diagonal[j] = block(j, j);
    }
    packTriangle<4>(
        width, [&](std::size_t i, std::size_t k) { return work.block[k * kPanel + i]; },
        work.triangle);

    const std::size_t first = at + width;
    const std::size_t rest = n - first;
    const Matrix rows = a.block(at, first, width, rest);
    const Matrix trailing = a.block(first, first, rest, rest);
    double* sliver = work.slivers;
    for (std::size_t c = 0; c < rest; c += kSliver, sliver += kSliver * width) {
      packColumns(rows, c, sliver);
      solveTriangle<4, kVecs>(work.triangle, 0, width, diagonal, sliver, kSliver);
      unpackColumns(sliver, rows, c);
      const std::size_t end = HWY_MIN(c + kSliver, rest);
      for (std::size_t i = 0; i <= c; i += kSliver) {
        for (std::size_t t = c; t < end; t += kTile) {
          const double* x = work.slivers + i * width;
          double* to = &trailing(i, t);
          if (i < c && t + kTile <= end) {
            subtractTile(x, kSliver, sliver + (t - c), width, to, a.stride);
          } else {
            subtractPartialTile(x, kSliver, sliver + (t - c), width, to, a.stride,
                                [i, t, end](std::size_t r, std::size_t s) {
                                  return t + s < end && i + r <= t + s;
                                });
          }
        }
      }
    }
  }
  return isPositive;
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(choleskyFactor);

bool choleskyDecompose(Matrix a, std::span<double> diagonal) {
  const Scratch work(cholesky::Workspace::length(a.rows));
  for (std::size_t c = 0; c < a.columns; ++c) {
    for (std::size_t r = c + 1; r < a.rows; ++r) a(c, r) = a(r, c);
  }
  // The diagonal of the matrix serves as work space and comes back afterwards.
  for (std::size_t i = 0; i < a.rows; ++i) diagonal[i] = a(i, i);
  const bool isPositive = HWY_DYNAMIC_DISPATCH(choleskyFactor)(a, work.data());
  for (std::size_t i = 0; i < a.rows; ++i) std::swap(diagonal[i], a(i, i));
  return isPositive;
}

}  // namespace zel::kernels
#endif
