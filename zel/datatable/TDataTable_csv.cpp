#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>

#include "zel/base/numbertext.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/wholefile.h"
#include "zel/datatable/delimited_impl.h"
#include "zel/datatable/guards_impl.h"
#include "zel/foundation/numberscanners.h"

namespace zel {

using detail::at;
using detail::DelimitedText;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kCommentMark = "# ";
constexpr std::string_view kAttribute = "(attribute)";
constexpr std::uint8_t kEmpty = 2;
constexpr std::size_t kMostCategories = 150;

char characterOf(TCSVDelimiters delimiter, std::string_view text) {
  switch (delimiter) {
    case cdSemicolon:
      return ';';
    case cdTab:
      return '\t';
    case cdDetect:
      return detail::detectDelimiter(text);
    default:
      return ',';
  }
}

/// What keeps a file from being read.
struct TCsvError {
  int code;
  std::string text;
};

[[noreturn]] void fail(int code, std::string text) { throw TCsvError{code, std::move(text)}; }
[[noreturn]] void failInLine(int code, const DelimitedText& text, std::string reason) {
  fail(code, "line " + std::to_string(text.line()) + ": " + std::move(reason));
}

bool isMissing(std::string_view cell) {
  return cell.empty() || cell == "NA" || cell == "###" || EqualIgnoringCase(cell, "NAN");
}

std::optional<double> numberIn(std::string_view cell, TDecPSep separator) {
  std::size_t pos = 0;
  const bool mayBeWord = !cell.empty() && (cell.back() | 0x20) >= 'f';  // "inf", "infinity"
  const double x = ScanFPNum(cell, mayBeWord, separator, pos);
  if (pos != cell.size() || pos == 0 || std::isnan(x)) return std::nullopt;
  if (std::isinf(x) && !mayBeWord) return std::nullopt;  // too large
  return x;
}

/// A column of a file.
struct TCsvColumn {
  std::string name;
  std::vector<double> values;
  std::vector<std::uint8_t> states;
  bool isText = false;
};

/// Identifiers of the texts of a column, in the order in which they turn up.
class TCategories {
 public:
  /// @return number from 1; 0 if there are too many
  int numberOf(std::string_view text) {
    const auto known = FNumbers.find(std::string(text));
    if (known != FNumbers.end()) return known->second;
    if (FIds.size() == kMostCategories) return 0;
    FIds.push_back(uniqueId(text));
    return FNumbers[std::string(text)] = static_cast<int>(FIds.size());
  }
  [[nodiscard]] const std::vector<TNominalIDStr>& ids() const { return FIds; }

 private:
  [[nodiscard]] TNominalIDStr uniqueId(std::string_view text) const {
    TNominalIDStr id(text);
    for (int k = 2; std::ranges::count(FIds, id) > 0; ++k) {
      const std::string tail = std::string(1, '~').append(std::to_string(k));
      std::string shorter(text.substr(0, TNominalIDStr::max_size() - tail.size()));
      id = TNominalIDStr(shorter.append(tail));
    }
    return id;
  }

  std::unordered_map<std::string, int> FNumbers;
  std::vector<TNominalIDStr> FIds;
};

/// The content of a file before it becomes a table.
struct TCsvFile {
  std::string comment;
  std::vector<TCsvColumn> columns;
  std::vector<TDTNameStr> rowNames;
  std::vector<int> rowAttributes;
  std::size_t rows = 0;
};

class TCsvReader {
 public:
  TCsvReader(std::string_view text, char delimiter, bool hasHeader, bool hasRowNames,
             TDecPSep separator)
      : FText(text),
        FDelimiter(delimiter),
        FHasHeader(hasHeader),
        FHasRowNames(hasRowNames),
        FSeparator(separator) {}

  TCsvFile read() {
    readNumbers();
    readTexts();
    FFile.columns.erase(FFile.columns.begin(),
                        FFile.columns.begin() + static_cast<std::ptrdiff_t>(FFirst));
    return std::move(FFile);
  }
  /// Sets the identifiers of the text columns.
  void nameCategories(TDataTable& table) const {
    for (const auto& [column, categories] : FCategories) {
      const int c = static_cast<int>(column - FFirst) + 1;
      table.SetMScaleType(c, stNominal);
      for (std::size_t k = 0; k < categories.ids().size(); ++k) {
        table.SetNominalID(c, static_cast<int>(k) + 1, categories.ids()[k]);
      }
    }
  }

 private:
  void readHeader(DelimitedText& text) {
    if (!text.nextRecord()) fail(-2, "there is nothing but blanks");
    if (!FHasHeader) return;
    FNames.clear();
    std::string_view cell;
    while (text.nextCell(cell)) FNames.emplace_back(cell);
    failIfBroken(text);
    if (!text.nextRecord()) fail(-2, "there are no rows");
  }

