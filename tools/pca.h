/// @file
/// The command zel pca.
#pragma once

#include <string>
#include <vector>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct PcaOptions {
  std::string file;
  bool decimalComma = false;
  std::vector<std::string> columns;  // empty: all
  std::string mode = "correlation";  // or "covariance"
  std::string color;                 // column that colours the scores; empty: none
  std::string picture;               // empty: none
  bool json = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result pca(const PcaOptions& options);

}  // namespace tool
