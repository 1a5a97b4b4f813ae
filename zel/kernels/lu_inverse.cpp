#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "zel/kernels/decompositions.h"
#include "zel/kernels/scratch.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/lu_inverse.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_LU_INVERSE_ONCE
#define ZEL_KERNELS_LU_INVERSE_ONCE
namespace zel::kernels::lu {

// Rows that the forward substitution advances at once, and rows of the solution that it subtracts
// from those below while they are in the first-level cache.
constexpr std::size_t kStep = 2;
constexpr std::size_t kChunk = 96;

/// Length of the packed multipliers of the chunk that begins at column k.
inline std::size_t packedChunk(std::size_t n, std::size_t k) {
  const std::size_t steps = ((n - k < kChunk ? n - k : kChunk) + kStep - 1) / kStep;
  const std::size_t below = n - k < kChunk ? 0 : (n - k - kChunk + kStep - 1) / kStep;
  return kStep * (kStep * steps * (steps + 1) / 2 + kChunk * below);
}

inline std::size_t packedLower(std::size_t n) {
  std::size_t length = 0;
  for (std::size_t k = 0; k < n; k += kChunk) length += packedChunk(n, k);
  return length;
}

/// Doubles for the packed factors and the right-hand sides, for any width of vectors.
inline std::size_t inverseWorkspace(std::size_t n) {
  constexpr std::size_t kMostColumns = 120;
  return packedLower(n) + n * (n + 1) / 2 + n * kMostColumns;
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

// Columns of a panel: right-hand sides that are solved together. A row of the back substitution
// reads every solution below it once, and its subtractions form one chain. So only other right-hand
// sides can hide the latency, but what is read must come from the nearest caches: five vectors
// are the best compromise.
constexpr std::size_t kWidth = 5;
constexpr std::size_t kPanel = kWidth * kLanes;
// The forward substitution shares its multipliers among so many panels.
constexpr std::size_t kPanels = 3;

class Inversion {
 public:
  static constexpr std::size_t kColumns = kPanels * kPanel;

  Inversion(ConstMatrix lu, double* work)
      : lu_(lu),
        n_(lu.rows),
        panels_(work),
        lower_(panels_ + n_ * kColumns),
        upper_(lower_ + lu::packedLower(n_)) {
    packLower();
    packUpper();
  }

  /// Columns first..first+columns-1 of U^-1 L^-1, at most kColumns.
  void solve(std::size_t first, std::size_t columns) {
    for (std::size_t i = 0; i < n_ * kColumns; ++i) panels_[i] = 0;
    for (std::size_t c = 0; c < columns; ++c) at(first + c, c) = 1;
    if (isFinite_) {
      substituteForward(first);
    } else {
      for (std::size_t c = 0; c < columns; ++c) substituteForwardPlainly(first + c, c);
    }
    for (std::size_t p = 0; p * kPanel < columns; ++p) {
      for (std::size_t i = n_; i-- > 0;) substituteBack(i, panel(p));
    }
  }

  /// Element of the solution in column c of those that are being solved.
  double& at(std::size_t row, std::size_t c) {
    return panel(c / kPanel)[row * kPanel + c % kPanel];
  }

 private:
  double* panel(std::size_t p) { return panels_ + p * n_ * kPanel; }
  double* upperRow(std::size_t i) { return upper_ + i * n_ - i * (i - 1) / 2; }

  /// In the order of use: for each chunk of columns its triangle, then the rows below it.
  void packLower() {
    // As many rows at a time as share whole lines of the cache in each column.
    constexpr std::size_t kSteps = 8;
    double* to = lower_;
    for (std::size_t k = 0; k < n_; k += lu::kChunk) {
      const std::size_t rows = HWY_MIN(lu::kChunk, n_ - k);
      to = packTriangle<lu::kStep>(
          rows, [&](std::size_t i, std::size_t c) { return lu_(k + i, k + c); }, to);
      std::size_t i = k + rows;
      for (; i + kSteps * lu::kStep <= n_; i += kSteps * lu::kStep) {
        for (std::size_t c = 0; c < rows; ++c) {
          const double* x = lu_.column(k + c) + i;
          for (std::size_t s = 0; s < kSteps; ++s) {
            double* step = to + (s * rows + c) * lu::kStep;
            for (std::size_t r = 0; r < lu::kStep; ++r) step[r] = x[s * lu::kStep + r];
          }
        }
        to += kSteps * lu::kStep * rows;
      }
      for (; i < n_; i += lu::kStep) {
        for (std::size_t c = k; c < k + rows; ++c) {
          for (std::size_t r = i; r < i + lu::kStep; ++r) *to++ = r < n_ ? lu_(r, c) : 0;
        }
      }
    }
    isFinite_ = areFinite(lower_, to);
  }

  static bool areFinite(const double* x, const double* end) {
    const Tag d;
    Vec sum = hn::Zero(d);
    for (; x + kLanes <= end; x += kLanes)
      sum = hn::Add(sum, hn::Mul(hn::LoadU(d, x), hn::Zero(d)));
    bool are = hn::AllTrue(d, hn::Eq(sum, hn::Zero(d)));
    for (; x < end; ++x) are &= std::isfinite(*x);
    return are;
  }

  /// Rows of U, each from the diagonal on.
  void packUpper() {
    // As many rows at a time as share a line of the cache in each column.
    constexpr std::size_t kRows = 8;
    for (std::size_t i = 0; i < n_; i += kRows) {
      for (std::size_t c = i; c < n_; ++c) {
        const double* x = lu_.column(c);
        for (std::size_t r = i; r < HWY_MIN(i + kRows, c + 1); ++r) upperRow(r)[c - r] = x[r];
      }
    }
  }

  /// Row `first` is the first that is not zero. What rows before it would subtract is an exact
  /// zero, and so is what the leading zeros of its neighbours subtract.
  void substituteForward(std::size_t first) {
    const double* l = lower_;
    for (std::size_t k = 0; k < n_; l += lu::packedChunk(n_, k), k += lu::kChunk) {
      if (k + lu::kChunk <= first) continue;
      const std::size_t skipped = first > k ? first - k : 0;
      const std::size_t rows = HWY_MIN(lu::kChunk, n_ - k);
      for (std::size_t p = 0; p < kPanels; ++p) {
        solveTriangle<lu::kStep, kWidth>(l, skipped, rows, nullptr, panel(p) + k * kPanel, kPanel);
      }
      const double* below = l + lu::packedChunk(k + rows, k);
      for (std::size_t i = k + rows; i < n_; i += lu::kStep, below += lu::kStep * lu::kChunk) {
        for (std::size_t p = 0; p < kPanels; ++p) {
          const double* x = panel(p) + (k + skipped) * kPanel;
          subtractStep(below + skipped * lu::kStep, rows - skipped, x, panel(p) + i * kPanel,
                       HWY_MIN(lu::kStep, n_ - i));
        }
      }
    }
  }

  void subtractStep(const double* l, std::size_t inner, const double* x, double* to,
                    std::size_t rows) {
    const Tag d;
    // Rows after the last take the place of zeros and are not stored.
    Vec s[lu::kStep][kWidth];
    for (std::size_t r = 0; r < lu::kStep; ++r) {
      for (std::size_t v = 0; v < kWidth; ++v) {
        s[r][v] = hn::LoadU(d, to + HWY_MIN(r, rows - 1) * kPanel + v * kLanes);
      }
    }
    subtractRows<lu::kStep>(l, inner, x, kPanel, s);
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t v = 0; v < kWidth; ++v) hn::StoreU(s[r][v], d, to + r * kPanel + v * kLanes);
    }
  }

