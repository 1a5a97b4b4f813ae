#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "zel/base/ascii_impl.h"
#include "zel/datatable/delimited_impl.h"

namespace zel::detail {

namespace {

constexpr std::string_view kLineEnds = "\r\n";

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

}  // namespace

void DelimitedText::skipBlanks() {
  std::size_t n = 0;
  while (n < FRest.size() && isBlank(FRest[n])) ++n;
  FRest.remove_prefix(n);
}

bool DelimitedText::nextRecord() {
  for (std::string_view ignored; FHasMore && nextCell(ignored);) {
  }
  for (;;) {
    skipBlanks();
    if (FRest.empty()) return false;
    if (!isLineEnd(FRest[0])) break;
    FRest.remove_prefix(FRest.starts_with("\r\n") ? 2 : 1);
    ++FLine;
  }
  FRecordLine = FLine;
  FHasMore = true;
  return true;
}

bool DelimitedText::nextCell(std::string_view& cell) {
  if (!FHasMore || FIsBroken) return false;
  skipBlanks();
  FIsQuoted = FRest.starts_with('"');
  if (FIsQuoted) {
    if (!takeQuoted(cell)) return false;
  } else {
    std::size_t end = 0;
    while (end < FRest.size() && FRest[end] != FDelimiter && !isLineEnd(FRest[end])) ++end;
    std::size_t length = end;
    while (length > 0 && isBlank(FRest[length - 1])) --length;
    cell = FRest.substr(0, length);
    FRest.remove_prefix(end);
  }
  finishCell();
  return true;
}

bool DelimitedText::nextNumber(double& x) {
  if (!FHasMore || FIsBroken) return false;
  const char* const first = FRest.data();
  const char* const last = first + FRest.size();
  const char* const digits = first + (FRest.starts_with('-') ? 1 : 0);
  if (digits == last || !(isDigit(*digits) || *digits == '.')) return false;  // also the words
  const auto [end, error] = std::from_chars(first, last, x);
  if (error != std::errc() || (end != last && *end != FDelimiter && !isLineEnd(*end))) return false;
  FIsQuoted = false;
  FRest.remove_prefix(static_cast<std::size_t>(end - first));
  finishCell();
  return true;
}

bool DelimitedText::takeQuoted(std::string_view& cell) {
  const std::size_t opened = FLine;
  FCell.clear();
  FRest.remove_prefix(1);
  for (;;) {
    const std::size_t mark = FRest.find('"');
    FIsOpen = mark == std::string_view::npos;
    if (FIsOpen) break;
    const std::string_view part = FRest.substr(0, mark);
    FCell += part;
    FLine += static_cast<std::size_t>(std::ranges::count(part, '\n'));
    FRest.remove_prefix(mark + 1);
    if (FRest.starts_with('"')) {
      FCell += '"';
      FRest.remove_prefix(1);
      continue;
    }
    skipBlanks();
    if (!FRest.empty() && FRest[0] != FDelimiter && !isLineEnd(FRest[0])) break;
    cell = FCell;
    return true;
  }
  FRecordLine = opened;
  FIsBroken = true;
  return false;
}

void DelimitedText::finishCell() {
  FHasMore = !FRest.empty() && FRest[0] == FDelimiter;
  if (FHasMore) {
    FRest.remove_prefix(1);
  } else if (!FRest.empty()) {
    FRest.remove_prefix(FRest.starts_with("\r\n") ? 2 : 1);
    ++FLine;
  }
}

char detectDelimiter(std::string_view text) {
  constexpr std::array<char, 3> kDelimiters = {',', ';', '\t'};
  std::array<std::size_t, 3> counts{};
  bool isQuoted = false;
  bool isEmpty = true;
  for (const char c : text) {
    if (c == '"') isQuoted = !isQuoted;
    if (isQuoted) continue;
    if (isLineEnd(c)) {
      if (isEmpty) continue;
      break;
    }
    isEmpty = false;
    for (std::size_t k = 0; k < kDelimiters.size(); ++k) counts[k] += c == kDelimiters[k] ? 1 : 0;
  }
  const auto most = std::ranges::max_element(counts);
  return kDelimiters[static_cast<std::size_t>(most - counts.begin())];
}

char DelimiterOf(TCSVDelimiters delimiter, std::string_view text) {
  switch (delimiter) {
    case cdSemicolon:
      return ';';
    case cdTab:
      return '\t';
    case cdDetect:
      return detectDelimiter(text);
    default:
      return ',';
  }
}

void appendCell(std::string& text, std::string_view cell, char delimiter) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
  const bool isPlain = !cell.empty() && !isBlank(cell.front()) && !isBlank(cell.back()) &&
                       cell.find_first_of("\"#") == std::string_view::npos &&
                       cell.find(delimiter) == std::string_view::npos &&
                       cell.find_first_of(kLineEnds) == std::string_view::npos;
  if (isPlain) {
    text += cell;
    return;
  }
  text += '"';
  for (const char c : cell) {
    if (c == '"') text += c;
    text += c;
  }
  text += '"';
}

}  // namespace zel::detail
