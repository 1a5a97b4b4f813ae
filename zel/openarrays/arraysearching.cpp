#include "zel/openarrays/arraysearching.h"

#include <algorithm>
#include <cstddef>

#include "zel/base/stringhelpers.h"
#include "zel/kernels/dichotomy.h"
#include "zel/kernels/distances.h"
#include "zel/kernels/search.h"
#include "zel/kernels/sums.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;

constexpr int kNotFound = -2;

double squaredDifferences(std::span<const double> a, std::span<const double> b) {
  if (a.empty() || b.empty()) return -1;
  if (a.size() != b.size()) return -2;
  return kernels::sumOfSquaredDifferences(a, b).hi;
}

bool isIndex(int index, std::size_t extent) {
  return index >= 0 && static_cast<std::size_t>(index) < extent;
}

double squaredDifferences(std::span<const double> a, const TDouble2DArray& b, int index) {
  if (a.empty() || b.empty()) return -1;
  if (a.size() != b.Length(1)) return -2;
  if (!isIndex(index, b.Length(0))) return -3;
  return squaredDifferences(a, b[static_cast<std::size_t>(index)]);
}

template <int Rank>
bool areEqual(const detail::TBlock<const int, Rank>& a, const detail::TBlock<const int, Rank>& b) {
  return a.extents == b.extents && std::ranges::equal(a.cells(), b.cells());
}

template <class T, class Matches>
int findFirst(std::span<const T> x, Matches&& matches) {
  if (x.empty()) return kEmpty;
  const auto found = std::ranges::find_if(x, matches);
  return found == x.end() ? kNotFound : static_cast<int>(found - x.begin());
}

int findText(std::string_view value, std::span<const std::string> texts, bool ignoreCase,
             bool partial) {
  if (!partial) {
    return findFirst(texts, [=](const std::string& text) {
      return ignoreCase ? EqualIgnoringCase(text, value) : text == value;
    });
  }
  return detail::GuardArrays("FindInArray", [&] {
    const std::string part = ignoreCase ? LowerCase(value) : std::string(value);
    return findFirst(texts, [&](const std::string& text) {
      return StringContains(ignoreCase ? LowerCase(text) : text, part);
    });
  });
}

int findSorted(double value, std::span<const double> x, bool ascending) {
  if (x.empty()) return kEmpty;
  const double low = std::min(x.front(), x.back());
  const double high = std::max(x.front(), x.back());
  if (!(low <= value && value <= high)) return kNotFound;
  return static_cast<int>(kernels::findInSorted(x, value, ascending));
}

struct Pair {
  int first;
  int second;
};

int distance(const TDouble2DArray& a, TDistMode mode, Pair objects, Pair variables,
             double& result) {
  result = 0;
  int fault = kDone;
  const std::size_t columns = a.Length(0);
  const std::size_t rows = a.Length(1);
  if (mode == dmUser) fault = -1;
  if (!isIndex(objects.first, rows) || !isIndex(objects.second, rows)) fault = -2;
  if (!isIndex(variables.first, columns) || !isIndex(variables.second, columns)) fault = -3;
  if (variables.second < variables.first) fault = -4;
  if (fault != kDone || !kernels::isStandardDistance(mode)) return fault;
  const auto count = static_cast<std::size_t>(variables.second - variables.first) + 1;
  const auto described =
      detail::MatrixOf(a).block(0, static_cast<std::size_t>(variables.first), rows, count);
  result = kernels::rowDistance(described, mode, static_cast<std::size_t>(objects.first),
                                static_cast<std::size_t>(objects.second));
  return kDone;
}

}  // namespace

double SumOfSquaredDiffs(std::span<const double> A, std::span<const double> B) {
  return squaredDifferences(A, B);
}
double SumOfSquaredDiffs(std::span<const double> A, const TDouble2DArray& B, int Index) {
  return squaredDifferences(A, B, Index);
}

bool EqualArrays(std::span<const int> A, std::span<const int> B) {
  return areEqual(detail::BlockOf(A), detail::BlockOf(B));
}
bool EqualArrays(const TInt2DArray& A, const TInt2DArray& B) {
  return areEqual(detail::BlockOf(A), detail::BlockOf(B));
}
bool EqualArrays(const TInt3DArray& A, const TInt3DArray& B) {
  return areEqual(detail::BlockOf(A), detail::BlockOf(B));
}
bool EqualArrays(const TInt4DArray& A, const TInt4DArray& B) {
  return areEqual(detail::BlockOf(A), detail::BlockOf(B));
}

int FindInArray(int Value, std::span<const int> Arr) {
  return findFirst(Arr, [=](int element) { return element == Value; });
}
int FindInArray(std::string_view Value, std::span<const std::string> Arr, bool IgnoreCase,
                bool Partial) {
  return findText(Value, Arr, IgnoreCase, Partial);
}

int FindInSortedArray(double Value, std::span<const double> Arr, bool Ascending) {
  return findSorted(Value, Arr, Ascending);
}

bool IsDichotomous(std::span<const double> Arr, double& Value1, double& Value2) {
  return kernels::dichotomous(Arr, Value1, Value2);
}
bool IsDichotomous(std::span<const int> Arr, int& Value1, int& Value2) {
  return kernels::dichotomous(Arr, Value1, Value2);
}

int DistanceOfObjects(const TDouble2DArray& Arr, TDistMode Mode, int Obj1, int Obj2, int FirstVar,
                      int LastVar, double& Dist) {
  return distance(Arr, Mode, {Obj1, Obj2}, {FirstVar, LastVar}, Dist);
}

}  // namespace zel
