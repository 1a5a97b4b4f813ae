#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "zel/kernels/row_qr.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/row_qr_simd.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/reflections-inl.h"

/// Reflects kColumns neighbouring columns of (top; rest), which share the reading of the vector: 1
/// in row j of the upper part and v in the lower one.
template <std::size_t kColumns>
HWY_INLINE void reflectTogether(double f, std::size_t j, const double* HWY_RESTRICT v, Matrix top,
                                Matrix rest) {
  constexpr std::size_t kLanesOfSum = 8;
  double* x[kColumns];
  for (std::size_t k = 0; k < kColumns; ++k) x[k] = rest.column(k);
  double weights[kColumns];
  dots<kColumns, kLanesOfSum>(v, x, rest.rows, weights);
  for (std::size_t k = 0; k < kColumns; ++k) {
    weights[k] = f * (top(j, k) + weights[k]);
    top(j, k) -= weights[k];
  }
  subtractFromEach<kColumns>(weights, v, x, rest.rows);
}

/// Reflects the columns from `first` on.
HWY_INLINE void reflectStacked(double f, std::size_t j, const double* v, Matrix top, Matrix rest,
                               std::size_t first) {
  constexpr std::size_t kTogether = 4;
  if (f == 0) return;
  std::size_t c = first;
  const auto from = [&c](Matrix m, std::size_t columns) { return m.block(0, c, m.rows, columns); };
  for (; c + kTogether <= rest.columns; c += kTogether) {
    reflectTogether<kTogether>(f, j, v, from(top, kTogether), from(rest, kTogether));
  }
  for (; c < rest.columns; ++c) reflectTogether<1>(f, j, v, from(top, 1), from(rest, 1));
}

/// Merges a block of rows into r. The block takes the vectors of the reflections, without their
/// upper element, which is 1 in row j for reflection j.
void mergeBlock(Matrix block, double* factors, Matrix r) {
  const std::size_t n = block.columns;
  for (std::size_t j = 0; j < n; ++j) {
    double* x = block.column(j);
    factors[j] = makeReflection(r(j, j), x, block.rows, r(j, j));
    reflectStacked(factors[j], j, x, r, block, j + 1);
  }
}

void applyBlock(ConstMatrix block, const double* factors, bool isTransposed, Matrix top,
                Matrix rest) {
  const std::size_t n = block.columns;
  for (std::size_t k = 0; k < n; ++k) {
    const std::size_t j = isTransposed ? k : n - 1 - k;
    reflectStacked(factors[j], j, block.column(j), top, rest, 0);
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(mergeBlock);
HWY_EXPORT(applyBlock);

namespace {

/// Rows of a block: about as many as keep it in the second-level cache.
std::size_t blockRows(std::size_t columns) {
  constexpr std::size_t kElements = 32768;
  return std::max({std::size_t{16}, columns, kElements / std::max<std::size_t>(columns, 1)});
}

}  // namespace

std::size_t RowQr::blocks(std::size_t rows, std::size_t columns) {
  const std::size_t height = blockRows(columns);
  return rows / height + (rows % height != 0);
}

RowQr::RowQr(Matrix a, std::span<double> factors, Matrix r) : a_(a), factors_(factors) {
  for (std::size_t c = 0; c < r.columns; ++c) std::fill_n(r.column(c), r.rows, 0.0);
  const std::size_t height = blockRows(a.columns);
  double* factor = factors.data();
  for (std::size_t first = 0; first < a.rows; first += height, factor += a.columns) {
    const std::size_t rows = std::min(height, a.rows - first);
    HWY_DYNAMIC_DISPATCH(mergeBlock)(a.block(first, 0, rows, a.columns), factor, r);
  }
}

void RowQr::applyTransposed(Matrix top, Matrix rest) const {
  const std::size_t height = blockRows(a_.columns);
  const double* factor = factors_.data();
  for (std::size_t first = 0; first < a_.rows; first += height, factor += a_.columns) {
    const std::size_t rows = std::min(height, a_.rows - first);
    HWY_DYNAMIC_DISPATCH(applyBlock)
    (a_.block(first, 0, rows, a_.columns), factor, true, top,
     rest.block(first, 0, rows, rest.columns));
  }
}

void RowQr::apply(Matrix top, Matrix rest) const {
  const std::size_t height = blockRows(a_.columns);
  for (std::size_t block = blocks(a_.rows, a_.columns); block-- > 0;) {
    const std::size_t first = block * height;
    const std::size_t rows = std::min(height, a_.rows - first);
    HWY_DYNAMIC_DISPATCH(applyBlock)
    (a_.block(first, 0, rows, a_.columns), factors_.data() + block * a_.columns, false, top,
     rest.block(first, 0, rows, rest.columns));
  }
}

}  // namespace zel::kernels
#endif
