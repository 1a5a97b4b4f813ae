/// @file
/// The nearest pair of a changing set of objects.
#pragma once

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "zel/kernels/minmax.h"

namespace zel::kernels {

/// For each object i the nearest object j > i, and of these pairs the nearest: the one that a
/// search of all pairs finds, i ascending and j inside, where a strictly smaller distance wins.
///
/// What a change invalidates is only searched again when it may be the nearest pair: the old
/// distance stays as a lower bound. (The idea is that of Muellner's generic algorithm,
/// arXiv:1109.2378, which leaves the choice among equal distances open.)
class NearestPairs {
 public:
  /// Nearest object of one object.
  struct Partner {
    std::size_t index = kNoIndex;
    double distance = std::numeric_limits<double>::max();
  };

  /// All objects are to be searched.
  /// @throws std::bad_alloc
  explicit NearestPairs(std::size_t n)
      : FBounds(n, -std::numeric_limits<double>::infinity()), FPartners(n), FStale(n, true) {}

  /// Leaves the last objects out.
  void shrink(std::size_t n) { FBounds.resize(n); }
  /// An object has no pairs any more, as the first of them.
  void remove(std::size_t i) {
    FStale[i] = false;
    FBounds[i] = std::numeric_limits<double>::max();
  }
  /// All pairs of an object, as the first of them, have changed.
  void refresh(std::size_t i) {
    FStale[i] = true;
    FBounds[i] = -std::numeric_limits<double>::infinity();
  }
  /// The pair (i, j) is no more, or is farther apart than it was.
  void invalidate(std::size_t i, std::size_t j) {
    if (FPartners[i] == j) FStale[i] = true;
  }
  /// The pair (i, j) has got this distance; if it had one before, that was invalidated.
  void offer(std::size_t i, std::size_t j, double distance) {
    if (distance < FBounds[i]) {
      FBounds[i] = distance;
      FPartners[i] = j;
      FStale[i] = false;
    } else if (distance == FBounds[i] && !FStale[i] && j < FPartners[i]) {
      FPartners[i] = j;
    }
  }

  /// The nearest pair; (kNoIndex, kNoIndex) if no distance is below the largest double.
  /// @param search  search(i): nearest partner of i, the first of several
  template <class Search>
  std::pair<std::size_t, std::size_t> nearest(Search&& search) {
    while (true) {
      const std::size_t i = least(FBounds).minIndex;
      if (i == kNoIndex) return {i, i};
      if (!FStale[i]) return {i, FPartners[i]};
      const Partner found = search(i);
      FPartners[i] = found.index;
      FBounds[i] = found.distance;
      FStale[i] = false;
    }
  }

 private:
  std::vector<double> FBounds;
  std::vector<std::size_t> FPartners;
  std::vector<char> FStale;
};

}  // namespace zel::kernels
