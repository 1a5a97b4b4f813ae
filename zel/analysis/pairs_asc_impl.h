/// @file
/// Reader of ASC files that hold pairs of values. Internal.
#pragma once

#include <istream>

#include "zel/base/array.h"

namespace zel::detail {

/// Pairs as they stand in a file, as many of each.
struct TPairs {
  TDoubleArray x;
  TDoubleArray y;
};

/// What became of a file.
struct TPairsResult {
  int code = 0;          // as of TCurveFit.ImportASC
  bool hasRows = false;  // the rows were begun: the pairs hold those before the failing row
};

/// Reads header and rows. Grows as values arrive; a forged count allocates nothing. NAN and ###
/// give not-a-number.
/// @throws EZELMath2Error  if the header announces another number of columns than two
/// @throws std::bad_alloc
TPairsResult ReadPairsASC(std::istream& f, TPairs& pairs);

}  // namespace zel::detail
