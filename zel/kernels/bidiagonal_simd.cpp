#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "zel/kernels/bidiagonal.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/bidiagonal_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());
// Lanes of a sum, whatever the width of a vector.
constexpr std::size_t kSumLanes = 16;
constexpr std::size_t kSumVecs = kSumLanes / kLanes;

/// Sum of scale^2 x y; lane i takes the elements with index i modulo 16.
HWY_INLINE double dot(const double* HWY_RESTRICT x, const double* HWY_RESTRICT y, std::size_t n,
                      double scale = 1) {
  const Tag d;
  const Vec factor = hn::Set(d, scale);
  Vec s[kSumVecs];
  for (std::size_t v = 0; v < kSumVecs; ++v) s[v] = hn::Zero(d);
  const auto add = [&](const double* a, const double* b) HWY_ATTR {
    for (std::size_t v = 0; v < kSumVecs; ++v) {
      const Vec p = hn::Mul(factor, hn::LoadU(d, a + v * kLanes));
      s[v] = hn::Add(s[v], hn::Mul(p, hn::Mul(factor, hn::LoadU(d, b + v * kLanes))));
    }
  };
  std::size_t i = 0;
  for (; i + kSumLanes <= n; i += kSumLanes) add(x + i, y + i);
  if (i < n) {
    HWY_ALIGN double rest[2][kSumLanes] = {};
    std::copy(x + i, x + n, rest[0]);
    std::copy(y + i, y + n, rest[1]);
    add(rest[0], rest[1]);
  }
  HWY_ALIGN double lanes[kSumLanes];
  for (std::size_t v = 0; v < kSumVecs; ++v) hn::Store(s[v], d, lanes + v * kLanes);
  for (std::size_t width = kSumLanes / 2; width > 0; width /= 2) {
    for (std::size_t lane = 0; lane < width; ++lane) lanes[lane] += lanes[lane + width];
  }
  return lanes[0];
}

/// y -= f x
HWY_INLINE void subtract(double f, const double* HWY_RESTRICT x, double* HWY_RESTRICT y,
                         std::size_t n) {
  const Tag d;
  const Vec factor = hn::Set(d, f);
  std::size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    hn::StoreU(hn::Sub(hn::LoadU(d, y + i), hn::Mul(factor, hn::LoadU(d, x + i))), d, y + i);
  }
  for (; i < n; ++i) y[i] -= f * x[i];
}

/// x -> (1 - f v v^T) x
HWY_INLINE void reflect(double f, const double* HWY_RESTRICT v, double* HWY_RESTRICT x,
                        std::size_t n) {
  if (f != 0) subtract(f * dot(v, x, n), v, x, n);
}

/// Turns x into the vector v, v[0] = 1, of the reflection that maps it on a multiple of the first
/// unit vector.
/// @param image  takes that multiple
/// @return the factor f; 0 if x already is such a multiple
double makeReflection(double* x, std::size_t n, double& image) {
  image = x[0];
  double big = 0;
  for (std::size_t i = 1; i < n; ++i) big = std::max(big, std::abs(x[i]));
  x[0] = 1;
  if (big == 0) return 0;
  // Exact scaling, so that no square is lost.
  const int exponent = std::max(std::ilogb(std::max(big, std::abs(image))), -1000);
  const double scale = std::ldexp(1.0, -exponent);
  const double alpha = image * scale;
  const double norm = std::sqrt(alpha * alpha + dot(x + 1, x + 1, n - 1, scale));
  const double beta = alpha < 0 ? norm : -norm;
  for (std::size_t i = 1; i < n; ++i) x[i] = x[i] * scale / (alpha - beta);
  image = std::ldexp(beta, exponent);
  return (beta - alpha) / beta;
}

/// y = f times the sum of the columns of a, each times its element of v. Four columns share the
/// reading and writing of y.
void multiply(ConstMatrix a, const double* v, double f, double* HWY_RESTRICT y) {
  const Tag d;
  std::memset(y, 0, a.rows * sizeof(double));
  std::size_t c = 0;
  for (; c + 4 <= a.columns; c += 4) {
    const double* x[4] = {a.column(c), a.column(c + 1), a.column(c + 2), a.column(c + 3)};
    std::size_t i = 0;
    for (; i + kLanes <= a.rows; i += kLanes) {
      Vec s = hn::LoadU(d, y + i);
      for (std::size_t k = 0; k < 4; ++k) {
        s = hn::Add(s, hn::Mul(hn::LoadU(d, x[k] + i), hn::Set(d, v[c + k])));
      }
      hn::StoreU(s, d, y + i);
    }
    for (; i < a.rows; ++i) {
      for (std::size_t k = 0; k < 4; ++k) y[i] += x[k][i] * v[c + k];
    }
  }
  for (; c < a.columns; ++c) {
    for (std::size_t i = 0; i < a.rows; ++i) y[i] += a(i, c) * v[c];
  }
  for (std::size_t i = 0; i < a.rows; ++i) y[i] *= f;
}

