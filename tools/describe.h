/// @file
/// The command zel describe.
#pragma once

#include <string>
#include <vector>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct DescribeOptions {
  std::string file;
  bool decimalComma = false;
  std::vector<std::string> columns;  // empty: all
  std::string by;                    // column of categories; empty: none
  std::string percentiles = "5,10,90,95";
  int bins = 0;  // 0: as suits the data
  bool noHistogram = false;
  std::string picture;  // empty: none
  bool json = false;
  bool ascii = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result describe(const DescribeOptions& options);

}  // namespace tool
