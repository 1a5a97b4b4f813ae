#include "table_file.h"

#include <cctype>
#include <sstream>
#include <string_view>

#include "asc_table.h"
#include "csv_table.h"
#include "failure.h"
#include "file_names.h"
#include "line_reader.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/base/ascheader.h"

namespace tool {
namespace {

constexpr std::size_t kHeaderLines = 4;
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

/// "2   ;nr. of columns", which no CSV file has in its second line.
bool isCountWithLegend(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && std::isdigit(static_cast<unsigned char>(line[i])) != 0) ++i;
  const std::size_t legend = line.find_first_not_of(" \t", i);
  return i > 0 && legend > i && legend != std::string_view::npos && line[legend] == ';';
}

bool isAsc(const std::string& fileName, const std::vector<std::string>& lines) {
  std::stringstream text;
  for (const std::string& line : lines) text << line << '\n';
  zel::TASCHeader header;
  return zel::ReadHeaderOfASC(text, header) == 0 ||
         (lines.size() > 1 && isCountWithLegend(lines[1])) || hasExtension(fileName, ".asc");
}

std::unique_ptr<zel::TMatrix> matrixOf(ColumnValues& columns, int rows) {
  auto matrix = std::make_unique<zel::TMatrix>();
  matrix->Resize(static_cast<int>(columns.size()), rows);
  int c = 0;
  for (std::vector<double>& values : columns) {
    ++c;
    int r = 0;
    for (const double value : values) matrix->SetVal(c, ++r, value);
    std::vector<double>().swap(values);
  }
  return matrix;
}

}  // namespace

std::string Column::title() const {
  return name.empty() ? "column " + std::to_string(number) : name;
}

Table readTable(const std::string& fileName, const std::string& labelColumn) {
  LineReader file(fileName);
  Table table;
  table.source = file.name();
  std::vector<std::string> lines;
  std::string_view line;
  while (lines.size() < kHeaderLines && file.next(line)) lines.emplace_back(line);
  if (lines.empty()) file.fail("is empty");
  if (lines[0].starts_with(kByteOrderMark)) lines[0].erase(0, kByteOrderMark.size());
  const bool asc = isAsc(fileName, lines);
  file.putBack(std::move(lines));
  ColumnValues columns = asc ? readAscTable(file, table) : readCsvTable(file, table, labelColumn);
  if (columns.empty()) {
    std::string reason = table.source + " has no column of numbers";
    if (!table.others.empty()) reason = whyNotNumbers(table, table.others[0]);
    throw Failure(reason);
  }
  table.values = matrixOf(columns, table.rows);
  return table;
}

std::string whyNotNumbers(const Table& table, const OtherColumn& column) {
  return table.source + ", line " + std::to_string(column.line) + ", column " +
         (column.name.empty() ? std::to_string(column.number) : inQuotes(column.name)) + ": " +
         whyNotANumber(column.word, "a missing value is left empty or written NA, NAN or ###");
}

std::string headingText(const Table& table, std::size_t variables) {
  std::string text = table.source + ": " + counted(static_cast<long long>(variables), "variable") +
                     ", " + counted(table.rows, "row") + '\n';
  if (!table.comment.empty()) text += printable(table.comment) + '\n';
  return text + '\n';
}

std::string pictureTitle(const Table& table) {
  if (!table.comment.empty()) return table.comment;
  return table.source.substr(table.source.find_last_of('/') + 1);
}

const char* const kFileHelp = R"(FILE holds columns of numbers as CSV or ASC text.

CSV: a header line with the names of the columns, then a row per line.
  site,depth,"salinity, psu"
  A,2.5,34.9
  B,NA,35.1
Commas, semicolons or tabs separate, whichever the header line has most of.
Empty cells, NA, NAN and ### are missing values. A column of text is left out,
but a first column of texts that all differ, or without a name, names the rows.

ASC: four header lines, then a row per line, separated by blanks or tabs.
  any comment
  1 ;nr. of columns
  3 ;nr. of rows
  FALSE FALSE FALSE FALSE ;row attributes, column names, row names, nominal
  12.5
  NAN
  1e3
If the flags say so, the names of the columns follow the header, and each row
starts with an attribute (a number) and a name (in double quotes). NAN and ###
stand for a missing value. Texts after ";" in the header are ignored, and so is
what follows the rows from a line with ";" on.

The content tells which it is: a file is ASC if its lines 2 to 4 are such
counts and flags, or line 2 a count with a legend; a file that is neither is
taken by its name, ASC if that ends in .asc, otherwise CSV.
)";

}  // namespace tool
