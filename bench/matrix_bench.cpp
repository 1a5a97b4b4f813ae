// The matrix class: sorting of rows, statistics of columns, distances, threads.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <vector>

#include "bench/peers_matrix.h"
#include "bench/rivals.h"
#include "zel/matrix/Zel_matrix.h"

namespace zel::bench {
namespace {

/// A matrix of normal deviates and the same as one array per column.
struct Twins {
  Twins(std::size_t rows, std::size_t columns) {
    const std::vector<double>& data = normalData(rows * columns);
    matrix.Resize(static_cast<int>(columns), static_cast<int>(rows));
    for (std::size_t c = 0; c < columns; ++c) {
      plain.emplace_back(data.begin() + static_cast<std::ptrdiff_t>(c * rows),
                         data.begin() + static_cast<std::ptrdiff_t>((c + 1) * rows));
      const TVector column(plain.back());
      matrix.CopyFromVec(&column, 0, 0, static_cast<int>(c) + 1, 1);
    }
  }
  TMatrix matrix;
  std::vector<std::vector<double>> plain;
};

using Shared = std::shared_ptr<std::unique_ptr<Twins>>;

void sortRows() {
  constexpr std::size_t kRows = 100000;
  constexpr std::size_t kColumns = 20;
  const Shared twins = std::make_shared<std::unique_ptr<Twins>>();
  // Both start from the unsorted table each time; copying it is part of either's work.
  const auto ours = [=] {
    TMatrix work;
    work.Assign(&(*twins)->matrix);
    work.SortRows(3, true, 0, 0, 0, 0);
    return work(20, 777);
  };
  const auto theirs = [=] {
    std::vector<std::vector<double>> work = (*twins)->plain;
    std::vector<std::size_t> order(kRows);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return work[2][a] < work[2][b]; });
    std::vector<double> room(kRows);
    for (std::vector<double>& column : work) {
      for (std::size_t k = 0; k < kRows; ++k) room[k] = column[order[k]];
      column.swap(room);
    }
    return work[19][776];
  };
  compete("sort rows of 20 columns", kRows,
          [=] {
            if (!*twins) *twins = std::make_unique<Twins>(kRows, kColumns);
            return ours() == theirs();
          },
          {{"Zel", [=] { keep(ours()); }}, {"argsort, gather", [=] { keep(theirs()); }}});
}

void columnStatistics() {
  constexpr std::size_t kRows = 100000;
  constexpr std::size_t kColumns = 20;
  const Shared twins = std::make_shared<std::unique_ptr<Twins>>();
  const auto make = [=] {
    if (!*twins) *twins = std::make_unique<Twins>(kRows, kColumns);
  };
  const auto moments = [=] {
    double total = 0;
    for (int c = 1; c <= static_cast<int>(kColumns); ++c) {
      double mean = 0;
      double variance = 0;
      (*twins)->matrix.MeanVar(c, 0, c, 0, mean, variance);
      total += mean + variance;
    }
    return total;
  };
  const auto eigenMoments = [=] {
    double total = 0;
    for (const auto& column : (*twins)->plain) {
      double mean = 0;
      double variance = 0;
      eigenMeanVariance(column.data(), column.size(), mean, variance);
      total += mean + variance;
    }
    return total;
  };
  compete("moments of 20 columns", kRows,
          [=] {
            make();
            return std::fabs(moments() - eigenMoments()) < 1e-9;
          },
          {{"Zel", [=] { keep(moments()); }}, {"Eigen", [=] { keep(eigenMoments()); }}});

  const auto ranks = [=] {
    double total = 0;
    for (int c = 1; c <= static_cast<int>(kColumns); ++c) {
      double q[3];
      (*twins)->matrix.Quartiles(c, 0, c, 0, q[0], q[1], q[2]);
      total += q[0] + q[1] + q[2] + (*twins)->matrix.Percentile(95, c, 0, c, 0);
    }
    return total;
  };
  const auto nthElements = [=] {
    double total = 0;
    for (const auto& column : (*twins)->plain) {
      std::vector<double> work = column;
      const auto n = static_cast<double>(work.size());
      const auto at = [&](std::ptrdiff_t k) {
        std::nth_element(work.begin(), work.begin() + k, work.end());
        return work[static_cast<std::size_t>(k)];
      };
      for (const double p : {0.25, 0.5, 0.75}) {
        const double position = (n + 1) * p - 1;
        const auto k = static_cast<std::ptrdiff_t>(position);
        const double low = at(k);
        const double high = *std::min_element(work.begin() + k + 1, work.end());
        total += low + (position - static_cast<double>(k)) * (high - low);
      }
      total += at(static_cast<std::ptrdiff_t>(n * 0.95));
    }
    return total;
  };
  compete("quartiles and 95 % of 20 columns", kRows,
          [=] {
            make();
            return std::fabs(ranks() - nthElements()) < 1e-9;
          },
          {{"Zel", [=] { keep(ranks()); }}, {"std::nth_element", [=] { keep(nthElements()); }}});
}

void distances() {
  constexpr std::size_t kRows = 2000;
  constexpr std::size_t kColumns = 20;
  struct State {
    Twins twins{kRows, kColumns};
    TMatrix ours;
    std::vector<double> theirs = std::vector<double>(kRows * kRows);
  };
  const auto state = std::make_shared<std::unique_ptr<State>>();
  const auto run = [=] { (*state)->twins.matrix.CalcDistMat(dmEuclid, &(*state)->ours); };
  const auto plain = [=] {
    plainDistances((*state)->twins.matrix.Elements().data(), kRows, kColumns,
                   (*state)->theirs.data());
  };
  compete("distances of rows, 20 columns", kRows,
          [=] {
            if (!*state) *state = std::make_unique<State>();
            (*state)->ours.Resize(kRows, kRows);
            run();
            plain();
            return std::equal((*state)->theirs.begin(), (*state)->theirs.end(),
                              (*state)->ours.begin());
          },
          {{"Zel",
            [=] {
              run();
              keep((*state)->ours(7, 9));
            }},
           {"plain loop", [=] {
              plain();
              keep((*state)->theirs[77]);
            }}});
}

void threads() {
  constexpr std::size_t kRows = 20000;
  constexpr std::size_t kColumns = 300;
  const Shared twins = std::make_shared<std::unique_ptr<Twins>>();
  const auto square = [=](int workers) {
    TMatrix result;
    (*twins)->matrix.Square(&result, 1, workers);
    return result(7, 9);
  };
  compete("Square on 2 threads, 300 columns", kRows,
          [=] {
            if (!*twins) *twins = std::make_unique<Twins>(kRows, kColumns);
            return square(1) == square(2);
          },
          {{"Zel", [=] { keep(square(2)); }}, {"Zel on 1 thread", [=] { keep(square(1)); }}});
}

const bool kRegistered = [] {
  sortRows();
  columnStatistics();
  distances();
  threads();
  return true;
}();

}  // namespace
}  // namespace zel::bench
