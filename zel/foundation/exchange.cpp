#include "zel/foundation/exchange.h"

#include <algorithm>

namespace zel {

void ExChange(void* a, void* b, std::uint16_t NumBytes) {
  auto* first = static_cast<unsigned char*>(a);
  std::swap_ranges(first, first + NumBytes, static_cast<unsigned char*>(b));
}

bool SortSwap(double& a, double& b, bool Ascending) {
  const bool exchange = Ascending ? a >= b : a < b;
  if (exchange) std::swap(a, b);
  return exchange;
}

}  // namespace zel
