/// @file
/// TIntMatrix: how a sparse matrix takes part in operations on dense ones. Included by its sources
/// only.
#pragma once

#include <algorithm>
#include <optional>
#include <span>

#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/container_impl.h"

namespace zel {

/// A dense matrix to work on, with the name of the matrix whose operation it serves, for messages.
class TIntMatrix::TDenseCopy {
 public:
  /// Without particular contents.
  explicit TDenseCopy(const TIntMatrix& user) {
    Attempt(user, [&] {
      FMatrix.emplace();
      FMatrix->SetName(user.Name());
    });
  }
  /// A copy of a rectangle of a matrix.
  TDenseCopy(const TIntMatrix& source, const TCells& cells, const TIntMatrix& user)
      : TDenseCopy(user) {
    const int columns = static_cast<int>(cells.Columns());
    const int rows = static_cast<int>(cells.Rows());
    Attempt(user, [&] {
      TInt2DArray contents = source.CellsOf(cells);
      contents.SetLength(std::max(columns, 1), std::max(rows, 1));
      FMatrix->TakeOver(contents, columns, rows);
    });
  }
  /// A copy of a matrix.
  TDenseCopy(const TIntMatrix& source, const TIntMatrix& user)
      : TDenseCopy(source, source.Clamped(0, 0, 0, 0), user) {}

  TNumMatrix<int>& operator*() { return *FMatrix; }
  [[nodiscard]] TIntMatrix& Matrix() { return *FMatrix; }

 private:
  /// What fails for want of memory raises the message of the user, whoever notices.
  template <class Operation>
  static void Attempt(const TIntMatrix& user, Operation&& operation) {
    user.Guarded([&] {
      try {
        operation();
      } catch (const EZELMatrixError&) {
        user.RaiseNoMemory();
      }
    });
  }

  std::optional<TIntMatrix> FMatrix;
};

/// Visits the stored cells of a rectangle.
template <class Use>
void TIntMatrix::ForEachStored(const TCells& cells, Use&& use) const {
  for (int k = RecordOf(cells.LowCol, cells.LowRow); k < FSparseNumElem; ++k) {
    const TSpMatElemInt& cell = SpMat.data()[k];
    if (cell.colidx > cells.HighCol) break;
    if (cells.LowRow <= cell.rowidx && cell.rowidx <= cells.HighRow) use(cell);
  }
}

/// Lets operation(matrix), true on success, change this matrix or a dense copy that then replaces
/// the records. OnChange fires if the operation fires it.
template <class Operation>
bool TIntMatrix::Edit(Operation&& operation) {
  if (!FIsSparse) return operation(static_cast<TNumMatrix&>(*this));
  TDenseCopy copy(*this, *this);
  bool changed = false;
  (*copy).OnChange = [&changed](TObject*) { changed = true; };
  if (OnSortExchange) {
    (*copy).OnSortExchange = [this](TObject*, std::uint8_t what, int i, int j, int first,
                                    int last) { SortExchange(what, i, j, first, last); };
  }
  const bool result = operation(*copy);
  if (changed) {
    TakeContents(copy);
    Changed();
  }
  return result;
}

inline auto TIntMatrix::Clamped(int LowCol, int LowRow, int HighCol, int HighRow) const -> TCells {
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  return {LowCol, LowRow, HighCol, HighRow};
}

}  // namespace zel
