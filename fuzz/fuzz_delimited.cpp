// Delimited text: the records and cells of any bytes end, and what is written is read again.
#include <string>
#include <vector>

#include "fuzz/target.h"
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
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(delimited, zel_fuzz::FuzzDelimited)
