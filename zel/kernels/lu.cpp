#include <cmath>
#include <cstddef>
#include <cstring>
#include <exception>
#include <utility>

#include "zel/kernels/decompositions.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/lu.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_LU_ONCE
#define ZEL_KERNELS_LU_ONCE
namespace zel::kernels::lu {

// Columns that are factored before the rest of the matrix is updated by them, and columns that are
// factored one by one.
constexpr std::size_t kPanel = 64;
constexpr std::size_t kLeaf = 8;
// Slivers of the widest vectors.
constexpr std::size_t kWidestSliver = 24;
constexpr double kTiniestPivot = 1E-100;

struct Workspace {
  double* scale;     // one per row
  double* rows;      // packed multipliers of a panel
  double* sliver;    // rows of a panel, packed columns
  double* triangle;  // packed triangle of a panel

  static std::size_t length(std::size_t n) {
    const std::size_t panel = n < kPanel ? n : kPanel;
    return n + (n + kWidestSliver) * panel + panel * kWidestSliver + 2 * kPanel * kPanel;
  }
  Workspace(double* at, std::size_t n) {
    const std::size_t panel = n < kPanel ? n : kPanel;
    rows = at;
    sliver = rows + (n + kWidestSliver) * panel;
    triangle = sliver + panel * kWidestSliver;
    scale = triangle + 2 * kPanel * kPanel;
  }
};

struct Outcome {
  std::size_t done = 0;  // columns decomposed
  bool isOdd = false;
  bool isTiny = false;
  std::exception_ptr thrown;  // by the poll
};

inline bool ask(Poll step, Outcome& outcome) {
  try {
    return step();
  } catch (...) {
    outcome.thrown = std::current_exception();
    return false;
  }
}

/// Carries out the exchanges of steps first..last-1 in columns from..to-1, column by column, which
/// keeps each in the cache.
inline void exchangeRows(Matrix a, const std::size_t* pivots, std::size_t first, std::size_t last,
                         std::size_t from, std::size_t to) {
  for (std::size_t c = from; c < to; ++c) {
    double* x = a.column(c);
    const double* next = a.column(c + 1 < to ? c + 1 : c);
    for (std::size_t i = first; i < last; ++i) {
      hwy::Prefetch(next + pivots[i]);
      std::swap(x[i], x[pivots[i]]);
    }
  }
}

}  // namespace zel::kernels::lu
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/fused_multiply_add-inl.h"

#include "zel/kernels/triangular-inl.h"

/// The largest candidate so far and its row; of equal ones the later. Rows are counted in doubles.
struct Best {
  Vec value;
  Vec row;

  HWY_INLINE void take(Vec candidate, Vec at) {
    const auto wins = hn::Ge(candidate, value);
    value = hn::IfThenElse(wins, candidate, value);
    row = hn::IfThenElse(wins, at, row);
  }
};

class LuFactors {
 public:
  LuFactors(Matrix a, std::size_t* pivots, const lu::Workspace& work, Poll step,
            lu::Outcome& outcome)
      : a_(a), n_(a.rows), pivots_(pivots), work_(work), step_(step), outcome_(outcome) {}

  void run() {
    bool goesOn = true;
    for (std::size_t j = 0; j < n_ && goesOn; j += lu::kPanel) {
      const std::size_t width = HWY_MIN(lu::kPanel, n_ - j);
      goesOn = factor(j, width);
      if (goesOn) update(j, width, j + width, n_);
    }
    // The multipliers of a panel are not read again, so their exchanges could wait until here.
    for (std::size_t j = lu::kPanel; j < outcome_.done; j += lu::kPanel) {
      lu::exchangeRows(a_, pivots_, j, outcome_.done, j - lu::kPanel, j);
    }
  }

 private:
  /// Factors columns j..j+width-1, whose subtractions from columns before j have been made.
  bool factor(std::size_t j, std::size_t width) {
    if (width <= lu::kLeaf) return factorLeaf(j, width);
    const std::size_t half = (width / 2 + lu::kLeaf - 1) / lu::kLeaf * lu::kLeaf;
    if (!factor(j, half)) return false;
    update(j, half, j + half, j + width);
    const bool goesOn = factor(j + half, width - half);
    lu::exchangeRows(a_, pivots_, j + half, outcome_.done, j, j + half);
    return goesOn;
  }

