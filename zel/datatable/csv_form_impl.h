/// @file
/// Tables as delimited text. Internal.
#pragma once

#include <ostream>
#include <string_view>

#include "zel/datatable/delimited_impl.h"
#include "zel/datatable/table_contents_impl.h"

namespace zel::detail {

/// Before the comment in the first line.
inline constexpr std::string_view kCommentMark = "# ";
/// Name of the column of row attributes.
inline constexpr std::string_view kAttributes = "(attribute)";

/// What stands for a missing value unless it is in quotation marks.
[[nodiscard]] bool IsMissingWord(std::string_view cell);

/// Reads a table.
/// @param contents  what the text holds, if the result is 0
/// @return as TDataTable::ImportFromCSV, with import.Message
int ReadCSV(std::string_view text, TCSVImport& import, TTableContents& contents);

/// How TDataTable::ExportAsCSV writes.
struct TCSVExport {
  int Precision = -1;
  char Delimiter = ',';
  bool IncludeColHeaders = true;
  bool IncludeRowHeaders = true;
  bool IncludeRowAttributes = true;
  bool IncludeComment = true;
  TDecPSep DecSep = dpsPoint;
};

void WriteCSV(std::ostream& out, const TTableView& table, const TCSVExport& how);

}  // namespace zel::detail
