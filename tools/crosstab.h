/// @file
/// The command zel crosstab.
#pragma once

#include <string>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct CrosstabOptions {
  std::string file;
  bool decimalComma = false;
  std::string a, b;     // columns whose categories make the lines and the columns
  std::string percent;  // "row", "column" or "total"; empty: none
  bool json = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result crosstab(const CrosstabOptions& options);

}  // namespace tool
