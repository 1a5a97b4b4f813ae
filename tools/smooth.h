/// @file
/// The command zel smooth.
#pragma once

#include <string>
#include <vector>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct SmoothOptions {
  std::string file;
  bool decimalComma = false;
  std::string column;  // may be empty if there is one column
  std::string method = "mean";
  int width = 0;  // 0: as suits the method
  double sampleTime = 1;
  std::vector<double> cutoff;  // one, or two of a band
  std::string window = "hamming";
  int poles = 4;
  double ripple = 0.5;
  int rows = 20;
  std::string picture;  // empty: none
  bool json = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result smooth(const SmoothOptions& options);

}  // namespace tool
