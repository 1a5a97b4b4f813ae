#include "zel/kernels/weighted_windows.h"

#include <algorithm>
#include <type_traits>

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/weighted_windows.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Sums that are computed side by side, which hides the latency of an addition.
constexpr std::size_t kSideBySide = 4;

/// Calls block(d, vectors, c) for parts that cover 0..count-1: some vectors at a time, then one,
/// then single numbers.
template <class Block>
HWY_INLINE void forBlocks(std::size_t count, Block&& block) {
  const hn::CappedTag<double, 8> d;
  const hn::CappedTag<double, 1> one;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t c = 0;
  for (; c + kSideBySide * lanes <= count; c += kSideBySide * lanes) {
    block(d, std::integral_constant<std::size_t, kSideBySide>(), c);
  }
  for (; c + lanes <= count; c += lanes) block(d, std::integral_constant<std::size_t, 1>(), c);
  for (; c < count; ++c) block(one, std::integral_constant<std::size_t, 1>(), c);
}

void addWeighted(const double* const* rows, const WindowWeights& window, double* out,
                 std::size_t count) {
  forBlocks(count, [&](auto d, auto vectors, std::size_t c) HWY_ATTR {
    using Vec = hn::Vec<decltype(d)>;
    Vec sum[vectors()];
    for (std::size_t v = 0; v < vectors(); ++v) sum[v] = hn::Zero(d);
    const double* weight = window.weights;
    for (std::size_t r = 0; r < window.rows; ++r) {
      const double* x = rows[r] + c;
      for (std::size_t j = 0; j < window.columns; ++j, ++weight, ++x) {
        const Vec w = hn::Set(d, *weight);
        for (std::size_t v = 0; v < vectors(); ++v) {
          sum[v] = hn::Add(sum[v], hn::Mul(w, hn::LoadU(d, x + v * hn::Lanes(d))));
        }
      }
    }
    for (std::size_t v = 0; v < vectors(); ++v) hn::StoreU(sum[v], d, out + c + v * hn::Lanes(d));
  });
}

template <SymmetricForm kForm>
HWY_INLINE void addForm(const double* x, const SymmetricWeights& window, double* out,
                        std::size_t count) {
  forBlocks(count, [&](auto d, auto vectors, std::size_t c) HWY_ATTR {
    using Vec = hn::Vec<decltype(d)>;
    Vec centre[vectors()];
    Vec sum[vectors()];
    for (std::size_t v = 0; v < vectors(); ++v) {
      centre[v] = hn::LoadU(d, x + c + v * hn::Lanes(d));
      sum[v] = hn::Zero(d);
    }
    for (std::size_t k = 1; k <= window.weights.size(); ++k) {
      const Vec w = hn::Set(d, window.weights[k - 1]);
      for (std::size_t v = 0; v < vectors(); ++v) {
        const double* at = x + c + v * hn::Lanes(d);
        const Vec before = hn::LoadU(d, at - k);
        const Vec after = hn::LoadU(d, at + k);
        Vec term;
        if constexpr (kForm == SymmetricForm::slope) {
          term = hn::Sub(after, before);
        } else {
          term = hn::Add(hn::Sub(after, centre[v]), hn::Sub(before, centre[v]));
        }
        sum[v] = hn::Add(sum[v], hn::Mul(w, term));
      }
    }
    const Vec divisor = hn::Set(d, window.divisor);
    for (std::size_t v = 0; v < vectors(); ++v) {
      Vec result;
      if constexpr (kForm == SymmetricForm::smoothing) {
        result = hn::Add(centre[v], hn::Div(sum[v], divisor));
      } else {
        result = hn::Div(hn::Mul(sum[v], hn::Set(d, window.factor)), divisor);
      }
      hn::StoreU(result, d, out + c + v * hn::Lanes(d));
    }
  });
}

void addSymmetric(const double* x, const SymmetricWeights& window, double* out, std::size_t count) {
  switch (window.form) {
    case SymmetricForm::smoothing:
      return addForm<SymmetricForm::smoothing>(x, window, out, count);
    case SymmetricForm::slope:
      return addForm<SymmetricForm::slope>(x, window, out, count);
    case SymmetricForm::curvature:
      return addForm<SymmetricForm::curvature>(x, window, out, count);
  }
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(addWeighted);
HWY_EXPORT(addSymmetric);

void weightedSums(const double* const* rows, const WindowWeights& window, double* out,
                  std::size_t count) {
  HWY_DYNAMIC_DISPATCH(addWeighted)(rows, window, out, count);
}

ClampedWindows::ClampedWindows(const WindowWeights& window, std::size_t length)
    : FWindow(window), FLength(length), FInnerBegin(window.before), FRows(window.rows) {
  const std::size_t after = window.columns - 1 - window.before;
  FInnerEnd = length > after ? length - after : 0;
  if (FInnerBegin >= FInnerEnd) FInnerBegin = FInnerEnd = length;
  const std::size_t longest = std::max(FInnerBegin, length - FInnerEnd);
  const std::size_t continued = longest + window.columns - 1;
  FContinued.resize(window.rows * continued);
  for (std::size_t r = 0; r < window.rows; ++r) FRows[r] = FContinued.data() + r * continued;
}

void ClampedWindows::inner(const double* const* rows, double* out) {
  if (FInnerBegin == FLength) return;
  // Windows begin `before` columns earlier: the first one with the row.
  weightedSums(rows, FWindow, out + FInnerBegin, FInnerEnd - FInnerBegin);
}

void ClampedWindows::edges(const double* const* rows, double* out) {
  edge(rows, 0, FInnerBegin, out);
  edge(rows, FInnerEnd, FLength, out);
}

void ClampedWindows::edge(const double* const* rows, std::size_t first, std::size_t last,
                          double* out) {
  if (first == last) return;
  const std::size_t used = last - first + FWindow.columns - 1;
  double* to = FContinued.data();
  for (std::size_t r = 0; r < FWindow.rows; ++r) {
    to += FRows[r] - to;
    for (std::size_t k = 0; k < used; ++k) {
      const std::size_t column = std::max(first + k, FWindow.before) - FWindow.before;
      to[k] = rows[r][std::min(column, FLength - 1)];
    }
  }
  weightedSums(FRows.data(), FWindow, out + first, last - first);
}

void symmetricSums(const double* x, const SymmetricWeights& window, double* out,
                   std::size_t count) {
  HWY_DYNAMIC_DISPATCH(addSymmetric)(x, window, out, count);
}

}  // namespace zel::kernels
#endif
