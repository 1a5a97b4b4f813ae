#include "table_file.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>
#include <streambuf>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "asc_check.h"
#include "data_text.h"
#include "failure.h"
#include "file_names.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/base/ascheader.h"
#include "zel/base/numbertext.h"

namespace tool {
namespace {

/// Reads a text where it is.
class TextStream : private std::streambuf, public std::istream {
 public:
  explicit TextStream(std::string& text) : std::istream(this) {
    setg(text.data(), text.data(), text.data() + text.size());
  }
};

/// "2   ;nr. of columns", which no CSV file has in its second line.
bool isCountWithLegend(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && std::isdigit(static_cast<unsigned char>(line[i])) != 0) ++i;
  const std::size_t legend = line.find_first_not_of(" \t", i);
  return i > 0 && legend > i && legend != std::string_view::npos && line[legend] == ';';
}

bool isAsc(const std::string& fileName, const std::string& content) {
  std::string head = content.substr(0, std::size_t{1} << 20);
  zel::TASCHeader header;
  TextStream stream(head);
  if (zel::ReadHeaderOfASC(stream, header) == 0 || hasExtension(fileName, ".asc")) return true;
  const std::size_t first = head.find('\n');
  return first != std::string::npos && isCountWithLegend(std::string_view(head).substr(first + 1));
}

bool isXml(const std::string& fileName, const std::string& content) {
  std::string_view text = content;
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  return text.starts_with("<?xml") || text.starts_with("<datatable") ||
         hasExtension(fileName, ".xml");
}

/// A sentence on a file: "x.csv, line 3: ..." or "x.csv: ...".
std::string ofFile(const std::string& source, const std::string& message) {
  return source + (message.starts_with("line ") ? ", " : ": ") + printable(message, 300);
}

/// The line with the names of the columns in a CSV file.
struct HeaderLine {
  int number = 1;
  std::string_view text;

  explicit HeaderLine(std::string_view content) {
    for (;; ++number) {
      const std::size_t end = std::min(content.find_first_of("\r\n"), content.size());
      text = content.substr(0, end);
      const bool isComment = number == 1 && text.starts_with("# ");
      if (!isComment && text.find_first_not_of(" \t") != std::string_view::npos) return;
      if (end == content.size()) return;
      content.remove_prefix(end + (content.substr(end).starts_with("\r\n") ? 2 : 1));
    }
  }
};

/// Reads a CSV file and finds out whether its first column names the rows.
class CsvReader {
 public:
  CsvReader(DataText& text, Table& table, bool isDecimalComma)
      : text_(text), header_(text.content), table_(table), isDecimalComma_(isDecimalComma) {}

  void read() {
    table_.data = std::make_unique<zel::TDataTable>();
    zel::TCSVImport import;
    const int error = import_(import, false);
    // As a file has one name less than columns if the rows have names.
    const bool isNameless = error == kWidthsDiffer && import_(lone_, true) == 0 && isPlausible();
    if (error != 0 && !isNameless) throw Failure(ofFile(text_.source, import.Message));
    requireNames();
    if (isNameless) {
      import = std::move(lone_);
      table_.hasRowNames = true;
      table_.rowNameColumn = 1;
    } else {
      takeRowNames(import);
    }
    addColumns(import);
  }

 private:
  static constexpr int kWidthsDiffer = -3;

  int import_(zel::TCSVImport& import, bool hasRowNames) {
    TextStream stream(text_.content);
    import.SkipLongTexts = true;
    import.IncludeRowHeaders = hasRowNames;
    if (isDecimalComma_) {
      import.DecSep = zel::dpsComma;
      // What separates a header of one name is not to be seen; it is no comma then.
      if (header_.text.find_first_of(",;\t") == std::string_view::npos) {
        import.Delimiter = zel::cdSemicolon;
      }
    }
    return table_.data->ImportFromCSV(stream, import);
  }

  /// "1,5" below a single name is a number with a decimal comma, not the value 5 of the row "1".
  [[nodiscard]] bool isPlausible() const {
    return table_.data->NrOfColumns() > 1 || !zel::ParseNumber(table_.data->GetRowName(1).view());
  }

  void requireNames() const {
    if (header_.text.find('"') != std::string_view::npos) return;
    for (int c = 1; c <= table_.data->NrOfColumns(); ++c) {
      if (!zel::ParseNumber(table_.data->GetColName(c).view())) return;
    }
    throw Failure(text_.source + ", line " + std::to_string(header_.number) +
                  ": the names of the columns should be here, not numbers");
  }

