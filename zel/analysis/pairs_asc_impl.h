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

/// Reads header and rows. Grows as values arrive; a forged count allocates nothing. NAN and ###
/// give not-a-number.
/// @return as TCurveFit.ImportASC; unless it is 0, the pairs are incomplete
/// @throws EZELMath2Error  if the header announces another number of columns than two
/// @throws std::bad_alloc
[[nodiscard]] int ReadPairsASC(std::istream& f, TPairs& pairs);

}  // namespace zel::detail
