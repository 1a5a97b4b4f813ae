#include "zel/base/ascheader.h"

#include <charconv>
#include <fstream>
#include <initializer_list>

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

}  // namespace

int ReadHeaderOfASC(std::istream& f, std::string& Comment, int& NCols, int& NRows, bool& RowAttr,
                    bool& ColNames, bool& RowNames, bool& Nominal) {
  Comment.clear();
  NCols = NRows = 0;
  RowAttr = ColNames = RowNames = Nominal = false;
  if (!f.good()) return -1;
  const auto failed = [&](int number) { return f.bad() ? -1 : number; };

  if (!readLine(f, Comment)) return failed(1);
  std::string line;
  if (!readLine(f, line) || !parseCount(line, NCols)) return failed(2);
  if (!readLine(f, line) || !parseCount(line, NRows)) return failed(3);
  if (!readLine(f, line)) return failed(4);
  std::string_view rest = line;
  bool flags[4] = {};
  for (int i = 0; i < 4; ++i) {
    const std::string_view word = takeWord(rest);
    // The fourth flag may be missing, but must not be another word.
    if (!parseFlag(word, flags[i]) && !(i == 3 && word.empty())) return 4;
  }
  RowAttr = flags[0];
  ColNames = flags[1];
  RowNames = flags[2];
  Nominal = flags[3];
  return 0;
}

int ReadHeaderOfASC(std::string_view FName, std::string& Comment, int& NCols, int& NRows,
                    bool& RowAttr, bool& ColNames, bool& RowNames, bool& Nominal) {
  std::ifstream f;
  OpenForReading(f, FName);
  return ReadHeaderOfASC(f, Comment, NCols, NRows, RowAttr, ColNames, RowNames, Nominal);
}

}  // namespace zel
