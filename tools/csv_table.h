/// @file
/// The CSV form of a data file.
#pragma once

#include "line_reader.h"
#include "table_file.h"

namespace tool {

/// Reads a CSV file (RFC 4180, also with semicolons or tabs) with a header line. Blank lines and
/// columns with neither a name nor a value are passed over. Blanks around a cell do not count.
/// @param labelColumn  name, or else number, of the column whose cells are kept as texts
/// @throws Failure  names the file, the line and the reason
ColumnValues readCsvTable(LineReader& file, Table& table, const std::string& labelColumn);

}  // namespace tool
