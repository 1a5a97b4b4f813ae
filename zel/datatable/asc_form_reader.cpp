#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "zel/base/Zel_stringl.h"
#include "zel/base/ascheader.h"
#include "zel/base/ascheader_impl.h"
#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/textreading.h"
#include "zel/datatable/asc_form_impl.h"

namespace zel::detail {

namespace {

constexpr int kNoCells = -2;
constexpr int kTooShort = -3;
constexpr int kBadAttribute = -5;
constexpr int kBadValue = -6;
constexpr int kBadMore = -9;

/// What keeps a file from being read.
struct TASCError {
  int code;
  std::string text;
};

class TASCReader {
 public:
  TASCReader(std::string_view text, TASCTable& table)
      : FText(text), FRest(text), FTable(table), FContents(table.Contents) {}

  void read() {
    readHeader();
    readColNames();
    readRows();
    readMore();
  }

 private:
  /// @param rest  a part of the text up to its end; the error is in the line that it starts in
  [[noreturn]] void fail(int code, std::string_view rest, std::string_view reason) const {
    const std::string_view before = FText.substr(0, FText.size() - rest.size());
    std::string text = "line ";
    text.append(std::to_string(std::ranges::count(before, '\n') + 1)).append(": ").append(reason);
    throw TASCError{code, std::move(text)};
  }

  void readHeader() {
    constexpr std::string_view kExpected[] = {"the comment", "the number of columns",
                                              "the number of rows", "the flags"};
    for (int line = 0; line < 4; ++line) ReadNextLine(FRest);
    std::istringstream lines(std::string(FText.substr(0, FText.size() - FRest.size())));
    if (const int bad = ReadHeaderOfASC(lines, FHeader); bad > 0) {
      const auto k = static_cast<std::size_t>(bad) - 1;
      throw TASCError{bad, std::string("line ")
                               .append(std::to_string(bad))
                               .append(": ")
                               .append(kExpected[k])
                               .append(" should be here")};
    }
    if (FHeader.NCols == 0) throw TASCError{kNoCells, "line 2: there are no columns"};
    if (FHeader.NRows == 0) throw TASCError{kNoCells, "line 3: there are no rows"};
    FColumns = static_cast<std::size_t>(FHeader.NCols);
    if (!FHeader.Comment.starts_with(DefaultASCComment(kASCClassName, ""))) {
      FComment = RemoveControlChars(FHeader.Comment);
    }
  }

  TDTNameStr readName(std::string_view whose, std::size_t number) {
    skipBlanks();
    const std::string_view start = FRest;
    if (!ReadQuotedName(FRest, '"', FName)) {
      std::string reason = "the name of ";
      reason.append(whose).append(std::to_string(number));
      fail(kTooShort, start, reason.append(" is missing or has no closing quotation mark"));
    }
    return TDTNameStr(FName);
  }

  void readColNames() {
    FTable.HasColNames = FHeader.ColNames;
    if (!FHeader.ColNames) return;
    for (std::size_t c = 0; c < FColumns; ++c) FColNames.push_back(readName("column ", c + 1));
  }

  int readAttribute() {
    const std::string_view word = ReadNextWord(FRest);
    const auto number = ParseNumber(word);
    const bool isInteger = number && *number == std::trunc(*number) &&
                           *number >= std::numeric_limits<int>::min() &&
                           *number <= std::numeric_limits<int>::max();
    if (!isInteger) failAt(word, kBadAttribute, "the row attribute is not an integer");
    return static_cast<int>(*number);
  }

  /// @param word  the one that was read last
  [[noreturn]] void failAt(std::string_view word, int code, std::string_view reason) const {
    const std::size_t size = word.size() + FRest.size();
    fail(word.empty() ? kTooShort : code, FText.substr(FText.size() - size), reason);
  }

  struct TCell {
    double value = 0;
    std::uint8_t state = 0;
  };

  void skipBlanks() {
    std::size_t n = 0;
    while (n < FRest.size() && isBlank(FRest[n])) ++n;
    FRest.remove_prefix(n);
  }

