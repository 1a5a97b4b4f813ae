/// @file
/// Readers of XML tags. They know tags, attributes, contents, comments, declarations and character
/// data, not schemas or entities of a document's own.
#pragma once

#include <cstddef>
#include <istream>
#include <span>
#include <string>
#include <string_view>

#include "zel/base/api.h"

namespace zel {

/// Reads the next tag of a text. Text between tags, comments, declarations, processing instructions
/// and CDATA sections are skipped; so is a "<" that no name follows.
///
/// An element is delivered whole: the reader goes on behind its closing tag, and Content is what
/// stands between the two, unchanged, to be scanned by ReadNextTagInString if it holds tags and to
/// be passed through XmlUnescape if it is text. Elements of the same name inside it are counted.
/// But if the list has an entry for the closing tag too ("matrix" and "/matrix"), the two tags come
/// one by one and the inner tags between them, so that a large container is never held in memory. A
/// closing tag without an element, `<name/>` and a container tag have an empty content.
///
/// @param f        left behind the tag; eofbit is set at the end
/// @param Tags     names of the tags that are looked for, compared without regard to case; closing
///   tags with their "/"
/// @param Count    number of entries, limited to the length of Tags. The last of them stands for
///   every other tag.
/// @param Attr     the attribute text: what stands in the tag behind its name, without blanks
/// around
/// @param Content  the content
/// @return 0-based index in Tags; Count - 1 for a tag that is not listed (its element is delivered
///   too), for a tag that the text breaks off and for an element that is never closed, which takes
///   the rest of the text; -1 if there is no further tag
/// Cost: linear in the characters passed over; no more memory than these.
ZEL_API int ReadNextTagInTextFile(std::istream& f, std::span<const std::string_view> Tags,
                                  int Count, std::string& Attr, std::string& Content);

/// The same in a string, from a position on.
/// @param Pos  0-based, moved behind the tag; to the length of the text if there is no further tag
ZEL_API int ReadNextTagInString(std::string_view Text, std::size_t& Pos,
                                std::span<const std::string_view> Tags, int Count,
                                std::string& Attr, std::string& Content);

/// The value of an attribute, unescaped.
/// @param Attr   attribute text as the tag readers give it: names, "=", values in " or '
/// @param Name   case respected
/// @return false, with an empty Value, if there is no such attribute
ZEL_API bool XmlAttribute(std::string_view Attr, std::string_view Name, std::string& Value);

/// Text as it may stand in a content or an attribute value: & < > " ' and control characters other
/// than tab and line feed as references.
[[nodiscard]] ZEL_API std::string XmlEscape(std::string_view s);

/// The inverse of XmlEscape: decimal and hexadecimal character references (as UTF-8), the five
/// named ones, CDATA sections; comments are left out. What is none of these stays as it is.
[[nodiscard]] ZEL_API std::string XmlUnescape(std::string_view s);

}  // namespace zel
