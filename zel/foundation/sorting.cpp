#include "zel/foundation/sorting.h"

#include <algorithm>
#include <cstddef>

#include "zel/base/progress.h"
#include "zel/kernels/comb_sort.h"
#include "zel/kernels/select.h"
#include "zel/kernels/sorted_list.h"

namespace zel {
namespace {

template <class T>
void sortArray(std::span<T> data, bool ascending) {
  kernels::combSortFast(data, data.size(), ascending, [] { ProgressStep(); });
}

template <class T>
int sortIntoArray(std::span<T> data, T value, bool ascending, bool allowDuplicates) {
  const std::size_t place = kernels::sortInto(data, value, ascending, allowDuplicates);
  return place == kernels::npos ? -1 : static_cast<int>(place);
}

template <class T>
void insertIntoArray(std::span<T> data, T value, int position) {
  if (position >= 0) kernels::insertAt(data, value, static_cast<std::size_t>(position));
}

// Calls use(span) with the elements of an untyped array, or with none if there is no such array.
template <class Use>
auto withElements(void* data, int n, TVarKind kind, Use use) {
  const auto count = data ? static_cast<std::size_t>(std::max(n, 0)) : 0;
  switch (kind) {
    case vkDouble:
    case vkReal:
      return use(std::span(static_cast<double*>(data), count));
    case vkSingle:
      return use(std::span(static_cast<float*>(data), count));
    case vkInteger:
    case vkLongint:
      return use(std::span(static_cast<int*>(data), count));
  }
  return use(std::span<int>());
}

}  // namespace

void SortArray(std::span<double> Data, bool Ascending) { sortArray(Data, Ascending); }
void SortArray(std::span<float> Data, bool Ascending) { sortArray(Data, Ascending); }
void SortArray(std::span<int> Data, bool Ascending) { sortArray(Data, Ascending); }

void SortArray(void* Data, int NumElem, TVarKind VarKind, bool Ascending) {
  withElements(Data, NumElem, VarKind, [=](auto elements) { sortArray(elements, Ascending); });
}

double QuickSelect(std::span<double> Data, int k, int LowIx, int HighIx) {
  const auto low = std::max<std::ptrdiff_t>(LowIx, 0);
  const auto high = std::min<std::ptrdiff_t>(HighIx, std::ssize(Data) - 1);
  if (high < low) return 0;
  const auto range =
      Data.subspan(static_cast<std::size_t>(low), static_cast<std::size_t>(high - low + 1));
  const auto position = std::clamp<std::ptrdiff_t>(k, low, high) - low;
  return kernels::quickSelect(range, static_cast<std::size_t>(position));
}

int SortIntoArray(std::span<double> Data, double Value, bool Ascending, bool AllowDuplicates) {
  return sortIntoArray(Data, Value, Ascending, AllowDuplicates);
}
int SortIntoArray(std::span<float> Data, float Value, bool Ascending, bool AllowDuplicates) {
  return sortIntoArray(Data, Value, Ascending, AllowDuplicates);
}
int SortIntoArray(std::span<int> Data, int Value, bool Ascending, bool AllowDuplicates) {
  return sortIntoArray(Data, Value, Ascending, AllowDuplicates);
}

int SortIntoArray(void* Data, int NumElem, TVarKind VarKind, const void* Value, bool Ascending,
                  bool AllowDuplicates) {
  return withElements(Data, NumElem, VarKind, [=]<class T>(std::span<T> elements) {
    if (elements.empty() || !Value) return -1;
    return sortIntoArray(elements, *static_cast<const T*>(Value), Ascending, AllowDuplicates);
  });
}

void InsertIntoArray(std::span<double> Data, double Value, int Position) {
  insertIntoArray(Data, Value, Position);
}
void InsertIntoArray(std::span<float> Data, float Value, int Position) {
  insertIntoArray(Data, Value, Position);
}
void InsertIntoArray(std::span<int> Data, int Value, int Position) {
  insertIntoArray(Data, Value, Position);
}

void InsertIntoArray(void* Data, int NumElem, TVarKind VarKind, const void* Value, int Position) {
  withElements(Data, NumElem, VarKind, [=]<class T>(std::span<T> elements) {
    if (Value) insertIntoArray(elements, *static_cast<const T*>(Value), Position);
  });
}

}  // namespace zel
