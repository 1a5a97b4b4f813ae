/// @file
/// TNumMatrix: copies from and to matrices, vectors and arrays. Included by the sources of the
/// matrices only.
#pragma once

#include <limits>

#include "zel/matrix/container_impl.h"

namespace zel {

template <class T>
template <class Value>
void TNumMatrix<T>::StoreEach(std::int64_t col, std::int64_t row, std::int64_t nCols,
                              std::int64_t nRows, Value&& value) {
  // A handler may change the size, so with one every element finds its place anew.
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  const std::int64_t colLimit = OnChange ? most : FNCol;
  const std::int64_t rowLimit = OnChange ? most : FNRow;
  const std::int64_t firstCol = std::max<std::int64_t>(0, 1 - col);
  const std::int64_t firstRow = std::max<std::int64_t>(0, 1 - row);
  const std::int64_t endCol = std::min(nCols, colLimit - col + 1);
  const std::int64_t endRow = std::min(nRows, rowLimit - row + 1);
  for (std::int64_t i = firstCol; i < endCol; ++i) {
    const int c = static_cast<int>(col + i);
    if (OnChange) {
      for (std::int64_t j = firstRow; j < endRow; ++j) {
        SetVal(c, static_cast<int>(row + j), value(i, j));
      }
    } else if (firstRow < endRow) {
      T* const column = Mat.data() + Offset(c, static_cast<int>(row + firstRow));
      for (std::int64_t j = firstRow; j < endRow; ++j) column[j - firstRow] = value(i, j);
    }
  }
}

template <class T>
void TNumMatrix<T>::Clone(const TNumMatrix* MatSource) {
  if (!MatSource) return;
  Resize(MatSource->FNCol, MatSource->FNRow);
  StoreEach(1, 1, FNCol, FNRow, [&](std::int64_t i, std::int64_t j) {
    return MatSource->GetVal(static_cast<int>(i) + 1, static_cast<int>(j) + 1);
  });
  Changed();
}

namespace detail {

/// Bounds of a source rectangle: each limited to the source, a reversed pair exchanged; nothing of
/// an empty dimension.
inline void ClampSource(int& low, int& high, int n) {
  if (n > 0) {
    kernels::clampBounds(low, high, n);
  } else {
    low = 1;
    high = 0;
  }
}

}  // namespace detail

template <class T>
template <class Get>
void TNumMatrix<T>::CopyRectangle(int nCols, int nRows, int SourceColLo, int SourceRowLo,
                                  int SourceColHi, int SourceRowHi, int DestCol, int DestRow,
                                  Get&& get) {
  detail::ClampSource(SourceColLo, SourceColHi, nCols);
  detail::ClampSource(SourceRowLo, SourceRowHi, nRows);
  StoreEach(DestCol, DestRow, std::int64_t{SourceColHi} - SourceColLo + 1,
            std::int64_t{SourceRowHi} - SourceRowLo + 1, [&](std::int64_t i, std::int64_t j) {
              return static_cast<T>(
                  get(SourceColLo + static_cast<int>(i), SourceRowLo + static_cast<int>(j)));
            });
  Changed();
}

template <class T>
void TNumMatrix<T>::CopyFrom(const TNumMatrix* MatSource, int SourceColLo, int SourceRowLo,
                             int SourceColHi, int SourceRowHi, int DestCol, int DestRow) {
  if (!MatSource) return;
  CopyRectangle(MatSource->FNCol, MatSource->FNRow, SourceColLo, SourceRowLo, SourceColHi,
                SourceRowHi, DestCol, DestRow,
                [&](int c, int r) { return MatSource->GetVal(c, r); });
}

template <class T>
void TNumMatrix<T>::CopyFromVec(TDims Dim, const TVectorType* VecSource, int Source1stElem,
                                int SourceLastElem, int DestCol, int DestRow) {
  if (!VecSource) return;
  VecSource->MakeValidElemRange(Source1stElem, SourceLastElem);
  const std::int64_t count = std::int64_t{SourceLastElem} - Source1stElem + 1;
  const auto element = [&](std::int64_t i, std::int64_t j) {
    return VecSource->GetVal(Source1stElem + static_cast<int>(i + j));
  };
  if (Dim == dimColumns) {
    StoreEach(DestCol, DestRow, count, 1, element);
  } else {
    StoreEach(DestCol, DestRow, 1, count, element);
  }
  Changed();
}

namespace detail {

/// Fills the vector with 0, then its front with element(low..high).
template <class Vector, class Element>
void CopyToFront(Vector& vector, int low, int high, Element&& element) {
  vector.Fill(0);
  for (std::int64_t k = 1; low + k - 1 <= high && k <= vector.NrOfElem(); ++k) {
    vector.SetVal(static_cast<int>(k), element(static_cast<int>(low + k - 1)));
  }
}

}  // namespace detail

template <class T>
void TNumMatrix<T>::CopyRowToVec(TVectorType* DestVec, int Row, int FirstCol, int LastCol) const {
  if (!DestVec) return;
  MakeValidColRange(FirstCol, LastCol);
  Row = std::clamp(Row, 1, std::max(FNRow, 1));
  detail::CopyToFront(*DestVec, FirstCol, LastCol, [&](int c) { return GetVal(c, Row); });
}

template <class T>
void TNumMatrix<T>::CopyColToVec(TVectorType* DestVec, int Col, int FirstRow, int LastRow) const {
  if (!DestVec) return;
  MakeValidRowRange(FirstRow, LastRow);
  Col = std::clamp(Col, 1, std::max(FNCol, 1));
  detail::CopyToFront(*DestVec, FirstRow, LastRow, [&](int r) { return GetVal(Col, r); });
}

template <class T>
void TNumMatrix<T>::CopyToArray(TDynArray<T, 2>& DestArray, int LowCol, int HighCol, int LowRow,
                                int HighRow) const {
  const auto view = View(Clamped(LowCol, LowRow, HighCol, HighRow));
  Guarded([&] { DestArray.SetLength(view.columns, view.rows); });
  for (std::size_t c = 0; c < view.columns; ++c) {
    std::copy_n(view.column(c), view.rows, DestArray.data() + c * view.rows);
  }
}

template <class T>
void TNumMatrix<T>::CopyFromArray(const TDynArray<T, 2>& SrcArray, int Col, int Row) {
  StoreEach(Col, Row, static_cast<std::int64_t>(SrcArray.Length(0)),
            static_cast<std::int64_t>(SrcArray.Length(1)),
            [&](std::int64_t i, std::int64_t j) { return SrcArray(i, j); });
}

}  // namespace zel
