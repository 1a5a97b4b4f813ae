/// @file
/// TNumMatrix: streams and files. Included by the sources of the matrices only.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "zel/base/wholefile.h"
#include "zel/matrix/asc_form_impl.h"
#include "zel/matrix/binary_matrix_impl.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/number_form_impl.h"
#include "zel/matrix/xml_form_impl.h"
#include "zel/vector/files_impl.h"

namespace zel {

template <class T>
void TNumMatrix<T>::SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LoC, int LoR,
                                 int HiC, int HiR) const {
  if (!OutStream) Guarded([&] { OutStream = std::make_unique<TMemoryStream>(); });
  SaveToStream(static_cast<std::ostream&>(*OutStream), LoC, LoR, HiC, HiR);
}

template <class T>
void TNumMatrix<T>::SaveToStream(std::ostream& OutStream, int LoC, int LoR, int HiC,
                                 int HiR) const {
  const TCells cells = Clamped(LoC, LoR, HiC, HiR);
  detail::WriteRecord(OutStream, {cells.LowCol, cells.LowRow, cells.HighCol, cells.HighRow},
                      View(cells));
}

template <class T>
bool TNumMatrix<T>::LoadFromStream(std::istream* InStream, bool AdjustMatrixSize) {
  if (!InStream) return false;
  detail::TStoredRectangle<T> read;
  return Guarded([&] { return detail::ReadRecord(*InStream, read); }) &&
         TakeRectangle(read, AdjustMatrixSize);
}

template <class T>
bool TNumMatrix<T>::LoadFromFile(std::string_view FileName, bool AdjustMatrixSize) {
  detail::TStoredRectangle<T> read;
  return Guarded([&] {
           const auto text = ReadWholeFile(FileName);
           return text && detail::ReadNumberFile(*text, read);
         }) &&
         TakeRectangle(read, AdjustMatrixSize);
}

template <class T>
bool TNumMatrix<T>::TakeRectangle(const detail::TStoredRectangle<T>& read, bool AdjustMatrixSize) {
  const detail::TBounds& to = read.Bounds;
  if (AdjustMatrixSize) {
    if (!detail::IsBorneOut(to.HighCol, to.HighRow, read.Values.size(), NrOfElements()))
      return false;
    Resize(to.HighCol, to.HighRow);
  } else if (to.HighCol > FNCol || to.HighRow > FNRow) {
    return false;
  }
  for (std::size_t c = 0; c < read.Values.Length(0) && !read.Values.empty(); ++c) {
    const auto column = read.Values[c];
    std::copy(column.begin(), column.end(),
              Mat.data() + Offset(to.LowCol + static_cast<int>(c), to.LowRow));
  }
  Changed();
  return true;
}

template <class T>
void TNumMatrix<T>::TakeAll(TDynArray<T, 2>& contents, int Nc, int Nr, std::string_view id) {
  std::string newId = Guarded([&] { return std::string(id); });
  const bool resized = Nc != FNCol || Nr != FNRow;
  TakeOver(contents, Nc, Nr);
  FDataID.swap(newId);
  if (resized) Changed();
  Changed();
}

template <class T>
bool TNumMatrix<T>::ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows,
                                     std::string& DataID, int& Format) {
  const detail::TBinaryReader reader(FName);
  const detail::TBinaryHeader& header = reader.Header();
  NrColumns = header.Columns;
  NrRows = header.Rows;
  DataID = header.DataID;
  Format = header.Format;
  return header.IsMatrix(detail::kElementFormat<T>);
}

template <class T>
int TNumMatrix<T>::SaveBinary(std::string_view FName) const {
  return Guarded([&] { return detail::SaveBinaryMatrix(FName, View(), FDataID) ? 0 : -1; });
}

