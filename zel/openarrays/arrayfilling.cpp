#include "zel/openarrays/arrayfilling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zel/foundation/randoms.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;
using detail::TCorner;

template <class T, int Rank>
int fill(const TBlock<T, Rank>& a, T value) {
  if (a.empty()) return kEmpty;
  std::ranges::fill(a.cells(), value);
  return kDone;
}

template <class T, int Rank>
int fill(const TBlock<T, Rank>& a, T value, const TCorner<Rank>& low, const TCorner<Rank>& high) {
  detail::TBox<Rank> box;
  if (const int fault = detail::TakeBox(a, low, high, box); fault != kDone) return fault;
  detail::ForEachRun(a, box, [value](std::span<T> run) { std::ranges::fill(run, value); });
  return kDone;
}

template <class T>
int fillWithPlaces(std::span<T> cells) {
  if (cells.empty()) return kEmpty;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if constexpr (std::is_integral_v<T>) {
      cells[i] = static_cast<T>(static_cast<std::uint32_t>(i));
    } else {
      cells[i] = static_cast<T>(i);
    }
  }
  return kDone;
}

template <class T, int Rank>
int fillDiagonal(const TBlock<T, Rank>& a, T value) {
  if (a.empty()) return kEmpty;
  const std::size_t n = a.extents[0];
  for (const std::size_t extent : a.extents) {
    if (extent != n) return kInvalid;
  }
  std::ranges::fill(a.cells(), T{0});
  std::size_t step = 0;
  for (int d = 0; d < Rank; ++d) step = step * n + 1;
  for (std::size_t i = 0; i < n; ++i) a.data[i * step] = value;
  return kDone;
}

template <class T>
int fillUniform(std::span<T> cells, T low, T high) {
  if (cells.empty()) return kEmpty;
  if (low > high) return kInvalid;
  Randomize();
  const auto first = static_cast<double>(low);
  const double width = static_cast<double>(high) - first;
  for (T& cell : cells) {
    const double u = Random();
    if constexpr (std::is_integral_v<T>) {
      cell = static_cast<T>(std::floor(width * u + first));
    } else {
      // The width of bounds of different sign may be beyond the range.
      cell = std::isfinite(width) ? u * width + first : u * high + (1 - u) * low;
    }
  }
  return kDone;
}

int fillNormal(std::span<double> cells, double mean, double stdDev) {
  if (cells.empty()) return kEmpty;
  if (stdDev < 0) return kInvalid;
  Randomize();
  for (double& cell : cells) cell = GRandom() * stdDev + mean;
  return kDone;
}

}  // namespace

int FillArray(std::span<double> Arr, double Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TDouble2DArray& Arr, double Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TDouble3DArray& Arr, double Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TDouble4DArray& Arr, double Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(std::span<int> Arr, int Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TInt2DArray& Arr, int Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TInt3DArray& Arr, int Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TInt4DArray& Arr, int Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(std::span<bool> Arr, bool Value) { return fill(detail::BlockOf(Arr), Value); }
int FillArray(TBool2DArray& Arr, bool Value) { return fill(detail::BlockOf(Arr), Value); }

int FillArray(std::span<double> Arr, double Value, int LowIx, int HighIx) {
  return fill(detail::BlockOf(Arr), Value, {LowIx}, {HighIx});
}
int FillArray(TDouble2DArray& Arr, double Value, int LowCol, int LowRow, int HighCol, int HighRow) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow}, {HighCol, HighRow});
}
int FillArray(TDouble3DArray& Arr, double Value, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow, LowLayer},
              {HighCol, HighRow, HighLayer});
}
int FillArray(TDouble4DArray& Arr, double Value, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow, LowLayer, LowTSlot},
              {HighCol, HighRow, HighLayer, HighTSlot});
}
int FillArray(std::span<int> Arr, int Value, int LowIx, int HighIx) {
  return fill(detail::BlockOf(Arr), Value, {LowIx}, {HighIx});
}
int FillArray(TInt2DArray& Arr, int Value, int LowCol, int LowRow, int HighCol, int HighRow) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow}, {HighCol, HighRow});
}
int FillArray(TInt3DArray& Arr, int Value, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow, LowLayer},
              {HighCol, HighRow, HighLayer});
}
int FillArray(TInt4DArray& Arr, int Value, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow, LowLayer, LowTSlot},
              {HighCol, HighRow, HighLayer, HighTSlot});
}
int FillArray(std::span<bool> Arr, bool Value, int LowIx, int HighIx) {
  return fill(detail::BlockOf(Arr), Value, {LowIx}, {HighIx});
}
int FillArray(TBool2DArray& Arr, bool Value, int LowCol, int LowRow, int HighCol, int HighRow) {
  return fill(detail::BlockOf(Arr), Value, {LowCol, LowRow}, {HighCol, HighRow});
}

int FillArrayRix(std::span<double> Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }
int FillArrayRix(TDouble2DArray& Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }
int FillArrayRix(TDouble3DArray& Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }
int FillArrayRix(std::span<int> Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }
int FillArrayRix(TInt2DArray& Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }
int FillArrayRix(TInt3DArray& Arr) { return fillWithPlaces(detail::BlockOf(Arr).cells()); }

int FillDiagArray(TDouble2DArray& Arr, double Value) {
  return fillDiagonal(detail::BlockOf(Arr), Value);
}
int FillDiagArray(TDouble3DArray& Arr, double Value) {
  return fillDiagonal(detail::BlockOf(Arr), Value);
}
int FillDiagArray(TDouble4DArray& Arr, double Value) {
  return fillDiagonal(detail::BlockOf(Arr), Value);
}
int FillDiagArray(TInt2DArray& Arr, int Value) { return fillDiagonal(detail::BlockOf(Arr), Value); }
int FillDiagArray(TInt3DArray& Arr, int Value) { return fillDiagonal(detail::BlockOf(Arr), Value); }
int FillDiagArray(TInt4DArray& Arr, int Value) { return fillDiagonal(detail::BlockOf(Arr), Value); }

int FillRandomUniform(std::span<double> Arr, double RangeLow, double RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TDouble2DArray& Arr, double RangeLow, double RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TDouble3DArray& Arr, double RangeLow, double RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TDouble4DArray& Arr, double RangeLow, double RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(std::span<int> Arr, int RangeLow, int RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TInt2DArray& Arr, int RangeLow, int RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TInt3DArray& Arr, int RangeLow, int RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}
int FillRandomUniform(TInt4DArray& Arr, int RangeLow, int RangeHigh) {
  return fillUniform(detail::BlockOf(Arr).cells(), RangeLow, RangeHigh);
}

int FillRandomNormal(std::span<double> Arr, double Mean, double StdDev) {
  return fillNormal(detail::BlockOf(Arr).cells(), Mean, StdDev);
}
int FillRandomNormal(TDouble2DArray& Arr, double Mean, double StdDev) {
  return fillNormal(detail::BlockOf(Arr).cells(), Mean, StdDev);
}
int FillRandomNormal(TDouble3DArray& Arr, double Mean, double StdDev) {
  return fillNormal(detail::BlockOf(Arr).cells(), Mean, StdDev);
}
int FillRandomNormal(TDouble4DArray& Arr, double Mean, double StdDev) {
  return fillNormal(detail::BlockOf(Arr).cells(), Mean, StdDev);
}

}  // namespace zel