  /// One column, without touching the multipliers that meet its leading zeros: not-a-number and
  /// infinity do not vanish when multiplied by zero.
  void substituteForwardPlainly(std::size_t first, std::size_t c) {
    for (std::size_t i = first + 1; i < n_; ++i) {
      double s = at(i, c);
      for (std::size_t k = first; k < i; ++k) s = std::fma(-lu_(i, k), at(k, c), s);
      at(i, c) = s;
    }
  }

  void substituteBack(std::size_t i, double* panel) {
    const Tag d;
    const double* HWY_RESTRICT u = upperRow(i);
    double* row = panel + i * kPanel;
    const double* x = row + kPanel;
    Vec s[kWidth];
    for (std::size_t v = 0; v < kWidth; ++v) s[v] = hn::LoadU(d, row + v * kLanes);
    for (std::size_t k = 1; k < n_ - i; ++k) {
      const Vec factor = hn::Set(d, u[k]);
      for (std::size_t v = 0; v < kWidth; ++v) {
        s[v] = fusedSubtract(factor, hn::LoadU(d, x + v * kLanes), s[v]);
      }
      x += kPanel;
    }
    const Vec divisor = hn::Set(d, u[0]);
    for (std::size_t v = 0; v < kWidth; ++v) {
      hn::StoreU(hn::Div(s[v], divisor), d, row + v * kLanes);
    }
  }

  ConstMatrix lu_;
  std::size_t n_;
  double* panels_;
  double* lower_;
  double* upper_;
  bool isFinite_ = true;
};

bool invert(ConstMatrix lu, const std::size_t* unit, double* work, Matrix inverse, Poll step) {
  const std::size_t n = lu.rows;
  Inversion inversion(lu, work);
  for (std::size_t first = 0; first < n; first += Inversion::kColumns) {
    const std::size_t columns = HWY_MIN(Inversion::kColumns, n - first);
    for (std::size_t c = 0; c < columns; ++c) {
      if (!step()) return false;
    }
    inversion.solve(first, columns);
    // Some rows at a time, so that they stay in the first-level cache.
    constexpr std::size_t kRows = 8;
    for (std::size_t i = 0; i < n; i += kRows) {
      for (std::size_t c = 0; c < columns; ++c) {
        double* to = inverse.column(unit[first + c]);
        if (i + kRows <= n) {
          for (std::size_t r = 0; r < kRows; ++r) to[i + r] = inversion.at(i + r, c);
        } else {
          for (std::size_t r = i; r < n; ++r) to[r] = inversion.at(r, c);
        }
      }
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
  const Scratch work(lu::inverseWorkspace(n));
  // The exchanges turn unit vector unit[i] into unit vector i, whose leading zeros are known.
  const auto unit = std::make_unique_for_overwrite<std::size_t[]>(n);
  for (std::size_t i = 0; i < n; ++i) unit[i] = i;
  for (std::size_t i = 0; i < n; ++i) std::swap(unit[i], unit[pivots[i]]);
  return HWY_DYNAMIC_DISPATCH(invert)(lu, unit.get(), work.data(), inverse, step);
}

}  // namespace zel::kernels
#endif
