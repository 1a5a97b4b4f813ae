/// @file
/// TNumMatrix: removal, exchange, mirroring, sorting, search, fingerprint. Included by the sources
/// of the matrices only.
#pragma once

#include <limits>
#include <vector>

#include "zel/kernels/comb_order.h"
#include "zel/kernels/comb_sort.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/search.h"
#include "zel/matrix/container_impl.h"

namespace zel {

template <class T>
void TNumMatrix<T>::SortExchange(std::uint8_t ExchgWhat, int Index1, int Index2, int First,
                                 int Last) {
  Fire(OnSortExchange, this, ExchgWhat, Index1, Index2, First, Last);
}

template <class T>
bool TNumMatrix<T>::RemoveColumn(int col) {
  if (col < 1 || col > FNCol || FNCol < 2) return false;
  if (FNRow > 0)
    std::copy(Mat.data() + Offset(col, 1) + FNRow, Mat.data() + NrOfElements(),
              Mat.data() + Offset(col, 1));
  return Resize(FNCol - 1, FNRow);
}

template <class T>
bool TNumMatrix<T>::RemoveRow(int row) {
  if (row < 1 || row > FNRow || FNRow < 2) return false;
  if (FNCol == 0) return Resize(FNCol, FNRow - 1);
  Mat.EraseLast(static_cast<std::size_t>(row - 1));
  --FNRow;
  Changed();
  return true;
}

template <class T>
void TNumMatrix<T>::ExchangeColumns(int c1, int c2) {
  if (c1 < 1 || c1 > FNCol || c2 < 1 || c2 > FNCol) return;
  if (c1 != c2) {
    T* const first = Mat.data() + Offset(c1, 1);
    std::swap_ranges(first, first + FNRow, Mat.data() + Offset(c2, 1));
  }
  Changed();
}

template <class T>
void TNumMatrix<T>::ExchangeRows(int r1, int r2) {
  if (r1 < 1 || r1 > FNRow || r2 < 1 || r2 > FNRow) return;
  for (int c = 1; c <= FNCol; ++c) std::swap(Mat.data()[Offset(c, r1)], Mat.data()[Offset(c, r2)]);
  Changed();
}

template <class T>
void TNumMatrix<T>::MirrorColumns() {
  for (int low = 1, high = FNCol; low < high; ++low, --high) {
    T* const first = Mat.data() + Offset(low, 1);
    std::swap_ranges(first, first + FNRow, Mat.data() + Offset(high, 1));
  }
  Changed();
}

template <class T>
void TNumMatrix<T>::MirrorRows() {
  for (int c = 1; c <= FNCol; ++c) {
    T* const column = Mat.data() + Offset(c, 1);
    std::reverse(column, column + FNRow);
  }
  Changed();
}

namespace detail {

/// Sorts by the comb sort where neither keys nor cells are touched before all storage is there.
/// @param move  move(order): puts line order[k] (from 0) to place k
/// @return false if the storage for the keys cannot be had
template <class T, class Key, class Move>
bool SortByKeys(std::size_t n, bool ascending, Key&& key, Move&& move) {
  try {
    std::vector<T> keys(n);
    std::vector<std::uint64_t> order(n);
    std::vector<T> room(n);
    for (std::size_t k = 0; k < n; ++k) keys[k] = key(k);
    kernels::combOrderFast(std::span<T>(keys), std::span(order), n - 1, ascending);
    move(std::span<std::uint64_t>(order), std::span<T>(room));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace detail

template <class T>
void TNumMatrix<T>::SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                             int HighRow) {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  if (cells.Rows() < 2 || SortColIx < 1 || SortColIx > FNCol) return;
  const bool keyOutside = SortColIx < cells.LowCol || SortColIx > cells.HighCol;
  const auto eachColumn = [&](auto&& use) {
    for (int c = cells.LowCol; c <= cells.HighCol; ++c) use(Mat.data() + Offset(c, cells.LowRow));
    if (keyOutside) use(Mat.data() + Offset(SortColIx, cells.LowRow));
  };
  const std::size_t n = cells.Rows();
  const T* const keys = Mat.data() + Offset(SortColIx, cells.LowRow);
  const bool sorted =
      !OnSortExchange && detail::SortByKeys<T>(
                             n, Ascending, [&](std::size_t k) { return keys[k]; },
                             [&](std::span<std::uint64_t> order, std::span<T> room) {
                               eachColumn([&](T* column) {
                                 for (std::size_t k = 0; k < n; ++k) room[k] = column[order[k]];
                                 std::copy(room.begin(), room.end(), column);
                               });
                             });
  if (!sorted) {
    const auto step = [&](std::size_t i, std::size_t j) {
      const int r1 = cells.LowRow + static_cast<int>(i);
      const int r2 = cells.LowRow + static_cast<int>(j);
      const T a = GetVal(SortColIx, r1);
      const T b = GetVal(SortColIx, r2);
      if (!(Ascending ? b < a : a < b)) return kernels::CombStep::Kept;
      eachColumn([&](T* column) { std::swap(column[i], column[j]); });
      SortExchange(2, r1, r2, cells.LowCol, cells.HighCol);
      return cells.HighRow <= FNRow && std::max(cells.HighCol, SortColIx) <= FNCol
                 ? kernels::CombStep::Exchanged
                 : kernels::CombStep::Stop;
    };
    kernels::combPasses(n, n - 1, step);
  }
  Changed();
}

template <class T>
void TNumMatrix<T>::SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                             int HighRow) {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  if (cells.Columns() < 2 || SortRowIx < 1 || SortRowIx > FNRow) return;
  const bool keyOutside = SortRowIx < cells.LowRow || SortRowIx > cells.HighRow;
  const auto exchange = [&](int c1, int c2) {
    T* const first = Mat.data() + Offset(c1, cells.LowRow);
    std::swap_ranges(first, first + cells.Rows(), Mat.data() + Offset(c2, cells.LowRow));
    if (keyOutside) {
      std::swap(Mat.data()[Offset(c1, SortRowIx)], Mat.data()[Offset(c2, SortRowIx)]);
    }
  };
  const std::size_t n = cells.Columns();
  const auto column = [&](std::size_t k) { return cells.LowCol + static_cast<int>(k); };
  const bool sorted = !OnSortExchange &&
                      detail::SortByKeys<T>(
                          n, Ascending, [&](std::size_t k) { return GetVal(column(k), SortRowIx); },
                          [&](std::span<std::uint64_t> order, std::span<T>) {
                            // Along each cycle every exchange brings one column to its place.
                            for (std::size_t k = 0; k < n; ++k) {
                              std::size_t to = k;
                              for (std::size_t from = order[to]; from != k; from = order[to]) {
                                exchange(column(to), column(from));
                                order[to] = to;
                                to = from;
                              }
                              order[to] = to;
                            }
                          });
  if (!sorted) {
    const auto step = [&](std::size_t i, std::size_t j) {
      const T a = GetVal(column(i), SortRowIx);
      const T b = GetVal(column(j), SortRowIx);
      if (!(Ascending ? b < a : a < b)) return kernels::CombStep::Kept;
      exchange(column(i), column(j));
      SortExchange(1, column(i), column(j), cells.LowRow, cells.HighRow);
      return cells.HighCol <= FNCol && std::max(cells.HighRow, SortRowIx) <= FNRow
                 ? kernels::CombStep::Exchanged
                 : kernels::CombStep::Stop;
    };
    kernels::combPasses(n, n - 1, step);
  }
  Changed();
}

template <class T>
void TNumMatrix<T>::Find(int LowCol, int HighCol, int LowRow, int HighRow, T Value, int& ColIx,
                         int& RowIx) const {
  ColIx = 0;
  RowIx = 0;
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  const auto view = View(cells);
  auto best = kernels::kFarthest<T>;
  for (std::size_t c = 0; c < view.columns; ++c) {
    const std::size_t at = kernels::findNearer(view[c], Value, best);
    if (at == kernels::npos) continue;
    ColIx = cells.LowCol + static_cast<int>(c);
    RowIx = cells.LowRow + static_cast<int>(at);
  }
}

template <class T>
int TNumMatrix<T>::FindInSortedColumn(int Col, bool ColIsAscending, T Value) const {
  return static_cast<int>(kernels::findInSorted(Column(Col), Value, ColIsAscending) + 1);
}

template <class T>
std::string TNumMatrix<T>::CRCofData() const {
  return kernels::fingerprintText(Elements());
}

}  // namespace zel
