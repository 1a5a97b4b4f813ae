/// @file
/// The ASC form of a data file.
#pragma once

#include "line_reader.h"
#include "table_file.h"

namespace tool {

/// Reads an ASC file more strictly than the library's own readers do: a row is a line and has as
/// many values as there are columns, there are as many rows as announced, and a missing value
/// ("NAN", "###") is no value. Blank lines between rows are passed over. Nothing is allocated by
/// the announced numbers.
/// @throws Failure  names the file, the line and the reason
ColumnValues readAscTable(LineReader& file, Table& table);

}  // namespace tool