  static void failIfBroken(const DelimitedText& text) {
    if (text.isBroken()) {
      failInLine(-4, text, "a quotation mark is not closed, or there is more after a closing one");
    }
  }

  /// Takes the widths of header and first row together.
  void makeColumns(const DelimitedText& text, std::size_t width) {
    FFile.columns.resize(width);
    std::size_t first = 0;
    if (FHasHeader) {
      if (FHasRowNames && FNames.size() + 1 == width) first = 1;
      if (FNames.size() + first != width) failWidth(text, width, FNames.size());
      for (std::size_t k = first; k < width; ++k) FFile.columns[k].name = FNames[k - first];
    }
    FFirst = FHasRowNames ? 1 : 0;
    FHasAttributes = FHasHeader && width > FFirst && FFile.columns[FFirst].name == kAttribute;
    if (FHasAttributes) ++FFirst;
    if (FFirst >= width) fail(-2, "there are no columns of data");
  }

  [[noreturn]] static void failWidth(const DelimitedText& text, std::size_t width,
                                     std::size_t wanted) {
    failInLine(-3, text,
               "it has " + std::to_string(width) + " cells, not " + std::to_string(wanted) +
                   " as the first line");
  }

  void readNumbers() {
    DelimitedText text(FText, FDelimiter);
    readHeader(text);
    std::vector<std::string> firstRow;  // until the width is known
    do {
      std::size_t k = 0;
      std::string_view cell;
      while (text.nextCell(cell)) {
        if (FFile.rows == 0) {
          firstRow.emplace_back(cell);
          FFirstQuoted.push_back(text.isQuoted() ? 1 : 0);
        } else if (k < FFile.columns.size()) {
          add(k, cell, text.isQuoted(), text);
        }
        ++k;
      }
      failIfBroken(text);
      if (FFile.rows == 0) {
        makeColumns(text, k);
        for (std::size_t c = 0; c < k; ++c) add(c, firstRow[c], FFirstQuoted[c] != 0, text);
      } else if (k != FFile.columns.size()) {
        failWidth(text, k, FFile.columns.size());
      }
      if (++FFile.rows > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        fail(-3, "there are too many rows");
      }
    } while (text.nextRecord());
  }

  void add(std::size_t k, std::string_view cell, bool isQuoted, const DelimitedText& text) {
    if (FHasRowNames && k == 0) {
      FFile.rowNames.emplace_back(cell);
      return;
    }
    if (FHasAttributes && k + 1 == FFirst) {
      int attribute = 0;
      const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), attribute);
      if (error != std::errc() || end != cell.data() + cell.size()) {
        failInLine(-6, text, "the row attribute is not an integer");
      }
      FFile.rowAttributes.push_back(attribute);
      return;
    }
    TCsvColumn& column = FFile.columns[k];
    std::uint8_t state = 0;
    double value = 0;
    if (!column.isText) {
      if (const auto number = numberIn(cell, FSeparator)) {
        value = *number;
      } else if (!isQuoted && isMissing(cell)) {
        state = kEmpty;
      } else {
        column.isText = true;
      }
    }
    column.values.push_back(value);
    column.states.push_back(state);
  }

  /// Goes over the text again for the columns that are not of numbers.
  void readTexts() {
    for (std::size_t k = FFirst; k < FFile.columns.size(); ++k) {
      if (FFile.columns[k].isText) FCategories.try_emplace(k);
    }
    if (FCategories.empty()) return;
    DelimitedText text(FText, FDelimiter);
    readHeader(text);
    for (std::size_t row = 0; row < FFile.rows; ++row) {
      std::string_view cell;
      for (std::size_t k = 0; text.nextCell(cell); ++k) {
        const auto categories = FCategories.find(k);
        if (categories == FCategories.end()) continue;
        TCsvColumn& column = FFile.columns[k];
        const bool isNone = !text.isQuoted() && isMissing(cell);
        column.states[row] = isNone ? kEmpty : std::uint8_t{0};
        const int number = isNone ? 0 : categories->second.numberOf(cell);
        column.values[row] = number;
        if (!isNone && number == 0) {
          const std::string name = column.name.empty() ? std::to_string(k + 1) : column.name;
          fail(-5, "the column " + name + " has more than 150 different texts");
        }
      }
      text.nextRecord();
    }
  }

  std::string_view FText;
  char FDelimiter;
  bool FHasHeader;
  bool FHasRowNames;
  bool FHasAttributes = false;
  TDecPSep FSeparator;
  std::vector<std::string> FNames;
  std::vector<std::uint8_t> FFirstQuoted;
  std::size_t FFirst = 0;  ///< first column of data
  TCsvFile FFile;
  std::unordered_map<std::size_t, TCategories> FCategories;
};

