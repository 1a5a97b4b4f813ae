#include "zel/statistics/runstests.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "zel/kernels/runs.h"
#include "zel/kernels/sample.h"
#include "zel/kernels/sums.h"
#include "zel/statistics/memory_impl.h"
#include "zel/statistics/normaldistribution.h"

namespace zel {

namespace {

double significance(const kernels::Runs& found) {
  constexpr std::int64_t kMostExact = 25;
  if (found.set <= kMostExact && found.clear <= kMostExact)
    return kernels::runsProbability(found.set, found.clear, found.runs);
  const auto a = static_cast<double>(found.set);
  const auto b = static_cast<double>(found.clear);
  const double n = a + b;
  const double variance = 2 * a * b * (2 * a * b - n) / (n * n * (n - 1));
  if (variance == 0) return 0;
  const double mean = 2 * a * b / n + 1;
  const double z = (static_cast<double>(found.runs) - mean) / std::sqrt(variance);
  return nDistriIntegral(-std::abs(z));
}

bool judge(const kernels::Runs& found, double& p) {
  p = significance(found);
  return p < 0.05;
}

}  // namespace

bool RunsTest(const TBitFld* Bits, double& p) {
  p = -1;
  if (!Bits) return false;
  const auto bit = [Bits](std::int64_t i) { return Bits->GetBit(static_cast<int>(i)); };
  return judge(kernels::countRuns(std::int64_t{Bits->Size()} + 1, bit), p);
}

bool RunsTestSerial(const TVector* Data, double& p) {
  p = -1;
  if (!Data || Data->NrOfElem() == 0) return false;
  const auto x = Data->Elements();
  const double median = detail::GuardStatis([x] { return kernels::median(x); },
                                            [] { return "RunsTestSerial: not enough memory"; });
  const auto isAbove = [x, median](std::int64_t i) {
    return x[static_cast<std::size_t>(i)] > median;
  };
  return judge(kernels::countRuns(static_cast<std::int64_t>(x.size()), isAbove), p);
}

double ExactRunsTest(int nA, int nB, int r) { return kernels::runsProbability(nA, nB, r); }

double DurbinWatson(std::span<const double> Resid) {
  if (Resid.size() < 3) return 2;
  const double squares = kernels::sumOfSquares(Resid).hi;
  if (squares == 0) return 0;
  return kernels::sumOfSquaredDifferences(Resid.subspan(1), Resid.first(Resid.size() - 1)).hi /
         squares;
}

}  // namespace zel
