#include "zel/statistics/normalitytests.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "zel/kernels/comb_sort.h"
#include "zel/kernels/ecdf_distance.h"
#include "zel/kernels/shapiro_wilk.h"
#include "zel/statistics/goodnessoffit.h"
#include "zel/statistics/memory_impl.h"
#include "zel/statistics/normaldistribution.h"

namespace zel {

namespace {

double distanceFromNormal(const TVector& sorted) {
  return kernels::EmpiricalDistance(sorted.Elements(), nDistriIntegral).find();
}

}  // namespace

double PerformKSNormalityTest(TVector* Data, bool Sorted) {
  if (!Data) return 0;
  if (!Sorted) Data->SortElems(true, 0, 0);
  return distanceFromNormal(*Data);
}

double PerformLillieforsTest(TVector* Data, bool Sorted) {
  if (!Data) return 0;
  if (!Sorted) Data->SortElems(true, 0, 0);
  double mean, deviation;
  Data->Standardize(mean, deviation);
  return distanceFromNormal(*Data);
}

int ShapiroWilkTest(const TVector* Data, int n, double& W, double& p) {
  W = 0;
  p = -1;
  const int observed = Data ? Data->NrOfElem() : 0;
  if (observed < 3) return -1;
  if (n == 0) n = observed;
  if (ShapiroWilkIntegral(0.5, n, observed) < 0) return -2;
  return detail::GuardStatis(
      [&] {
        std::vector<double> x(Data->begin(), Data->end());
        kernels::combSortFast(std::span(x), x.size(), true);
        const bool isFinite = std::ranges::all_of(x, [](double v) { return std::isfinite(v); });
        if (!isFinite || x.front() == x.back()) return -3;
        W = kernels::shapiroWilk(x, static_cast<std::size_t>(n));
        p = ShapiroWilkIntegral(W, n, observed);
        return 0;
      },
      [] { return "ShapiroWilkTest: not enough memory"; });
}

}  // namespace zel
