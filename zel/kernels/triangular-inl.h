// Building blocks of the decompositions: packed slivers, the triangular solution on them, and the
// subtraction of a product from a tile. Included once per instruction set inside its namespace,
// after fused_multiply_add-inl.h.
//
// A sliver is kSliver neighbouring columns of a block, stored row by row, so that one row of it is
// three vectors side by side. A column of the sliver is a lane, and each lane takes its own
// subtractions one by one, upwards; padding lanes hold zeros and are never stored.

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());
constexpr std::size_t kVecs = 3;
constexpr std::size_t kSliver = kVecs * kLanes;
// Three vectors by four columns (eight with 32 registers of eight lanes) keep the accumulators in
// registers, and enough of them to hide the latency of the multiply-add.
constexpr std::size_t kTile = kLanes <= 2 ? 3 : kLanes;

/// c - a b with one rounding.
HWY_INLINE Vec fusedSubtract(Vec a, Vec b, Vec c) {
#if HWY_NATIVE_FMA
  return hn::NegMulAdd(a, b, c);
#else
  return fusedMultiplyAdd(hn::Neg(a), b, c);
#endif
}

/// Packs the strict lower triangle of entry(i, k), i < rows, for solveTriangle: for each kStep
/// rows, their entries of one column side by side, columns upwards to the last of these rows.
/// @return the end of the packed form
template <std::size_t kStep, class Entry>
HWY_INLINE double* packTriangle(std::size_t rows, Entry entry, double* HWY_RESTRICT to) {
  for (std::size_t i = 0; i < rows; i += kStep) {
    for (std::size_t k = 0; k < i + kStep; ++k, to += kStep) {
      for (std::size_t r = 0; r < kStep; ++r)
        to[r] = k < i + r && i + r < rows ? entry(i + r, k) : 0;
    }
  }
  return to;
}

/// s -= L x for kRows rows, whose multipliers for one row of x are kStep apart.
template <std::size_t kStep, std::size_t kRows, std::size_t kWidth>
HWY_INLINE void subtractRows(const double* HWY_RESTRICT l, std::size_t inner,
                             const double* HWY_RESTRICT x, std::size_t stride,
                             Vec (&s)[kRows][kWidth]) {
  const Tag d;
  // What there are fewer of stays in registers beside the sums.
  for (std::size_t k = 0; k < inner; ++k) {
    if constexpr (kRows < kWidth) {
      Vec factor[kRows];
      for (std::size_t r = 0; r < kRows; ++r) factor[r] = hn::Set(d, l[r]);
      for (std::size_t v = 0; v < kWidth; ++v) {
        const Vec y = hn::LoadU(d, x + v * kLanes);
        for (std::size_t r = 0; r < kRows; ++r) s[r][v] = fusedSubtract(factor[r], y, s[r][v]);
      }
    } else {
      Vec y[kWidth];
      for (std::size_t v = 0; v < kWidth; ++v) y[v] = hn::LoadU(d, x + v * kLanes);
      for (std::size_t r = 0; r < kRows; ++r) {
        const Vec factor = hn::Set(d, l[r]);
        for (std::size_t v = 0; v < kWidth; ++v) s[r][v] = fusedSubtract(factor, y[v], s[r][v]);
      }
    }
    l += kStep;
    x += stride;
  }
}

/// kRows rows of the solution; `inner` solved rows before them begin at x. diagonal: null for a
/// unit triangle, or the divisors.
template <std::size_t kStep, std::size_t kRows, std::size_t kWidth>
HWY_INLINE void solveRows(const double* HWY_RESTRICT l, std::size_t inner, const double* diagonal,
                          double* x, std::size_t stride) {
  const Tag d;
  Vec s[kRows][kWidth];
  double* rows = x + inner * stride;
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t v = 0; v < kWidth; ++v) s[r][v] = hn::LoadU(d, rows + r * stride + v * kLanes);
  }
  subtractRows<kStep>(l, inner, x, stride, s);
  l += inner * kStep;
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t k = 0; k < r; ++k) {
      const Vec factor = hn::Set(d, l[k * kStep + r]);
      for (std::size_t v = 0; v < kWidth; ++v) s[r][v] = fusedSubtract(factor, s[k][v], s[r][v]);
    }
    for (std::size_t v = 0; v < kWidth; ++v) {
      if (diagonal != nullptr) s[r][v] = hn::Div(s[r][v], hn::Set(d, diagonal[r]));
      hn::StoreU(s[r][v], d, rows + r * stride + v * kLanes);
    }
  }
}

