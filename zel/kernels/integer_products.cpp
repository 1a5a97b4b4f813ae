#include "zel/kernels/integer_products.h"

#include <algorithm>
#include <utility>

namespace zel::kernels {

namespace {

// A block of a, kRows by kColumns, stays in the second-level cache while all columns of c pass.
constexpr std::size_t kRows = 1024;
constexpr std::size_t kColumns = 64;
constexpr std::size_t kTransposeBlock = 16;

/// y = y + factor x.
void addMultiple(const std::int32_t* x, std::uint32_t factor, std::int32_t* y, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    y[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(y[i]) +
                                     factor * static_cast<std::uint32_t>(x[i]));
  }
}

/// Sum of x[i] y[i * stride].
std::uint32_t dot(const std::int32_t* x, const std::int32_t* y, std::size_t stride, std::size_t n) {
  std::uint32_t sum = 0;
  if (stride == 1) {  // of its own, to be vectorised
    for (std::size_t i = 0; i < n; ++i) {
      sum += static_cast<std::uint32_t>(x[i]) * static_cast<std::uint32_t>(y[i]);
    }
  } else {
    for (std::size_t i = 0; i < n; ++i) {
      sum += static_cast<std::uint32_t>(x[i]) * static_cast<std::uint32_t>(y[i * stride]);
    }
  }
  return sum;
}

}  // namespace

void multiply(ConstIntMatrix a, Factor asA, ConstIntMatrix b, Factor asB, IntMatrix c) {
  for (std::size_t j = 0; j < c.columns; ++j) std::fill_n(c.column(j), c.rows, 0);
  // Element (p, j) of B is first[p * down + j * right].
  const std::size_t down = asB == Factor::plain ? 1 : b.stride;
  const std::size_t right = asB == Factor::plain ? b.stride : 1;
  for (std::size_t q = 0; q < a.columns; q += kColumns) {
    const std::size_t endColumn = std::min(a.columns, q + kColumns);
    for (std::size_t r = 0; r < a.rows; r += kRows) {
      const std::size_t rows = std::min(kRows, a.rows - r);
      for (std::size_t j = 0; j < c.columns; ++j) {
        for (std::size_t k = q; k < endColumn; ++k) {
          const std::int32_t* const part = a.column(k) + r;
          if (asA == Factor::plain) {
            const auto factor = static_cast<std::uint32_t>(b.data[k * down + j * right]);
            if (factor != 0) addMultiple(part, factor, c.column(j) + r, rows);
          } else {
            std::int32_t& sum = c(k, j);
            sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) +
                                            dot(part, b.data + r * down + j * right, down, rows));
          }
        }
      }
    }
  }
}

void multiplyVector(ConstIntMatrix a, Factor asA, std::span<const std::int32_t> x,
                    std::span<std::int32_t> y) {
  multiply(a, asA, {x.data(), x.size(), 1, x.size()}, Factor::plain,
           {y.data(), y.size(), 1, y.size()});
}

void transpose(ConstIntMatrix from, IntMatrix to) {
  for (std::size_t c0 = 0; c0 < from.columns; c0 += kTransposeBlock) {
    const std::size_t endColumn = std::min(from.columns, c0 + kTransposeBlock);
    for (std::size_t r = 0; r < from.rows; ++r) {
      for (std::size_t c = c0; c < endColumn; ++c) to(c, r) = from(r, c);
    }
  }
}

void transposeSquare(IntMatrix a) {
  for (std::size_t c0 = 0; c0 < a.columns; c0 += kTransposeBlock) {
    const std::size_t endColumn = std::min(a.columns, c0 + kTransposeBlock);
    for (std::size_t r = 0; r < endColumn; ++r) {
      for (std::size_t c = std::max(c0, r + 1); c < endColumn; ++c) std::swap(a(c, r), a(r, c));
    }
  }
}

}  // namespace zel::kernels
