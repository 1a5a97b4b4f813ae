/// @file
/// One-way layout: values in groups, and how much of their spread is between the groups.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zel::kernels {

/// Values with those of one group side by side, in their order.
struct GroupedValues {
  std::vector<double> values;
  std::vector<std::size_t> ends;  ///< of each group, one behind its last value

  [[nodiscard]] std::size_t groups() const { return ends.size(); }
  [[nodiscard]] std::span<double> group(std::size_t g);
};

/// Groups the values by their classes; the groups are in the order of their first values. O(n).
/// @param classes  as many as there are values
/// @throws std::bad_alloc
[[nodiscard]] GroupedValues groupByClass(std::span<const double> x,
                                         std::span<const std::int32_t> classes);

/// Replaces each value by its distance from the mean of its group.
void takeDeviations(GroupedValues& x);

/// Sums of squared deviations, and Fisher's F of the mean squares: between groups from the mean of
/// all, within groups from their means; total is the sum of the two.
struct OneWay {
  double between = 0;
  double within = 0;
  double total = 0;
  /// If there is no spread within the groups 0, or the largest double where there is one between.
  double F = 0;
  bool isSpreadWithin = false;
};

/// For at least two groups and more values than groups. Right to a few ulps whatever the offset of
/// the data. F is right for values of any size; values whose squares leave the double range get
/// scaled in place.
[[nodiscard]] OneWay oneWay(GroupedValues& x);

}  // namespace zel::kernels