bool reduce(Matrix a, Matrix v, const Bidiagonal& b, double* work, Poll step) {
  double* y = work;          // what the last right reflection still has to subtract: y row^T
  double* row = y + a.rows;  // its vector, or the row that is to become one
  bool isPending = false;
  if (a.columns > 0) b.above[0] = 0;
  for (std::size_t j = 0; j < a.columns; ++j) {
    if (!step()) return false;
    b.diagonal[j] = b.left[j] = b.right[j] = 0;
    if (j + 1 < a.columns) b.above[j + 1] = 0;
    if (j >= a.rows) continue;
    const std::size_t rows = a.rows - j;
    double* u = a.column(j) + j;
    if (isPending) subtract(row[j], y + j, u, rows);
    b.left[j] = makeReflection(u, rows, b.diagonal[j]);
    for (std::size_t c = j + 1; c < a.columns; ++c) {
      double* x = a.column(c) + j;
      if (isPending) subtract(row[c], y + j, x, rows);
      reflect(b.left[j], u, x, rows);
      row[c] = x[0];
    }
    if (j + 1 == a.columns) break;
    const std::size_t rest = a.columns - j - 1;
    b.right[j] = makeReflection(row + j + 1, rest, b.above[j + 1]);
    isPending = b.right[j] != 0;
    if (v.data != nullptr) std::copy(row + j + 1, row + a.columns, v.column(j) + j + 1);
    if (isPending) {
      multiply(a.block(j + 1, j + 1, rows - 1, rest), row + j + 1, b.right[j], y + j + 1);
    }
  }
  return true;
}

bool multiplyAll(Matrix x, std::size_t below, const double* factors, Poll step) {
  for (std::size_t j = x.columns; j-- > 0;) {
    if (!step()) return false;
    const std::size_t first = std::min(j + below, x.rows);
    const std::size_t rows = x.rows - first;
    double* v = x.column(j) + first;
    for (std::size_t c = j + 1; c < x.columns; ++c) {
      reflect(factors[j], v, x.column(c) + first, rows);
    }
    // The reflection of unit vector j.
    std::fill(x.column(j), v, 0.0);
    const double f = below == 0 ? factors[j] : 0;
    for (std::size_t i = 0; i < rows; ++i) v[i] = f == 0 ? 0 : -f * v[i];
    if (j < x.rows) x(j, j) += 1;
  }
  return true;
}

/// The same for as many rows as kVecs vectors hold, which stay in registers from column to column.
template <std::size_t kVecs>
HWY_INLINE void rotateRows(double* x, std::size_t stride, std::size_t count, const double* c,
                           const double* s) {
  const Tag d;
  Vec left[kVecs];
  for (std::size_t v = 0; v < kVecs; ++v) left[v] = hn::LoadU(d, x + v * kLanes);
  for (std::size_t j = 0; j < count; ++j, x += stride) {
    const Vec cosine = hn::Set(d, c[j]);
    const Vec sine = hn::Set(d, s[j]);
    for (std::size_t v = 0; v < kVecs; ++v) {
      const Vec right = hn::LoadU(d, x + stride + v * kLanes);
      hn::StoreU(hn::Add(hn::Mul(cosine, left[v]), hn::Mul(sine, right)), d, x + v * kLanes);
      left[v] = hn::Sub(hn::Mul(cosine, right), hn::Mul(sine, left[v]));
    }
  }
  for (std::size_t v = 0; v < kVecs; ++v) hn::StoreU(left[v], d, x + v * kLanes);
}

void rotateAll(Matrix x, std::size_t first, std::size_t count, const double* c, const double* s) {
  constexpr std::size_t kVecs = 8;
  std::size_t i = 0;
  double* at = x.column(first);
  for (; i + kVecs * kLanes <= x.rows; i += kVecs * kLanes) {
    rotateRows<kVecs>(at + i, x.stride, count, c, s);
  }
  for (; i + kLanes <= x.rows; i += kLanes) rotateRows<1>(at + i, x.stride, count, c, s);
  for (; i < x.rows; ++i) {
    double left = at[i];
    for (std::size_t j = 0; j < count; ++j) {
      const double right = at[(j + 1) * x.stride + i];
      at[j * x.stride + i] = c[j] * left + s[j] * right;
      left = c[j] * right - s[j] * left;
    }
    at[count * x.stride + i] = left;
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(reduce);
HWY_EXPORT(multiplyAll);
HWY_EXPORT(rotateAll);

bool reduceToBidiagonal(Matrix a, Matrix v, const Bidiagonal& b, double* work, Poll step) {
  return HWY_DYNAMIC_DISPATCH(reduce)(a, v, b, work, step);
}

bool multiplyReflections(Matrix x, std::size_t below, const double* factors, Poll step) {
  return HWY_DYNAMIC_DISPATCH(multiplyAll)(x, below, factors, step);
}

void rotateColumns(Matrix x, std::size_t first, std::size_t count, const double* c,
                   const double* s) {
  HWY_DYNAMIC_DISPATCH(rotateAll)(x, first, count, c, s);
}

}  // namespace zel::kernels
#endif
