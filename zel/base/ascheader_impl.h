/// @file
/// Writer of the header of ASC files, and texts in the lines behind their rows. Internal.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace zel::detail {

/// Line 4 of files that may hold all that the form has a place for: the flags, then this.
inline constexpr std::string_view kASCLegend =
    "\t;row attributes, column names, row names, nominal variables";

/// The first line of a file without a comment.
[[nodiscard]] std::string DefaultASCComment(std::string_view className, std::string_view fileName);

/// Writes the four header lines of an ASC file: the comment, or without one the default with the
/// names of class and file, line feeds as blanks; the counts; the flags with their legend.
void WriteASCHeader(std::ostream& out, std::string_view className, std::string_view fileName,
                    std::string_view comment, int columns, int rows, std::string_view flags);

/// The word that begins the lines behind the rows.
inline constexpr std::string_view kASCMore = ";more";

/// Appends a text in quotation marks: \" and \\ stand for the character, \xHH for a control
/// character.
void AppendASCText(std::string& line, std::string_view text);

/// Takes such a text off the front of a line; nothing if none begins there or it is damaged.
[[nodiscard]] std::optional<std::string> TakeASCText(std::string_view& line);

}  // namespace zel::detail
