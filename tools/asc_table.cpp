#include "asc_table.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string_view>
#include <utility>

#include "number_text.h"
#include "utf8.h"
#include "zel/base/ascheader.h"
#include "zel/base/numbertext.h"
#include "zel/base/textreading.h"

namespace tool {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::int64_t kRowsLine = 3;  // of the header

void skipBlanks(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
}

std::string_view takeWord(std::string_view& line) {
  skipBlanks(line);
  const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
  line.remove_prefix(word.size());
  return word;
}

bool nextFilledLine(LineReader& file, std::string_view& line) {
  while (file.next(line)) {
    if (line.find_first_not_of(kBlanks) != std::string_view::npos) return true;
  }
  return false;
}

zel::TASCHeader readHeader(LineReader& file) {
  std::vector<std::string> lines;
  std::string_view line;
  while (lines.size() < 4 && file.next(line)) lines.emplace_back(line);
  std::stringstream text;
  for (const auto& each : lines) text << each << '\n';

  zel::TASCHeader header;
  const int bad = zel::ReadHeaderOfASC(text, header);
  if (bad != 0) {
    const char* expected[] = {"the comment", "the number of columns", "the number of rows",
                              "the flags (four words TRUE or FALSE)"};
    const auto k = static_cast<std::size_t>(std::clamp(bad, 1, 4));
    std::string reason = std::string(expected[k - 1]) + " should be here, ";
    if (k > lines.size()) {
      reason += "but the file ends before it";
    } else {
      reason += "not " + inQuotes(lines[k - 1].substr(0, lines[k - 1].find_first_of("\t;"))) +
                " (zel describe --help shows the format)";
    }
    file.failInLine(static_cast<std::int64_t>(k), reason);
  }
  if (header.NCols == 0) file.failInLine(2, "there are no columns");
  return header;
}

/// Reads the names of the columns, which may take several lines.
std::vector<std::string> readColumnNames(LineReader& file, int count) {
  std::vector<std::string> names;
  std::string_view line;
  while (std::cmp_less(names.size(), count)) {
    const std::string which = "the name of column " + std::to_string(names.size() + 1);
    if (skipBlanks(line); line.empty() && !nextFilledLine(file, line)) {
      file.failInLine(file.lineNumber() + 1,
                      which + " should be here, but the file ends before it");
    }
    if (!zel::ReadQuotedName(line, '"', names.emplace_back())) {
      file.failInLine(file.lineNumber(), which + " has no closing quotation mark");
    }
  }
  if (skipBlanks(line); !line.empty()) {
    file.failInLine(file.lineNumber(), "there are more names than " + counted(count, "column"));
  }
  return names;
}

void readRow(const LineReader& file, const zel::TASCHeader& header, std::string_view line,
             Table& table, ColumnValues& values) {
  const auto bad = [&](std::string_view reason) { file.failInLine(file.lineNumber(), reason); };
  constexpr std::string_view kMissing = "a missing value is written NAN or ###";
  if (header.RowAttr) {
    const std::string_view word = takeWord(line);
    if (!zel::ParseNumber(word)) bad("the row attribute " + whyNotANumber(word, kMissing));
  }
  if (header.RowNames && !zel::ReadQuotedName(line, '"', table.rowNames.emplace_back())) {
    bad("the name of the row is missing or has no closing quotation mark");
  }
  for (std::size_t c = 0; std::cmp_less(c, header.NCols); ++c) {
    const std::string_view word = takeWord(line);
    if (word.empty()) {
      bad(header.NCols == 1 ? "the row has no value"
                            : "the row has " + std::to_string(c) + " of " +
                                  std::to_string(header.NCols) + " values");
    }
    // The first row makes the columns: their announced number is only a claim.
    if (c == values.size()) values.emplace_back();
    if (c == table.columns.size()) table.columns.emplace_back();
    const auto value = zel::ParseNumber(word);
    values[c].push_back(value.value_or(0));
    if (value) continue;
    if (word != "NAN" && word != "###") bad(whyNotANumber(word, kMissing));
    table.columns[c].missingRows.push_back(table.rows);
  }
  skipBlanks(line);
  if (!line.empty()) {
    const std::string tooMany = header.NCols == 1
                                    ? "is more than one value"
                                    : "are more than " + std::to_string(header.NCols) + " values";
    bad("there " + tooMany + ": " + inQuotes(line) + " is left over");
  }
}

}  // namespace

ColumnValues readAscTable(LineReader& file, Table& table) {
  zel::TASCHeader header = readHeader(file);
  table.comment = std::move(header.Comment);
  ColumnValues values;
  if (header.ColNames) {
    for (std::string& name : readColumnNames(file, header.NCols)) {
      table.columns.emplace_back().name = std::move(name);
    }
    values.resize(table.columns.size());
  }
  const std::string announced = " rows announced in line " + std::to_string(kRowsLine);
  std::string_view line;
  while (nextFilledLine(file, line)) {
    if (table.rows == header.NRows) {
      // What a data table says of itself beside its rows.
      if (line.starts_with(';')) break;
      file.failInLine(file.lineNumber(),
                      "there are more than the " + std::to_string(header.NRows) + announced);
    }
    ++table.rows;
    readRow(file, header, line, table, values);
  }
  if (table.rows < header.NRows) {
    file.failInLine(file.lineNumber(), "the file ends here, after " + std::to_string(table.rows) +
                                           " of the " + std::to_string(header.NRows) + announced);
  }
  if (values.empty()) {
    if (header.NCols > 1) file.failInLine(kRowsLine, "there are neither rows nor names of columns");
    table.columns.emplace_back();
    values.emplace_back();
  }
  int number = 0;
  for (Column& column : table.columns) column.number = ++number;
  return values;
}

}  // namespace tool
