#include "zel/kernels/fourier.h"

#include <algorithm>
#include <cstddef>

#include "zel/kernels/fourier_tables.h"
#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/fourier.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#ifndef ZEL_KERNELS_FOURIER_WORK
#define ZEL_KERNELS_FOURIER_WORK
namespace zel::kernels {
namespace {

constexpr std::size_t kMostLanes = 8;
/// Free space behind each row, so that the rows do not share a few sets of the cache.
constexpr std::size_t kPadding = 8;

/// The parts of the working memory.
struct Work {
  double* transposed;    ///< one row per column of the data
  std::size_t rowWidth;  ///< in numbers, two for each complex one
  double* column;        ///< a vector of columns between their two passes
  double* steps;         ///< factors that a group of columns has in common, two for each row
};

}  // namespace
}  // namespace zel::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/fourier_codelets-inl.h"
#include "zel/kernels/square_tile-inl.h"

using Value = Complex<TileTag>;
constexpr std::size_t kLanes = kTile;
static_assert(kLanes <= kMostLanes);

// Inside the working memory a vector of complex numbers is its real parts, then the imaginary ones.

HWY_INLINE Value loadValue(const double* HWY_RESTRICT from) {
  return {hn::LoadU(TileTag(), from), hn::LoadU(TileTag(), from + kLanes)};
}
HWY_INLINE void storeValue(const Value& value, double* HWY_RESTRICT to) {
  hn::StoreU(value.re, TileTag(), to);
  hn::StoreU(value.im, TileTag(), to + kLanes);
}

/// The caller's numbers; the inverse transform exchanges their parts on the way in and out, and
/// divides.
template <bool kIsInverse>
struct Data {
  double* numbers;
  double scale;  ///< a power of 2

  HWY_INLINE Value load(std::size_t at) const {
    Value x;
    hn::LoadInterleaved2(TileTag(), numbers + 2 * at, x.re, x.im);
    if constexpr (kIsInverse) return {x.im, x.re};
    return x;
  }
  HWY_INLINE void store(const Value& x, std::size_t at) const {
    if constexpr (kIsInverse) {
      const TileVec factor = hn::Set(TileTag(), scale);
      hn::StoreInterleaved2(hn::Mul(x.im, factor), hn::Mul(x.re, factor), TileTag(),
                            numbers + 2 * at);
    } else {
      hn::StoreInterleaved2(x.re, x.im, TileTag(), numbers + 2 * at);
    }
  }
};

/// Calls run with the size of a codelet as a constant.
template <class Run>
HWY_INLINE void withSize(int bits, Run run) {
  switch (bits) {
    case 3:
      return run.template operator()<8>();
    case 4:
      return run.template operator()<16>();
    case 5:
      return run.template operator()<32>();
    default:
      return run.template operator()<64>();
  }
}

/// First pass over a vector of long columns: codelets over distant rows, and the factors.
/// @param load  gives a row
template <class Load>
HWY_INLINE void firstHalf(const ColumnTables& tables, double* HWY_RESTRICT column, Load load) {
  const int high = tables.split.highBits;
  const std::size_t low = std::size_t{1} << tables.split.lowBits;
  withSize(high, [&]<std::size_t kSize>() HWY_ATTR {
    const TileTag d;
    for (std::size_t j = 0; j < low; ++j) {
      const double* const twiddles = tables.twiddles.data() + 2 * kSize * j;
      codelet<kSize>(
          d, tables.codelet[high], [&](std::size_t i) HWY_ATTR { return load(i * low + j); },
          [&](std::size_t k, const Value& x) HWY_ATTR {
            storeValue(times(x, factor(d, twiddles + 2 * k)), column + 2 * kLanes * (k * low + j));
          });
    }
  });
}

/// Stores what belongs to neighbouring rows of kLanes columns as columns of kLanes rows.
/// @param tile  a vector for each row
HWY_INLINE void storeTransposed(const Value (&tile)[kLanes], const Work& work, std::size_t column,
                                std::size_t row) {
  TileVec re[kLanes];
  TileVec im[kLanes];
  for (std::size_t i = 0; i < kLanes; ++i) {
    re[i] = tile[i].re;
    im[i] = tile[i].im;
  }
  transposeTile(re);
  transposeTile(im);
  double* const to = work.transposed + column * work.rowWidth + 2 * row;
  for (std::size_t i = 0; i < kLanes; ++i) storeValue({re[i], im[i]}, to + i * work.rowWidth);
}

