/// @file
/// The command zel correlate.
#pragma once

#include <string>
#include <vector>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct CorrelateOptions {
  std::string file;
  bool decimalComma = false;
  std::vector<std::string> columns;  // empty: all
  std::string picture;               // empty: none
  bool json = false;
  bool ascii = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result correlate(const CorrelateOptions& options);

}  // namespace tool
