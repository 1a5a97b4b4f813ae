/// @file
/// The command zel convert.
#pragma once

#include <string>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct ConvertOptions {
  std::string file;
  bool decimalComma = false;
  std::string out;               // its extension tells the form
  int precision = -1;            // decimals; negative: the shortest exact numbers
  std::string delimiter;         // of a CSV file: "comma", "semicolon" or "tab"
  bool outDecimalComma = false;  // of a CSV file
  std::string id;                // of the table in an XML file
};

/// Writes the table of a file in another form.
/// @throws Failure  the old file is untouched then
Result convert(const ConvertOptions& options);

}  // namespace tool
