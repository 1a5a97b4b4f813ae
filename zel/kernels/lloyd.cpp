#include "zel/kernels/lloyd.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include "zel/kernels/distances.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

namespace {

std::size_t place(int cluster) { return static_cast<std::size_t>(cluster); }

void countMembers(std::span<const int> assignment, std::span<int> sizes) {
  std::ranges::fill(sizes, 0);
  for (const int cluster : assignment) ++sizes[place(cluster)];
}

// Several columns at a time: additions to the sum of one column and cluster wait for each other.
constexpr std::size_t kColumns = 4;

/// Adds columns c.. of each object to the kColumns sums of its cluster.
template <std::size_t kCount>
void addColumns(ConstMatrix data, std::size_t c, std::span<const int> assignment, double* sums) {
  const double* columns[kCount];
  for (std::size_t k = 0; k < kCount; ++k) columns[k] = data.column(c + k);
  for (std::size_t r = 0; r < assignment.size(); ++r) {
    double* const own = sums + place(assignment[r]) * kColumns;
    for (std::size_t k = 0; k < kCount; ++k) own[k] += columns[k][r];
  }
}

/// @param sums  kColumns for each cluster
void plainMeans(ConstMatrix data, std::span<const int> assignment, std::span<const int> sizes,
                std::span<double> sums, Matrix means) {
  for (std::size_t c = 0; c < data.columns; c += kColumns) {
    const std::size_t count = std::min(kColumns, data.columns - c);
    std::ranges::fill(sums, 0);
    if (count == kColumns) {
      addColumns<kColumns>(data, c, assignment, sums.data());
    } else {
      for (std::size_t k = 0; k < count; ++k) {
        addColumns<1>(data, c + k, assignment, sums.data() + k);
      }
    }
    for (std::size_t k = 0; k < count; ++k) {
      for (std::size_t m = 0; m < sizes.size(); ++m) {
        means(m, c + k) = sizes[m] > 0 ? sums[m * kColumns + k] / sizes[m] : 0;
      }
    }
  }
}

/// Room for exactMeans.
struct Room {
  Room(std::size_t objects, std::size_t clusters)
      : order(objects), values(objects), next(clusters) {}
  std::vector<std::size_t> order;  ///< the objects in the order of their clusters
  std::vector<double> values;      ///< a column in that order
  std::vector<std::size_t> next;   ///< for each cluster the place of its next object
};

void exactMeans(ConstMatrix data, std::span<const int> assignment, std::span<const int> sizes,
                Room& room, Matrix means) {
  auto& [order, values, next] = room;
  std::exclusive_scan(sizes.begin(), sizes.end(), next.begin(), std::size_t{0});
  for (std::size_t r = 0; r < order.size(); ++r) order[next[place(assignment[r])]++] = r;
  for (std::size_t c = 0; c < data.columns; ++c) {
    const auto column = data[c];
    for (std::size_t r = 0; r < order.size(); ++r) values[r] = column[order[r]];
    std::size_t first = 0;
    for (std::size_t m = 0; m < sizes.size(); ++m) {
      means(m, c) = mean(std::span(values).subspan(first, place(sizes[m])));
      first += place(sizes[m]);
    }
  }
}

}  // namespace

LloydEnd lloyd(ConstMatrix data, Matrix centres, std::span<int> assignment, std::span<int> sizes,
               int limit, Poll goOn) {
  std::vector<int> nearest(data.rows);
  std::vector<double> sums(kColumns * sizes.size());
  Room room(data.rows, sizes.size());
  std::ranges::fill(assignment, -1);
  LloydEnd end = LloydEnd::settled;
  for (int passes = 1;; ++passes) {
    nearestPoints(centres, data, nearest);
    const bool changed = !std::ranges::equal(nearest, assignment);
    if (changed) {
      std::ranges::copy(nearest, assignment.begin());
      countMembers(assignment, sizes);
      plainMeans(data, assignment, sizes, sums, centres);
    }
    if (passes > limit) end = LloydEnd::tooManyPasses;
    if (!changed || passes > limit) break;
    if (!goOn()) {
      end = LloydEnd::stopped;
      break;
    }
  }
  exactMeans(data, assignment, sizes, room, centres);
  return end;
}

double sumOfSquaresWithin(ConstMatrix data, ConstMatrix centres, std::span<const int> assignment) {
  std::vector<double> squares(data.rows);
  for (std::size_t c = 0; c < data.columns; ++c) {
    const auto column = data[c];
    for (std::size_t r = 0; r < data.rows; ++r) {
      const double d = column[r] - centres(place(assignment[r]), c);
      squares[r] += d * d;
    }
  }
  return sum(squares).hi;
}

}  // namespace zel::kernels
