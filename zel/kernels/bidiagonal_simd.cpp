#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

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

#include "zel/kernels/reflections-inl.h"

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
  multiply(f, y, a.rows);
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
    const auto finish = [&]<std::size_t kCount>(std::size_t c) HWY_ATTR {
      double* x[kCount];
      for (std::size_t k = 0; k < kCount; ++k) x[k] = a.column(c + k) + j;
      if (isPending) subtractFromEach<kCount>(row + c, y + j, x, rows);
      reflectEach<kCount>(b.left[j], u, x, rows);
      for (std::size_t k = 0; k < kCount; ++k) row[c + k] = x[k][0];
    };
    std::size_t c = j + 1;
    for (; c + 2 <= a.columns; c += 2) finish.template operator()<2>(c);
    if (c < a.columns) finish.template operator()<1>(c);
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

/// Reflections that are carried out together: H[0] H[1] ... = 1 - V T V^T, where T is an upper
/// triangle (Schreiber and Van Loan, SIAM J. Sci. Stat. Comput. 10 (1989) 53).
class Group {
 public:
  static constexpr std::size_t kSize = 4;

  /// @param v  the vectors in its columns, column k from row k on; at least kSize rows
  Group(ConstMatrix v, const double* factors) : rest_(v.rows - kSize) {
    for (std::size_t k = 0; k < kSize; ++k) {
      for (std::size_t r = 0; r < kSize; ++r) head_[k][r] = r < k ? 0 : v(r, k);
      tail_[k] = v.column(k) + kSize;
    }
    for (std::size_t k = 0; k < kSize; ++k) {
      double products[kSize];
      project(head_[k], tail_[k], products);
      for (std::size_t i = 0; i < k; ++i) {
        double sum = 0;
        for (std::size_t j = i; j < k; ++j) sum += t_[i][j] * products[j];
        t_[i][k] = -factors[k] * sum;
      }
      t_[k][k] = factors[k];
    }
  }

  HWY_INLINE void apply(double* x) const {
    double weights[kSize];
    project(x, x + kSize, weights);
    for (std::size_t i = 0; i < kSize; ++i) {
      double sum = 0;
      for (std::size_t j = i; j < kSize; ++j) sum += t_[i][j] * weights[j];
      weights[i] = sum;
    }
    for (std::size_t r = 0; r < kSize; ++r) {
      for (std::size_t k = 0; k < kSize; ++k) x[r] -= weights[k] * head_[k][r];
    }
    subtractAll<kSize>(weights, tail_, x + kSize, rest_);
  }

 private:
  /// V^T (head; tail)
  HWY_INLINE void project(const double* head, const double* tail, double* products) const {
    constexpr std::size_t kLanesOfSum = 8;
    dots<kSize, kLanesOfSum>(tail, tail_, rest_, products);
    for (std::size_t k = 0; k < kSize; ++k) {
      for (std::size_t r = 0; r < kSize; ++r) products[k] += head_[k][r] * head[r];
    }
  }

  double head_[kSize][kSize];
  const double* tail_[kSize];
  std::size_t rest_;
  double t_[kSize][kSize] = {};
};

bool multiplyAll(Matrix x, std::size_t below, const double* factors, Poll step) {
  for (std::size_t end = x.columns; end > 0;) {
    const std::size_t begin = end < Group::kSize ? 0 : end - Group::kSize;
    const bool areTogether =
        end - begin == Group::kSize && end + below <= x.rows &&
        std::all_of(factors + begin, factors + end, [](double f) { return f != 0; });
    if (areTogether) {
      const std::size_t first = begin + below;
      const Group group(x.block(first, begin, x.rows - first, Group::kSize), factors + begin);
      for (std::size_t c = end; c < x.columns; ++c) group.apply(x.column(c) + first);
    }
    for (std::size_t j = end; j-- > begin;) {
      if (!step()) return false;
      const std::size_t first = std::min(j + below, x.rows);
      const std::size_t rows = x.rows - first;
      double* v = x.column(j) + first;
      for (std::size_t c = j + 1; c < (areTogether ? end : x.columns); ++c) {
        reflect(factors[j], v, x.column(c) + first, rows);
      }
      // The reflection of unit vector j.
      std::fill(x.column(j), v, 0.0);
      const double f = below == 0 ? factors[j] : 0;
      for (std::size_t i = 0; i < rows; ++i) v[i] = f == 0 ? 0 : -f * v[i];
      if (j < x.rows) x(j, j) += 1;
    }
    end = begin;
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

void rotateAll(Matrix x, std::span<const RotationSweep> sweeps) {
  constexpr std::size_t kVecs = 8;
  std::size_t i = 0;
  for (; i + kVecs * kLanes <= x.rows; i += kVecs * kLanes) {
    for (const RotationSweep& t : sweeps) {
      rotateRows<kVecs>(x.column(t.first) + i, x.stride, t.count, t.c, t.s);
    }
  }
  for (const RotationSweep& t : sweeps) {
    double* at = x.column(t.first);
    std::size_t r = i;
    for (; r + kLanes <= x.rows; r += kLanes) rotateRows<1>(at + r, x.stride, t.count, t.c, t.s);
    for (; r < x.rows; ++r) {
      double left = at[r];
      for (std::size_t j = 0; j < t.count; ++j) {
        const double right = at[(j + 1) * x.stride + r];
        at[j * x.stride + r] = t.c[j] * left + t.s[j] * right;
        left = t.c[j] * right - t.s[j] * left;
      }
      at[t.count * x.stride + r] = left;
    }
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

void rotateColumns(Matrix x, std::span<const RotationSweep> sweeps) {
  HWY_DYNAMIC_DISPATCH(rotateAll)(x, sweeps);
}

}  // namespace zel::kernels
#endif
