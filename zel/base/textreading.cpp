#include "zel/base/textreading.h"

namespace zel {
namespace {

using Traits = std::istream::traits_type;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

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

bool ReadQuotedName(std::istream& f, char quote, std::string& Name) {
  Name.clear();
  const std::istream::sentry ready(f, true);
  if (!ready) return false;
  std::streambuf& source = *f.rdbuf();
  TQuotedNameState state = qnsStart;
  for (auto c = source.sgetc();; c = source.snextc()) {
    if (Traits::eq_int_type(c, Traits::eof())) {
      f.setstate(std::ios::eofbit);
      return state == qnsClosed || state == qnsBare;
    }
    const char next = Traits::to_char_type(c);
    // Decided by looking only, so that what ends the name stays in the stream.
    if (state == qnsClosed && next != quote) return true;
    if (state == qnsBare && isBlank(next)) return true;
    ParseQuotedName(next, quote, Name, state);
  }
}

}  // namespace zel
