// Building blocks of the decompositions: packed slivers, the triangular solution on them, and the
// subtraction of a product from a tile. Included once per instruction set inside its namespace.
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
// Rows that the triangular solution advances at once.
constexpr std::size_t kStep = 4;

/// c - a b with one rounding.
HWY_INLINE Vec fusedSubtract(Vec a, Vec b, Vec c) {
#if HWY_NATIVE_FMA
  return hn::NegMulAdd(a, b, c);
#else
  const Tag d;
  HWY_ALIGN double x[3][kLanes];
  hn::Store(a, d, x[0]);
  hn::Store(b, d, x[1]);
  hn::Store(c, d, x[2]);
  for (std::size_t i = 0; i < kLanes; ++i) x[2][i] = std::fma(-x[0][i], x[1][i], x[2][i]);
  return hn::Load(d, x[2]);
#endif
}

/// Length of the packed form of `rows` rows of a lower triangle.
HWY_INLINE std::size_t packedTriangle(std::size_t rows) {
  const std::size_t steps = (rows + kStep - 1) / kStep;
  return kStep * kStep * steps * (steps + 1) / 2;
}

/// Packs the strict lower triangle of entry(i, k), i < rows: for each kStep rows, their entries of
/// one column side by side, columns upwards to the last of these rows.
template <class Entry>
HWY_INLINE void packTriangle(std::size_t rows, Entry entry, double* HWY_RESTRICT to) {
  for (std::size_t i = 0; i < rows; i += kStep) {
    for (std::size_t k = 0; k < i + kStep; ++k, to += kStep) {
      for (std::size_t r = 0; r < kStep; ++r) to[r] = k < i + r && i + r < rows ? entry(i + r, k) : 0;
    }
  }
}

/// kRows rows of the solution, from row i of the block on; `triangle` begins at their entries.
/// diagonal: null for a unit triangle, or the divisors.
template <std::size_t kRows>
HWY_INLINE void solveRows(const double* HWY_RESTRICT triangle, std::size_t i,
                          const double* diagonal, double* HWY_RESTRICT b, std::size_t stride) {
  const Tag d;
  Vec s[kRows][kVecs];
  double* rows = b + i * stride;
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t v = 0; v < kVecs; ++v) s[r][v] = hn::LoadU(d, rows + r * stride + v * kLanes);
  }
  for (std::size_t k = 0; k < i; ++k) {
    Vec x[kVecs];
    for (std::size_t v = 0; v < kVecs; ++v) x[v] = hn::LoadU(d, b + k * stride + v * kLanes);
    for (std::size_t r = 0; r < kRows; ++r) {
      const Vec l = hn::Set(d, triangle[k * kStep + r]);
      for (std::size_t v = 0; v < kVecs; ++v) s[r][v] = fusedSubtract(l, x[v], s[r][v]);
    }
  }
  triangle += i * kStep;
  for (std::size_t r = 0; r < kRows; ++r) {
    for (std::size_t k = 0; k < r; ++k) {
      const Vec l = hn::Set(d, triangle[k * kStep + r]);
      for (std::size_t v = 0; v < kVecs; ++v) s[r][v] = fusedSubtract(l, s[k][v], s[r][v]);
    }
    for (std::size_t v = 0; v < kVecs; ++v) {
      if (diagonal != nullptr) s[r][v] = hn::Div(s[r][v], hn::Set(d, diagonal[r]));
      hn::StoreU(s[r][v], d, rows + r * stride + v * kLanes);
    }
  }
}

/// Rows first..last-1 of the solution of L x = b for the kSliver columns of b, whose rows lie
/// `stride` apart; first is a multiple of kStep, and rows before it are solved.
HWY_INLINE void solveTriangle(const double* HWY_RESTRICT triangle, std::size_t first,
                              std::size_t last, const double* diagonal, double* HWY_RESTRICT b,
                              std::size_t stride) {
  triangle += packedTriangle(first);
  for (std::size_t i = first; i < last; i += kStep) {
    const double* divisors = diagonal == nullptr ? nullptr : diagonal + i;
    switch (last - i) {
      case 1:
        return solveRows<1>(triangle, i, divisors, b, stride);
      case 2:
        return solveRows<2>(triangle, i, divisors, b, stride);
      case 3:
        return solveRows<3>(triangle, i, divisors, b, stride);
      default:
        solveRows<kStep>(triangle, i, divisors, b, stride);
        triangle += kStep * (i + kStep);
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
