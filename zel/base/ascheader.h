/// @file
/// Header of the ASC text format: a comment line, the two counts and the flags.
#pragma once

#include <istream>
#include <string>
#include <string_view>

#include "zel/base/api.h"

namespace zel {

/// Header of an ASC file, as ReadHeaderOfASC gives it.
struct TASCHeader {
  std::string Comment;
  int NCols = 0;  ///< 0..2147483647, like NRows
  int NRows = 0;
  bool RowAttr = false;
  bool ColNames = false;
  bool RowNames = false;
  bool Nominal = false;
  bool operator==(const TASCHeader&) const = default;
};

/// Reads the four header lines of an ASC file.
///
/// Line 1 is the comment. Lines 2 and 3 hold the numbers of columns and rows, line 4 three or four
/// of the words TRUE and FALSE, in any case: row attributes, column names, row names, nominal
/// variables; a missing fourth one is FALSE. Blanks and tabs separate, a number may carry "+", and
/// what follows a number or a ";" is a legend and is ignored, as is its absence. Lines end in LF or
/// CRLF. The counts are announcements only: nothing is allocated by them.
///
/// @return 0; 1..4: the first header line that is missing or bad; -1: the file cannot be opened or
///   read. What could not be read is empty, 0 or false.
ZEL_API int ReadHeaderOfASC(std::string_view FName, TASCHeader& Header);

/// The same from a stream, which is left at the line after the header.
ZEL_API int ReadHeaderOfASC(std::istream& f, TASCHeader& Header);

/// The same into variables, from a file or a stream.
ZEL_API int ReadHeaderOfASC(std::string_view FName, std::string& Comment, int& NCols, int& NRows,
                            bool& RowAttr, bool& ColNames, bool& RowNames, bool& Nominal);
ZEL_API int ReadHeaderOfASC(std::istream& f, std::string& Comment, int& NCols, int& NRows,
                            bool& RowAttr, bool& ColNames, bool& RowNames, bool& Nominal);

}  // namespace zel
