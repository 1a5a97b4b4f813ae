/// @file
/// The end of a comb sort whose passes with gap 1 do not come to an end soon.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace zel::kernels {

/// Result of all passes with gap 1 up to the first that exchanges nothing, and their number, in
/// O(n log n).
///
/// Such passes are a bubble sort: stable, and each moves every key that has a larger one before it
/// by one place to the front. So the array they end with is that of a stable sort, and the passes
/// that exchange something are as many as the longest way of a key to the front (Knuth, The Art of
/// Computer Programming 3, 5.2.2). A NaN is never exchanged, so it separates runs that are sorted
/// by themselves.
/// @param companion  moves along: as long as x, or empty
/// @throws std::bad_alloc  with x as it was
template <class T, class Companion = char>
std::size_t finishByStableSort(std::span<T> x, bool ascending,
                               std::span<Companion> companion = {}) {
  struct Item {
    T key;
    std::size_t place;
  };
  std::vector<Item> items;
  items.reserve(x.size());
  std::vector<Companion> moved(companion.begin(), companion.end());
  const auto before = [ascending](const Item& a, const Item& b) {
    if (a.key < b.key) return ascending;
    if (b.key < a.key) return !ascending;
    return a.place < b.place;
  };
  std::size_t longestWay = 0;
  for (std::size_t begin = 0; begin < x.size();) {
    items.clear();
    for (std::size_t i = begin; i < x.size() && x[i] == x[i]; ++i) items.push_back({x[i], i});
    std::sort(items.begin(), items.end(), before);
    for (std::size_t k = 0; k < items.size(); ++k) {
      x[begin + k] = items[k].key;
      if (!moved.empty()) companion[begin + k] = moved[items[k].place];
      if (items[k].place > begin + k) {
        longestWay = std::max(longestWay, items[k].place - (begin + k));
      }
    }
    begin += items.size() + 1;
  }
  return longestWay + 1;
}

}  // namespace zel::kernels
