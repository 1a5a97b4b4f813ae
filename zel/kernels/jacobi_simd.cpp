#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "zel/kernels/jacobi.h"
#include "zel/kernels/products.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/sums.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/jacobi_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_JACOBI_TURN
#define ZEL_KERNELS_JACOBI_TURN
namespace zel::kernels {
namespace {

/// Rotation of a vector x with one column of a matrix, but for the common factor c of both results,
/// which goes to their scales: half the arithmetic.
struct Turn {
  std::size_t column;
  double alpha;
  double beta;

  void operator()(double& x, double& y) const {
    const double old = x;
    x = x - alpha * y;
    y = y + beta * old;
  }
};

}  // namespace
}  // namespace zel::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());

/// As many rows as kVecs vectors hold, of which the last may be a part; x stays in registers from
/// turn to turn.
template <std::size_t kVecs, bool kIsWhole>
HWY_INLINE void rotateRows(std::span<const Turn> turns, double* x, double* y, std::size_t stride,
                           std::size_t rest) {
  const Tag d;
  const auto mask = hn::FirstN(d, rest);
  const auto load = [&](const double* from, std::size_t v) HWY_ATTR {
    if (kIsWhole || v + 1 < kVecs) return hn::LoadU(d, from + v * kLanes);
    // Without masks in the instruction set a masked load reads all lanes, past the end.
    if constexpr (kLanes > 2) return hn::MaskedLoad(mask, d, from + v * kLanes);
    return hn::Set(d, from[v * kLanes]);
  };
  const auto store = [&](Vec value, double* to, std::size_t v) HWY_ATTR {
    if (kIsWhole || v + 1 < kVecs) {
      hn::StoreU(value, d, to + v * kLanes);
    } else if constexpr (kLanes > 2) {
      hn::BlendedStore(value, mask, d, to + v * kLanes);
    } else {
      to[v * kLanes] = hn::GetLane(value);
    }
  };
  Vec g[kVecs];
  for (std::size_t v = 0; v < kVecs; ++v) g[v] = load(x, v);
  for (const Turn& turn : turns) {
    const Vec alpha = hn::Set(d, turn.alpha);
    const Vec beta = hn::Set(d, turn.beta);
    double* const column = y + turn.column * stride;
    for (std::size_t v = 0; v < kVecs; ++v) {
      const Vec h = load(column, v);
      const Vec old = g[v];
      g[v] = hn::Sub(old, hn::Mul(alpha, h));
      store(hn::Add(h, hn::Mul(beta, old)), column, v);
    }
  }
  for (std::size_t v = 0; v < kVecs; ++v) store(g[v], x, v);
}

