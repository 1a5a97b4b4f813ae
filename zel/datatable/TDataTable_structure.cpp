#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

#include "zel/base/rounding.h"
#include "zel/datatable/guards_impl.h"

namespace zel {

using detail::at;

namespace {

/// Moves the entries from index ix on one place back, over the last one, and sets entry ix.
template <class T>
void openGap(T* entries, std::size_t n, std::size_t ix, const T& value) {
  std::move_backward(entries + ix, entries + n - 1, entries + n);
  entries[ix] = value;
}

/// Moves the entries behind index ix one place up.
template <class T>
void closeGap(T* entries, std::size_t n, std::size_t ix) {
  std::move(entries + ix + 1, entries + n, entries + ix);
}

/// Moves the entries that are not flagged to the front, in order.
template <class T>
void compact(T* entries, const std::vector<std::uint8_t>& flagged) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < flagged.size(); ++i) {
    entries[kept] = entries[i];
    kept += flagged[i] == 0 ? 1 : 0;
  }
}

}  // namespace

void TDataTable::FitMatrix() {
  if (NumericData->NrOfColumns() == FNrOfCols && NumericData->NrOfRows() == FNrOfRows) return;
  const TDetached detached(*this);
  Guarded([&] { NumericData->Resize(FNrOfCols, FNrOfRows); });
}

void TDataTable::ResizeLines(std::size_t columns, std::size_t rows) {
  FColAtt.resize(columns);
  FRowAtt.resize(rows);
  FColName.resize(columns);
  FRowName.resize(rows);
  FVType.resize(columns);
}

template <class ResizeMatrix>
void TDataTable::ResizeArrays(std::int64_t nCols, std::int64_t nRows, ResizeMatrix&& resizeMatrix) {
  const std::size_t oldColumns = Columns();
  const std::size_t oldRows = Rows();
  const auto columns = static_cast<std::size_t>(nCols);
  const auto rows = static_cast<std::size_t>(nRows);
  const bool grows = columns >= oldColumns && rows >= oldRows;
  const bool shrinks = columns <= oldColumns && rows <= oldRows;
  Guarded([&] {
    if (std::max(nCols, nRows) > std::numeric_limits<int>::max()) {
      throw std::length_error("TDataTable: too many rows or columns");
    }
    try {
      // Everything grows first; in case of failure it shrinks back, for which it needs no storage.
      TDynArray<std::uint8_t, 2> states;
      if (grows) {
        FCState.SetLength(columns, rows);
      } else if (!shrinks) {
        states.SetLength(columns, rows);
        for (std::size_t c = 0; c < std::min(columns, oldColumns); ++c) {
          std::copy_n(FCState.data() + c * oldRows, std::min(rows, oldRows),
                      states.data() + c * rows);
        }
      }
      ResizeLines(std::max(columns, oldColumns), std::max(rows, oldRows));
      resizeMatrix();
      if (!grows && !shrinks) FCState.swap(states);
    } catch (...) {
      FCState.SetLength(oldColumns, oldRows);
      ResizeLines(oldColumns, oldRows);
      throw;
    }
  });
  FCState.SetLength(columns, rows);
  ResizeLines(columns, rows);
  FNrOfCols = static_cast<int>(nCols);
  FNrOfRows = static_cast<int>(nRows);
  detail::NameColumns(*this, oldColumns);
  detail::NameRows(*this, oldRows);
}

void TDataTable::ResizeTo(std::int64_t nCols, std::int64_t nRows) {
  FitMatrix();
  ResizeArrays(nCols, nRows, [&] {
    const TDetached detached(*this);
    NumericData->Resize(static_cast<int>(nCols), static_cast<int>(nRows));
  });
}

void TDataTable::Resize(int NrCols, int NrRows) {
  if (NrCols < 1 || NrRows < 1 || (NrCols == FNrOfCols && NrRows == FNrOfRows)) return;
  const int oldCols = FNrOfCols;
  const int oldRows = FNrOfRows;
  ResizeTo(NrCols, NrRows);
  FireResize(oldCols, oldRows);
}

void TDataTable::InsertRow(int ix) {
  if (ix < 1 || ix - 1 > FNrOfRows) return;
  FitMatrix();
  const std::size_t row = at(ix);
  const std::size_t rows = Rows();
  Guarded([&] {
    if (FNrOfRows == std::numeric_limits<int>::max()) {
      throw std::length_error("TDataTable: too many rows");
    }
    try {
      FRowAtt.InsertLast(row);
      FRowName.InsertLast(row);
      FCState.InsertLast(row);
      const TDetached detached(*this);
      NumericData->InsertRow(ix);
    } catch (...) {
      if (FRowAtt.size() > rows) FRowAtt.EraseLast(row);
      if (FRowName.size() > rows) FRowName.EraseLast(row);
      if (FCState.Length(1) > rows) FCState.EraseLast(row);
      throw;
    }
  });
  ++FNrOfRows;
  for (int c = 1; c <= FNrOfCols; ++c) {
    if (!IsCategorical(c)) continue;
    std::transform(Values(c) + ix, Values(c) + Rows(), Values(c) + ix, RoundEven<double>);
  }
  FireResize(FNrOfCols, FNrOfRows - 1);
  ChangedSetup();
}

