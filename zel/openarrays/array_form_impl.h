/// @file
/// Text files of arrays. Internal.
///
/// A file begins with its comment, each line of it behind "//". For an array of three dimensions a
/// line with the word "layers" and their number follows. The rest is a number file of a matrix: a
/// line with the bounds 1 1 columns rows, then a line for each row, layer by layer. So a number
/// file of a matrix is a file of a two-dimensional array, and a number file of one column one of a
/// vector.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "zel/kernels/dense.h"
#include "zel/matrix/number_form_impl.h"

namespace zel::detail {

/// What a file holds.
template <class T>
struct TStoredArray {
  std::string Comment;        ///< lines separated by line feeds
  std::size_t Layers = 0;     ///< 0: less than three dimensions
  TStoredRectangle<T> Cells;  ///< the layers one below the other
};

/// @param layers  0, or a divisor of the number of rows
template <class T>
void WriteArrayText(std::ostream& out, std::string_view comment, std::size_t layers,
                    kernels::MatrixSpan<const T> cells);

/// @return false if a number is missing or is none, or the array has no cells. Nothing is allocated
///   that the text does not bear out.
/// @throws std::bad_alloc
template <class T>
[[nodiscard]] bool ReadArrayText(std::string_view text, TStoredArray<T>& read);

}  // namespace zel::detail