template <class T>
int TNumMatrix<T>::LoadBinary(std::string_view FName) {
  TDynArray<T, 2> cells;
  detail::TBinaryHeader header;
  if (!Guarded([&] { return detail::LoadBinaryMatrix(FName, cells, header); })) return -1;
  TakeAll(cells, header.Columns, header.Rows, header.DataID);
  return 0;
}

template <class T>
bool TNumMatrix<T>::SaveAsXMLFile(std::string_view FName, std::string_view DataID) const {
  return Guarded([&] { return detail::SaveXmlFile(*this, FName, DataID); });
}

template <class T>
void TNumMatrix<T>::WriteToXMLStream(std::ostream& OutStream, bool CreateHeader,
                                     std::string_view DataID) const {
  Guarded([&] {
    detail::TXmlMatrixWriter xml(OutStream, CreateHeader, DataID, FDataID,
                                 std::array{FNCol, FNRow});
    for (int c = 1; c <= FNCol; ++c) {
      for (int r = 1; r <= FNRow; ++r) {
        if (!xml.Cell({c, r}, GetVal(c, r))) return;
      }
    }
    xml.End();
  });
}

template <class T>
void TNumMatrix<T>::WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader,
                                       std::string_view DataID) const {
  WriteToXMLStream(TextFile, CreateHeader, DataID);
}

template <class T>
bool TNumMatrix<T>::LoadFromXMLFile(std::string_view FName, std::string_view DataID) {
  return Guarded([&] { return detail::LoadXmlFile(*this, FName, DataID); });
}

template <class T>
bool TNumMatrix<T>::ReadFromXMLStream(std::istream& InStream, std::string_view DataID) {
  detail::TXmlMatrix<T> read(2);
  TDynArray<T, 2> contents;
  const bool isRead = Guarded([&] {
    detail::XmlReader reader(InStream);
    if (!read.Read(reader, DataID) ||
        !detail::IsBorneOut(read.Count(0), read.Count(1), read.Cells(), NrOfElements())) {
      return false;
    }
    contents.SetLength(std::max(read.Count(0), 1), std::max(read.Count(1), 1));
    read.Store(contents.data());
    return true;
  });
  if (isRead) TakeAll(contents, read.Count(0), read.Count(1), read.ID());
  return isRead;
}

template <class T>
bool TNumMatrix<T>::ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID) {
  return ReadFromXMLStream(TextFile, DataID);
}

template <class T>
int TNumMatrix<T>::ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content) {
  return detail::ProcessXmlTag<T>(
      2, Tag, Attr, Content, FXmlState, FirstCell,
      [&](const auto& counts) { Resize(counts[0], counts[1]); },
      [&](const detail::TXmlIndex& at, T value) { SetVal(at[0], at[1], value); });
}

template <class T>
int TNumMatrix<T>::ExportASC(const detail::TASCSource& source,
                             kernels::MatrixSpan<const T> cells) const {
  return Guarded([&] {
    WholeFileWriter file(source.FileName);
    if (!file.IsOpen()) return -1;
    detail::WriteMatrixASC(file.Stream(), source, cells);
    return file.Commit() ? 0 : -1;
  });
}

template <class T>
int TNumMatrix<T>::ImportASC(std::string_view FName, std::string& Comment, TStr2DArray& CustData) {
  constexpr int unreadable = -1;
  constexpr int noSuchFile = -8;
  if (!FileExists(FName)) return noSuchFile;
  detail::TASCMatrix<T> read;
  const int result = Guarded([&] {
    const auto text = ReadWholeFile(FName);
    return text ? detail::ReadMatrixASC(*text, read) : unreadable;
  });
  if (result != unreadable) Comment = std::move(read.Comment);
  if (result != 0) return result;
  CustData = std::move(read.CustData);
  TakeAll(read.Values, read.Columns, read.Rows, FDataID);
  return 0;
}

template <class T>
int TNumMatrix<T>::ImportASC(std::string_view FName, std::string& Comment) {
  TStr2DArray ignored;
  return ImportASC(FName, Comment, ignored);
}

}  // namespace zel
