#include "zel/kernels/moving_median.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "zel/kernels/order_statistics.h"

namespace zel::kernels {

namespace {

/// Beyond these the interpolation of the quartile rule, which leaves the median of an odd number of
/// values alone, may overflow.
bool isPlain(double x) { return std::abs(x) <= std::numeric_limits<double>::max() / 2; }

/// The values of a block in ascending order, some of them taken out, split before a mark.
class SortedBlock {
 public:
  explicit SortedBlock(std::size_t size)
      : FTail(static_cast<std::uint32_t>(size)), FSorted(size), FNodes(size + 1) {}

  /// Starts with all values of the block and the mark at the sorted position `below`.
  /// @param x  of the size or shorter; what is missing counts as 0
  void fill(std::span<const double> x, std::size_t below) {
    for (std::uint32_t i = 0; i < FTail; ++i) {
      FSorted[i] = {i < x.size() && isPlain(x[i]) ? x[i] : 0.0, i};
    }
    std::sort(FSorted.begin(), FSorted.end(),
              [](const Key& a, const Key& b) { return a.value < b.value; });
    std::uint32_t last = FTail;
    for (std::uint32_t rank = 0; rank < FTail; ++rank) {
      const auto [value, i] = FSorted[rank];
      FNodes[i].value = value;
      FNodes[i].rank = rank;
      FNodes[i].previous = last;
      FNodes[last].next = i;
      last = i;
    }
    FNodes[last].next = FTail;
    FNodes[FTail] = {std::numeric_limits<double>::infinity(), FTail, last, FNodes[FTail].next};
    FMark = FSorted[below].index;
    FBelow = below;
  }
  /// Takes all values out, the last first.
  void empty() {
    for (std::uint32_t i = FTail; i-- > 0;) takeOut(i);
    FMark = FTail;
    FBelow = 0;
  }
  void remove(std::uint32_t i) {
    takeOut(i);
    if (isBelow(i)) {
      --FBelow;
      return;
    }
    if (FMark == i) FMark = FNodes[i].next;
    if (FBelow > 0) {
      FMark = FNodes[FMark].previous;
      --FBelow;
    }
  }
  /// Puts back the one that was taken out last of those that are out.
  void restore(std::uint32_t i) {
    FNodes[FNodes[i].previous].next = i;
    FNodes[FNodes[i].next].previous = i;
    if (isBelow(i)) FMark = FNodes[FMark].previous;
  }
  void advance() {
    FMark = FNodes[FMark].next;
    ++FBelow;
  }
  [[nodiscard]] std::size_t below() const { return FBelow; }
  /// The first value behind the mark, infinite if there is none.
  [[nodiscard]] double value() const { return FNodes[FMark].value; }

 private:
  struct Key {
    double value;
    std::uint32_t index;
  };
  struct Node {
    double value;
    std::uint32_t rank;
    std::uint32_t previous;
    std::uint32_t next;
  };
  [[nodiscard]] bool isBelow(std::uint32_t i) const { return FNodes[i].rank < FNodes[FMark].rank; }
  void takeOut(std::uint32_t i) {
    FNodes[FNodes[i].previous].next = FNodes[i].next;
    FNodes[FNodes[i].next].previous = FNodes[i].previous;
  }

  std::uint32_t FTail;  // stands behind the last and before the first
  std::vector<Key> FSorted;
  std::vector<Node> FNodes;
  std::uint32_t FMark = 0;
  std::size_t FBelow = 0;
};

/// Medians of all windows whose values are plain.
void mediansByBlocks(std::span<const double> x, std::size_t width, double* out) {
  const std::size_t count = x.size() - width + 1;
  const std::size_t half = width / 2;
  SortedBlock leaving(width);
  SortedBlock entering(width);
  entering.fill(x.first(width), half);
  out[0] = entering.value();
  for (std::size_t at = 1; at < count; at += width) {
    std::swap(leaving, entering);
    const std::size_t first = at + width - 1;
    entering.fill(x.subspan(first, std::min(width, x.size() - first)), half);
    entering.empty();
    const std::size_t steps = std::min(width, count - at);
    for (std::uint32_t i = 0; i < steps; ++i) {
      leaving.remove(i);
      entering.restore(i);
      if (leaving.below() + entering.below() < half) {
        leaving.value() <= entering.value() ? leaving.advance() : entering.advance();
      }
      out[at + i] = std::min(leaving.value(), entering.value());
    }
  }
}

}  // namespace

void movingMedians(std::span<const double> x, std::size_t width, double* out) {
  if (x.size() < width) return;
  const bool allPlain = std::all_of(x.begin(), x.end(), isPlain);
  std::vector<double> window(allPlain ? 0 : width);
  mediansByBlocks(x, width, out);
  if (allPlain) return;
  std::size_t special = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    special += isPlain(x[i]) ? 0 : 1;
    if (i + 1 < width) continue;
    const std::size_t at = i + 1 - width;
    if (special > 0) {
      std::copy_n(x.begin() + static_cast<std::ptrdiff_t>(at), width, window.begin());
      out[at] = quartilesBySort(std::span(window), NoHook()).q2;
    }
    special -= isPlain(x[at]) ? 0 : 1;
  }
}

}  // namespace zel::kernels
