/// @file
/// The command zel cluster.
#pragma once

#include <string>
#include <vector>

#include "result.h"

namespace tool {

/// What the command line asks for.
struct ClusterOptions {
  std::string file;
  bool decimalComma = false;
  std::vector<std::string> columns;  // empty: all
  std::string method = "kmeans";
  int clusters = 3;
  bool raw = false;  // values as they are, not standardised
  int starts = 25;
  int seed = 1;
  std::string distance = "euclid";
  double flexible = 0.625;
  std::string by;       // column of known classes; empty: none
  std::string picture;  // empty: none
  bool json = false;
};

/// Does what the options ask for.
/// @throws Failure  nothing was written then
Result cluster(const ClusterOptions& options);

}  // namespace tool
