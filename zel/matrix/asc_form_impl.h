/// @file
/// ASC files of matrices: the common header, then the rows. Further columns of texts stand behind
/// the rows, where the other readers do not look, in the lines that the tables use too:
///
///     ;more
///     ;custom  1  "text"  "text"
///     ;end
///
/// Internal.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "zel/base/array.h"
#include "zel/kernels/dense.h"

namespace zel::detail {

/// Where the parts of an ASC file come from.
struct TASCSource {
  std::string_view ClassName;
  std::string_view FileName;
  std::string_view Comment;
  int Precision = -1;  ///< of doubles: decimals, negative: the shortest exact text
  const TStr2DArray* CustData = nullptr;
};

void WriteMatrixASC(std::ostream& out, const TASCSource& source,
                    kernels::MatrixSpan<const double> cells);
void WriteMatrixASC(std::ostream& out, const TASCSource& source,
                    kernels::MatrixSpan<const int> cells);

/// What an ASC file holds.
template <class T>
struct TASCMatrix {
  int Columns = 0;
  int Rows = 0;
  std::string Comment;
  TDynArray<T, 2> Values;  ///< [column][row], with at least one of each
  TStr2DArray CustData;    ///< [column][row]
};

/// Reads a matrix from the text of a whole file. The counts of the header allocate nothing that the
/// text does not bear out.
/// @return as TMatrix::ImportASC; unless it is 0, only the comment is there
/// @throws std::bad_alloc, std::length_error
[[nodiscard]] int ReadMatrixASC(std::string_view text, TASCMatrix<double>& read);
[[nodiscard]] int ReadMatrixASC(std::string_view text, TASCMatrix<int>& read);

}  // namespace zel::detail
