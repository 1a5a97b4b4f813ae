/// @file
/// The command zel spectrum.
#pragma once

#include <string>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct SpectrumOptions {
  std::string file;
  bool decimalComma = false;
  std::string column;  // may be empty if there is one column
  double sampleTime = 1;
  std::string window = "cos2";
  int lines = 10;
  std::string picture;  // empty: none
  bool json = false;
  bool ascii = false;
};

/// The windows that --window names, for its help.
std::string windowWords();

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result spectrum(const SpectrumOptions& options);

}  // namespace tool