/// Rotates x with the columns of y, one turn after the other. x may be a column of y that no turn
/// names. The chain of turns is long, so rows go together in runs of equal length that hide it.
void rotateWith(std::span<const Turn> turns, double* x, Matrix y) {
  constexpr std::size_t kMost = 8;
  std::size_t vecs = (y.rows + kLanes - 1) / kLanes;
  const std::size_t rest = y.rows % kLanes;
  std::size_t runs = (vecs + kMost - 1) / kMost;
  double* at = y.data;
  for (; runs > 0; --runs) {
    const std::size_t count = vecs / runs;
    const bool isWhole = runs > 1 || rest == 0;
    const auto rotate = [&]<std::size_t kVecs>() HWY_ATTR {
      if (isWhole) {
        rotateRows<kVecs, true>(turns, x, at, y.stride, rest);
      } else {
        rotateRows<kVecs, false>(turns, x, at, y.stride, rest);
      }
    };
    switch (count) {
      case 1:
        rotate.template operator()<1>();
        break;
      case 2:
        rotate.template operator()<2>();
        break;
      case 3:
        rotate.template operator()<3>();
        break;
      case 4:
        rotate.template operator()<4>();
        break;
      case 5:
        rotate.template operator()<5>();
        break;
      case 6:
        rotate.template operator()<6>();
        break;
      case 7:
        rotate.template operator()<7>();
        break;
      default:
        rotate.template operator()<8>();
        break;
    }
    vecs -= count;
    x += count * kLanes;
    at += count * kLanes;
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(rotateWith);

namespace {

constexpr int kMostSweeps = 100;
/// Columns whose rotations with one row are found before they are carried out.
constexpr std::size_t kBlock = 8;
// Rotations that wait before they are carried out.
constexpr std::size_t kMostTurns = 8192;
// Scales below this are worked into the numbers that they belong to.
constexpr double kSmallScale = 0x1p-64;

/// How an element above the diagonal becomes zero: t is the tangent of the rotation, c its cosine.
struct Angle {
  double t;
  double c;
  double secant;

  /// @param h  difference of the two elements of the diagonal
  Angle(double element, double h) {
    const double square = 4 * element * element + h * h;
    const bool isNegative = h != 0 && std::signbit(h) != std::signbit(element);
    if (square > 1e-250 && square < 1e250) {
      const double root = std::sqrt(square);
      const double sum = std::abs(h) + root;
      t = 2 * std::abs(element) / sum;
      c = std::sqrt(sum / (2 * root));
      secant = std::sqrt(2 * root / sum);
    } else {
      const double theta = std::abs(h / (2 * element));
      t = 1 / (theta + std::sqrt(theta * theta + 1));
      secant = std::sqrt(t * t + 1);
      c = 1 / secant;
    }
    if (isNegative) t = -t;
  }
};

/// The working state: the matrix, whose row in turn is held apart, one element per column, the
/// eigenvalues d = b + z, and the eigenvectors. Row and column k of the matrix and column k of the
/// vectors have to be multiplied by scale[k], whose reciprocal is inverse[k].
struct Iteration {
  Matrix a;
  Matrix vectors;
  double* d;
  double* b;
  double* z;
  double* scale;
  double* inverse;
  double* row;
  double* panel;  ///< n * kBlock numbers
  double threshold = 0;
  bool isLate = false;  ///< tiny elements are dropped
  /// Rotations that the vectors and the rows above have still to take, by rows of the sweep.
  std::vector<Turn> turns;
  struct Waiting {
    std::size_t p;
    std::size_t first;
  };
  std::vector<Waiting> waiting;

  /// Sum of the magnitudes above the diagonal, row by row. All scales must be 1.
  [[nodiscard]] double offDiagonal() const {
    double sum = 0;
    for (std::size_t p = 0; p < a.columns; ++p) {
      for (std::size_t q = p + 1; q < a.columns; ++q) sum += std::abs(a(p, q));
    }
    return sum;
  }

  /// The rotation that makes element q of row p zero, if it is worth one.
  bool findTurn(std::size_t p, std::size_t q, Turn& turn) {
    const double element = row[q] * scale[p] * scale[q];
    const double g = 200 * std::abs(element);
    if (isLate && std::abs(d[p]) + g == std::abs(d[p]) && std::abs(d[q]) + g == std::abs(d[q])) {
      row[q] = 0;
      return false;
    }
    if (!(std::abs(element) > threshold)) return false;
    double h = d[q] - d[p];
    double t;
    if (std::abs(h) + g == std::abs(h)) {
      // The cosine is 1.
      t = element / h;
      turn = {q, t * (scale[q] * inverse[p]), t * (scale[p] * inverse[q])};
    } else {
      const Angle angle(element, h);
      t = angle.t;
      turn = {q, t * (scale[q] * inverse[p]), t * (scale[p] * inverse[q])};
      for (const std::size_t k : {p, q}) {
        scale[k] *= angle.c;
        inverse[k] *= angle.secant;
      }
    }
    h = t * element;
    z[p] -= h;
    z[q] += h;
    d[p] -= h;
    d[q] += h;
    row[q] = 0;
    return true;
  }

  /// One row of a sweep. Within it, each element takes its rotations in the order of the columns,
  /// but the elements that do not decide about further rotations wait for them, so that they are
  /// read and written once for many.
  bool makeRowZero(std::size_t p, Poll step) {
    const std::size_t n = a.columns;
    bool goOn = true;
    bool isAnySmall = false;
    waiting.push_back({p, turns.size()});
    for (std::size_t q = p + 1; q < n; ++q) row[q] = a(p, q);
    for (std::size_t first = p + 1; first < n && goOn; first += kBlock) {
      const std::size_t last = std::min(first + kBlock, n);
      const std::size_t known = turns.size();
      for (std::size_t q = first; q < last && goOn; ++q) {
        Turn turn;
        if (findTurn(p, q, turn)) {
          for (std::size_t j = first; j < q; ++j) turn(row[j], a(j, q));
          for (std::size_t j = q + 1; j < last; ++j) turn(row[j], a(q, j));
          turns.push_back(turn);
          isAnySmall = isAnySmall || scale[q] < kSmallScale;
        }
        goOn = step();
      }
      if (turns.size() > known) turnRest(p, first, last, std::span(turns).subspan(known));
      if (scale[p] < kSmallScale) {
        carryOut();
        for (std::size_t q = p + 1; q < n; ++q) row[q] *= scale[p];
        absorb(p);
        waiting.push_back({p, 0});
      }
    }
    for (std::size_t q = p + 1; q < n; ++q) a(p, q) = row[q];
    // A column that takes a rotation from every row gets small even if all others take none.
    if (turns.size() > kMostTurns || isAnySmall) {
      carryOut();
      for (std::size_t k = 0; k < n; ++k) {
        if (scale[k] < kSmallScale) absorb(k);
      }
    }
    return goOn;
  }

  /// Carries out the rotations of row p with columns first..last-1 on rows p + 1 .. first - 1, and
  /// on rows first .. last - 1 behind the block, which are turned to columns for the time being.
  void turnRest(std::size_t p, std::size_t first, std::size_t last, std::span<Turn> found) {
    const std::size_t n = a.columns;
    HWY_DYNAMIC_DISPATCH(rotateWith)
    (found, row + p + 1, a.block(p + 1, 0, first - p - 1, n));
    if (last == n) return;
    const Matrix behind = a.block(first, last, last - first, n - last);
    const Matrix turned{panel, behind.columns, behind.rows, behind.columns};
    transpose(behind, turned);
    for (Turn& turn : found) turn.column -= first;
    HWY_DYNAMIC_DISPATCH(rotateWith)(found, row + last, turned);
    for (Turn& turn : found) turn.column += first;
    transpose(turned, behind);
  }

  /// Carries out the rotations that wait, on so few rows at a time that they stay in the cache.
  void carryOut() {
    const std::size_t n = a.columns;
    constexpr std::size_t kRows = 32;
    for (std::size_t first = 0; first < n; first += kRows) {
      const std::size_t rows = std::min(kRows, n - first);
      for (std::size_t k = 0; k < waiting.size(); ++k) {
        const std::size_t p = waiting[k].p;
        const std::size_t end = k + 1 < waiting.size() ? waiting[k + 1].first : turns.size();
        const std::span<const Turn> found(turns.data() + waiting[k].first, turns.data() + end);
        HWY_DYNAMIC_DISPATCH(rotateWith)
        (found, vectors.column(p) + first, vectors.block(first, 0, rows, n));
        if (first >= p) continue;
        HWY_DYNAMIC_DISPATCH(rotateWith)
        (found, a.column(p) + first, a.block(first, 0, std::min(rows, p - first), n));
      }
    }
    turns.clear();
    waiting.clear();
  }

  /// Works a scale into the numbers that it belongs to, when no rotation waits.
  void absorb(std::size_t k) {
    for (double& v : vectors[k]) v *= scale[k];
    for (std::size_t r = 0; r < k; ++r) a(r, k) *= scale[k];
    for (std::size_t c = k + 1; c < a.columns; ++c) a(k, c) *= scale[k];
    scale[k] = inverse[k] = 1;
  }

  /// Ends a sweep, or a part of one.
  void complete() {
    carryOut();
    for (std::size_t k = 0; k < a.columns; ++k) absorb(k);
  }
};

/// A power of two that brings elements near 1 whose squares may leave the range of doubles; 0 for
/// all others.
int scalingExponent(ConstMatrix a) {
  double largest = 0;
  for (std::size_t c = 0; c < a.columns; ++c) {
    for (std::size_t r = 0; r <= c; ++r) largest = std::max(largest, std::abs(a(r, c)));
  }
  if (largest == 0 || !std::isfinite(largest)) return 0;
  const int exponent = std::ilogb(largest);
  return -beyondHarmless(exponent);
}

}  // namespace

JacobiStatus jacobiEigenvectors(Matrix a, std::span<double> values, Matrix vectors, Poll sweep,
                                Poll step) {
  const std::size_t n = a.columns;
  const Scratch scratch((5 + kBlock) * n);
  double* const b = scratch.data();
  Iteration work{a,         vectors, values.data(), b,  b + n, b + 2 * n, b + 3 * n, b + 4 * n,
                 b + 5 * n, 0,       false,         {}, {}};
  work.turns.reserve(kMostTurns + n);
  work.waiting.reserve(n + 1);
  const int exponent = scalingExponent(a);
  for (std::size_t i = 0; i < n; ++i) {
    std::fill_n(vectors.column(i), n, 0.0);
    vectors(i, i) = 1;
    b[i] = values[i] = std::ldexp(a(i, i), exponent);
    for (std::size_t r = 0; r < i; ++r) a(r, i) = std::ldexp(a(r, i), exponent);
    work.z[i] = 0;
    work.scale[i] = work.inverse[i] = 1;
  }
  const auto iterate = [&] {
    for (int count = 1; count <= kMostSweeps; ++count) {
      (void)sweep();
      const double sum = work.offDiagonal();
      if (sum == 0) return JacobiStatus::done;
      work.threshold = count < 4 ? 0.2 * sum / static_cast<double>(n * n) : 0;
      work.isLate = count > 4;
      for (std::size_t p = 0; p + 1 < n; ++p) {
        if (work.makeRowZero(p, step)) continue;
        work.complete();
        return JacobiStatus::stopped;
      }
      work.complete();
      for (std::size_t i = 0; i < n; ++i) {
        b[i] += work.z[i];
        values[i] = b[i];
        work.z[i] = 0;
      }
    }
    return JacobiStatus::notConverged;
  };
  const JacobiStatus status = iterate();
  for (std::size_t k = 0; k < n; ++k) {
    values[k] = std::ldexp(values[k], -exponent);
    // The scales have lost a few units in the last place of the length.
    const double length = euclideanNorm(vectors[k]);
    if (length > 0) {
      for (double& v : vectors[k]) v /= length;
    }
  }
  return status;
}

}  // namespace zel::kernels
#endif
