/// @file
/// Exchange of variables.
#pragma once

#include <concepts>
#include <cstdint>
#include <utility>

#include "zel/base/api.h"

namespace zel {

/// Exchanges two variables of one type: numbers of every width, Booleans, characters, strings,
/// arrays. Strings and arrays exchange their storage without copying.
template <std::swappable T>
void ExChange(T& a, T& b) {
  using std::swap;
  swap(a, b);
}

/// Exchanges two blocks of NumBytes bytes of trivially copyable data. The blocks are disjoint or
/// the same.
ZEL_API void ExChange(void* a, void* b, std::uint16_t NumBytes);

/// Puts two numbers out of the wrong order.
/// @return true after an exchange: ascending when a >= b (two equal values count as exchanged),
///   descending when a < b. False, and nothing changes, if one is not a number.
ZEL_API bool SortSwap(double& a, double& b, bool Ascending);

}  // namespace zel