  TCell readCell(std::size_t c, std::size_t r) {
    skipBlanks();
    // Most words are numbers, whose end need not be searched for.
    double number = 0;
    const std::size_t length = scanNumber(FRest, std::chars_format::general, number);
    const bool isWhole = length == FRest.size() || isBlank(FRest[length]);
    if (length > 0 && isWhole && std::isfinite(number)) {
      FRest.remove_prefix(length);
      return {number, 0};
    }
    const std::string_view word = ReadNextWord(FRest);
    const auto x = numberOf(word);
    if (word == "###" || (x && std::isnan(*x))) return {0, kEmptyState};
    if (x) return {*x, 0};
    std::string reason = "the value of column ";
    reason.append(std::to_string(c + 1)).append(" in row ").append(std::to_string(r + 1));
    failAt(word, kBadValue, reason.append(word.empty() ? " is missing" : " is not a number"));
  }

  void readRows() {
    const auto rows = static_cast<std::size_t>(FHeader.NRows);
    std::vector<TCell> cells;  // the columns that there are grow it
    for (std::size_t r = 0; r < rows; ++r) {
      const int attribute = FHeader.RowAttr ? readAttribute() : 0;
      const TDTNameStr name = FHeader.RowNames ? readName("row ", r + 1) : TDTNameStr();
      cells.clear();
      for (std::size_t c = 0; c < FColumns; ++c) cells.push_back(readCell(c, r));
      // A value takes two bytes, so that more rows than these cannot come.
      if (r == 0) makeTable(std::min(rows, FRest.size() / FColumns / 2 + 1));
      const std::size_t stride = FContents.Rows();
      if (r >= stride) fail(kTooShort, FRest, "rows are missing");
      FContents.FRowAtt[r] = attribute;
      if (FHeader.RowNames) FContents.FRowName[r] = name;
      double* value = FContents.Values.data() + r;
      std::uint8_t* state = FContents.FCState.data() + r;
      for (const TCell& cell : cells) {
        *value = cell.value;
        *state = cell.state;
        value += stride;
        state += stride;
      }
    }
  }

  void makeTable(std::size_t rows) {
    FContents = TTableContents(FColumns, rows);
    FContents.FComment = std::move(FComment);
    std::ranges::copy(FColNames, FContents.FColName.begin());
    FTable.HasRowNames = FHeader.RowNames;
  }

  // Behind the rows.

  [[noreturn]] void failInLine(std::string_view reason) const {
    fail(kBadMore, FText.substr(static_cast<std::size_t>(FLine.data() - FText.data())), reason);
  }
  [[noreturn]] void failInEntry() const { failInLine("an entry behind the rows is damaged"); }

  void readMore() {
    do {
      if (FRest.empty()) return;
      FLine = ReadNextLine(FRest);
    } while (ReadNextWord(FLine) != kASCMore);
    std::pair<int, std::size_t> last{-1, 0};
    for (;;) {
      if (FRest.empty()) {
        fail(kBadMore, FRest, "the lines behind the rows are cut off before \";end\"");
      }
      FLine = ReadNextLine(FRest);
      const std::string_view word = ReadNextWord(FLine);
      if (word.empty()) continue;
      const auto found = std::ranges::find(kASCLineNames, word.substr(1));
      if (word[0] != ';' || found == kASCLineNames.end()) {
        failInLine("this line behind the rows is not known");
      }
      const auto line = static_cast<TASCLine>(found - kASCLineNames.begin());
      if (line == alEnd) break;
      const bool isOfColumn = line == alCategories || line == alStates || line == alValues;
      std::size_t column = 0;
      if (isOfColumn) column = takeIndex(FColumns);
      if (line == alCustom) column = takeIndex(FCustom.size() + 1);
      // None twice: a line may stand for many cells, but the reader should not take forever.
      if (std::pair<int, std::size_t>(line, column) <= last) {
        failInLine("this line behind the rows is not in its place");
      }
      last = {line, column};
      readLine(line, column - 1);
    }
    FTable.CustData.SetLength(FCustom.size(), FCustom.empty() ? 0 : FContents.Rows());
    for (std::size_t k = 0; k < FCustom.size(); ++k) {
      std::ranges::move(FCustom[k], FTable.CustData[k].begin());
    }
  }