  /// Brings columns first..last-1 up to date with the factored columns j..j+width-1.
  void update(std::size_t j, std::size_t width, std::size_t first, std::size_t last) {
    if (first == last) return;
    const std::size_t below = j + width;
    const std::size_t rows = n_ - below;
    packTriangle<4>(
        width, [this, j](std::size_t i, std::size_t k) { return a_(j + i, j + k); },
        work_.triangle);
    // A few columns do not repay the packing of all rows, only of the last, incomplete sliver.
    const bool isPacked = last - first > 2 * kSliver;
    const std::size_t whole = isPacked ? 0 : rows / kSliver * kSliver;
    packRows(a_.block(below + whole, j, rows - whole, width), work_.rows);
    for (std::size_t c = first; c < last; c += kSliver) {
      const std::size_t end = HWY_MIN(c + kSliver, last);
      lu::exchangeRows(a_, pivots_, j, below, c, end);
      const Matrix top = a_.block(j, c, width, end - c);
      packColumns(top, 0, work_.sliver);
      solveTriangle<4, kVecs>(work_.triangle, 0, width, nullptr, work_.sliver, kSliver);
      unpackColumns(work_.sliver, top, 0);
      for (std::size_t i = 0; i < rows; i += kSliver) {
        const bool isDirect = i < whole;
        const double* multipliers = isDirect ? &a_(below + i, j) : work_.rows + (i - whole) * width;
        const std::size_t stride = isDirect ? a_.stride : kSliver;
        for (std::size_t t = c; t < end; t += kTile) {
          const double* b = work_.sliver + (t - c);
          double* to = &a_(below + i, t);
          if (i + kSliver <= rows && t + kTile <= end) {
            subtractTile(multipliers, stride, b, width, to, a_.stride);
          } else {
            subtractPartialTile(multipliers, stride, b, width, to, a_.stride,
                                [rows = rows - i, columns = end - t](std::size_t r, std::size_t s) {
                                  return r < rows && s < columns;
                                });
          }
        }
      }
    }
  }

  /// Factors few columns one by one. The multipliers of a column are divided by their pivot in the
  /// pass over the next one, behind whose arithmetic the division hides.
  bool factorLeaf(std::size_t first, std::size_t width) {
    for (std::size_t c = 0; c < width; ++c) {
      const std::size_t j = first + c;
      if (!lu::ask(step_, outcome_)) {
        if (c > 0) divide(j - 1);
        return false;
      }
      double* x = a_.column(j);
      for (std::size_t i = first + 1; i < j; ++i) {
        for (std::size_t k = first; k < i; ++k) x[i] = std::fma(-a_(i, k), x[k], x[i]);
      }
      choosePivot(j, first, first + width, pass(first, c));
      outcome_.done = j + 1;
    }
    divide(first + width - 1);
    return true;
  }

  std::size_t pass(std::size_t first, std::size_t prior) {
    switch (prior) {
      case 0:
        return passColumn<0>(first);
      case 1:
        return passColumn<1>(first);
      case 2:
        return passColumn<2>(first);
      case 3:
        return passColumn<3>(first);
      case 4:
        return passColumn<4>(first);
      case 5:
        return passColumn<5>(first);
      case 6:
        return passColumn<6>(first);
      default:
        return passColumn<7>(first);
    }
  }

  /// Finishes the multipliers of the column before column first + kPrior, subtracts kPrior products
  /// from each element of that column on and below the diagonal.
  /// @return the row of the pivot
  template <std::size_t kPrior>
  std::size_t passColumn(std::size_t first) {
    static_assert(lu::kLeaf == 8);
    const Tag d;
    const std::size_t j = first + kPrior;
    double* x = a_.column(j);
    const double* l = a_.column(first);
    double* fresh = kPrior > 0 ? a_.column(j - 1) : nullptr;
    const double pivot = kPrior > 0 ? fresh[j - 1] : 1;
    const Vec divisor = hn::Set(d, pivot);
    Vec u[kPrior + 1];
    for (std::size_t k = 0; k < kPrior; ++k) u[k] = hn::Set(d, x[first + k]);
    Best best{hn::Zero(d), hn::Set(d, -1.0)};
    Vec row = hn::Add(hn::Iota(d, 0), hn::Set(d, static_cast<double>(j)));
    std::size_t i = j;
    for (; i + kLanes <= n_; i += kLanes) {
      Vec s = hn::LoadU(d, x + i);
      for (std::size_t k = 0; k + 1 < kPrior; ++k) {
        s = fusedSubtract(hn::LoadU(d, l + k * a_.stride + i), u[k], s);
      }
      if (kPrior > 0) {
        const Vec m = hn::Div(hn::LoadU(d, fresh + i), divisor);
        hn::StoreU(m, d, fresh + i);
        s = fusedSubtract(m, u[kPrior - 1], s);
      }
      hn::StoreU(s, d, x + i);
      best.take(hn::Mul(hn::LoadU(d, work_.scale + i), hn::Abs(s)), row);
      row = hn::Add(row, hn::Set(d, static_cast<double>(kLanes)));
    }
    HWY_ALIGN double values[kLanes];
    HWY_ALIGN double rows[kLanes];
    hn::Store(best.value, d, values);
    hn::Store(best.row, d, rows);
    double value = 0;
    double at = -1;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      if (values[lane] > value || (values[lane] == value && rows[lane] > at)) {
        value = values[lane];
        at = rows[lane];
      }
    }
    std::size_t imax = at < 0 ? j : static_cast<std::size_t>(at);
    for (; i < n_; ++i) {
      double s = x[i];
      for (std::size_t k = 0; k + 1 < kPrior; ++k)
        s = std::fma(-l[k * a_.stride + i], x[first + k], s);
      if (kPrior > 0) {
        fresh[i] /= pivot;
        s = std::fma(-fresh[i], x[first + kPrior - 1], s);
      }
      x[i] = s;
      const double candidate = work_.scale[i] * std::abs(s);
      if (candidate >= value) {
        value = candidate;
        imax = i;
      }
    }
    return imax;
  }

  /// Exchanges rows j and imax in columns first..last-1.
  void choosePivot(std::size_t j, std::size_t first, std::size_t last, std::size_t imax) {
    pivots_[j] = imax;
    if (imax != j) {
      for (std::size_t c = first; c < last; ++c) std::swap(a_(j, c), a_(imax, c));
      work_.scale[imax] = work_.scale[j];
      outcome_.isOdd = !outcome_.isOdd;
    }
    double& pivot = a_(j, j);
    if (std::abs(pivot) < lu::kTiniestPivot) {
      pivot = lu::kTiniestPivot;
      outcome_.isTiny = true;
    }
  }

  void divide(std::size_t j) {
    const Tag d;
    double* x = a_.column(j);
    const Vec pivot = hn::Set(d, x[j]);
    std::size_t i = j + 1;
    for (; i + kLanes <= n_; i += kLanes) {
      hn::StoreU(hn::Div(hn::LoadU(d, x + i), pivot), d, x + i);
    }
    for (; i < n_; ++i) x[i] /= x[j];
  }

  Matrix a_;
  std::size_t n_;
  std::size_t* pivots_;
  lu::Workspace work_;
  Poll step_;
  lu::Outcome& outcome_;
};

