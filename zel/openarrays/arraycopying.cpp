#include "zel/openarrays/arraycopying.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "zel/base/rounding.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;
using detail::TBox;
using detail::TCorner;

constexpr int kOutside = -3;

/// An element of another type.
template <class To, class From>
To converted(From x) {
  if constexpr (std::is_same_v<To, int> && std::is_floating_point_v<From>) {
    return RoundToInt<int>(x);
  } else {
    return static_cast<To>(x);
  }
}

template <class T, int Rank, class Result>
int clone(const TBlock<T, Rank>& source, Result& dest) {
  using To = typename Result::value_type;
  if (Rank > 1 && source.empty()) return kEmpty;
  return detail::StoreResult("CloneArray", source.extents, dest, [&](To* to) {
    std::ranges::transform(source.cells(), to, converted<To, std::remove_const_t<T>>);
  });
}

template <class T, class Result>
int cloneReversed(const TBlock<T, 1>& source, Result& dest) {
  using To = typename Result::value_type;
  if (source.empty()) return kEmpty;
  const auto cells = source.cells();
  return detail::StoreResult("CloneAndReverseArray", source.extents, dest, [&](To* to) {
    if (static_cast<const void*>(to) == cells.data()) {
      std::reverse(to, to + cells.size());
    } else {
      std::transform(cells.rbegin(), cells.rend(), to, converted<To, std::remove_const_t<T>>);
    }
  });
}

/// True for the indices of one dimension, from first to last.
bool isRange(int first, int last, std::size_t extent) {
  return first >= 0 && first <= last && static_cast<std::size_t>(last) < extent;
}
bool isInside(int index, std::size_t extent) { return isRange(index, index, extent); }

template <class T, int Rank>
int copyBox(const TBlock<const T, Rank>& source, const TBox<Rank>& box, const TCorner<Rank>& place,
            const TBlock<T, Rank>& dest) {
  detail::TExtents<Rank> low;
  for (std::size_t d = 0; d < Rank; ++d) {
    if (!isInside(place[d], dest.extents[d])) return kInvalid;
    low[d] = static_cast<std::size_t>(place[d]);
    if (box.counts[d] > dest.extents[d] - low[d]) return kInvalid;
  }
  const auto copyFrom = [&](const TBlock<const T, Rank>& from,
                            const detail::TExtents<Rank>& first) {
    detail::ForEachRunPair(
        from, first, dest, low, box.counts,
        [](std::span<const T> run, std::span<T> room) { std::ranges::copy(run, room.begin()); });
  };
  if (detail::Overlap(source.cells(), dest.cells())) {
    const auto copy = detail::CopyOfCells("CopyArray", source, box);
    copyFrom({copy.data(), box.counts}, {});
  } else {
    copyFrom(source, box.low);
  }
  return kDone;
}

template <class T, int Rank>
int copyBlock(const TBlock<const T, Rank>& source, const TCorner<Rank>& place,
              const TBlock<T, Rank>& dest) {
  if (source.empty() || dest.empty()) return kEmpty;
  return copyBox(source, {{}, source.extents}, place, dest);
}

template <class T, int Rank>
int copyBlock(const TBlock<const T, Rank>& source, const TCorner<Rank>& low,
              const TCorner<Rank>& high, const TCorner<Rank>& place, const TBlock<T, Rank>& dest) {
  if (dest.empty()) return kEmpty;
  TBox<Rank> box;
  const int fault = detail::TakeBox(source, low, high, box);
  return fault == kDone ? copyBox(source, box, place, dest) : fault;
}

template <class T, class Result>
int copyColumn(const TBlock<const T, 2>& source, int column, int first, int last, Result& dest) {
  if (source.empty()) return kEmpty;
  if (!isRange(first, last, source.extents[1])) return kInvalid;
  if (!isInside(column, source.extents[0])) return kOutside;
  const auto cells = detail::MatrixOf(source)[static_cast<std::size_t>(column)].subspan(
      static_cast<std::size_t>(first), static_cast<std::size_t>(last - first) + 1);
  return detail::StoreResult("CopyArrayColumn", detail::TExtents<1>{cells.size()}, dest,
                             [&](T* to) { std::ranges::copy(cells, to); });
}

