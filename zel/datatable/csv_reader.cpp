#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "zel/base/stringhelpers.h"
#include "zel/datatable/csv_form_impl.h"
#include "zel/foundation/numberscanners.h"

namespace zel::detail {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::uint8_t kEmpty = 2;

/// What keeps a file from being read.
struct TCsvError {
  int code;
  std::string text;
};

[[noreturn]] void fail(int code, std::string text) { throw TCsvError{code, std::move(text)}; }

[[noreturn]] void failInLine(int code, const DelimitedText& text, std::string_view reason) {
  fail(code, std::string("line ").append(std::to_string(text.line())).append(": ").append(reason));
}

/// @param wanted  number of cells in the line that says how many there are
[[noreturn]] void failWidth(const DelimitedText& text, std::size_t width, std::size_t wanted,
                            bool isHeader) {
  failInLine(-3, text,
             "the row has " + std::to_string(width) + (width == 1 ? " cell" : " cells") + ", and " +
                 (isHeader ? "the header line" : "the first row") + " has " +
                 std::to_string(wanted));
}

std::optional<double> numberIn(std::string_view cell, TDecPSep separator) {
  std::size_t pos = 0;
  const bool mayBeWord = !cell.empty() && (cell.back() | 0x20) >= 'f';  // "inf", "infinity"
  const double x = ScanFPNum(cell, mayBeWord, separator, pos);
  if (pos != cell.size() || pos == 0 || std::isnan(x)) return std::nullopt;
  if (std::isinf(x) && !mayBeWord) return std::nullopt;  // too large
  return x;
}

/// The front of a text with at most so many bytes, a whole number of UTF-8 characters.
std::string_view cutTo(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t n = most;
  while (n > 0 && n + 3 > most && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n;
  return text.substr(0, n);
}

/// Identifiers of the texts of a column, in the order in which they turn up.
class TCategories {
 public:
  /// @param word  the first cell of the column that is no number
  TCategories(std::string_view word, std::size_t line)
      : FWord(word), FWordLine(static_cast<std::int64_t>(line)) {}

  /// @return number from 1; 0 if there are too many
  int numberOf(std::string_view text) {
    // Often the same in neighbours.
    if (FLast == 0 || text != FTexts[at(FLast)].text) {
      int& number = FNumbers[std::string(text)];
      if (number == 0) {
        if (FTexts.size() == FType.IDs.size()) return 0;
        FType.IDs.Set(FTexts.size(), uniqueId(text));
        FTexts.push_back({std::string(text), 0});
        number = static_cast<int>(FTexts.size());
      }
      FLast = number;
    }
    ++FTexts[at(FLast)].cells;
    return FLast;
  }
  [[nodiscard]] const TColumnType& type() const { return FType; }
  /// What the column holds.
  [[nodiscard]] TCSVImport::TTexts report(int column, TDecPSep separator) const {
    TCSVImport::TTexts report{.Column = column, .Line = FWordLine, .Word = FWord};
    for (const TText& text : FTexts) {
      (numberIn(text.text, separator) ? report.Numbers : report.Words) += text.cells;
      report.IsCut = report.IsCut || text.text.size() > TNominalIDStr::max_size();
    }
    report.Words = std::max(report.Words, 1);  // the first may come after those looked at
    return report;
  }

 private:
  struct TText {
    std::string text;
    int cells;
  };
  [[nodiscard]] static std::size_t at(int number) { return static_cast<std::size_t>(number - 1); }
  [[nodiscard]] TNominalIDStr uniqueId(std::string_view text) const {
    TNominalIDStr id(cutTo(text, TNominalIDStr::max_size()));
    for (int k = 2; std::ranges::count(FType.IDs, id) > 0; ++k) {
      const std::string tail = std::string(1, '~').append(std::to_string(k));
      std::string shorter(cutTo(text, TNominalIDStr::max_size() - tail.size()));
      id = TNominalIDStr(shorter.append(tail));
    }
    return id;
  }

  TColumnType FType{stNominal, {}};
  std::vector<TText> FTexts;
  std::unordered_map<std::string, int> FNumbers;
  int FLast = 0;
  std::string FWord;
  std::int64_t FWordLine;
};

/// What a column has turned out to be so far.
enum class TCsvKind : std::uint8_t {
  numbers,
  texts,
  late,    ///< of texts after numbers: it has to be read again
  skipped  ///< of too many texts
};

struct THeading {
  std::string text;
  bool isQuoted;
  [[nodiscard]] bool isAttributes() const { return !isQuoted && text == kAttributes; }
};

/// A column of the text while it is read.
struct TCsvColumn {
  TCsvKind kind = TCsvKind::numbers;
  bool hasNumbers = false;
  std::unique_ptr<TCategories> categories;
};

/// Number of records that a text may hold at most; where each is a line, their number.
std::size_t mostRecords(std::string_view text) {
  const bool isCutOff = !text.empty() && text.back() != '\n' && text.back() != '\r';
  auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + (isCutOff ? 1 : 0);
  for (std::size_t k = text.find('\r'); k != std::string_view::npos; k = text.find('\r', k + 1)) {
    lines += k + 1 < text.size() && text[k + 1] == '\n' ? 0 : 1;
  }
  return lines;
}

class TCsvReader {
 public:
  TCsvReader(std::string_view text, char delimiter, TCSVImport& import, TTableContents& contents)
      : FText(text), FDelimiter(delimiter), FImport(import), FContents(contents) {}

  void read() {
    readRows();
    readLateTexts();
    for (std::size_t c = 0; c < FColumns.size(); ++c) {
      if (FColumns[c].categories) {
        FImport.Texts.push_back(
            FColumns[c].categories->report(static_cast<int>(c) + 1, FImport.DecSep));
        FImport.Texts.back().IsSkipped = FColumns[c].kind == TCsvKind::skipped;
      }
      if (FColumns[c].kind == TCsvKind::skipped) {
        FContents.FVType[c].MScaleType = stUnknown;
        std::ranges::fill(FContents.Values[c], 0.0);
        std::ranges::fill(FContents.FCState[c], kEmpty);
      } else if (FColumns[c].kind == TCsvKind::texts) {
        FContents.FVType[c] = FColumns[c].categories->type();
      }
    }
  }

 private:
  /// Goes to the first row.
  std::vector<THeading> readHeader(DelimitedText& text) const {
    std::vector<THeading> names;
    if (!text.nextRecord()) fail(-2, "there is nothing but blanks");
    if (FImport.IncludeColHeaders) {
      std::string_view cell;
      while (text.nextCell(cell)) names.push_back({std::string(cell), text.isQuoted()});
      failIfBroken(text);
      if (!text.nextRecord()) failInLine(-2, text, "there are no rows after the header line");
    }
    return names;
  }

  static void failIfBroken(const DelimitedText& text) {
    if (text.isBroken()) {
      failInLine(-4, text,
                 text.isOpen() ? "a quotation mark is never closed"
                               : "there is more after a closing quotation mark");
    }
  }

  /// Takes header and first row together.
  void makeColumns(DelimitedText first, const std::vector<THeading>& names) {
    std::size_t width = 0;
    for (std::string_view ignored; first.nextCell(ignored);) ++width;
    failIfBroken(first);
    FWidth = width;
    std::size_t unnamed = 0;
    if (FImport.IncludeColHeaders) {
      if (FImport.IncludeRowHeaders && names.size() + 1 == width) unnamed = 1;
      if (names.size() + unnamed != width) failWidth(first, width, names.size(), true);
    }
    FFirst = FImport.IncludeRowHeaders ? 1 : 0;
    FHasAttributes =
        FImport.IncludeColHeaders && width > FFirst && names[FFirst - unnamed].isAttributes();
    if (FHasAttributes) ++FFirst;
    if (FFirst >= width) fail(-2, "there are no columns of data");
    FColumns.resize(width - FFirst);
    FContents = TTableContents(FColumns.size(), 0);
    for (std::size_t c = 0; FImport.IncludeColHeaders && c < FColumns.size(); ++c) {
      FContents.FColName[c] = TDTNameStr(names[c + FFirst - unnamed].text);
    }
    // A cell takes a byte at least, be it its delimiter.
    const std::size_t room = std::min(1 + mostRecords(first.rest()), FText.size() / width + 1);
    FContents.Values.SetLength(FColumns.size(), room);
    FContents.FCState.SetLength(FColumns.size(), room);
  }

  void readRows() {
    DelimitedText text(FText, FDelimiter);
    const std::vector<THeading> names = readHeader(text);
    makeColumns(text, names);
    std::size_t rows = 0;
    do {
      const std::size_t width = readRow(text, rows);
      if (width != FWidth) failWidth(text, width, FWidth, names.size() == FWidth);
      FImport.RowLines.push_back(static_cast<std::int64_t>(text.line()));
      if (++rows > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        fail(-3, "there are too many rows");
      }
    } while (text.nextRecord());
    FContents.FRowAtt.resize(rows);
    FContents.FRowName.resize(rows);
    if (!FImport.IncludeRowHeaders) NameRows(FContents, 0);
    FContents.FitRows();
  }

  /// @return number of cells
  std::size_t readRow(DelimitedText& text, std::size_t row) {
    const std::size_t room = FContents.Values.Length(1);
    const bool hasPoint = FImport.DecSep != dpsComma;
    double* value = FContents.Values.data() + row;
    std::size_t k = readHeads(text);
    std::string_view cell;
    for (TCsvColumn& column : FColumns) {
      if (column.kind == TCsvKind::numbers && hasPoint && text.nextNumber(*value)) {
        column.hasNumbers = true;
      } else if (text.nextCell(cell)) {
        add(column, *value, FContents.FCState.data()[value - FContents.Values.data()], cell, text);
      } else {
        break;
      }
      ++k;
      value += room;
    }
    while (text.nextCell(cell)) ++k;
    failIfBroken(text);
    return k;
  }

  /// Row name and attribute.
  std::size_t readHeads(DelimitedText& text) {
    std::size_t k = 0;
    std::string_view cell;
    if (FImport.IncludeRowHeaders && text.nextCell(cell)) {
      FContents.FRowName.push_back(TDTNameStr(cell));
      ++k;
    }
    if (FHasAttributes && text.nextCell(cell)) {
      int attribute = 0;
      const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), attribute);
      if (error != std::errc() || end != cell.data() + cell.size()) {
        failInLine(-6, text, "the row attribute is not an integer");
      }
      FContents.FRowAtt.push_back(attribute);
      ++k;
    }
    return k;
  }

