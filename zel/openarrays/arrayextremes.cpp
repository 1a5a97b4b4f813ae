#include "zel/openarrays/arrayextremes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "zel/kernels/minmax.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;
using detail::TBox;
using detail::TCorner;

/// Of an empty array.
template <class T>
constexpr kernels::MinMaxStart<T> kNothing{std::numeric_limits<T>::max(),
                                           std::numeric_limits<T>::lowest()};

/// Start values that no element exceeds.
template <class T>
constexpr kernels::MinMaxStart<T> kLimits = kNothing<T>;
template <>
constexpr kernels::MinMaxStart<double> kLimits<double>{std::numeric_limits<double>::infinity(),
                                                       -std::numeric_limits<double>::infinity()};

/// Position of an extreme that equals its start value: of its first occurrence. Where there is
/// none, every element is not-a-number, and so is the extreme.
template <class T>
std::size_t placeOfLimit(std::span<const T> x, T& extreme) {
  const auto found = std::ranges::find(x, extreme);
  if (found != x.end()) return static_cast<std::size_t>(found - x.begin());
  extreme = x.front();
  return 0;
}

/// Both extremes of at least one element, which is found.
template <class T>
kernels::MinMax<T> extremes(std::span<const T> x) {
  auto found = kernels::minMax(x, kLimits<T>);
  if (found.minIndex == kernels::kNoIndex) found.minIndex = placeOfLimit(x, found.minimum);
  if (found.maxIndex == kernels::kNoIndex) found.maxIndex = placeOfLimit(x, found.maximum);
  return found;
}

/// The same in lanes, which the compiler makes vectors of; without the places.
kernels::MinMax<float> extremes(std::span<const float> x) {
  constexpr std::size_t kLanes = 16;
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  std::array<float, kLanes> low;
  std::array<float, kLanes> high;
  low.fill(kInfinity);
  high.fill(-kInfinity);
  const auto take = [&](const float* first, std::size_t n) {
    for (std::size_t k = 0; k < n; ++k) {
      low[k] = first[k] < low[k] ? first[k] : low[k];
      high[k] = first[k] > high[k] ? first[k] : high[k];
    }
  };
  std::size_t i = 0;
  for (; i + kLanes <= x.size(); i += kLanes) take(x.data() + i, kLanes);
  take(x.data() + i, x.size() - i);
  const float least = *std::ranges::min_element(low);
  const float most = *std::ranges::max_element(high);
  // Only not-a-number leaves both as they were.
  return least > most ? kernels::MinMax<float>{x.front(), x.front()}
                      : kernels::MinMax<float>{least, most};
}

template <class T>
struct Extreme {
  T value;
  std::size_t place = kernels::kNoIndex;
};

template <class T, int Rank>
Extreme<T> maximumOf(const TBlock<const T, Rank>& a) {
  if (a.empty()) return {kNothing<T>.maximum};
  const auto found = extremes(a.cells());
  return {found.maximum, found.maxIndex};
}

template <class T, int Rank>
Extreme<T> minimumOf(const TBlock<const T, Rank>& a) {
  if (a.empty()) return {kNothing<T>.minimum};
  const auto found = extremes(a.cells());
  return {found.minimum, found.minIndex};
}

/// Where to store the indices of a cell.
template <int Rank>
using TPlaces = std::array<int*, static_cast<std::size_t>(Rank)>;

/// Stores the indices of a cell of a box from its place in the order of the cells.
template <int Rank>
void storePlace(std::size_t place, const TBox<Rank>& box, const TPlaces<Rank>& places) {
  for (std::size_t d = Rank; d-- > 0;) {
    *places[d] = static_cast<int>(box.low[d] + place % box.counts[d]);
    place /= box.counts[d];
  }
}

template <class T, int Rank>
T placed(const Extreme<T>& extreme, const TBlock<const T, Rank>& a, const TPlaces<Rank>& places) {
  if (a.empty()) {
    for (int* const place : places) *place = -1;
  } else {
    storePlace<Rank>(extreme.place, {{}, a.extents}, places);
  }
  return extreme.value;
}

template <class T, int Rank>
int minMax(const TBlock<const T, Rank>& a, T& minimum, T& maximum) {
  if (a.empty()) return kEmpty;
  const auto found = extremes(a.cells());
  minimum = found.minimum;
  maximum = found.maximum;
  return kDone;
}

