/// @file
/// TNumMatrix: streams and files. Included by the sources of the matrices only.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "zel/base/wholefile.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/number_form_impl.h"
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
    const auto backed = static_cast<std::int64_t>(read.Values.size()) + detail::kUnbackedPositions;
    const auto held = std::max(backed, static_cast<std::int64_t>(NrOfElements()));
    if (std::int64_t{to.HighCol} * to.HighRow > held) return false;
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

}  // namespace zel