  void add(TCsvColumn& column, double& value, std::uint8_t& state, std::string_view cell,
           const DelimitedText& text) {
    if (column.kind == TCsvKind::numbers) {
      if (const auto number = numberIn(cell, FImport.DecSep)) {
        value = *number;
        column.hasNumbers = true;
        return;
      }
    }
    value = 0;  // there may be what is no number from nextNumber
    if (cell.empty() || (!text.isQuoted() && IsMissingWord(cell))) {
      state = kEmpty;
      return;
    }
    if (column.kind == TCsvKind::numbers) {
      column.kind = column.hasNumbers ? TCsvKind::late : TCsvKind::texts;
      column.categories = std::make_unique<TCategories>(cell, text.line());
    }
    if (column.kind == TCsvKind::texts) addText(column, value, cell);
  }

  void addText(TCsvColumn& column, double& value, std::string_view cell) {
    const int number = column.categories->numberOf(cell);
    value = number;
    if (number > 0) return;
    if (!FImport.SkipLongTexts) failTooMany(column);
    column.kind = TCsvKind::skipped;
  }

  [[noreturn]] void failTooMany(const TCsvColumn& column) const {
    const auto c = static_cast<std::size_t>(&column - FColumns.data());
    const TDTNameStr& name = FContents.FColName[c];
    const bool isNamed = FImport.IncludeColHeaders && !name.empty();
    const std::string which = isNamed ? std::string(name) : std::to_string(c + FFirst + 1);
    const auto texts = column.categories->report(0, FImport.DecSep);
    if (texts.Words > texts.Numbers) {
      fail(-5, "the column " + which + " has more than 150 different texts");
    }
    fail(-5, "line " + std::to_string(texts.Line) + ": \"" + texts.Word + "\" in the column " +
                 which + " is not a number");
  }

