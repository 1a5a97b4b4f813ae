/// @file
/// Contents of binary files with three and four dimensions, and of sparse matrices. What cannot be
/// read throws EInOutError, want of memory std::bad_alloc. Internal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zel/base/array.h"
#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/binary_form_impl.h"

namespace zel::detail {

/// @param array  [column][row][layer]
/// @return false if the file cannot be written
[[nodiscard]] bool SaveBinaryArray(std::string_view fileName, const TDouble3DArray& array,
                                   std::string_view id);
/// @return false, with nothing changed, if the file is none of a three-dimensional array
[[nodiscard]] bool LoadBinaryArray(std::string_view fileName, TDouble3DArray& array,
                                   std::string& id);

/// Time slots of a file, from 1; with a bound below 1, all. Empty if First exceeds Last.
struct TSlots {
  int First;
  int Last;
  TSlots(const TBinaryHeader& header, int start, int end);
  [[nodiscard]] std::uint64_t Count() const {
    return Last < First ? 0 : static_cast<std::uint64_t>(Last - First) + 1;
  }
  /// Goes to their elements.
  /// @return the number of these
  std::uint64_t Seek(TBinaryReader& reader) const;
};

/// @param array        [time slot][layer][row][column]
/// @param first, last  time slots to write, from 0
[[nodiscard]] bool SaveBinaryArray(std::string_view fileName, const TDouble4DArray& array,
                                   int first, int last, std::string_view id);
/// @return as TMat4D::LoadBinary; unless it is 0, nothing has changed
[[nodiscard]] int LoadBinaryArray(std::string_view fileName, int start, int end, bool checksFormat,
                                  TDouble4DArray& array, std::string& id);

using TSparseCells = TDynArray<TSpMatElemInt, 1>;

/// @param cells  the first header.Cells of them, in their order
[[nodiscard]] bool SaveSparseCells(std::string_view fileName, const TBinaryHeader& header,
                                   const TSparseCells& cells);
/// @return false, with nothing changed, if the file is none of a sparse matrix, or its cells are
///   not in order or lie outside the matrix
[[nodiscard]] bool LoadSparseCells(std::string_view fileName, TBinaryHeader& header,
                                   TSparseCells& cells);

}  // namespace zel::detail