void TDataTable::InsertColumn(int ix) {
  if (ix < 1 || ix - 1 > FNrOfCols) return;
  ResizeTo(std::int64_t{FNrOfCols} + 1, FNrOfRows);
  const std::size_t columns = Columns();
  openGap(FColAtt.data(), columns, at(ix), 0);
  openGap(FColName.data(), columns, at(ix), TDTNameStr());
  openGap(FVType.data(), columns, at(ix), detail::TColumnType());
  const std::size_t moved = (columns - 1 - at(ix)) * Rows();
  std::move_backward(Values(ix), Values(ix) + moved, Values(ix) + moved + Rows());
  std::fill_n(Values(ix), Rows(), 0.0);
  std::move_backward(States(ix), States(ix) + moved, States(ix) + moved + Rows());
  std::fill_n(States(ix), Rows(), std::uint8_t{0});
  for (int c = ix + 1; c <= FNrOfCols; ++c) {
    if (!IsCategorical(c)) continue;
    std::transform(Values(c), Values(c) + Rows(), Values(c), RoundEven<double>);
  }
  FireResize(FNrOfCols - 1, FNrOfRows);
  ChangedSetup();
}

void TDataTable::RemoveRow(int ix) {
  if (!HasRow(ix) || FNrOfRows == 1) return;
  FitMatrix();  // a table that shrinks allocates nothing
  FRowAtt.EraseLast(at(ix));
  FRowName.EraseLast(at(ix));
  FCState.EraseLast(at(ix));
  {
    const TDetached detached(*this);
    NumericData->RemoveRow(ix);
  }
  --FNrOfRows;
  FireResize(FNrOfCols, FNrOfRows + 1);
  ChangedSetup();
}

void TDataTable::RemoveColumn(int ix) {
  if (!HasColumn(ix) || FNrOfCols == 1) return;
  FitMatrix();
  closeGap(FColAtt.data(), Columns(), at(ix));
  closeGap(FColName.data(), Columns(), at(ix));
  for (int c = ix; c < FNrOfCols; ++c) {
    if (IsCategorical(c + 1)) {
      Type(c) = Type(c + 1);
    } else {
      Type(c).MScaleType = Type(c + 1).MScaleType;
    }
  }
  const std::size_t moved = (Columns() - static_cast<std::size_t>(ix)) * Rows();
  std::move(Values(ix) + Rows(), Values(ix) + Rows() + moved, Values(ix));
  std::move(States(ix) + Rows(), States(ix) + Rows() + moved, States(ix));
  ResizeTo(FNrOfCols - 1, FNrOfRows);
  FireResize(FNrOfCols + 1, FNrOfRows);
  ChangedSetup();
}

int TDataTable::RemoveMarkedRows(int FirstRow, int LastRow, std::uint8_t CState) {
  if (FirstRow == 0 && LastRow == 0) {
    FirstRow = 1;
    LastRow = FNrOfRows;
  }
  if (!HasRow(FirstRow) || !HasRow(LastRow)) return -1;
  const int oldRows = FNrOfRows;
  std::vector<std::uint8_t> flagged;
  Guarded([&] { flagged.resize(Rows()); });
  for (int c = 1; c <= FNrOfCols; ++c) {
    const std::uint8_t* const states = States(c);
    for (std::size_t r = at(FirstRow); r < static_cast<std::size_t>(LastRow); ++r) {
      flagged[r] = static_cast<std::uint8_t>(flagged[r] | (states[r] & CState));
    }
  }
  const int kept = static_cast<int>(std::count(flagged.begin(), flagged.end(), 0));
  if (kept == oldRows) return 0;
  FitMatrix();
  compact(FRowAtt.data(), flagged);
  compact(FRowName.data(), flagged);
  for (int c = 1; c <= FNrOfCols; ++c) {
    compact(Values(c), flagged);
    compact(States(c), flagged);
  }
  if (kept == 0) {
    FRowAtt[0] = 0;
    FRowName[0] = TDTNameStr();
    for (int c = 1; c <= FNrOfCols; ++c) {
      *Values(c) = 0;
      *States(c) = 0;
    }
  }
  {
    const detail::TSuspended change(OnChange);
    const int rows = std::max(kept, 1);
    if (rows != oldRows) {
      ResizeTo(FNrOfCols, rows);
      FireResize(FNrOfCols, oldRows);
    }
  }
  ChangedSetup();
  return oldRows - kept;
}

void TDataTable::ChangedOrder() {
  ChangedData();
  ChangedCellStates();
  ChangedAttrib();
  ChangedNames();
  ChangedSetup();
}

