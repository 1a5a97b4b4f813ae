// TIntMatrix: files and streams of either form.
#include <array>

#include "zel/matrix/binary_arrays_impl.h"
#include "zel/matrix/files_impl.h"
#include "zel/matrix/intmatrix_impl.h"

namespace zel {

/// Calls use(bounds, view) with a rectangle, or with a dense copy of it.
template <class Use>
decltype(auto) TIntMatrix::WithRectangle(int LoC, int LoR, int HiC, int HiR, Use&& use) const {
  const TCells cells = Clamped(LoC, LoR, HiC, HiR);
  const detail::TBounds bounds{cells.LowCol, cells.LowRow, cells.HighCol, cells.HighRow};
  if (!FIsSparse) return use(bounds, View(cells));
  const TInt2DArray copy = CellsOf(cells);
  const kernels::MatrixSpan<const int> view{copy.data(), cells.Rows(), cells.Columns(),
                                            cells.Rows()};
  return use(bounds, view);
}

void TIntMatrix::SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LoC, int LoR, int HiC,
                              int HiR) const {
  if (!OutStream) Guarded([&] { OutStream = std::make_unique<TMemoryStream>(); });
  SaveToStream(static_cast<std::ostream&>(*OutStream), LoC, LoR, HiC, HiR);
}

void TIntMatrix::SaveToStream(std::ostream& OutStream, int LoC, int LoR, int HiC, int HiR) const {
  WithRectangle(LoC, LoR, HiC, HiR, [&](const detail::TBounds& bounds, auto cells) {
    detail::WriteRecord(OutStream, bounds, cells);
  });
}

bool TIntMatrix::StoreOnFile(int LoC, int LoR, int HiC, int HiR, std::string_view FileName) const {
  return WithRectangle(LoC, LoR, HiC, HiR, [&](const detail::TBounds& bounds, auto cells) {
    return Guarded([&] { return detail::StoreNumberFile(FileName, bounds, cells, {}); });
  });
}

bool TIntMatrix::LoadFromStream(std::istream* InStream, bool AdjustMatrixSize) {
  return Edit([&](TNumMatrix& m) { return m.LoadFromStream(InStream, AdjustMatrixSize); });
}

bool TIntMatrix::LoadFromFile(std::string_view FileName, bool AdjustMatrixSize) {
  return Edit([&](TNumMatrix& m) { return m.LoadFromFile(FileName, AdjustMatrixSize); });
}

/// Lets load(matrix), 0 on success, replace this matrix, or fill a dense one whose contents a
/// sparse one then takes.
template <class Load>
int TIntMatrix::Replace(Load&& load) {
  if (!FIsSparse) return load(static_cast<TNumMatrix&>(*this));
  TDenseCopy copy(*this);
  Guarded([&] { (*copy).SetDataID(DataID()); });
  const int result = load(*copy);
  if (result != 0) return result;
  const std::string id = Guarded([&] { return DataID(); });
  const bool resized = FNCol != copy.Matrix().NrOfColumns() || FNRow != copy.Matrix().NrOfRows();
  Guarded([&] { SetDataID(copy.Matrix().DataID()); });
  try {
    TakeContents(copy);
  } catch (...) {
    SetDataID(id);  // which there is room for
    throw;
  }
  if (resized) Changed();
  Changed();
  return 0;
}

int TIntMatrix::SaveBinary(std::string_view FName) const {
  return WithRectangle(0, 0, 0, 0, [&](const detail::TBounds&, auto cells) {
    return Guarded([&] { return detail::SaveBinaryMatrix(FName, cells, DataID()) ? 0 : -1; });
  });
}

int TIntMatrix::LoadBinary(std::string_view FName) {
  return Replace([&](TNumMatrix& m) { return m.LoadBinary(FName); });
}

bool TIntMatrix::StoreSparseMat(std::string_view FileName) const {
  return Guarded([&] {
    TRecords list;
    int count = FSparseNumElem;
    if (!FIsSparse) list = RecordsOf(Elements(), NrOfRows(), 1, count);
    return detail::SaveSparseCells(
        FileName,
        {NrOfColumns(), NrOfRows(), 0, 0, std::string_view(DataID()), detail::kSparseCells, count},
        FIsSparse ? SpMat : list);
  });
}

bool TIntMatrix::LoadSparseMat(std::string_view FileName) {
  try {
    return Guarded([&] {
      detail::TBinaryHeader header;
      TRecords cells;
      if (!detail::LoadSparseCells(FileName, header, cells)) return false;
      if (FIsSparse) cells.resize(std::max<std::size_t>(cells.size(), 1));
      return TakeCells(cells, header.Cells, header.Columns, header.Rows, header.DataID);
    });
  } catch (const EInOutError&) {
    return false;
  }
}