  /// Goes over the text again for the columns that begin with numbers and go on with texts.
  void readLateTexts() {
    std::vector<std::size_t> late;
    for (std::size_t c = 0; c < FColumns.size(); ++c) {
      if (FColumns[c].kind != TCsvKind::late) continue;
      FColumns[c].kind = TCsvKind::texts;
      late.push_back(c);
    }
    if (late.empty()) return;
    DelimitedText text(FText, FDelimiter);
    readHeader(text);
    std::size_t row = 0;
    do {
      std::string_view cell;
      std::size_t k = 0;
      for (const std::size_t c : late) {
        while (k <= c + FFirst && text.nextCell(cell)) ++k;
        add(FColumns[c], FContents.Values(c, row), FContents.FCState(c, row), cell, text);
      }
      ++row;
    } while (text.nextRecord());
  }

  std::string_view FText;
  char FDelimiter;
  TCSVImport& FImport;
  TTableContents& FContents;
  bool FHasAttributes = false;
  std::size_t FWidth = 0;
  std::size_t FFirst = 0;  ///< first column of data
  std::vector<TCsvColumn> FColumns;
};

/// Takes the comment off the front of a text.
std::string takeComment(std::string_view& text) {
  if (!text.starts_with(kCommentMark)) return {};
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  // The line end stays, so that lines are counted right.
  text.remove_prefix(line.size());
  return std::string(line.substr(kCommentMark.size()));
}

}  // namespace

bool IsMissingWord(std::string_view cell) {
  return cell == "NA" || cell == "###" || EqualIgnoringCase(cell, "NAN");
}

int ReadCSV(std::string_view text, TCSVImport& import, TTableContents& contents) {
  import.Message.clear();
  import.RowLines.clear();
  import.Texts.clear();
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::string comment = takeComment(text);
  try {
    TCsvReader(text, DelimiterOf(import.Delimiter, text), import, contents).read();
  } catch (TCsvError& error) {
    import.Message = std::move(error.text);
    return error.code;
  }
  contents.FComment = std::move(comment);
  return 0;
}

}  // namespace zel::detail