  /// @param c  column that the line is about, from 0
  void readLine(TASCLine line, std::size_t c) {
    const std::size_t rows = FContents.Rows();
    switch (line) {
      case alComment:
        FContents.FComment = takeText();
        if (!isAtEnd()) failInEntry();
        break;
      case alColNames:
        readEntries(FContents.FColName.data(), FColumns, [&] { return TDTNameStr(takeText()); });
        break;
      case alColAttrib:
        readEntries(FContents.FColAtt.data(), FColumns, [&] {
          return static_cast<int>(
              takeInteger(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
        });
        break;
      case alScales:
        forEachEntry(FColumns, [&](std::size_t first, std::size_t last) {
          const TMScaleType scale = takeScale();
          for (; first < last; ++first) FContents.FVType[first].MScaleType = scale;
        });
        break;
      case alCategories: {
        TIdentifiers& ids = FContents.FVType[c].IDs;
        forEachEntry(ids.size(), [&](std::size_t first, std::size_t last) {
          const TNominalIDStr id(takeText());
          for (; first < last; ++first) ids.Set(first, id);
        });
        break;
      }
      case alRowNames:
        readEntries(FContents.FRowName.data(), rows, [&] { return TDTNameStr(takeText()); });
        break;
      case alStates:
        readEntries(FContents.FCState.data() + c * rows, rows,
                    [&] { return static_cast<std::uint8_t>(takeInteger(0, 255)); });
        break;
      case alValues:
        readEntries(FContents.Values.data() + c * rows, rows, [&] { return takeValue(); });
        break;
      default:
        readCustom();
    }
  }

  void readCustom() {
    std::vector<std::string>& texts = FCustom.emplace_back();
    while (!isAtEnd()) texts.push_back(takeText());
    if (texts.size() != FContents.Rows()) {
      failInLine("a further column has not a text for each row");
    }
  }

  /// Calls read(first, end), indices from 0, for each entry, to take what it tells.
  template <class Read>
  void forEachEntry(std::size_t count, Read read) {
    for (std::size_t before = 0; !isAtEnd();) {
      const std::size_t first = takeIndex(count);
      const std::size_t last = take('-') ? takeIndex(count) : first;
      if (first <= before || last < first || !take('=')) failInEntry();
      read(first - 1, last);
      before = last;
    }
  }

  template <class Item, class Take>
  void readEntries(Item* items, std::size_t count, Take takeItem) {
    forEachEntry(count, [&](std::size_t first, std::size_t last) {
      std::fill(items + first, items + last, takeItem());
    });
  }

  bool isAtEnd() {
    FLine.remove_prefix(std::min(FLine.find_first_not_of(" \t"), FLine.size()));
    return FLine.empty();
  }

  bool take(char c) {
    if (!FLine.starts_with(c)) return false;
    FLine.remove_prefix(1);
    return true;
  }

  std::int64_t takeInteger(std::int64_t low, std::int64_t high) {
    std::int64_t x = 0;
    const auto [end, error] = std::from_chars(FLine.data(), FLine.data() + FLine.size(), x);
    if (error != std::errc() || x < low || x > high) failInEntry();
    FLine.remove_prefix(static_cast<std::size_t>(end - FLine.data()));
    return x;
  }

  std::size_t takeIndex(std::size_t most) {
    if (isAtEnd()) failInEntry();
    return static_cast<std::size_t>(takeInteger(1, static_cast<std::int64_t>(most)));
  }

  double takeValue() {
    const auto x = numberOf(ReadNextWord(FLine));
    if (!x) failInEntry();
    return *x;
  }

  TMScaleType takeScale() {
    const int scale = StringIx(ReadNextWord(FLine), MScaleTypeNames);
    if (scale < 0) failInEntry();
    return static_cast<TMScaleType>(scale);
  }

  /// A text in quotation marks.
  std::string takeText() {
    if (isAtEnd()) failInEntry();
    auto text = TakeASCText(FLine);
    if (!text) failInEntry();
    return *std::move(text);
  }

  std::string_view FText;
  std::string_view FRest;  ///< what is not read yet
  TASCTable& FTable;
  TTableContents& FContents;
  TASCHeader FHeader;
  std::size_t FColumns = 0;
  std::string FComment;
  std::vector<TDTNameStr> FColNames;
  std::string FName;
  std::string_view FLine;  ///< behind the rows: what is left of the line
  std::vector<std::vector<std::string>> FCustom;
};

}  // namespace

int ReadTableASC(std::string_view text, TASCTable& table, std::string& message) {
  try {
    TASCReader(text, table).read();
    return 0;
  } catch (TASCError& error) {
    message = std::move(error.text);
    return error.code;
  }
}

}  // namespace zel::detail