template <class T, class Result>
int copyRow(const TBlock<const T, 2>& source, int row, int first, int last, Result& dest) {
  if (source.empty()) return kEmpty;
  if (!isRange(first, last, source.extents[0])) return kInvalid;
  if (!isInside(row, source.extents[1])) return kOutside;
  const auto m = detail::MatrixOf(source);
  const auto n = static_cast<std::size_t>(last - first) + 1;
  return detail::StoreResult("CopyArrayRow", detail::TExtents<1>{n}, dest, [&](T* to) {
    for (std::size_t k = 0; k < n; ++k) {
      to[k] = m(static_cast<std::size_t>(row), static_cast<std::size_t>(first) + k);
    }
  });
}

/// Calls copy(elements) with the given ones of a vector, once the place has been checked.
template <class T, class Copy>
int copyElements(const TBlock<const T, 1>& vector, int first, int last, int column, int row,
                 const TBlock<T, 2>& dest, Copy&& copy) {
  if (vector.empty()) return kEmpty;
  auto elements = vector.cells();
  if (first != 0 || last != 0) {
    if (!isRange(first, last, elements.size())) return kEmpty;
    elements = elements.subspan(static_cast<std::size_t>(first),
                                static_cast<std::size_t>(last - first) + 1);
  }
  if (!isInside(column, dest.extents[0]) || !isInside(row, dest.extents[1])) return kInvalid;
  copy(elements);
  return kDone;
}

template <class T>
int copyToColumn(const TBlock<const T, 1>& vector, int first, int last, int column, int row,
                 const TBlock<T, 2>& dest) {
  return copyElements(vector, first, last, column, row, dest, [&](std::span<const T> elements) {
    const auto room = detail::MatrixOf(dest)[static_cast<std::size_t>(column)].subspan(
        static_cast<std::size_t>(row));
    const std::size_t n = std::min(elements.size(), room.size());
    std::memmove(room.data(), elements.data(), n * sizeof(T));
  });
}

template <class T>
int copyToRow(const TBlock<const T, 1>& vector, int first, int last, int row, int column,
              const TBlock<T, 2>& dest) {
  return copyElements(vector, first, last, column, row, dest, [&](std::span<const T> elements) {
    const auto m = detail::MatrixOf(dest);
    const auto c = static_cast<std::size_t>(column);
    for (std::size_t k = 0; k < std::min(elements.size(), m.columns - c); ++k) {
      m(static_cast<std::size_t>(row), c + k) = elements[k];
    }
  });
}

template <int Rank, class Result>
int boolToNumbers(const TBlock<const bool, Rank>& source, typename Result::value_type trueValue,
                  typename Result::value_type falseValue, Result& dest) {
  if (source.empty()) return kEmpty;
  return detail::StoreResult("BoolToNumArray", source.extents, dest, [&](auto* to) {
    std::ranges::transform(source.cells(), to, [&](bool b) { return b ? trueValue : falseValue; });
  });
}

}  // namespace

