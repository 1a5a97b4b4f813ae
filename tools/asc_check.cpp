#include "asc_check.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/base/ascheader.h"
#include "zel/base/numbertext.h"
#include "zel/base/stringhelpers.h"
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

/// A missing value, or an infinite one.
bool isWordForValue(std::string_view word) {
  return word == "###" || zel::EqualIgnoringCase(word, "NAN") ||
         zel::EqualIgnoringCase(word, "INF") || zel::EqualIgnoringCase(word, "-INF");
}

class AscCheck {
 public:
  explicit AscCheck(const DataText& text) : source_(text.source), rest_(text.content) {}

  void run() {
    readHeader();
    if (header_.ColNames) readColumnNames();
    const std::string announced = " rows announced in line " + std::to_string(kRowsLine);
    int rows = 0;
    std::string_view line;
    // What begins with a semicolon says more of the table.
    while (nextFilledLine(line) && !line.starts_with(';')) {
      if (rows == header_.NRows) {
        fail("there are more than the " + std::to_string(header_.NRows) + announced);
      }
      ++rows;
      readRow(line);
    }
    if (rows < header_.NRows) {
      fail("the file ends here, after " + std::to_string(rows) + " of the " +
           std::to_string(header_.NRows) + announced);
    }
  }

 private:
  [[noreturn]] void failInLine(std::int64_t line, std::string_view reason) const {
    throw Failure(source_ + ", line " + std::to_string(line) + ": " + std::string(reason));
  }
  [[noreturn]] void fail(std::string_view reason) const { failInLine(lineNumber_, reason); }

  bool nextLine(std::string_view& line) {
    if (rest_.empty()) return false;
    line = rest_.substr(0, rest_.find('\n'));
    rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    ++lineNumber_;
    return true;
  }

  bool nextFilledLine(std::string_view& line) {
    while (nextLine(line)) {
      if (line.find_first_not_of(kBlanks) != std::string_view::npos) return true;
    }
    return false;
  }

  void readHeader() {
    std::vector<std::string> lines;
    std::stringstream text;
    std::string_view line;
    while (lines.size() < 4 && nextLine(line)) text << lines.emplace_back(line) << '\n';
    const int bad = zel::ReadHeaderOfASC(text, header_);
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
      failInLine(static_cast<std::int64_t>(k), reason);
    }
    if (header_.NCols == 0) failInLine(2, "there are no columns");
    if (header_.NRows == 0) failInLine(kRowsLine, "there are no rows");
  }

  /// The names of the columns may take several lines.
  void readColumnNames() {
    std::string_view line;
    std::string ignored;
    for (int c = 1; c <= header_.NCols; ++c) {
      const std::string which = "the name of column " + std::to_string(c);
      if (skipBlanks(line); line.empty() && !nextFilledLine(line)) {
        failInLine(lineNumber_ + 1, which + " should be here, but the file ends before it");
      }
      if (!zel::ReadQuotedName(line, '"', ignored)) fail(which + " has no closing quotation mark");
    }
    if (skipBlanks(line); !line.empty()) {
      fail("there are more names than " + counted(header_.NCols, "column"));
    }
  }

  void readRow(std::string_view line) const {
    constexpr std::string_view kMissing = "a missing value is written NAN or ###";
    std::string ignored;
    if (header_.RowAttr) {
      const std::string_view word = takeWord(line);
      if (!zel::ParseNumber(word)) fail("the row attribute " + whyNotANumber(word, kMissing));
    }
    if (header_.RowNames && !zel::ReadQuotedName(line, '"', ignored)) {
      fail("the name of the row is missing or has no closing quotation mark");
    }
    for (int c = 0; c < header_.NCols; ++c) {
      const std::string_view word = takeWord(line);
      if (word.empty()) {
        fail(header_.NCols == 1 ? "the row has no value"
                                : "the row has " + std::to_string(c) + " of " +
                                      std::to_string(header_.NCols) + " values");
      }
      if (!zel::ParseNumber(word) && !isWordForValue(word)) fail(whyNotANumber(word, kMissing));
    }
    skipBlanks(line);
    if (!line.empty()) {
      fail("there " +
           (header_.NCols == 1 ? std::string("is more than one value")
                               : "are more than " + std::to_string(header_.NCols) + " values") +
           ": " + inQuotes(line) + " is left over");
    }
  }

  const std::string& source_;
  std::string_view rest_;
  std::int64_t lineNumber_ = 0;
  zel::TASCHeader header_;
};

}  // namespace

void requireAsc(const DataText& text) { AscCheck(text).run(); }

}  // namespace tool
