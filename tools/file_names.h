/// @file
/// Names of files on the command line.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The name ends in the extension (".csv"), in any case, and has something before it.
bool hasExtension(std::string_view name, std::string_view extension);

/// A picture that replaced the data it shows would be a nasty surprise.
/// @throws Failure  both names are of one file
void requireDifferentFiles(const std::string& data, const std::string& picture);

}  // namespace tool