  /// Reads the file again if its first column holds names of rows: texts that all differ, or
  /// whatever differs in a column without a name.
  void takeRowNames(zel::TCSVImport& import) {
    if (table_.data->NrOfColumns() == 1) return;
    const std::string title(table_.data->GetColName(1).view());
    const auto texts = std::ranges::find(import.Texts, 1, &zel::TCSVImport::TTexts::Column);
    const bool isText = texts != import.Texts.end() && texts->Words > texts->Numbers;
    if (!isText && !title.empty()) return;
    if (!mayAllDiffer()) return;
    zel::TCSVImport again;
    auto before = std::exchange(table_.data, std::make_unique<zel::TDataTable>());
    if (import_(again, true) != 0 || !namesDiffer()) {
      table_.data = std::move(before);
      return;
    }
    import = std::move(again);
    table_.hasRowNames = true;
    table_.rowNameColumn = 1;
    table_.rowNameTitle = title;
  }

  /// No category of the first column has two cells.
  [[nodiscard]] bool mayAllDiffer() const {
    if (table_.data->GetMScaleType(1) != zel::stNominal) return true;
    zel::TIntArray counts;
    table_.data->ScanForCatValues(1, 0, 0, counts);
    return std::ranges::all_of(counts, [](int n) { return n <= 1; });
  }

  [[nodiscard]] bool namesDiffer() const {
    std::unordered_set<std::string> names;
    for (int r = 1; r <= table_.data->NrOfRows(); ++r) {
      if (!names.emplace(table_.data->GetRowName(r).view()).second) return false;
    }
    return true;
  }

  void addColumns(const zel::TCSVImport& import) {
    int number = table_.rowNameColumn;
    // A column with row attributes comes before the data.
    constexpr std::string_view kAttribute = "(attribute)";
    if (header_.text.find(kAttribute) != std::string_view::npos &&
        table_.data->FindColIndex(kAttribute) == 0) {
      ++number;
    }
    for (int c = 1; c <= table_.data->NrOfColumns(); ++c) {
      Column& column = table_.columns.emplace_back();
      column.name = table_.data->GetColName(c).view();
      column.number = ++number;
    }
    for (const zel::TCSVImport::TTexts& texts : import.Texts) {
      Column& column = table_.columns[static_cast<std::size_t>(texts.Column - 1)];
      column.kind = texts.Words > texts.Numbers ? Column::texts : Column::mixed;
      column.line = texts.Line;
      column.word = texts.Word;
      column.isCut = texts.IsCut;
      column.isSkipped = texts.IsSkipped;
    }
  }

  DataText& text_;
  HeaderLine header_;
  Table& table_;
  bool isDecimalComma_;
  zel::TCSVImport lone_;  // of a file whose row names have no heading
};

/// What stands for a name where there is none.
std::string defaultName(char what, int number) {
  return std::string(1, what).append("-").append(std::to_string(number));
}

/// Columns and row names of a file whose form says what they are.
void addColumns(Table& table) {
  for (int c = 1; c <= table.data->NrOfColumns(); ++c) {
    Column& column = table.columns.emplace_back();
    column.name = table.data->GetColName(c).view();
    if (column.name == defaultName('C', c)) column.name.clear();
    column.number = c;
    const zel::TMScaleType scale = table.data->GetMScaleType(c);
    if (scale == zel::stNominal || scale == zel::stOrdinal) column.kind = Column::texts;
  }
  for (int r = 1; r <= table.rows() && !table.hasRowNames; ++r) {
    const zel::TDTNameStr name = table.data->GetRowName(r);
    table.hasRowNames = !name.empty() && name != defaultName('R', r);
  }
}

void readAsc(DataText& text, Table& table) {
  requireAsc(text);
  TextStream stream(text.content);
  zel::TStr2DArray custom;
  std::string message;
  table.data = std::make_unique<zel::TDataTable>();
  if (table.data->ImportASC(stream, custom, message) != 0) {
    throw Failure(ofFile(text.source, message));
  }
  table.hasCustomData = custom.Length(0) > 0;
  addColumns(table);
}

void readXml(DataText& text, Table& table) {
  TextStream stream(text.content);
  std::string message;
  table.data = std::make_unique<zel::TDataTable>();
  if (!table.data->ReadFromXMLStream(stream, "", message)) {
    throw Failure(ofFile(text.source, message));
  }
  addColumns(table);
}

/// @param isCsv  a column with neither a name nor a value may be a delimiter too many
void findMissingCells(Table& table, bool isCsv) {
  for (std::size_t c = 0; c < table.columns.size(); ++c) {
    Column& column = table.columns[c];
    if (!column.isNumeric()) continue;
    for (int r = 1; r <= table.rows(); ++r) {
      if (table.isMissing(c, r)) column.missingRows.push_back(r);
    }
    const bool isEmpty = std::cmp_equal(column.missingRows.size(), table.rows());
    if (isCsv && isEmpty && column.name.empty()) column.kind = Column::nothing;
  }
}

}  // namespace

