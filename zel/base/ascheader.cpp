#include "zel/base/ascheader.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <utility>

#include "zel/base/ascheader_impl.h"
#include "zel/base/ascii_impl.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/wholefile.h"

namespace zel {
namespace {

constexpr std::string_view kBlanks = " \t";

/// Reads a line that ends in LF, CRLF or with the text.
bool readLine(std::istream& f, std::string& line) {
  if (!std::getline(f, line)) return false;
  if (line.ends_with('\r')) line.pop_back();
  return true;
}

/// The next word of a line, which ends at a blank, a tab or the ";" of the legend.
std::string_view takeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(" \t;"));
  line.remove_prefix(word.size());
  return word;
}

bool parseCount(std::string_view line, int& count) {
  std::string_view word = takeWord(line);
  if (word.starts_with('+')) word.remove_prefix(1);
  if (word.empty() || word[0] == '-') return false;
  int value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size()) return false;
  count = value;
  return true;
}

bool parseFlag(std::string_view word, bool& flag) {
  flag = EqualIgnoringCase(word, "TRUE");
  return flag || EqualIgnoringCase(word, "FALSE");
}

template <class Source>
int readInto(Source&& source, std::string& comment, int& columns, int& rows, bool& rowAttributes,
             bool& columnNames, bool& rowNames, bool& nominal) {
  TASCHeader header;
  const int result = ReadHeaderOfASC(source, header);
  comment = std::move(header.Comment);
  columns = header.NCols;
  rows = header.NRows;
  rowAttributes = header.RowAttr;
  columnNames = header.ColNames;
  rowNames = header.RowNames;
  nominal = header.Nominal;
  return result;
}

}  // namespace

int ReadHeaderOfASC(std::istream& f, TASCHeader& Header) {
  Header = {};
  if (!f.good()) return -1;
  const auto failed = [&](int number) { return f.bad() ? -1 : number; };

  if (!readLine(f, Header.Comment)) return failed(1);
  std::string line;
  if (!readLine(f, line) || !parseCount(line, Header.NCols)) return failed(2);
  if (!readLine(f, line) || !parseCount(line, Header.NRows)) return failed(3);
  if (!readLine(f, line)) return failed(4);
  std::string_view rest = line;
  bool flags[4] = {};
  for (int i = 0; i < 4; ++i) {
    const std::string_view word = takeWord(rest);
    // The fourth flag may be missing, but must not be another word.
    if (!parseFlag(word, flags[i]) && !(i == 3 && word.empty())) return 4;
  }
  Header.RowAttr = flags[0];
  Header.ColNames = flags[1];
  Header.RowNames = flags[2];
  Header.Nominal = flags[3];
  return 0;
}

int ReadHeaderOfASC(std::string_view FName, TASCHeader& Header) {
  std::ifstream f;
  OpenForReading(f, FName);
  return ReadHeaderOfASC(f, Header);
}

int ReadHeaderOfASC(std::istream& f, std::string& Comment, int& NCols, int& NRows, bool& RowAttr,
                    bool& ColNames, bool& RowNames, bool& Nominal) {
  return readInto(f, Comment, NCols, NRows, RowAttr, ColNames, RowNames, Nominal);
}

int ReadHeaderOfASC(std::string_view FName, std::string& Comment, int& NCols, int& NRows,
                    bool& RowAttr, bool& ColNames, bool& RowNames, bool& Nominal) {
  return readInto(FName, Comment, NCols, NRows, RowAttr, ColNames, RowNames, Nominal);
}

namespace detail {

std::string DefaultASCComment(std::string_view className, std::string_view fileName) {
  std::string line = "Exported by ZEL ";
  return line.append(className).append(" component: ").append(fileName);
}

void WriteASCHeader(std::ostream& out, std::string_view className, std::string_view fileName,
                    std::string_view comment, int columns, int rows, std::string_view flags) {
  const std::string line =
      comment.empty() ? DefaultASCComment(className, fileName) : std::string(comment);
  out << ReplaceCharInString(line, '\n', ' ') << '\n';
  out << columns << "\t;nr. of columns\n" << rows << "\t;nr. of rows\n" << flags << '\n';
}

void AppendASCText(std::string& line, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  line += '"';
  for (const char c : text) {
    if (isControl(c)) {
      const auto code = static_cast<unsigned char>(c);
      (line += "\\x").append({kDigits[code / 16], kDigits[code % 16]});
    } else {
      if (c == '"' || c == '\\') line += '\\';
      line += c;
    }
  }
  line += '"';
}

std::optional<std::string> TakeASCText(std::string_view& line) {
  const auto take = [&](char c) {
    if (!line.starts_with(c)) return false;
    line.remove_prefix(1);
    return true;
  };
  if (!take('"')) return std::nullopt;
  std::string text;
  while (!take('"')) {
    if (line.empty()) return std::nullopt;
    if (!take('\\') || line.starts_with('"') || line.starts_with('\\')) {
      text += line.front();
      line.remove_prefix(1);
      continue;
    }
    if (!take('x') || line.size() < 2) return std::nullopt;
    unsigned code = 0;
    const char* const end = line.data() + 2;
    if (std::from_chars(line.data(), end, code, 16).ptr != end) return std::nullopt;
    line.remove_prefix(2);
    text += static_cast<char>(code);
  }
  return text;
}

}  // namespace detail

}  // namespace zel
