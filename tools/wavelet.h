/// @file
/// The command zel wavelet.
#pragma once

#include <string>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct WaveletOptions {
  std::string file;
  bool decimalComma = false;
  std::string column;  // may be empty if there is one column
  int order = 2;
  int levels = 0;  // 0: all
  std::string mode = "wrap";
  std::string picture;  // empty: none
  bool json = false;
  bool ascii = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result wavelet(const WaveletOptions& options);

}  // namespace tool