/// Takes the comment off the front of a text.
std::string takeComment(std::string_view& text) {
  if (!text.starts_with(kCommentMark)) return {};
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  // The line end stays, so that lines are counted right.
  text.remove_prefix(line.size());
  return std::string(line.substr(kCommentMark.size()));
}

std::string numberText(double x, int precision, TDecPSep separator) {
  if (std::isinf(x)) return x > 0 ? "INF" : "-INF";
  std::string text;
  if (precision >= 0) {
    text = strff(x, 0, precision);
  } else {
    char digits[32];
    text.assign(digits, std::to_chars(digits, digits + sizeof digits, x).ptr);
  }
  return separator == dpsComma ? ReplaceCharInString(text, '.', ',') : text;
}

}  // namespace

int TDataTable::ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter,
                              bool IncludeColHeaders, bool IncludeRowHeaders, TDecPSep DecSep,
                              std::string& Message) {
  const auto content = ReadWholeFile(FName);
  if (!content) {
    Message = "the file cannot be read";
    return -1;
  }
  try {
    Guarded([&] {
      std::string_view text = *content;
      if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
      TDataTable read;
      read.FComment = takeComment(text);
      TCsvReader reader(text, characterOf(Delimiter, text), IncludeColHeaders, IncludeRowHeaders,
                        DecSep);
      TCsvFile file = reader.read();
      read.Resize(static_cast<int>(file.columns.size()), static_cast<int>(file.rows));
      for (int c = 1; c <= read.FNrOfCols; ++c) {
        TCsvColumn& column = file.columns[at(c)];
        std::copy(column.values.begin(), column.values.end(), read.Values(c));
        std::copy(column.states.begin(), column.states.end(), read.States(c));
        column.values = {};
        if (IncludeColHeaders) read.FColName[at(c)] = TDTNameStr(column.name);
      }
      std::copy(file.rowNames.begin(), file.rowNames.end(), read.FRowName.begin());
      std::copy(file.rowAttributes.begin(), file.rowAttributes.end(), read.FRowAtt.begin());
      reader.nameCategories(read);
      CopyContentsFrom(&read);
    });
  } catch (const TCsvError& error) {
    Message = error.text;
    return error.code;
  }
  return 0;
}

int TDataTable::ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter,
                              bool IncludeColHeaders, bool IncludeRowHeaders, TDecPSep DecSep) {
  std::string ignored;
  return ImportFromCSV(FName, Delimiter, IncludeColHeaders, IncludeRowHeaders, DecSep, ignored);
}

bool TDataTable::ExportAsCSV(std::string_view FName, int Precision, TCSVDelimiters Delimiter,
                             bool IncludeColHeaders, bool IncludeRowHeaders,
                             bool IncludeRowAttributes, bool IncludeComment,
                             TDecPSep DecSep) const {
  const char delimiter = characterOf(Delimiter == cdDetect ? cdComma : Delimiter, {});
  WholeFileWriter file(FName);
  std::string text;
  const auto endCell = [&] { text += delimiter; };
  const auto endRow = [&] {
    text.back() = '\n';
    if (text.size() < 1 << 16) return;
    file.Stream() << text;
    text.clear();
  };
  if (IncludeComment && !FComment.empty()) text.append(kCommentMark).append(FComment) += '\n';
  if (IncludeColHeaders) {
    if (IncludeRowHeaders) {
      detail::appendCell(text, {}, delimiter);
      endCell();
    }
    if (IncludeRowAttributes) {
      text += kAttribute;
      endCell();
    }
    for (const TDTNameStr& name : FColName) {
      detail::appendCell(text, name, delimiter);
      endCell();
    }
    endRow();
  }
  for (int r = 1; file.IsOpen() && r <= FNrOfRows; ++r) {
    if (IncludeRowHeaders) {
      detail::appendCell(text, FRowName[at(r)], delimiter);
      endCell();
    }
    if (IncludeRowAttributes) {
      text += std::to_string(FRowAtt[at(r)]);
      endCell();
    }
    for (int c = 1; c <= FNrOfCols; ++c) {
      if (GetIsEmpty(c, r)) {
        text += "NA";
      } else if (IsCategorical(c)) {
        detail::appendCell(text, GetElemNominal(c, r), delimiter);
      } else {
        detail::appendCell(text, numberText(GetElem(c, r), Precision, DecSep), delimiter);
      }
      endCell();
    }
    endRow();
  }
  file.Stream() << text;
  return file.Commit();
}

}  // namespace zel