template <class T, int Rank>
int minMax(const TBlock<const T, Rank>& a, const TCorner<Rank>& low, const TCorner<Rank>& high,
           T& minimum, T& maximum, const TPlaces<Rank>& minPlaces, const TPlaces<Rank>& maxPlaces) {
  TBox<Rank> box;
  if (const int fault = detail::TakeBox(a, low, high, box); fault != kDone) return fault;
  const auto found =
      detail::WithCells("MinMaxArray", a, box, [](std::span<const T> x) { return extremes(x); });
  minimum = found.minimum;
  maximum = found.maximum;
  storePlace<Rank>(found.minIndex, box, minPlaces);
  storePlace<Rank>(found.maxIndex, box, maxPlaces);
  return kDone;
}

}  // namespace

double MaxArray(std::span<const double> Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
double MaxArray(const TDouble2DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
double MaxArray(const TDouble3DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
double MaxArray(const TDouble4DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
int MaxArray(std::span<const int> Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
int MaxArray(const TInt2DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
int MaxArray(const TInt3DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
int MaxArray(const TInt4DArray& Arr) { return maximumOf(detail::BlockOf(Arr)).value; }
int MaxArray(std::span<const int> Arr, int& Pos) {
  return placed(maximumOf(detail::BlockOf(Arr)), detail::BlockOf(Arr), {&Pos});
}
int MaxArray(const TInt2DArray& Arr, int& ColPos, int& RowPos) {
  return placed(maximumOf(detail::BlockOf(Arr)), detail::BlockOf(Arr), {&ColPos, &RowPos});
}

double MinArray(std::span<const double> Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
double MinArray(const TDouble2DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
double MinArray(const TDouble3DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
double MinArray(const TDouble4DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
int MinArray(std::span<const int> Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
int MinArray(const TInt2DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
int MinArray(const TInt3DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
int MinArray(const TInt4DArray& Arr) { return minimumOf(detail::BlockOf(Arr)).value; }
int MinArray(std::span<const int> Arr, int& Pos) {
  return placed(minimumOf(detail::BlockOf(Arr)), detail::BlockOf(Arr), {&Pos});
}
int MinArray(const TInt2DArray& Arr, int& ColPos, int& RowPos) {
  return placed(minimumOf(detail::BlockOf(Arr)), detail::BlockOf(Arr), {&ColPos, &RowPos});
}

int MinMaxArray(std::span<const double> Arr, double& Min, double& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TDouble2DArray& Arr, double& Min, double& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TDouble3DArray& Arr, double& Min, double& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TDouble4DArray& Arr, double& Min, double& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(std::span<const float> Arr, float& Min, float& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(std::span<const int> Arr, int& Min, int& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TInt2DArray& Arr, int& Min, int& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TInt3DArray& Arr, int& Min, int& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(const TInt4DArray& Arr, int& Min, int& Max) {
  return minMax(detail::BlockOf(Arr), Min, Max);
}
int MinMaxArray(std::span<const double> Arr, int LowIx, int HighIx, double& Min, double& Max,
                int& MinPos, int& MaxPos) {
  return minMax(detail::BlockOf(Arr), {LowIx}, {HighIx}, Min, Max, {&MinPos}, {&MaxPos});
}
int MinMaxArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                double& Min, double& Max, int& MinCol, int& MinRow, int& MaxCol, int& MaxRow) {
  return minMax(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Min, Max,
                {&MinCol, &MinRow}, {&MaxCol, &MaxRow});
}
int MinMaxArray(std::span<const int> Arr, int LowIx, int HighIx, int& Min, int& Max, int& MinPos,
                int& MaxPos) {
  return minMax(detail::BlockOf(Arr), {LowIx}, {HighIx}, Min, Max, {&MinPos}, {&MaxPos});
}
int MinMaxArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow, int& Min,
                int& Max, int& MinCol, int& MinRow, int& MaxCol, int& MaxRow) {
  return minMax(detail::BlockOf(Arr), {LowCol, LowRow}, {HighCol, HighRow}, Min, Max,
                {&MinCol, &MinRow}, {&MaxCol, &MaxRow});
}

}  // namespace zel
