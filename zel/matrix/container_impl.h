/// @file
/// TNumMatrix: object, size, filling, views. Included by the sources of the matrices only.
#pragma once

#include <algorithm>
#include <type_traits>
#include <utility>

#include "zel/base/guard_impl.h"
#include "zel/kernels/dense.h"
#include "zel/kernels/range.h"
#include "zel/matrix/matrixbase.h"

namespace zel {

template <class T>
void TNumMatrix<T>::RaiseNoMemory() const {
  Raise<EZELMatrixError>(detail::kNoMemory);
}

template <class T>
template <class Operation>
decltype(auto) TNumMatrix<T>::Guarded(Operation&& operation) const {
  return detail::GuardMemory(operation,
                             [&] { return EZELMatrixError(ComponentMessage(detail::kNoMemory)); });
}

template <class T>
TNumMatrix<T>::TNumMatrix(TComponent* AOwner) : TComponent(AOwner) {
  Guarded([&] { Mat.SetLength(1, 1); });
}

template <class T>
TNumMatrix<T>::~TNumMatrix() = default;

template <class T>
void TNumMatrix<T>::Changed() {
  Fire(OnChange, this);
}

template <class T>
void TNumMatrix<T>::PercDone(TObject*, int Percent) {
  Fire(OnPercentDone, this, Percent);
}

template <class T>
void TNumMatrix<T>::ClearHidden() {
  if (NrOfElements() == 0) std::fill(Mat.begin(), Mat.end(), T{0});
}

template <class T>
bool TNumMatrix<T>::Resize(int Nc, int Nr) {
  if (Nc == FNCol && Nr == FNRow) return true;
  Nc = std::max(Nc, 0);
  Nr = std::max(Nr, 0);
  Guarded([&] { Mat.SetLength(std::max(Nc, 1), std::max(Nr, 1)); });
  FNCol = Nc;
  FNRow = Nr;
  ClearHidden();
  Changed();
  return true;
}

template <class T>
bool TNumMatrix<T>::ResizeAndClear(int Nc, int Nr) {
  const bool done = Resize(Nc, Nr);
  if (done) Fill(0);
  return done;
}

template <class T>
void TNumMatrix<T>::SetRows(std::initializer_list<std::initializer_list<T>> rows) {
  const std::size_t columns = rows.size() == 0 ? 0 : rows.begin()->size();
  Resize(static_cast<int>(columns), static_cast<int>(rows.size()));
  int r = 0;
  for (const auto& row : rows) {
    if (row.size() != columns) Raise<EZELMatrixError>("\": matrices do not match");
    ++r;
    int c = 0;
    for (const T x : row) SetVal(++c, r, x);
  }
}

template <class T>
void TNumMatrix<T>::TakeOver(TDynArray<T, 2>& contents, int Nc, int Nr) noexcept {
  Mat.swap(contents);
  FNCol = Nc;
  FNRow = Nr;
}

template <class T>
void TNumMatrix<T>::OpenRow(int row) {
  if (FNRow == std::numeric_limits<int>::max()) RaiseNoMemory();
  if (FNCol == 0 || FNRow == 0) {  // the storage has a cell all the same
    Mat.SetLength(std::max(FNCol, 1), FNRow + 1);
  } else {
    Mat.InsertLast(static_cast<std::size_t>(row - 1));
  }
  ++FNRow;
}

template <class T>
void TNumMatrix<T>::MakeValidColRange(int& LowCol, int& HighCol) const {
  kernels::clampRange(LowCol, HighCol, FNCol);
}

template <class T>
void TNumMatrix<T>::MakeValidRowRange(int& LowRow, int& HighRow) const {
  kernels::clampRange(LowRow, HighRow, FNRow);
}

template <class T>
auto TNumMatrix<T>::Clamped(int LowCol, int LowRow, int HighCol, int HighRow) const -> TCells {
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  return {LowCol, LowRow, HighCol, HighRow};
}

template <class T>
kernels::MatrixSpan<T> TNumMatrix<T>::View() {
  const auto rows = static_cast<std::size_t>(FNRow);
  return {Mat.data(), rows, static_cast<std::size_t>(FNCol), rows};
}

template <class T>
kernels::MatrixSpan<const T> TNumMatrix<T>::View() const {
  const auto rows = static_cast<std::size_t>(FNRow);
  return {Mat.data(), rows, static_cast<std::size_t>(FNCol), rows};
}

template <class T>
kernels::MatrixSpan<const T> TNumMatrix<T>::View(const TCells& cells) const {
  if (cells.Count() == 0) return {Mat.data(), cells.Rows(), cells.Columns(), cells.Rows()};
  return View().block(static_cast<std::size_t>(cells.LowRow - 1),
                      static_cast<std::size_t>(cells.LowCol - 1), cells.Rows(), cells.Columns());
}

template <class T>
std::span<const T> TNumMatrix<T>::Column(int c) const {
  if (c < 1 || c > FNCol) return {};
  return View()[static_cast<std::size_t>(c - 1)];
}

template <class T>
template <class Use>
decltype(auto) TNumMatrix<T>::WithCells(const TCells& cells, Use&& use) const {
  const auto view = View(cells);
  if (view.columns < 2 || view.rows == view.stride) {
    return use(std::span<const T>(view.data, view.rows * view.columns));
  }
  TDynArray<T, 1> copy;
  Guarded([&] { copy.SetLength(view.rows * view.columns); });
  for (std::size_t c = 0; c < view.columns; ++c) {
    std::copy_n(view.column(c), view.rows, copy.data() + c * view.rows);
  }
  return use(std::span<const T>(copy));
}

template <class T>
void TNumMatrix<T>::Fill(T value) {
  const std::span<T> cells = Cells();
  std::fill(cells.begin(), cells.end(), value);
  Changed();
}

template <class T>
void TNumMatrix<T>::Fill(int LowCol, int HighCol, int LowRow, int HighRow, T value) {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  for (int c = cells.LowCol; c <= cells.HighCol && cells.Rows() > 0; ++c) {
    std::fill_n(Mat.data() + Offset(c, cells.LowRow), cells.Rows(), value);
  }
  Changed();
}

template <class T>
void TNumMatrix<T>::FillDiag(T value) {
  for (int i = 1; i <= std::min(FNCol, FNRow); ++i) Mat.data()[Offset(i, i)] = value;
  Changed();
}

}  // namespace zel