/// Columns of one codelet.
template <bool kIsInverse>
void firstPassShort(const FourierTables& tables, const Data<kIsInverse>& data, const Work& work) {
  const std::size_t columns = std::size_t{1} << tables.split.lowBits;
  withSize(tables.split.highBits, [&]<std::size_t kSize>() HWY_ATTR {
    const TileTag d;
    const double* const re = tables.between.data();
    const double* const im = re + kSize * columns;
    for (std::size_t j = 0; j < columns; j += kLanes) {
      Value results[kSize];
      codelet<kSize>(
          d, tables.codelets[tables.split.highBits].data(),
          [&](std::size_t i) HWY_ATTR { return data.load(i * columns + j); },
          [&](std::size_t k, const Value& x) HWY_ATTR {
            const std::size_t at = k * columns + j;
            results[k] = times(x, Value{hn::LoadU(d, re + at), hn::LoadU(d, im + at)});
          });
      for (std::size_t k = 0; k < kSize; k += kLanes) {
        Value tile[kLanes];
        for (std::size_t i = 0; i < kLanes; ++i) tile[i] = results[k + i];
        storeTransposed(tile, work, j, k);
      }
    }
  });
}

/// One complex number.
using Single = hn::CappedTag<double, 1>;

/// Root 8 g k for all rows k. Written with vectors of one number, since g++ 12 fuses the products
/// of plain numbers in this pattern in spite of -ffp-contract=off.
void fillSteps(const FourierTables& tables, std::size_t g, double* HWY_RESTRICT steps) {
  const Single d;
  const std::size_t mask = (std::size_t{1} << tables.fineBits) - 1;
  const std::size_t rows = std::size_t{1} << tables.split.highBits;
  for (std::size_t k = 0; k < rows; ++k) {
    const std::size_t m = kFourierGroup * g * k;
    const auto step = times(factor(d, tables.coarse.data() + 2 * (m >> tables.fineBits)),
                            factor(d, tables.fine.data() + 2 * (m & mask)));
    steps[2 * k] = hn::GetLane(step.re);
    steps[2 * k + 1] = hn::GetLane(step.im);
  }
}

template <bool kIsInverse>
void firstPassLong(const FourierTables& tables, const Data<kIsInverse>& data, const Work& work) {
  const std::size_t columns = std::size_t{1} << tables.split.lowBits;
  const ColumnTables& column = tables.first;
  const std::size_t high = std::size_t{1} << column.split.highBits;
  for (std::size_t j = 0; j < columns; j += kLanes) {
    if (j % kFourierGroup == 0) fillSteps(tables, j / kFourierGroup, work.steps);
    const double* const offsets = tables.offsets.data() + j % kFourierGroup;
    firstHalf(column, work.column,
              [&](std::size_t row) HWY_ATTR { return data.load(row * columns + j); });
    withSize(column.split.lowBits, [&]<std::size_t kSize>() HWY_ATTR {
      const TileTag d;
      for (std::size_t first = 0; first < high; first += kLanes) {
        Value results[kSize][kLanes];
        for (std::size_t i = 0; i < kLanes; ++i) {
          const double* const from = work.column + 2 * kLanes * kSize * (first + i);
          codelet<kSize>(
              d, column.codelet[column.split.lowBits],
              [&](std::size_t n) HWY_ATTR { return loadValue(from + 2 * kLanes * n); },
              [&](std::size_t k, const Value& x) HWY_ATTR {
                const std::size_t row = first + i + high * k;
                const double* const offset = offsets + 2 * kFourierGroup * row;
                const Value w =
                    times(Value{hn::LoadU(d, offset), hn::LoadU(d, offset + kFourierGroup)},
                          factor(d, work.steps + 2 * row));
                results[k][i] = times(x, w);
              });
        }
        for (std::size_t k = 0; k < kSize; ++k) {
          storeTransposed(results[k], work, j, first + high * k);
        }
      }
    });
  }
}

