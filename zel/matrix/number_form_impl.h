/// @file
/// Number files and stream records of matrices. Internal.
///
/// A number file is text: a line with the bounds LowCol LowRow HighCol HighRow of a rectangle, then
/// a line for each of its rows, values separated by blanks. A stream record holds the same four
/// bounds, then the values column by column: extended values for doubles, 32-bit integers for
/// integers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <ostream>
#include <string_view>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/wholefile.h"
#include "zel/kernels/dense.h"
#include "zel/vector/files_impl.h"

namespace zel::detail {

/// A rectangle of a matrix, numbered from 1; empty if a high bound lies below its low one.
struct TBounds {
  int LowCol = 1;
  int LowRow = 1;
  int HighCol = 0;
  int HighRow = 0;
};

/// What a file or record holds.
template <class T>
struct TStoredRectangle {
  TBounds Bounds;
  TDynArray<T, 2> Values;  ///< [column][row] of the rectangle
};

/// A source that holds so many elements bears out a matrix of that size, or one that is no larger
/// than what is held already. An empty matrix too has storage.
[[nodiscard]] inline bool IsBorneOut(int columns, int rows, std::size_t elements,
                                     std::size_t held) {
  const auto needed = static_cast<std::uint64_t>(std::max(columns, 1)) *
                      static_cast<std::uint64_t>(std::max(rows, 1));
  return needed <= std::max<std::uint64_t>(elements + kUnbackedPositions, held);
}

/// How numbers of a number file look: right-aligned in a field, with so many decimals; negative
/// decimals: the shortest text that gives the same number again.
struct TNumberFormat {
  int Width = 0;
  int Decimals = -1;
};

/// Takes the next word off the front of a text, as a number; nothing if it is none.
[[nodiscard]] std::optional<double> TakeNumber(std::string_view& text);

/// @param cells  those of the rectangle
void WriteNumberFile(std::ostream& out, const TBounds& bounds,
                     kernels::MatrixSpan<const double> cells, TNumberFormat format);
void WriteNumberFile(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const int> cells,
                     TNumberFormat format);

/// Writes a whole number file.
/// @return false if that fails; an old file is left as it was then
template <class T>
bool StoreNumberFile(std::string_view fileName, const TBounds& bounds,
                     kernels::MatrixSpan<const T> cells, TNumberFormat format) {
  WholeFileWriter file(fileName);
  if (file.IsOpen()) WriteNumberFile(file.Stream(), bounds, cells, format);
  return file.Commit();
}

void WriteRecord(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const double> cells);
void WriteRecord(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const int> cells);

/// Reads a number file from its text. Integers are rounded, ties to even, and limited.
/// @return false if a bound or a value is missing or is no number, or the bounds are not those of a
///   rectangle. Nothing is allocated that the text does not bear out.
/// @throws std::bad_alloc
[[nodiscard]] bool ReadNumberFile(std::string_view text, TStoredRectangle<double>& read);
[[nodiscard]] bool ReadNumberFile(std::string_view text, TStoredRectangle<int>& read);

/// Reads a record; the stream is left behind it if it is whole.
/// @return as ReadNumberFile
[[nodiscard]] bool ReadRecord(std::istream& in, TStoredRectangle<double>& read);
[[nodiscard]] bool ReadRecord(std::istream& in, TStoredRectangle<int>& read);

/// Reads a table of numbers without bounds: each line is a row, blank lines and what follows "//"
/// do not count. If some lines carry the mark "//dig", only these are rows.
/// @return false if there is no row, rows differ in length, or a word is no number
[[nodiscard]] bool ReadNumberTable(std::string_view text, TStoredRectangle<double>& read);

}  // namespace zel::detail
