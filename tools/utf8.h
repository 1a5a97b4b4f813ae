/// @file
/// UTF-8 text from files, made safe for terminals and for JSON.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zel/base/utf8_impl.h"

namespace tool {

using zel::detail::Character;
using zel::detail::firstCharacter;

/// Number of characters, each byte of malformed text counting as one.
std::size_t characterCount(std::string_view text);

/// The text on one line, with control characters, text direction marks and malformed bytes written
/// as \x1b, \u202e and so on, so that a file can't steer the terminal that it is shown on.
/// @param limit  more characters than this are cut, and "..." says so
std::string printable(std::string_view text, std::size_t limit = 200);

/// "a", "b" and "c".
std::string inSentence(const std::vector<std::string>& words);

/// The printable text in quotation marks, for a message.
std::string inQuotes(std::string_view text);

}  // namespace tool