int CloneArray(std::span<const bool> Source, TBoolArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TBool2DArray& Source, TBool2DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const double> Source, TDoubleArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble2DArray& Source, TDouble2DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble3DArray& Source, TDouble3DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble4DArray& Source, TDouble4DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const int> Source, TIntArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt2DArray& Source, TInt2DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt3DArray& Source, TInt3DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt4DArray& Source, TInt4DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const float> Source, TDoubleArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const double> Source, TSingleArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const double> Source, TIntArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble2DArray& Source, TInt2DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble3DArray& Source, TInt3DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TDouble4DArray& Source, TInt4DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(std::span<const int> Source, TDoubleArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt2DArray& Source, TDouble2DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt3DArray& Source, TDouble3DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}
int CloneArray(const TInt4DArray& Source, TDouble4DArray& Dest) {
  return clone(detail::BlockOf(Source), Dest);
}

int CloneAndReverseArray(std::span<const bool> Source, TBoolArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const int> Source, TIntArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const double> Source, TDoubleArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const float> Source, TDoubleArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const double> Source, TSingleArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const double> Source, TIntArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}
int CloneAndReverseArray(std::span<const int> Source, TDoubleArray& Dest) {
  return cloneReversed(detail::BlockOf(Source), Dest);
}

int CopyArray(std::span<const bool> Source, int DestIx, std::span<bool> Dest) {
  return copyBlock(detail::BlockOf(Source), {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TBool2DArray& Source, int DestCol, int DestRow, TBool2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(std::span<const double> Source, int DestIx, std::span<double> Dest) {
  return copyBlock(detail::BlockOf(Source), {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TDouble2DArray& Source, int DestCol, int DestRow, TDouble2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(const TDouble3DArray& Source, int DestCol, int DestRow, int DestLayer,
              TDouble3DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow, DestLayer}, detail::BlockOf(Dest));
}
int CopyArray(const TDouble4DArray& Source, int DestCol, int DestRow, int DestLayer, int DestTSlot,
              TDouble4DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow, DestLayer, DestTSlot},
                   detail::BlockOf(Dest));
}
int CopyArray(std::span<const int> Source, int DestIx, std::span<int> Dest) {
  return copyBlock(detail::BlockOf(Source), {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TInt2DArray& Source, int DestCol, int DestRow, TInt2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(const TInt3DArray& Source, int DestCol, int DestRow, int DestLayer,
              TInt3DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow, DestLayer}, detail::BlockOf(Dest));
}
int CopyArray(const TInt4DArray& Source, int DestCol, int DestRow, int DestLayer, int DestTSlot,
              TInt4DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {DestCol, DestRow, DestLayer, DestTSlot},
                   detail::BlockOf(Dest));
}

int CopyArray(std::span<const bool> Source, int LowIx, int HighIx, int DestIx,
              std::span<bool> Dest) {
  return copyBlock(detail::BlockOf(Source), {LowIx}, {HighIx}, {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TBool2DArray& Source, int LowCol, int LowRow, int HighCol, int HighRow,
              int DestCol, int DestRow, TBool2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow}, {HighCol, HighRow},
                   {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(std::span<const double> Source, int LowIx, int HighIx, int DestIx,
              std::span<double> Dest) {
  return copyBlock(detail::BlockOf(Source), {LowIx}, {HighIx}, {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TDouble2DArray& Source, int LowCol, int LowRow, int HighCol, int HighRow,
              int DestCol, int DestRow, TDouble2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow}, {HighCol, HighRow},
                   {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(const TDouble3DArray& Source, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer, int DestCol, int DestRow, int DestLayer,
              TDouble3DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow, LowLayer},
                   {HighCol, HighRow, HighLayer}, {DestCol, DestRow, DestLayer},
                   detail::BlockOf(Dest));
}
int CopyArray(const TDouble4DArray& Source, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot, int DestCol, int DestRow,
              int DestLayer, int DestTSlot, TDouble4DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow, LowLayer, LowTSlot},
                   {HighCol, HighRow, HighLayer, HighTSlot},
                   {DestCol, DestRow, DestLayer, DestTSlot}, detail::BlockOf(Dest));
}
int CopyArray(std::span<const int> Source, int LowIx, int HighIx, int DestIx, std::span<int> Dest) {
  return copyBlock(detail::BlockOf(Source), {LowIx}, {HighIx}, {DestIx}, detail::BlockOf(Dest));
}
int CopyArray(const TInt2DArray& Source, int LowCol, int LowRow, int HighCol, int HighRow,
              int DestCol, int DestRow, TInt2DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow}, {HighCol, HighRow},
                   {DestCol, DestRow}, detail::BlockOf(Dest));
}
int CopyArray(const TInt3DArray& Source, int LowCol, int LowRow, int LowLayer, int HighCol,
              int HighRow, int HighLayer, int DestCol, int DestRow, int DestLayer,
              TInt3DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow, LowLayer},
                   {HighCol, HighRow, HighLayer}, {DestCol, DestRow, DestLayer},
                   detail::BlockOf(Dest));
}
int CopyArray(const TInt4DArray& Source, int LowCol, int LowRow, int LowLayer, int LowTSlot,
              int HighCol, int HighRow, int HighLayer, int HighTSlot, int DestCol, int DestRow,
              int DestLayer, int DestTSlot, TInt4DArray& Dest) {
  return copyBlock(detail::BlockOf(Source), {LowCol, LowRow, LowLayer, LowTSlot},
                   {HighCol, HighRow, HighLayer, HighTSlot},
                   {DestCol, DestRow, DestLayer, DestTSlot}, detail::BlockOf(Dest));
}

int CopyArrayColumn(const TDouble2DArray& Source, int Col, int FirstRow, int LastRow,
                    TDoubleArray& Dest) {
  return copyColumn(detail::BlockOf(Source), Col, FirstRow, LastRow, Dest);
}
int CopyArrayColumn(const TInt2DArray& Source, int Col, int FirstRow, int LastRow,
                    TIntArray& Dest) {
  return copyColumn(detail::BlockOf(Source), Col, FirstRow, LastRow, Dest);
}
int CopyArrayColumn(const TBool2DArray& Source, int Col, int FirstRow, int LastRow,
                    TBoolArray& Dest) {
  return copyColumn(detail::BlockOf(Source), Col, FirstRow, LastRow, Dest);
}

int CopyArrayRow(const TDouble2DArray& Source, int Row, int FirstCol, int LastCol,
                 TDoubleArray& Dest) {
  return copyRow(detail::BlockOf(Source), Row, FirstCol, LastCol, Dest);
}
int CopyArrayRow(const TInt2DArray& Source, int Row, int FirstCol, int LastCol, TIntArray& Dest) {
  return copyRow(detail::BlockOf(Source), Row, FirstCol, LastCol, Dest);
}
int CopyArrayRow(const TBool2DArray& Source, int Row, int FirstCol, int LastCol, TBoolArray& Dest) {
  return copyRow(detail::BlockOf(Source), Row, FirstCol, LastCol, Dest);
}

int CopyVectorToArrayColumn(std::span<const double> Vector, int FirstElem, int LastElem, int Col,
                            int FirstRow, TDouble2DArray& Dest) {
  return copyToColumn(detail::BlockOf(Vector), FirstElem, LastElem, Col, FirstRow,
                      detail::BlockOf(Dest));
}
int CopyVectorToArrayColumn(std::span<const int> Vector, int FirstElem, int LastElem, int Col,
                            int FirstRow, TInt2DArray& Dest) {
  return copyToColumn(detail::BlockOf(Vector), FirstElem, LastElem, Col, FirstRow,
                      detail::BlockOf(Dest));
}
int CopyVectorToArrayColumn(std::span<const bool> Vector, int FirstElem, int LastElem, int Col,
                            int FirstRow, TBool2DArray& Dest) {
  return copyToColumn(detail::BlockOf(Vector), FirstElem, LastElem, Col, FirstRow,
                      detail::BlockOf(Dest));
}

int CopyVectorToArrayRow(std::span<const double> Vector, int FirstElem, int LastElem, int Row,
                         int FirstCol, TDouble2DArray& Dest) {
  return copyToRow(detail::BlockOf(Vector), FirstElem, LastElem, Row, FirstCol,
                   detail::BlockOf(Dest));
}
int CopyVectorToArrayRow(std::span<const int> Vector, int FirstElem, int LastElem, int Row,
                         int FirstCol, TInt2DArray& Dest) {
  return copyToRow(detail::BlockOf(Vector), FirstElem, LastElem, Row, FirstCol,
                   detail::BlockOf(Dest));
}
int CopyVectorToArrayRow(std::span<const bool> Vector, int FirstElem, int LastElem, int Row,
                         int FirstCol, TBool2DArray& Dest) {
  return copyToRow(detail::BlockOf(Vector), FirstElem, LastElem, Row, FirstCol,
                   detail::BlockOf(Dest));
}

int BoolToNumArray(std::span<const bool> Source, int TrueValue, int FalseValue, TIntArray& Dest) {
  return boolToNumbers(detail::BlockOf(Source), TrueValue, FalseValue, Dest);
}
int BoolToNumArray(const TBool2DArray& Source, int TrueValue, int FalseValue, TInt2DArray& Dest) {
  return boolToNumbers(detail::BlockOf(Source), TrueValue, FalseValue, Dest);
}
int BoolToNumArray(std::span<const bool> Source, double TrueValue, double FalseValue,
                   TDoubleArray& Dest) {
  return boolToNumbers(detail::BlockOf(Source), TrueValue, FalseValue, Dest);
}
int BoolToNumArray(const TBool2DArray& Source, double TrueValue, double FalseValue,
                   TDouble2DArray& Dest) {
  return boolToNumbers(detail::BlockOf(Source), TrueValue, FalseValue, Dest);
}

}  // namespace zel
