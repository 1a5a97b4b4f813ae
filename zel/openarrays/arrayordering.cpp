#include "zel/openarrays/arrayordering.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "zel/kernels/comb_order.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;

template <class T>
int sortWithPlaces(bool ascending, std::span<T> data, TIntArray& index) {
  const std::size_t n = data.size();
  if (n < 2) return kEmpty;
  TIntArray places;
  detail::GuardArrays("SortArray", [&] {
    places.resize(n);
    std::vector<std::uint64_t> order(n);
    kernels::combOrderFast(data, std::span(order), n - 1, ascending);
    std::ranges::transform(order, places.begin(),
                           [](std::uint64_t place) { return static_cast<int>(place) + 1; });
  });
  index.swap(places);
  return kDone;
}

int sortedOnce(TIntArray& a, bool ascending) {
  if (a.size() < 2) return kEmpty;
  kernels::combSortFast(std::span(a), a.size() - 1, ascending);
  const auto removed = a.end() - std::unique(a.begin(), a.end());
  a.resize(a.size() - static_cast<std::size_t>(removed));
  return static_cast<int>(removed);
}

template <class T>
int shuffle(std::span<T> a) {
  if (a.size() < 2) return kEmpty;
  for (std::size_t i = a.size() - 1; i >= 1; --i) {
    std::swap(a[i], a[static_cast<std::size_t>(Random(static_cast<int>(i)))]);
  }
  return kDone;
}

template <class T, class Belongs>
int dichotomize(const detail::TBlock<const T, 2>& a, Belongs&& belongs, TBool2DArray& result) {
  if (a.empty()) return kEmpty;
  return detail::StoreResult("DichotomizeArray", a.extents, result,
                             [&](bool* to) { std::ranges::transform(a.cells(), to, belongs); });
}

struct Interval {
  double low;
  double high;
};

int discretize(TDouble2DArray& a, int levels, Interval input, Interval output) {
  if (!(input.low < input.high)) return kInvalid;
  if (levels < 3) return kEmpty;
  const double width = (input.high - input.low) / (levels - 2);
  const auto level = [&](double x) {
    if (x <= input.low) return output.low;
    if (x >= input.high) return output.high;
    const double k = std::floor((x - input.low) / width) + 1;
    return output.low + k * (output.high - output.low) / (levels - 1);
  };
  std::ranges::transform(a, a.begin(), level);
  return kDone;
}

}  // namespace

int SortArray(bool Ascending, std::span<double> Data, TIntArray& Index) {
  return sortWithPlaces(Ascending, Data, Index);
}
int SortArray(bool Ascending, std::span<int> Data, TIntArray& Index) {
  return sortWithPlaces(Ascending, Data, Index);
}

int SortAndRemoveDuplicates(TIntArray& Arr, bool Ascending) { return sortedOnce(Arr, Ascending); }

int ShuffleArray(std::span<int> Arr) { return shuffle(Arr); }
int ShuffleArray(std::span<double> Arr) { return shuffle(Arr); }

int DichotomizeArray(const TDouble2DArray& Arr, double Threshold, TBool2DArray& Result) {
  return dichotomize(
      detail::BlockOf(Arr), [=](auto x) { return x > Threshold; }, Result);
}
int DichotomizeArray(const TInt2DArray& Arr, int Threshold, TBool2DArray& Result) {
  return dichotomize(
      detail::BlockOf(Arr), [=](auto x) { return x > Threshold; }, Result);
}
int DichotomizeArray(const TDouble2DArray& Arr, double Low, double High, TBool2DArray& Result) {
  return dichotomize(
      detail::BlockOf(Arr), [=](auto x) { return Low <= x && x <= High; }, Result);
}
int DichotomizeArray(const TInt2DArray& Arr, int Low, int High, TBool2DArray& Result) {
  return dichotomize(
      detail::BlockOf(Arr), [=](auto x) { return Low <= x && x <= High; }, Result);
}

int DiscretizeArray(TDouble2DArray& Arr, int NrOfLevels, double InputLow, double InputHigh,
                    double OutputLow, double OutputHigh) {
  return discretize(Arr, NrOfLevels, {InputLow, InputHigh}, {OutputLow, OutputHigh});
}

}  // namespace zel
