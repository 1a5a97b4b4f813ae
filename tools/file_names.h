/// @file
/// Names of files on the command line.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The name ends in the extension (".csv"), in any case, and has something before it.
bool hasExtension(std::string_view name, std::string_view extension);

/// A result that replaced the data it is made of would be a nasty surprise.
/// @param what  the result, for the message
/// @throws Failure  both names are of one file
void requireDifferentFiles(const std::string& data, const std::string& result,
                           const std::string& what = "picture");

}  // namespace tool
