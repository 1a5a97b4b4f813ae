/// @file
/// The bytes of a data file.
#pragma once

#include <string>

namespace tool {

/// A text file as a whole.
struct DataText {
  std::string source;  // the file as messages name it
  std::string content;
};

/// Reads a text file, or standard input.
/// @param fileName  "-" is standard input
/// @throws Failure  the file cannot be opened or read, is a directory, has a zero byte (a binary
///   file) or, unless it is XML, a line of more than 1 MiB; so the reading of a device ends, too
DataText readDataText(const std::string& fileName);

}  // namespace tool