bool TIntMatrix::TakeCells(TRecords& cells, int count, int Nc, int Nr, std::string_view id) {
  if (!FIsSparse) {
    const auto held =
        std::max(count + detail::kUnbackedPositions, static_cast<std::int64_t>(NrOfElements()));
    if (std::int64_t{Nc} * Nr > held) return false;
    TInt2DArray contents;
    Guarded([&] { contents.SetLength(std::max(Nc, 1), std::max(Nr, 1)); });
    for (int k = 0; k < count; ++k) {
      const TSpMatElemInt& cell = cells.data()[k];
      contents(cell.colidx - 1, cell.rowidx - 1) = cell.value;
    }
    TakeAll(contents, Nc, Nr, id);
    return true;
  }
  const bool resized = FNCol != Nc || FNRow != Nr;
  Guarded([&] { SetDataID(id); });
  SetRecords(cells, count);
  FNCol = Nc;
  FNRow = Nr;
  if (resized) Changed();
  Changed();
  return true;
}

bool TIntMatrix::SaveAsXMLFile(std::string_view FName, std::string_view DataID) const {
  return Guarded([&] { return detail::SaveXmlFile(*this, FName, DataID); });
}

void TIntMatrix::WriteToXMLStream(std::ostream& OutStream, bool CreateHeader,
                                  std::string_view DataID) const {
  if (!FIsSparse) return TNumMatrix::WriteToXMLStream(OutStream, CreateHeader, DataID);
  Guarded([&] {
    detail::TXmlMatrixWriter xml(OutStream, CreateHeader, DataID, TNumMatrix::DataID(),
                                 std::array{FNCol, FNRow});
    for (const TSpMatElemInt& cell : StoredCells()) {
      if (!xml.Cell({cell.colidx, cell.rowidx}, cell.value)) return;
    }
    xml.End();
  });
}

void TIntMatrix::WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader,
                                    std::string_view DataID) const {
  WriteToXMLStream(TextFile, CreateHeader, DataID);
}

bool TIntMatrix::LoadFromXMLFile(std::string_view FName, std::string_view DataID) {
  return Guarded([&] { return detail::LoadXmlFile(*this, FName, DataID); });
}

bool TIntMatrix::ReadFromXMLStream(std::istream& InStream, std::string_view DataID) {
  if (!FIsSparse) return TNumMatrix::ReadFromXMLStream(InStream, DataID);
  detail::TXmlMatrix<int> read(2);
  return Guarded([&] {
    detail::XmlReader reader(InStream);
    if (!read.Read(reader, DataID)) return false;
    const auto cells = read.Sorted();
    TRecords records = NewRecords(cells.size(), FAllocBy);
    TSpMatElemInt* next = records.data();
    const auto rows = static_cast<std::uint64_t>(read.Count(1));
    for (const auto& [place, value] : cells) {
      *next++ = {static_cast<int>(place / rows) + 1, static_cast<int>(place % rows) + 1, value};
    }
    return TakeCells(records, static_cast<int>(cells.size()), read.Count(0), read.Count(1),
                     read.ID());
  });
}

bool TIntMatrix::ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID) {
  return ReadFromXMLStream(TextFile, DataID);
}

int TIntMatrix::ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content) {
  return detail::ProcessXmlTag<int>(
      2, Tag, Attr, Content, FXmlState, FirstCell,
      [&](const auto& counts) { Resize(counts[0], counts[1]); },
      [&](const detail::TXmlIndex& at, int value) { SetVal(at[0], at[1], value); });
}

int TIntMatrix::ExportAsASC(std::string_view FName, std::string_view Comment) const {
  return ExportAsASC(FName, Comment, TStr2DArray());
}

int TIntMatrix::ExportAsASC(std::string_view FName, std::string_view Comment,
                            const TStr2DArray& CustData) const {
  return WithRectangle(0, 0, 0, 0, [&](const detail::TBounds&, auto cells) {
    return ExportASC({ClassName(), FName, Comment, 0, &CustData}, cells);
  });
}

int TIntMatrix::ImportASC(std::string_view FName, std::string& Comment) {
  TStr2DArray ignored;
  return ImportASC(FName, Comment, ignored);
}

int TIntMatrix::ImportASC(std::string_view FName, std::string& Comment, TStr2DArray& CustData) {
  return Replace([&](TNumMatrix& m) { return m.ImportASC(FName, Comment, CustData); });
}

}  // namespace zel
