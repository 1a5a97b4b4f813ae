#include "asc_column.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string_view>
#include <system_error>

#include "line_reader.h"
#include "utf8.h"
#include "zel/base/ascheader.h"
#include "zel/base/numbertext.h"
#include "zel/base/textreading.h"

namespace tool {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::int64_t kRowsLine = 3;  // of the header

struct Header {
  int columns = 0;
  int rows = 0;
  bool rowAttributes = false;
  bool columnNames = false;
  bool rowNames = false;
  bool nominal = false;
};

void skipBlanks(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
}

std::string_view takeWord(std::string_view& line) {
  skipBlanks(line);
  const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
  line.remove_prefix(word.size());
  return word;
}

/// Takes a quoted or bare name from the start of a line.
/// @return false if there is none, or it is not complete
bool takeName(std::string_view& line, std::string& name) {
  auto state = zel::qnsStart;
  for (; !line.empty(); line.remove_prefix(1)) {
    const char c = line.front();
    if (state == zel::qnsClosed && c != '"') return true;
    if (state == zel::qnsBare && kBlanks.find(c) != std::string_view::npos) return true;
    zel::ParseQuotedName(c, '"', name, state);
  }
  return state == zel::qnsClosed || state == zel::qnsBare;
}

bool nextFilledLine(LineReader& file, std::string_view& line) {
  while (file.next(line)) {
    if (line.find_first_not_of(kBlanks) != std::string_view::npos) return true;
  }
  return false;
}

Header readHeader(LineReader& file, std::string& comment) {
  std::vector<std::string> lines;
  std::string_view line;
  while (lines.size() < 4 && file.next(line)) lines.emplace_back(line);
  if (lines.empty()) file.fail("is empty");
  std::stringstream text;
  for (const auto& each : lines) text << each << '\n';

  Header header;
  const int bad =
      zel::ReadHeaderOfASC(text, comment, header.columns, header.rows, header.rowAttributes,
                           header.columnNames, header.rowNames, header.nominal);
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
  if (header.columns != 1) {
    file.failInLine(2, "there are " + std::to_string(header.columns) +
                           " columns, and this command takes a file of one");
  }
  return header;
}

std::string readColumnName(LineReader& file) {
  std::string name;
  std::string_view line;
  if (!nextFilledLine(file, line)) {
    file.failInLine(file.lineNumber() + 1,
                    "the name of the column should be here, but the file ends before it");
  }
  if (!takeName(line, name)) {
    file.failInLine(file.lineNumber(), "the name of the column has no closing quotation mark");
  }
  skipBlanks(line);
  if (!line.empty()) {
    file.failInLine(file.lineNumber(), "there is more than the name of one column");
  }
  return name;
}

std::string whyNotANumber(std::string_view word) {
  double ignored = 0;
  const std::string_view digits = word.starts_with('+') ? word.substr(1) : word;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), ignored);
  if (error == std::errc::result_out_of_range && end == digits.data() + digits.size()) {
    return inQuotes(word) + " is too large for a double";
  }
  std::string pointed(word);
  std::replace(pointed.begin(), pointed.end(), ',', '.');
  if (zel::ParseNumber(pointed)) {
    return inQuotes(word) + " is not a number: the decimal separator is a point";
  }
  return inQuotes(word) + " is not a number (a missing value is written NAN or ###)";
}

void readRow(const LineReader& file, const Header& header, std::string_view line, int row,
             AscColumn& column) {
  const auto bad = [&](std::string_view reason) { file.failInLine(file.lineNumber(), reason); };
  if (header.rowAttributes) {
    const std::string_view word = takeWord(line);
    if (!zel::ParseNumber(word)) bad("the row attribute " + whyNotANumber(word));
  }
  if (header.rowNames) {
    std::string& name = column.rowNames.emplace_back();
    if (!takeName(line, name))
      bad("the name of the row is missing or has no closing quotation mark");
  }
  const std::string_view word = takeWord(line);
  if (word.empty()) bad("the row has no value");
  if (word == "NAN" || word == "###") {
    column.missingRows.push_back(row);
  } else if (const auto value = zel::ParseNumber(word)) {
    column.values.push_back(*value);
  } else {
    bad(whyNotANumber(word));
  }
  skipBlanks(line);
  if (!line.empty()) bad("there is more than one value: " + inQuotes(line) + " is left over");
}

}  // namespace

int AscColumn::rowOf(int position) const {
  // The j-th missing row (from 0) has missingRows[j] - 1 - j values before it.
  std::size_t low = 0;
  std::size_t high = missingRows.size();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (missingRows[middle] - 1 - static_cast<int>(middle) < position) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return position + static_cast<int>(low);
}

AscColumn readAscColumn(const std::string& fileName) {
  LineReader file(fileName);
  AscColumn column;
  column.source = file.name();
  const Header header = readHeader(file, column.comment);
  if (column.comment.starts_with("\xef\xbb\xbf")) column.comment.erase(0, 3);  // byte order mark
  if (header.columnNames) column.name = readColumnName(file);

  const std::string announced = " rows announced in line " + std::to_string(kRowsLine);
  int row = 0;
  std::string_view line;
  while (nextFilledLine(file, line)) {
    if (row == header.rows) {
      file.failInLine(file.lineNumber(),
                      "there are more than the " + std::to_string(header.rows) + announced);
    }
    readRow(file, header, line, ++row, column);
  }
  if (row < header.rows) {
    file.failInLine(file.lineNumber(), "the file ends here, after " + std::to_string(row) +
                                           " of the " + std::to_string(header.rows) + announced);
  }
  return column;
}

}  // namespace tool
