#include "zel/base/textreading.h"

#include <algorithm>

#include "zel/base/ascii_impl.h"

namespace zel {

using detail::isBlank;

namespace {

using Traits = std::istream::traits_type;

}  // namespace

std::string ReadNextWordInTextFile(std::istream& f) {
  std::string word;
  const std::istream::sentry ready(f, true);
  if (!ready) return word;
  std::streambuf& source = *f.rdbuf();
  for (auto c = source.sgetc();; c = source.snextc()) {
    if (Traits::eq_int_type(c, Traits::eof())) {
      f.setstate(std::ios::eofbit);
      return word;
    }
    if (!isBlank(Traits::to_char_type(c))) {
      word += Traits::to_char_type(c);
    } else if (!word.empty()) {
      return word;
    }
  }
}

bool ParseQuotedName(char c, char quote, std::string& Name, TQuotedNameState& State) {
  switch (State) {
    case qnsQuoted:
      if (c == quote) {
        State = qnsClosed;
        return true;
      }
      Name += c;
      return false;
    case qnsClosed:
      if (c != quote) return true;
      Name += c;
      State = qnsQuoted;
      return false;
    case qnsBare:
      if (isBlank(c)) {
        State = qnsEnded;
        return true;
      }
      Name += c;
      return false;
    case qnsEnded:
      return true;
    case qnsStart:
      break;
  }
  State = qnsStart;
  if (c == quote) {
    Name.clear();
    State = qnsQuoted;
  } else if (!isBlank(c)) {
    Name = c;
    State = qnsBare;
  }
  return false;
}

namespace {

/// @param look  gives the next character or the end, and stays there
/// @param skip  goes over it
template <class Look, class Skip>
bool readName(Look look, Skip skip, char quote, std::string& name) {
  name.clear();
  TQuotedNameState state = qnsStart;
  for (;; skip()) {
    const auto c = look();
    if (Traits::eq_int_type(c, Traits::eof())) return state == qnsClosed || state == qnsBare;
    const char next = Traits::to_char_type(c);
    // Decided by looking only, so that what ends the name stays in the source.
    if (state == qnsClosed && next != quote) return true;
    if (state == qnsBare && isBlank(next)) return true;
    ParseQuotedName(next, quote, name, state);
  }
}

}  // namespace

bool ReadQuotedName(std::istream& f, char quote, std::string& Name) {
  Name.clear();
  const std::istream::sentry ready(f, true);
  if (!ready) return false;
  std::streambuf& source = *f.rdbuf();
  const auto look = [&] {
    const auto c = source.sgetc();
    if (Traits::eq_int_type(c, Traits::eof())) f.setstate(std::ios::eofbit);
    return c;
  };
  return readName(
      look, [&] { source.sbumpc(); }, quote, Name);
}

bool ReadQuotedName(std::string_view& text, char quote, std::string& Name) {
  return readName([&] { return text.empty() ? Traits::eof() : Traits::to_int_type(text.front()); },
                  [&] { text.remove_prefix(1); }, quote, Name);
}

std::string_view ReadNextWord(std::string_view& text) {
  const auto first = std::ranges::find_if_not(text, isBlank);
  const auto last = std::find_if(first, text.end(), isBlank);
  const std::string_view word(first, last);
  text = std::string_view(last, text.end());
  return word;
}

std::string_view ReadNextLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace zel