void luFactor(Matrix a, std::size_t* pivots, const lu::Workspace& work, Poll step,
              lu::Outcome& out) {
  LuFactors(a, pivots, work, step, out).run();
}

/// scale(i) := 1 / the largest magnitude of row i.
/// @return false if a row is zero
bool luScale(ConstMatrix a, double* scale) {
  const Tag d;
  std::memset(scale, 0, a.rows * sizeof(double));
  for (std::size_t c = 0; c < a.columns; ++c) {
    const double* x = a.column(c);
    std::size_t i = 0;
    for (; i + kLanes <= a.rows; i += kLanes) {
      const Vec big = hn::LoadU(d, scale + i);
      const Vec v = hn::Abs(hn::LoadU(d, x + i));
      hn::StoreU(hn::IfThenElse(hn::Gt(v, big), v, big), d, scale + i);
    }
    for (; i < a.rows; ++i) scale[i] = std::abs(x[i]) > scale[i] ? std::abs(x[i]) : scale[i];
  }
  bool isZero = false;
  for (std::size_t i = 0; i < a.rows; ++i) {
    isZero |= scale[i] == 0;
    scale[i] = 1 / scale[i];
  }
  return !isZero;
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(luFactor);
HWY_EXPORT(luScale);

LuStatus luDecompose(Matrix a, std::span<std::size_t> pivots, int& sign, Poll scaled, Poll step,
                     Matrix scratch) {
  const std::size_t n = a.rows;
  sign = 1;
  const Scratch storage(lu::Workspace::length(n));
  const lu::Workspace work(storage.data(), n);
  // Blocks run ahead of the columns, so a stop needs the original.
  const bool isKept = step && scratch.data == nullptr;
  const Scratch kept(isKept ? n * n : 0);
  if (isKept) scratch = {kept.data(), n, n, n};
  for (std::size_t i = 0; i < n; ++i) {
    if (!scaled()) return LuStatus::stopped;
  }
  if (!HWY_DYNAMIC_DISPATCH(luScale)(a, work.scale)) return LuStatus::zeroRow;
  const auto copyColumns = [n](ConstMatrix from, Matrix to, std::size_t first) {
    for (std::size_t c = first; c < n; ++c) {
      std::memcpy(to.column(c), from.column(c), n * sizeof(double));
    }
  };
  if (step) copyColumns(a, scratch, 0);
  lu::Outcome outcome;
  HWY_DYNAMIC_DISPATCH(luFactor)(a, pivots.data(), work, step, outcome);
  if (outcome.isOdd) sign = -1;
  if (outcome.done < n) {
    copyColumns(scratch, a, outcome.done);
    lu::exchangeRows(a, pivots.data(), 0, outcome.done, outcome.done, n);
    if (outcome.thrown) std::rethrow_exception(outcome.thrown);
    return LuStatus::stopped;
  }
  return outcome.isTiny ? LuStatus::tinyPivot : LuStatus::done;
}

}  // namespace zel::kernels
#endif