std::string Column::title() const {
  return name.empty() ? "column " + std::to_string(number) : name;
}

std::string Table::rowName(int row) const {
  return hasRowNames ? std::string(data->GetRowName(row).view()) : std::string();
}

bool Table::isMissing(std::size_t c, int row) const {
  const int column = static_cast<int>(c) + 1;
  return !data->GetIsNumber(column, row) || std::isnan(data->NumericData->GetVal(column, row));
}

std::vector<std::size_t> Table::numericColumns() const {
  std::vector<std::size_t> positions;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (columns[c].isNumeric()) positions.push_back(c);
  }
  return positions;
}

Table readTable(const std::string& fileName, bool isDecimalComma) {
  DataText text = readDataText(fileName);
  Table table;
  table.source = text.source;
  if (text.content.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw Failure(text.source + " holds nothing but blanks");
  }
  bool isCsv = false;
  if (isXml(fileName, text.content)) {
    readXml(text, table);
  } else if (isAsc(fileName, text.content)) {
    readAsc(text, table);
  } else {
    CsvReader(text, table, isDecimalComma).read();
    isCsv = true;
  }
  findMissingCells(table, isCsv);
  return table;
}

void requireNumbers(const Table& table) {
  if (!table.numericColumns().empty()) return;
  for (const Column& column : table.columns) {
    if (column.kind != Column::nothing) throw Failure(whyNotNumbers(table, column));
  }
  throw Failure(table.source + " has no column of numbers");
}

std::string placeOf(const Table& table, const Column& column, bool isWithLine) {
  return table.source + (isWithLine ? ", line " + std::to_string(column.line) : "") + ", column " +
         (column.name.empty() ? std::to_string(column.number) : inQuotes(column.name));
}

std::string whyNotNumbers(const Table& table, const Column& column) {
  if (column.line == 0) return placeOf(table, column) + ": it holds categories, not numbers";
  return placeOf(table, column, true) + ": " +
         whyNotANumber(column.word, "a missing value is left empty or written NA, NAN or ###");
}

std::string headingText(const Table& table, std::size_t variables) {
  std::string text = table.source + ": " + counted(static_cast<long long>(variables), "variable") +
                     ", " + counted(table.rows(), "row") + '\n';
  if (!table.comment().empty()) text += printable(table.comment()) + '\n';
  return text + '\n';
}

std::string pictureTitle(const Table& table) {
  if (!table.comment().empty()) return table.comment();
  return table.source.substr(table.source.find_last_of('/') + 1);
}

const char* const kFileHelp = R"(FILE holds a table as CSV, ASC or XML text.

CSV: a header line with the names of the columns, then a row per line.
  site,depth,"salinity, psu"
  A,2.5,34.9
  B,NA,35.1
Commas, semicolons or tabs separate, whichever the header line has most of.
Empty cells, NA, NAN and ### are missing values. A column of texts holds
categories; calculations leave it out. A first column of texts that all differ,
or without a name (a header line may lack it, too), names the rows. A first line
that begins with "# " is a comment.

ASC: four header lines, then a row per line, separated by blanks or tabs.
  any comment
  1 ;nr. of columns
  3 ;nr. of rows
  FALSE FALSE FALSE FALSE ;row attributes, column names, row names, nominal
  12.5
  NAN
  1e3
If the flags say so, the names of the columns follow the header, and each row
starts with an attribute (an integer) and a name (in double quotes). NAN and ###
stand for a missing value. Texts after ";" in the header are ignored. Lines from
";more" on, behind the rows, hold what else belongs to a table.

XML: the first element "datatable", as zel convert writes it.

The content tells which it is: a file is XML if it begins so, ASC if its lines
2 to 4 are such counts and flags, or line 2 a count with a legend; a file that is
neither is taken by its name: .xml, .asc, otherwise CSV.
)";

}  // namespace tool
