#include "zel/statistics/percentileofarray.h"

#include <cstddef>

#include "zel/kernels/order_statistics.h"
#include "zel/statistics/memory_impl.h"

namespace zel {

int PercentileOfArray(std::span<const double> Data, int LowIx, int HighIx, double Percent,
                      double& Value) {
  Value = 0;
  if (!(Percent >= 0 && Percent <= 100)) return -2;
  if (HighIx < LowIx) return -3;
  if (LowIx < 0 || static_cast<std::size_t>(HighIx) >= Data.size()) return -1;
  const auto low = static_cast<std::size_t>(LowIx);
  const auto range = Data.subspan(low, static_cast<std::size_t>(HighIx) - low + 1);
  const std::size_t k = kernels::percentileRank(range.size(), Percent);
  Value = detail::GuardStatis([&] { return kernels::selectPair(range, k).at; },
                              [] { return "PercentileOfArray: not enough memory"; });
  return 0;
}

}  // namespace zel