/// Solves L X = B in place for kWidth vectors of columns; rows of X lie `stride` apart, and the
/// solution before row `first`, a multiple of kStep, is zero.
template <std::size_t kStep, std::size_t kWidth>
HWY_INLINE void solveTriangle(const double* HWY_RESTRICT triangle, std::size_t first,
                              std::size_t rows, const double* diagonal, double* x,
                              std::size_t stride) {
  static_assert(kStep == 2 || kStep == 4);
  for (std::size_t i = 0; i < rows; triangle += kStep * (i + kStep), i += kStep) {
    if (i < first) continue;
    const double* l = triangle + first * kStep;
    const double* divisors = diagonal == nullptr ? nullptr : diagonal + i;
    double* from = x + first * stride;
    const std::size_t inner = i - first;
    if (rows - i >= kStep) {
      solveRows<kStep, kStep, kWidth>(l, inner, divisors, from, stride);
    } else if (rows - i == 1) {
      solveRows<kStep, 1, kWidth>(l, inner, divisors, from, stride);
    } else if constexpr (kStep == 4) {
      if (rows - i == 2) {
        solveRows<kStep, 2, kWidth>(l, inner, divisors, from, stride);
      } else {
        solveRows<kStep, 3, kWidth>(l, inner, divisors, from, stride);
      }
    }
  }
}

/// Columns first.. of a block into a sliver, at most kSliver of them, zeros after the last.
HWY_INLINE void packColumns(ConstMatrix block, std::size_t first, double* HWY_RESTRICT sliver) {
  const std::size_t columns = HWY_MIN(block.columns - first, kSliver);
  for (std::size_t c = 0; c < kSliver; ++c) {
    const double* x = c < columns ? block.column(first + c) : nullptr;
    for (std::size_t r = 0; r < block.rows; ++r) sliver[r * kSliver + c] = c < columns ? x[r] : 0;
  }
}

HWY_INLINE void unpackColumns(const double* HWY_RESTRICT sliver, Matrix block, std::size_t first) {
  const std::size_t columns = HWY_MIN(block.columns - first, kSliver);
  for (std::size_t c = 0; c < columns; ++c) {
    double* x = block.column(first + c);
    for (std::size_t r = 0; r < block.rows; ++r) x[r] = sliver[r * kSliver + c];
  }
}

/// Rows of a block into slivers: kSliver neighbouring rows of a column side by side, zeros after
/// the last row.
HWY_INLINE void packRows(ConstMatrix block, double* HWY_RESTRICT to) {
  const Tag d;
  for (std::size_t i = 0; i < block.rows; i += kSliver) {
    const std::size_t rows = HWY_MIN(block.rows - i, kSliver);
    for (std::size_t k = 0; k < block.columns; ++k, to += kSliver) {
      const double* from = block.column(k) + i;
      if (rows == kSliver) {
        for (std::size_t v = 0; v < kSliver; v += kLanes) {
          hn::StoreU(hn::LoadU(d, from + v), d, to + v);
        }
      } else {
        for (std::size_t r = 0; r < kSliver; ++r) to[r] = r < rows ? from[r] : 0;
      }
    }
  }
}

/// c -= a b for kSliver rows and kTile columns; a has kSliver rows whose columns lie aStride apart,
/// b is part of a sliver.
HWY_INLINE void subtractTile(const double* HWY_RESTRICT a, std::size_t aStride,
                             const double* HWY_RESTRICT b, std::size_t inner,
                             double* HWY_RESTRICT c, std::size_t cStride) {
  const Tag d;
  Vec s[kTile][kVecs];
  for (std::size_t j = 0; j < kTile; ++j) {
    for (std::size_t v = 0; v < kVecs; ++v) s[j][v] = hn::LoadU(d, c + j * cStride + v * kLanes);
  }
  for (std::size_t k = 0; k < inner; ++k) {
    Vec x[kVecs];
    for (std::size_t v = 0; v < kVecs; ++v) x[v] = hn::LoadU(d, a + v * kLanes);
    for (std::size_t j = 0; j < kTile; ++j) {
      const Vec y = hn::Set(d, b[j]);
      for (std::size_t v = 0; v < kVecs; ++v) s[j][v] = fusedSubtract(x[v], y, s[j][v]);
    }
    a += aStride;
    b += kSliver;
  }
  for (std::size_t j = 0; j < kTile; ++j) {
    for (std::size_t v = 0; v < kVecs; ++v) hn::StoreU(s[j][v], d, c + j * cStride + v * kLanes);
  }
}

/// The same for a tile of which only some rows and columns exist, or only those for which
/// `stored(row, column)`.
template <class Stored>
HWY_INLINE void subtractPartialTile(const double* HWY_RESTRICT a, std::size_t aStride,
                                    const double* HWY_RESTRICT b, std::size_t inner, double* c,
                                    std::size_t cStride, Stored stored) {
  double tile[kTile * kSliver];
  for (std::size_t j = 0; j < kTile; ++j) {
    for (std::size_t i = 0; i < kSliver; ++i) {
      tile[j * kSliver + i] = stored(i, j) ? c[j * cStride + i] : 0;
    }
  }
  subtractTile(a, aStride, b, inner, tile, kSliver);
  for (std::size_t j = 0; j < kTile; ++j) {
    for (std::size_t i = 0; i < kSliver; ++i) {
      if (stored(i, j)) c[j * cStride + i] = tile[j * kSliver + i];
    }
  }
}
