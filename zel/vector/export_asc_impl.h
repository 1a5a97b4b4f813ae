/// @file
/// Writers of text files: the header of ASC files, the files of the vectors. Internal.
#pragma once

#include <functional>
#include <ostream>
#include <string_view>

namespace zel::detail {

/// Writes the four header lines of an ASC file: the comment, or without one the default with the
/// names of class and file; the counts; the flags with their legend.
void WriteASCHeader(std::ostream& out, std::string_view className, std::string_view fileName,
                    std::string_view comment, int columns, int rows, std::string_view flags);

/// Writes the ASC file of a vector: header, then what `rows` writes.
/// @return 0, or -1 if the file cannot be written
int ExportVectorASC(std::string_view fileName, std::string_view className, std::string_view comment,
                    int count, const std::function<void(std::ostream&)>& rows);

/// Writes a number file: the two bounds, then what `values` writes.
/// @return false if the file cannot be created
bool StoreNumberFile(std::string_view fileName, int first, int last,
                     const std::function<void(std::ostream&)>& values);

}  // namespace zel::detail
