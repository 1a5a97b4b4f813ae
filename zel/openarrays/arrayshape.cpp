#include "zel/openarrays/arrayshape.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "zel/kernels/integer_products.h"
#include "zel/kernels/products.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;

bool isInside(int index, std::size_t extent) {
  return index >= 0 && static_cast<std::size_t>(index) < extent;
}

template <class T>
int transpose(TDynArray<T, 2>& a) {
  if (a.empty()) return kEmpty;
  const auto from = detail::MatrixOf(std::as_const(a));
  TDynArray<T, 2> turned;
  detail::GuardArrays("TransposeArray", [&] { turned.SetLength(from.rows, from.columns); });
  const auto to = detail::MatrixOf(turned);
  if constexpr (std::is_same_v<T, bool>) {
    for (std::size_t c = 0; c < from.columns; ++c) {
      for (std::size_t r = 0; r < from.rows; ++r) to(c, r) = from(r, c);
    }
  } else {
    kernels::transpose(from, to);
  }
  a.swap(turned);
  return kDone;
}

template <class T, int Rank>
int flip(const TBlock<T, Rank>& a, int dim) {
  if (a.empty()) return kEmpty;
  if (dim < 1 || dim > Rank) return kInvalid;
  std::size_t run = 1;
  for (auto d = static_cast<std::size_t>(dim); d < Rank; ++d) run *= a.extents[d];
  const std::size_t n = a.extents[static_cast<std::size_t>(dim - 1)];
  for (T* first = a.data; first != a.data + a.size(); first += n * run) {
    if (run == 1) {
      std::reverse(first, first + n);
      continue;
    }
    for (std::size_t i = 0; i < n / 2; ++i) {
      std::swap_ranges(first + i * run, first + (i + 1) * run, first + (n - 1 - i) * run);
    }
  }
  return kDone;
}

template <class T>
bool removeRow(TDynArray<T, 2>& a, int row) {
  if (a.empty() || !isInside(row, a.Length(1))) return false;
  a.EraseLast(static_cast<std::size_t>(row));
  return true;
}

template <class T>
bool removeColumn(TDynArray<T, 2>& a, int column) {
  if (a.empty() || !isInside(column, a.Length(0))) return false;
  const std::size_t rows = a.Length(1);
  const auto at = static_cast<std::size_t>(column);
  std::copy(a.begin() + (at + 1) * rows, a.end(), a.begin() + at * rows);
  a.SetLength(a.Length(0) - 1, rows);
  return true;
}

}  // namespace

int TransposeArray(TDouble2DArray& Arr) { return transpose(Arr); }
int TransposeArray(TInt2DArray& Arr) { return transpose(Arr); }
int TransposeArray(TBool2DArray& Arr) { return transpose(Arr); }

int FlipDimArray(std::span<double> Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TDouble2DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TDouble3DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TDouble4DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(std::span<int> Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TInt2DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TInt3DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }
int FlipDimArray(TInt4DArray& Arr, int Dim) { return flip(detail::BlockOf(Arr), Dim); }

bool RemoveRow(TDouble2DArray& Arr, int Row) { return removeRow(Arr, Row); }
bool RemoveRow(TInt2DArray& Arr, int Row) { return removeRow(Arr, Row); }

bool RemoveColumn(TDouble2DArray& Arr, int Col) { return removeColumn(Arr, Col); }
bool RemoveColumn(TInt2DArray& Arr, int Col) { return removeColumn(Arr, Col); }

}  // namespace zel
