// TIntMatrix: object, forms, element access, copies. See intoperations.cpp for the rest.
#include "zel/matrix/TIntMatrix.h"

#include <algorithm>
#include <limits>

#include "zel/matrix/copies_impl.h"
#include "zel/matrix/intmatrix_impl.h"

namespace zel {

namespace {

constexpr int kMost = std::numeric_limits<int>::max();

/// Order of the records.
constexpr bool Before(const TSpMatElemInt& a, const TSpMatElemInt& b) {
  return a.colidx != b.colidx ? a.colidx < b.colidx : a.rowidx < b.rowidx;
}

}  // namespace

TIntMatrix::TIntMatrix(TComponent* AOwner) : TNumMatrix(AOwner) {}

TIntMatrix::TIntMatrix(std::initializer_list<std::initializer_list<int>> rows) { SetRows(rows); }

TIntMatrix::TIntMatrix(TCreateSparse, TComponent* AOwner, int AllocBy) : TNumMatrix(AOwner) {
  TInt2DArray nothing;
  TakeOver(nothing, 0, 0);
  ArrayToSparse(AllocBy);
}

TIntMatrix::~TIntMatrix() = default;

std::string_view TIntMatrix::ClassName() const { return "TIntMatrix"; }

TIntMatrix::TRecords TIntMatrix::NewRecords(std::size_t count, int allocBy) const {
  const auto step = static_cast<std::size_t>(allocBy);
  const std::size_t room = std::max<std::size_t>((count + step - 1) / step, 1) * step;
  TRecords records;
  Guarded([&] {
    if (count > std::size_t{kMost}) throw std::bad_alloc();
    records.resize(std::min(room, std::size_t{kMost}));
  });
  return records;
}

TIntMatrix::TRecords TIntMatrix::RecordsOf(std::span<const int> cells, int nRows, int allocBy,
                                           int& count) const {
  const auto zeros = static_cast<std::size_t>(std::count(cells.begin(), cells.end(), 0));
  TRecords records = NewRecords(cells.size() - zeros, allocBy);
  TSpMatElemInt* next = records.data();
  int c = 1;
  int r = 1;
  for (const int x : cells) {
    if (x != 0) *next++ = {c, r, x};
    if (r++ == nRows) {
      r = 1;
      ++c;
    }
  }
  count = static_cast<int>(cells.size() - zeros);
  return records;
}

void TIntMatrix::SetRecords(TRecords& records, int count) {
  SpMat.swap(records);
  FNumAllocated = static_cast<int>(SpMat.size());
  FSparseNumElem = count;
  FSparseLowCol = kMost;
  FSparseHighCol = 1;
  FSparseLowRow = kMost;
  FSparseHighRow = 1;
  for (const TSpMatElemInt& cell : StoredCells()) {
    FSparseLowCol = std::min(FSparseLowCol, cell.colidx);
    FSparseHighCol = std::max(FSparseHighCol, cell.colidx);
    FSparseLowRow = std::min(FSparseLowRow, cell.rowidx);
    FSparseHighRow = std::max(FSparseHighRow, cell.rowidx);
  }
}

void TIntMatrix::ArrayToSparse(int AllocBy) {
  if (FIsSparse) return;
  const int step = std::max(AllocBy, 1);
  int count = 0;
  TRecords records = RecordsOf(Elements(), TNumMatrix::NrOfRows(), step, count);
  FNCol = TNumMatrix::NrOfColumns();
  FNRow = TNumMatrix::NrOfRows();
  FAllocBy = step;
  SetRecords(records, count);
  TInt2DArray nothing;
  TakeOver(nothing, 0, 0);
  FIsSparse = true;
}

void TIntMatrix::SparseToArray() {
  if (!FIsSparse) return;
  const int columns = FSparseNumElem == 0 ? 1 : FSparseHighCol;
  const int rows = FSparseNumElem == 0 ? 1 : FSparseHighRow;
  TInt2DArray cells = CellsOf({1, 1, columns, rows});
  TakeOver(cells, columns, rows);
  TRecords nothing;
  SetRecords(nothing, 0);
  FIsSparse = false;
}

TInt2DArray TIntMatrix::CellsOf(const TCells& cells) const {
  TInt2DArray array;
  if (!FIsSparse) {
    TNumMatrix::CopyToArray(array, cells.LowCol, cells.HighCol, cells.LowRow, cells.HighRow);
    return array;
  }
  Guarded([&] { array.SetLength(cells.Columns(), cells.Rows()); });
  ForEachStored(cells, [&](const TSpMatElemInt& cell) {
    array(cell.colidx - cells.LowCol, cell.rowidx - cells.LowRow) = cell.value;
  });
  return array;
}

bool TIntMatrix::Resize(int Nc, int Nr) {
  if (!FIsSparse) return TNumMatrix::Resize(Nc, Nr);
  if (Nc == FNCol && Nr == FNRow) return true;
  FNCol = std::max(Nc, 0);
  FNRow = std::max(Nr, 0);
  FSparseHighCol = std::min(FSparseHighCol, FNCol);
  FSparseHighRow = std::min(FSparseHighRow, FNRow);
  FSparseLowCol = std::min(FSparseLowCol, FSparseHighCol);
  FSparseLowRow = std::min(FSparseLowRow, FSparseHighRow);
  TSpMatElemInt* const end = std::remove_if(
      SpMat.data(), SpMat.data() + FSparseNumElem,
      [&](const TSpMatElemInt& cell) { return cell.colidx > FNCol || cell.rowidx > FNRow; });
  FSparseNumElem = static_cast<int>(end - SpMat.data());
  Changed();
  return true;
}

bool TIntMatrix::ResizeAndClear(int Nc, int Nr) {
  const bool done = Resize(Nc, Nr);
  if (done) Fill(0);
  return done;
}

void TIntMatrix::MakeValidColRange(int& LowCol, int& HighCol) const {
  kernels::clampRange(LowCol, HighCol, NrOfColumns());
}

void TIntMatrix::MakeValidRowRange(int& LowRow, int& HighRow) const {
  kernels::clampRange(LowRow, HighRow, NrOfRows());
}

int TIntMatrix::RecordOf(int Nc, int Nr) const {
  const TSpMatElemInt cell{Nc, Nr, 0};
  const auto stored = StoredCells();
  if (stored.empty() || Before(stored.back(), cell)) return FSparseNumElem;
  return static_cast<int>(std::lower_bound(stored.begin(), stored.end(), cell, Before) -
                          stored.begin());
}

bool TIntMatrix::HasRecord(int place, int Nc, int Nr) const {
  return place < FSparseNumElem && SpMat.data()[place].colidx == Nc &&
         SpMat.data()[place].rowidx == Nr;
}

int TIntMatrix::SparseVal(int Nc, int Nr) const {
  if (Nc < FSparseLowCol || Nc > FSparseHighCol || Nr < FSparseLowRow || Nr > FSparseHighRow) {
    return 0;
  }
  const int place = RecordOf(Nc, Nr);
  return HasRecord(place, Nc, Nr) ? SpMat.data()[place].value : 0;
}

void TIntMatrix::SetSparseVal(int Nc, int Nr, int Value) {
  if (Nc < 1 || Nr < 1) return;
  const int place = RecordOf(Nc, Nr);
  if (HasRecord(place, Nc, Nr)) {
    SpMat.data()[place].value = Value;
    Changed();
    return;
  }
  if (FSparseNumElem == FNumAllocated) {
    // The array itself grows geometrically where the step is small.
    const int room =
        static_cast<int>(std::min<std::int64_t>(std::int64_t{FNumAllocated} + FAllocBy, kMost));
    Guarded([&] {
      if (room == FNumAllocated) throw std::bad_alloc();
      SpMat.resize(static_cast<std::size_t>(room));
    });
    FNumAllocated = room;
  }
  TSpMatElemInt* const at = SpMat.data() + place;
  TSpMatElemInt* const end = SpMat.data() + FSparseNumElem;
  std::move_backward(at, end, end + 1);
  *at = {Nc, Nr, Value};
  ++FSparseNumElem;
  FSparseLowCol = std::min(FSparseLowCol, Nc);
  FSparseHighCol = std::max(FSparseHighCol, Nc);
  FSparseLowRow = std::min(FSparseLowRow, Nr);
  FSparseHighRow = std::max(FSparseHighRow, Nr);
  FNCol = FSparseHighCol;
  FNRow = FSparseHighRow;
  Changed();
}

void TIntMatrix::StoreSparse(std::int64_t Nc, std::int64_t Nr, int Value) {
  if (Nc < 1 || Nc > kMost || Nr < 1 || Nr > kMost) return;
  SetVal(static_cast<int>(Nc), static_cast<int>(Nr), Value);
}

void TIntMatrix::Clone(const TIntMatrix* MatSource) {
  if (!MatSource) return;
  if (!FIsSparse) {
    if (!MatSource->FIsSparse) return TNumMatrix::Clone(MatSource);
    TDenseCopy copy(*MatSource, *this);
    return TNumMatrix::Clone(&*copy);
  }
  const bool resized = FNCol != MatSource->NrOfColumns() || FNRow != MatSource->NrOfRows();
  const auto stored = MatSource->StoredCells();
  int count = MatSource->FSparseNumElem;
  TRecords records;
  if (MatSource->FIsSparse) {
    records = NewRecords(stored.size(), FAllocBy);
    std::copy(stored.begin(), stored.end(), records.data());
  } else {
    records = RecordsOf(MatSource->Elements(), MatSource->NrOfRows(), FAllocBy, count);
  }
  SetRecords(records, count);
  FNCol = MatSource->NrOfColumns();
  FNRow = MatSource->NrOfRows();
  if (resized) Changed();
  Changed();
}

void TIntMatrix::CopySparse(const TIntMatrix& source, int SourceColLo, int SourceRowLo,
                            int SourceColHi, int SourceRowHi, int DestCol, int DestRow) {
  const TCells from{SourceColLo, SourceRowLo, SourceColHi, SourceRowHi};
  const std::int64_t right = std::int64_t{DestCol} - SourceColLo;
  const std::int64_t down = std::int64_t{DestRow} - SourceRowLo;
  std::vector<TSpMatElemInt> cells;
  // Copies, for a handler may change either matrix.
  Guarded([&] {
    for (const TSpMatElemInt& cell : StoredCells()) {
      const std::int64_t c = cell.colidx - right;
      const std::int64_t r = cell.rowidx - down;
      if (c < SourceColLo || c > SourceColHi || r < SourceRowLo || r > SourceRowHi) continue;
      const int cc = static_cast<int>(c);
      const int rr = static_cast<int>(r);
      if (!source.HasRecord(source.RecordOf(cc, rr), cc, rr)) cells.push_back({cc, rr, 0});
    }
    source.ForEachStored(from, [&](const TSpMatElemInt& cell) { cells.push_back(cell); });
  });
  for (const TSpMatElemInt& cell : cells) {
    StoreSparse(cell.colidx + right, cell.rowidx + down, cell.value);
  }
}

void TIntMatrix::CopyFrom(const TIntMatrix* MatSource, int SourceColLo, int SourceRowLo,
                          int SourceColHi, int SourceRowHi, int DestCol, int DestRow) {
  if (!MatSource) return;
  const int nCols = MatSource->NrOfColumns();
  const int nRows = MatSource->NrOfRows();
  if (!FIsSparse) {
    return CopyRectangle(nCols, nRows, SourceColLo, SourceRowLo, SourceColHi, SourceRowHi, DestCol,
                         DestRow, [&](int c, int r) { return MatSource->GetVal(c, r); });
  }
  detail::ClampSource(SourceColLo, SourceColHi, nCols);
  detail::ClampSource(SourceRowLo, SourceRowHi, nRows);
  if (MatSource->FIsSparse) {
    CopySparse(*MatSource, SourceColLo, SourceRowLo, SourceColHi, SourceRowHi, DestCol, DestRow);
  } else {
    for (int c = SourceColLo; c <= SourceColHi; ++c) {
      for (int r = SourceRowLo; r <= SourceRowHi; ++r) {
        StoreSparse(std::int64_t{DestCol} + c - SourceColLo,
                    std::int64_t{DestRow} + r - SourceRowLo, MatSource->GetVal(c, r));
      }
    }
  }
  Changed();
}

void TIntMatrix::CopyFromVec(TDims Dim, const TIntVector* VecSource, int Source1stElem,
                             int SourceLastElem, int DestCol, int DestRow) {
  if (!FIsSparse) {
    return TNumMatrix::CopyFromVec(Dim, VecSource, Source1stElem, SourceLastElem, DestCol, DestRow);
  }
  if (!VecSource) return;
  VecSource->MakeValidElemRange(Source1stElem, SourceLastElem);
  for (int i = Source1stElem; i <= SourceLastElem; ++i) {
    const int along = i - Source1stElem;
    StoreSparse(std::int64_t{DestCol} + (Dim == dimColumns ? along : 0),
                std::int64_t{DestRow} + (Dim == dimColumns ? 0 : along), VecSource->GetVal(i));
  }
  Changed();
}

void TIntMatrix::CopyRowToVec(TIntVector* DestVec, int Row, int FirstCol, int LastCol) const {
  if (!FIsSparse) return TNumMatrix::CopyRowToVec(DestVec, Row, FirstCol, LastCol);
  if (!DestVec) return;
  MakeValidColRange(FirstCol, LastCol);
  Row = std::clamp(Row, 1, std::max(FNRow, 1));
  detail::CopyToFront(*DestVec, FirstCol, LastCol, [&](int c) { return GetVal(c, Row); });
}

void TIntMatrix::CopyColToVec(TIntVector* DestVec, int Col, int FirstRow, int LastRow) const {
  if (!FIsSparse) return TNumMatrix::CopyColToVec(DestVec, Col, FirstRow, LastRow);
  if (!DestVec) return;
  MakeValidRowRange(FirstRow, LastRow);
  Col = std::clamp(Col, 1, std::max(FNCol, 1));
  detail::CopyToFront(*DestVec, FirstRow, LastRow, [&](int r) { return GetVal(Col, r); });
}

void TIntMatrix::CopyToArray(TInt2DArray& DestArray, int LowCol, int HighCol, int LowRow,
                             int HighRow) const {
  if (!FIsSparse) return TNumMatrix::CopyToArray(DestArray, LowCol, HighCol, LowRow, HighRow);
  DestArray = CellsOf(Clamped(LowCol, LowRow, HighCol, HighRow));
}

void TIntMatrix::CopyFromArray(const TInt2DArray& SrcArray, int Col, int Row) {
  if (!FIsSparse) return TNumMatrix::CopyFromArray(SrcArray, Col, Row);
  for (std::size_t i = 0; i < SrcArray.Length(0); ++i) {
    for (std::size_t j = 0; j < SrcArray.Length(1); ++j) {
      StoreSparse(Col + static_cast<std::int64_t>(i), Row + static_cast<std::int64_t>(j),
                  SrcArray(i, j));
    }
  }
}

void TIntMatrix::Fill(int value) {
  if (!FIsSparse) return TNumMatrix::Fill(value);
  if (value == 0) {
    TRecords records = NewRecords(0, FAllocBy);
    SetRecords(records, 0);
  } else {
    for (int k = 0; k < FSparseNumElem; ++k) SpMat.data()[k].value = value;
  }
  Changed();
}

}  // namespace zel
