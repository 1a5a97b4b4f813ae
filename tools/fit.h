/// @file
/// The command zel fit.
#pragma once

#include <string>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct FitOptions {
  std::string file;
  bool decimalComma = false;
  std::string x, y;  // columns
  std::string model = "line";
  double smoothing = 0.5;
  std::string picture;  // empty: none
  bool json = false;
  bool ascii = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result fit(const FitOptions& options);

}  // namespace tool
