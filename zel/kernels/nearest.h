/// @file
/// Bounded lists of the nearest objects, in order of distance.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "zel/kernels/sorted_list.h"

namespace zel::kernels {

/// Order of objects at the same distance: as they were offered, or the other way round.
enum class Ties { earlierFirst, laterFirst };

/// The nearest of the objects offered so far, ascending, with their numbers. Free places hold the
/// largest double and the number 0.
///
/// A distance that is not a number, or infinite, is no distance. Which objects come first does not
/// depend on the length of the list. Offering n objects in random order costs O(n + k^2 log(n/k))
/// for a list of k.
class NearestList {
 public:
  static constexpr double kFree = std::numeric_limits<double>::max();

  /// @throws std::bad_alloc
  NearestList(std::size_t length, Ties ties)
      : FTies(ties), FDistances(length, kFree), FNumbers(length, 0) {}

  /// Empties the list.
  void clear() {
    std::ranges::fill(FDistances, kFree);
    std::ranges::fill(FNumbers, 0);
    FFound = 0;
  }

  void offer(double distance, int number) {
    if (FDistances.empty() || !(distance <= FDistances.back())) return;
    const std::span<const double> list(FDistances);
    const std::size_t place = FTies == Ties::laterFirst ? placeInSorted(list, distance, true, true)
                                                        : placeBehindEqual(list, distance);
    if (!insertAt(std::span(FDistances), distance, place)) return;
    insertAt(std::span(FNumbers), number, place);
    FFound = std::min(FFound + 1, FNumbers.size());
  }

  /// Offers objects with consecutive numbers.
  void offerAll(std::span<const double> distances, int first) {
    for (const double distance : distances) offer(distance, first++);
  }

  /// The same for squared distances. The root, which may make unequal values equal, is only taken
  /// of those that may come into the list.
  void offerRoots(std::span<const double> squares, int first) {
    double limit = limitOfSquares();
    for (const double square : squares) {
      if (square <= limit) {
        offer(std::sqrt(square), first);
        limit = limitOfSquares();
      }
      ++first;
    }
  }

  [[nodiscard]] std::span<const double> distances() const { return FDistances; }
  [[nodiscard]] std::span<const int> numbers() const { return FNumbers; }
  /// How many places are taken.
  [[nodiscard]] std::size_t found() const { return FFound; }

 private:
  [[nodiscard]] static std::size_t placeBehindEqual(std::span<const double> list, double distance) {
    // No branch of a short search can be foreseen, so counting is quicker.
    constexpr std::size_t kShort = 32;
    if (list.size() > kShort) {
      return static_cast<std::size_t>(std::ranges::upper_bound(list, distance) - list.begin());
    }
    std::size_t place = 0;
    for (const double d : list) place += d <= distance ? 1 : 0;
    return place;
  }
  [[nodiscard]] double limitOfSquares() const {
    // A little above the square of the last distance, whatever its rounding.
    return FDistances.empty() ? -1.0 : FDistances.back() * FDistances.back() * (1 + 1e-15);
  }

  Ties FTies;
  std::vector<double> FDistances;
  std::vector<int> FNumbers;
  std::size_t FFound = 0;
};

}  // namespace zel::kernels
