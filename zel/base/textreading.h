/// @file
/// Words and quoted names in text files and streams.
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

#include "zel/base/api.h"

namespace zel {

/// The next word: what stands between blanks, tabs and line ends (LF, CRLF). The character that
/// ends the word stays in the stream. Empty at the end, which sets eofbit.
[[nodiscard]] ZEL_API std::string ReadNextWordInTextFile(std::istream& f);

/// Where ParseQuotedName stands. Its first value is the initial state.
enum TQuotedNameState : std::uint8_t {
  qnsStart,   // before the name
  qnsQuoted,  // inside the quotation marks
  qnsClosed,  // after the closing mark: the name is complete
  qnsBare,    // inside a name without quotation marks
  qnsEnded    // after the blank that ended a bare name: the name is complete
};

/// Takes one character of a text that holds a name in quotation marks, or a bare word. Blanks, tabs
/// and line ends before the name are skipped; a bare word ends with the next of them.
///
/// A quoted name is reported at its closing mark. If the character after it is the mark once more
/// and is passed with the same State, the two stand for one mark inside the name, which goes on
/// until the next report. ReadQuotedName looks ahead for that.
/// @param c      the character
/// @param quote  the quotation mark
/// @param Name   the name so far, cleared when a name begins
/// @param State  qnsStart before the first character of a name; set it back for the next name
/// @return true if Name is complete. A bare word at the very end of a text is never reported, as
///   nothing ends it; Name holds it.
ZEL_API bool ParseQuotedName(char c, char quote, std::string& Name, TQuotedNameState& State);

/// Reads one quoted or bare name by the rules of ParseQuotedName, doubled quotation marks included.
/// What follows the name, also the blank that ends a bare one, stays in the stream.
/// @return false if the text ends before a name begins or inside a quotation; Name then holds what
///   was read
ZEL_API bool ReadQuotedName(std::istream& f, char quote, std::string& Name);

/// The same from the front of a text, where what has been read is taken off.
ZEL_API bool ReadQuotedName(std::string_view& text, char quote, std::string& Name);

/// Takes the next word, as ReadNextWordInTextFile does, off the front of a text.
[[nodiscard]] ZEL_API std::string_view ReadNextWord(std::string_view& text);

/// Takes a line off the front of a text and returns it without its end (LF, CRLF).
ZEL_API std::string_view ReadNextLine(std::string_view& text);

}  // namespace zel
