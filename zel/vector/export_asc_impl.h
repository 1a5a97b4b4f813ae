/// @file
/// Writers of the text files of the vectors. Internal.
#pragma once

#include <functional>
#include <ostream>
#include <string_view>

namespace zel::detail {

/// Writes the ASC file of a vector: header, then what `rows` writes.
/// @return 0, or -1 if the file cannot be written
int ExportVectorASC(std::string_view fileName, std::string_view className, std::string_view comment,
                    int count, const std::function<void(std::ostream&)>& rows);

/// Writes a number file: the two bounds, then what `values` writes.
/// @return false if the file cannot be created
bool StoreNumberFile(std::string_view fileName, int first, int last,
                     const std::function<void(std::ostream&)>& values);

}  // namespace zel::detail