template <bool kIsInverse>
void secondPass(const FourierTables& tables, const Data<kIsInverse>& data, const Work& work) {
  const ColumnTables& column = tables.second;
  const std::size_t rows = std::size_t{1} << tables.split.highBits;
  for (std::size_t k = 0; k < rows; k += kLanes) {
    const auto load = [&](std::size_t j) HWY_ATTR {
      return loadValue(work.transposed + j * work.rowWidth + 2 * k);
    };
    if (column.twiddles.empty()) {
      withSize(column.bits, [&]<std::size_t kSize>() HWY_ATTR {
        codelet<kSize>(TileTag(), column.codelet[column.bits], load,
                       [&](std::size_t i, const Value& x)
                           HWY_ATTR { data.store(x, i * rows + k); });
      });
      continue;
    }
    firstHalf(column, work.column, load);
    withSize(column.split.lowBits, [&]<std::size_t kSize>() HWY_ATTR {
      const std::size_t high = std::size_t{1} << column.split.highBits;
      for (std::size_t i = 0; i < high; ++i) {
        const double* const from = work.column + 2 * kLanes * kSize * i;
        codelet<kSize>(
            TileTag(), column.codelet[column.split.lowBits],
            [&](std::size_t n) HWY_ATTR { return loadValue(from + 2 * kLanes * n); },
            [&](std::size_t m, const Value& x)
                HWY_ATTR { data.store(x, (i + high * m) * rows + k); });
      }
    });
  }
}

/// A single column, one number after the other.
template <bool kIsInverse>
void transformFew(const FourierTables& tables, double* numbers, double scale) {
  const Single d;
  constexpr std::size_t kRe = kIsInverse ? 1 : 0;
  const auto run = [&]<std::size_t kSize>() HWY_ATTR {
    codelet<kSize>(
        d, tables.codelets[tables.bits].data(),
        [&](std::size_t i) HWY_ATTR {
          return Complex<Single>{hn::Set(d, numbers[2 * i + kRe]),
                                 hn::Set(d, numbers[2 * i + 1 - kRe])};
        },
        [&](std::size_t k, const Complex<Single>& x) HWY_ATTR {
          const auto factor = hn::Set(d, scale);
          numbers[2 * k + kRe] = hn::GetLane(kIsInverse ? hn::Mul(x.re, factor) : x.re);
          numbers[2 * k + 1 - kRe] = hn::GetLane(kIsInverse ? hn::Mul(x.im, factor) : x.im);
        });
  };
  switch (tables.bits) {
    case 0:
      return run.template operator()<1>();
    case 1:
      return run.template operator()<2>();
    case 2:
      return run.template operator()<4>();
    default:
      return withSize(tables.bits, run);
  }
}

template <bool kIsInverse>
void transform(const FourierTables& tables, double* numbers, const Work& work) {
  const double scale = 1 / static_cast<double>(std::size_t{1} << tables.bits);
  if (tables.bits < kMostCodeletBits) return transformFew<kIsInverse>(tables, numbers, scale);
  const Data<kIsInverse> data{numbers, scale};
  if (tables.first.twiddles.empty()) {
    firstPassShort(tables, data, work);
  } else {
    firstPassLong(tables, data, work);
  }
  secondPass(tables, data, work);
}

void transformForward(const FourierTables& tables, double* numbers, const Work& work) {
  transform<false>(tables, numbers, work);
}
void transformInverse(const FourierTables& tables, double* numbers, const Work& work) {
  transform<true>(tables, numbers, work);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(transformForward);
HWY_EXPORT(transformInverse);

namespace {

Work partsOf(double* work, int bits) {
  const Split split = splitOf(bits);
  const std::size_t rows = std::size_t{1} << split.highBits;
  const std::size_t rowWidth = 2 * (rows + kPadding);
  double* const column = work + (rowWidth << split.lowBits);
  return {work, rowWidth, column, column + 2 * kMostLanes * rows};
}

}  // namespace

std::size_t fourierWorkSize(int bits) {
  if (bits < kMostCodeletBits) return 0;
  const Work parts = partsOf(nullptr, bits);
  return static_cast<std::size_t>(parts.steps - parts.transposed) +
         (std::size_t{2} << splitOf(bits).highBits);
}

void prepareFourier(int bits) { static_cast<void>(fourierTables(bits)); }

void fourier(double* data, int bits, double* work) {
  HWY_DYNAMIC_DISPATCH(transformForward)(fourierTables(bits), data, partsOf(work, bits));
}

void inverseFourier(double* data, int bits, double* work) {
  HWY_DYNAMIC_DISPATCH(transformInverse)(fourierTables(bits), data, partsOf(work, bits));
}

}  // namespace zel::kernels
#endif
