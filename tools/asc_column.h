/// @file
/// A data file of one column.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// What an ASC file of one column holds. Rows are numbered from 1.
struct AscColumn {
  std::string source;                 // the file as messages name it
  std::string comment;                // its first line
  std::string name;                   // of the column; may be empty
  std::vector<double> values;         // those present, in the order of the rows
  std::vector<int> missingRows;       // ascending
  std::vector<std::string> rowNames;  // empty, or one for each row

  /// Row of a value.
  /// @param position  1-based among the values present
  [[nodiscard]] int rowOf(int position) const;
};

/// Reads an ASC file of one column more strictly than the vectors' own reader does: a row is a
/// line, there are as many rows as announced, and a missing value ("NAN", "###") is no value. Blank
/// lines between rows are passed over. Nothing is allocated by the announced number of rows.
/// @param fileName  "-" is standard input
/// @throws Failure  names the file, the line and the reason
AscColumn readAscColumn(const std::string& fileName);

}  // namespace tool