void TDataTable::SwapColumnHeads(int c1, int c2) {
  std::swap(FColAtt[at(c1)], FColAtt[at(c2)]);
  std::swap(FColName[at(c1)], FColName[at(c2)]);
  std::swap(Type(c1), Type(c2));
}

void TDataTable::SwapRowHeads(int r1, int r2) {
  std::swap(FRowAtt[at(r1)], FRowAtt[at(r2)]);
  std::swap(FRowName[at(r1)], FRowName[at(r2)]);
}

void TDataTable::SwapColumns(int c1, int c2) {
  if (c1 == c2) return;
  SwapColumnHeads(c1, c2);
  std::swap_ranges(Values(c1), Values(c1) + Rows(), Values(c2));
  std::swap_ranges(States(c1), States(c1) + Rows(), States(c2));
}

void TDataTable::ExchangeColumns(int c1, int c2) {
  if (!HasColumn(c1) || !HasColumn(c2)) return;
  FitMatrix();
  SwapColumns(c1, c2);
  ChangedOrder();
}

void TDataTable::ExchangeRows(int r1, int r2) {
  if (!HasRow(r1) || !HasRow(r2)) return;
  FitMatrix();
  SwapRowHeads(r1, r2);
  for (int c = 1; c <= FNrOfCols; ++c) {
    std::swap(Values(c)[at(r1)], Values(c)[at(r2)]);
    std::swap(States(c)[at(r1)], States(c)[at(r2)]);
  }
  ChangedOrder();
}

void TDataTable::MirrorColumns() {
  FitMatrix();
  for (int low = 1, high = FNrOfCols; low < high; ++low, --high) SwapColumns(low, high);
  ChangedOrder();
}

void TDataTable::MirrorRows() {
  FitMatrix();
  std::reverse(FRowAtt.begin(), FRowAtt.end());
  std::reverse(FRowName.begin(), FRowName.end());
  for (int c = 1; c <= FNrOfCols; ++c) {
    std::reverse(Values(c), Values(c) + Rows());
    std::reverse(States(c), States(c) + Rows());
  }
  ChangedOrder();
}

void TDataTable::Clear() {
  FitMatrix();
  FComment.clear();
  detail::NameColumns(*this, 0);
  detail::NameRows(*this, 0);
  std::fill(FColAtt.begin(), FColAtt.end(), 0);
  std::fill(FRowAtt.begin(), FRowAtt.end(), 0);
  std::fill(FVType.begin(), FVType.end(), detail::TColumnType());
  std::fill(FCState.begin(), FCState.end(), std::uint8_t{0});
  std::fill_n(NumericData->data(), Columns() * Rows(), 0.0);
  ChangedNames();
  ChangedAttrib();
  ChangedCellStates();
  ChangedSetup();
}

void TDataTable::ExchangeDuringSort(TObject*, std::uint8_t ExchgWhat, int Index1, int Index2,
                                    int First, int Last) {
  const bool columns = ExchgWhat == 1;
  const bool inside =
      columns ? HasColumn(Index1) && HasColumn(Index2) : HasRow(Index1) && HasRow(Index2);
  if (inside && Index1 != Index2) {
    const int low = std::max(First, 1);
    if (columns) {
      if (FSortIncludeHd) SwapColumnHeads(Index1, Index2);
      const int high = std::min(Last, FNrOfRows);
      if (low <= high) {
        std::swap_ranges(States(Index1) + at(low), States(Index1) + high, States(Index2) + at(low));
      }
    } else {
      if (FSortIncludeHd) SwapRowHeads(Index1, Index2);
      for (int c = low; c <= std::min(Last, FNrOfCols); ++c) {
        std::swap(States(c)[at(Index1)], States(c)[at(Index2)]);
      }
    }
  }
  Fire(OnSortExchange, this, ExchgWhat, Index1, Index2, First, Last);
}

// AssignAnotherDataMatrix resizes without touching the matrix that goes.
void TDataTable::AssignAnotherDataMatrix(TMatrix* NewDMat) {
  if (!NewDMat || NewDMat->NrOfColumns() < 1 || NewDMat->NrOfRows() < 1) return;
  const int oldCols = FNrOfCols;
  const int oldRows = FNrOfRows;
  {
    const detail::TSuspended change(OnChange);
    const detail::TSuspended setup(OnChangeSetup);
    ResizeArrays(NewDMat->NrOfColumns(), NewDMat->NrOfRows(), [] {});
    if (NewDMat != NumericData) {
      if (!FOwned) {
        NumericData->OnChange = nullptr;
        NumericData->OnSortExchange = nullptr;
      }
      NumericData = NewDMat;
      FOwned.reset();
    }
    AttachMatrix();
    for (detail::TColumnType& type : FVType) type.MScaleType = stInterval;
    if (FNrOfCols != oldCols || FNrOfRows != oldRows) FireResize(oldCols, oldRows);
    FireResize(oldCols, oldRows);
  }
  ChangedData();
  ChangedSetup();
  ChangedNames();
  ChangedAttrib();
  ChangedCellStates();
}

}  // namespace zel
