#include "zel/analysis/ranks.h"

#include <cstddef>
#include <vector>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/rank_correlation.h"

namespace zel {

double CalcRanks(const TVector* Data, TVector* Ranks) {
  if (!Data) return 0;
  detail::TResults results;
  const double ties = detail::GuardFit("CalcRanks", [&] {
    const auto count = static_cast<std::size_t>(Data->NrOfElem());
    if (Ranks)
      return static_cast<double>(kernels::meanRanks(Data->Elements(), results.Add(Ranks, count)));
    std::vector<double> unused(count);
    return static_cast<double>(kernels::meanRanks(Data->Elements(), unused));
  });
  results.Commit();
  return ties;
}

}  // namespace zel
