// Delimited text: the records and cells of any bytes end, and what is written is read again, as
// cells and as a table.
#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "zel/datatable/csv_form_impl.h"
#include "zel/datatable/delimited_impl.h"

namespace zel_fuzz {
namespace {

using Records = std::vector<std::vector<std::string>>;

/// All records; those before the break of a broken text.
Records recordsOf(std::string_view text, char delimiter, bool& isBroken) {
  Records records;
  zel::detail::DelimitedText reader(text, delimiter);
  std::size_t bytes = 0;
  std::size_t line = 0;
  while (reader.nextRecord()) {
    require(reader.line() > line, "each record starts in a line of its own");
    line = reader.line();
    std::vector<std::string> cells;
    for (std::string_view cell; reader.nextCell(cell);) {
      cells.emplace_back(cell);
      bytes += cell.size();
    }
    if (reader.isBroken()) break;
    require(!cells.empty(), "a record has cells");
    records.push_back(std::move(cells));
  }
  require(bytes <= text.size(), "cells are parts of the text");
  isBroken = reader.isBroken();
  return records;
}

/// The table that a text holds, and that again which is written of it.
void checkTable(std::string_view text, bool hasHeads, zel::TDecPSep separator) {
  zel::TCSVImport import;
  import.IncludeColHeaders = import.IncludeRowHeaders = hasHeads;
  import.DecSep = separator;
  import.SkipLongTexts = hasHeads;
  zel::detail::TTableContents table(1, 0);
  if (zel::detail::ReadCSV(text, import, table) != 0) {
    require(!import.Message.empty(), "a failure has a message");
    return;
  }
  require(import.RowLines.size() == table.Rows() && std::ranges::is_sorted(import.RowLines),
          "each row has its line");
  require(table.Values.size() <= text.size() + 1, "a cell takes a byte at least");
  zel::detail::TCSVExport how;
  how.Delimiter = zel::detail::DelimiterOf(zel::cdDetect, text);
  how.DecSep = separator;
  std::ostringstream written;
  WriteCSV(written, {table, table.Values.data()}, how);
  import.Delimiter = how.Delimiter == ','   ? zel::cdComma
                     : how.Delimiter == ';' ? zel::cdSemicolon
                                            : zel::cdTab;
  import.IncludeColHeaders = import.IncludeRowHeaders = true;
  zel::detail::TTableContents again(1, 0);
  require(zel::detail::ReadCSV(written.str(), import, again) == 0, "what is written is read");
  require(again.FRowName == table.FRowName && again.FRowAtt == table.FRowAtt &&
              again.FColName == table.FColName && again.FCState == table.FCState,
          "heads and empty cells come back");
}

}  // namespace

int FuzzDelimited(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  const char delimiter = zel::detail::detectDelimiter(text);
  bool isBroken = false;
  const Records records = recordsOf(text, delimiter, isBroken);
  std::string written;
  for (const auto& record : records) {
    for (const std::string& cell : record) {
      zel::detail::appendCell(written, cell, delimiter);
      written += delimiter;
    }
    written.back() = '\n';
  }
  require(recordsOf(written, delimiter, isBroken) == records && !isBroken,
          "what is written is read again");
  checkTable(text, true, zel::dpsPoint);
  checkTable(text, false, zel::dpsComma);
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(delimited, zel_fuzz::FuzzDelimited)
