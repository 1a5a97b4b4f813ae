#include "zel/statistics/groupcomparisons.h"

#include <cstddef>
#include <span>
#include <vector>

#include "zel/kernels/one_way.h"
#include "zel/kernels/rank_correlation.h"
#include "zel/statistics/chisquaredistribution.h"
#include "zel/statistics/fdistribution.h"
#include "zel/statistics/memory_impl.h"

namespace zel {

namespace {

template <class T>
std::span<const T> elementsOf(const TNumVector<T>* vector) {
  return vector ? vector->Elements() : std::span<const T>();
}

/// An analysis, or the code of what is wrong with the data.
struct Analysis {
  int code = 0;
  kernels::OneWay sums;
  int dfBetween = 0;
  int dfWithin = 0;

  [[nodiscard]] double significance() const {
    if (sums.isSpreadWithin) return FDistriComplement(sums.F, dfBetween, dfWithin);
    return sums.F > 0 ? 0 : -3;
  }
};

/// @param prepare  what to do with the grouped values first
template <class Prepare>
Analysis analyse(const TVector* data, const TIntVector* classes, Prepare&& prepare) {
  const auto x = elementsOf<double>(data);
  const auto labels = elementsOf<int>(classes);
  if (x.size() != labels.size()) return {.code = -4, .sums = {}};
  auto groups = kernels::groupByClass(x, labels);
  if (groups.groups() <= 1) return {.code = -1, .sums = {}};
  if (groups.groups() >= x.size()) return {.code = -2, .sums = {}};
  prepare(groups);
  return {.code = 0,
          .sums = kernels::oneWay(groups),
          .dfBetween = static_cast<int>(groups.groups() - 1),
          .dfWithin = static_cast<int>(x.size() - groups.groups())};
}

}  // namespace

double FriedmanTest(const TMatrix* Data, double& Chi2) {
  if (!Data || Data->NrOfColumns() < 3) return -1;
  const int columns = Data->NrOfColumns();
  const auto k = static_cast<double>(columns);
  const auto n = static_cast<double>(Data->NrOfRows());
  return detail::GuardStatis(
      [&] {
        const auto width = static_cast<std::size_t>(columns);
        std::vector<double> row(width), ranks(width), sums(width);
        double ties = 0;
        for (int r = 1; r <= Data->NrOfRows(); ++r) {
          for (int c = 1; c <= columns; ++c) row[static_cast<std::size_t>(c - 1)] = (*Data)(c, r);
          ties += static_cast<double>(kernels::meanRanks(row, ranks));
          for (std::size_t c = 0; c < width; ++c) sums[c] += ranks[c];
        }
        // About the mean, where the difference of the two large terms would cancel.
        const double mean = n * (k + 1) / 2;
        double squares = 0;
        for (const double sum : sums) squares += (sum - mean) * (sum - mean);
        const double distinct = n - ties / ((k * k - 1) * k);
        Chi2 = squares == 0 ? 0 : 12 * squares / (k * (k + 1)) / distinct;
        return chi2DistriComplement(Chi2, columns - 1);
      },
      [] { return "FriedmanTest: not enough memory"; });
}

double Anova1F(const TVector* Data, const TIntVector* Classes, double& SSBetween, double& SSWithin,
               double& SSTotal, int& DFBetween, int& DFWithin, int& DFTotal, double& F) {
  const Analysis a = detail::GuardStatis([&] { return analyse(Data, Classes, [](auto&) {}); },
                                         [] { return "Anova1F: not enough memory"; });
  if (a.code < 0) return a.code;
  SSBetween = a.sums.between;
  SSWithin = a.sums.within;
  SSTotal = a.sums.total;
  DFBetween = a.dfBetween;
  DFWithin = a.dfWithin;
  DFTotal = a.dfBetween + a.dfWithin;
  F = a.sums.F;
  return a.significance();
}

double LeveneTest(const TVector* Data, const TIntVector* Classes, double& F) {
  const Analysis a =
      detail::GuardStatis([&] { return analyse(Data, Classes, kernels::takeDeviations); },
                          [] { return "LeveneTest: not enough memory"; });
  if (a.code < 0) return a.code;
  F = a.sums.F;
  return a.significance();
}

}  // namespace zel
