#include "zel/kernels/one_way.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "zel/kernels/double_double.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/sample.h"

namespace zel::kernels {

namespace {

/// Divides the values by a power of two where their squares might leave the range.
/// @return the exponent
int scaleToRange(std::span<double> x) {
  constexpr int kSafe = 400;
  const auto [low, high, lowIndex, highIndex] = minMax(x);
  const double largest = std::max(std::abs(low), std::abs(high));
  if (!(largest > 0) || !std::isfinite(largest)) return 0;
  const int exponent = std::ilogb(largest);
  if (std::abs(exponent) <= kSafe) return 0;
  for (double& value : x) value = std::ldexp(value, -exponent);
  return exponent;
}

}  // namespace

std::span<double> GroupedValues::group(std::size_t g) {
  const std::size_t begin = g == 0 ? 0 : ends[g - 1];
  return std::span(values).subspan(begin, ends[g] - begin);
}

GroupedValues groupByClass(std::span<const double> x, std::span<const std::int32_t> classes) {
  GroupedValues result;
  if (x.empty()) return result;
  constexpr std::uint32_t kNew = std::numeric_limits<std::uint32_t>::max();
  const auto [low, high, lowIndex, highIndex] = minMax(classes);
  const std::int64_t range = std::int64_t{high} - low + 1;
  const bool isDense = range <= 4 * static_cast<std::int64_t>(x.size()) + 1024;
  std::vector<std::uint32_t> table(isDense ? static_cast<std::size_t>(range) : 0, kNew);
  std::unordered_map<std::int32_t, std::uint32_t> sparse;
  std::vector<std::uint32_t> groupOf(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    std::uint32_t& group = isDense ? table[static_cast<std::size_t>(std::int64_t{classes[i]} - low)]
                                   : sparse.try_emplace(classes[i], kNew).first->second;
    if (group == kNew) {
      group = static_cast<std::uint32_t>(result.ends.size());
      result.ends.push_back(0);
    }
    groupOf[i] = group;
    ++result.ends[group];
  }
  // From counts to places of first values, which move to the ends as the values are written.
  std::size_t place = 0;
  for (std::size_t& end : result.ends) {
    const std::size_t count = end;
    end = place;
    place += count;
  }
  result.values.resize(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) result.values[result.ends[groupOf[i]]++] = x[i];
  return result;
}

void takeDeviations(GroupedValues& x) {
  for (std::size_t g = 0; g < x.groups(); ++g) {
    const auto group = x.group(g);
    const DoubleDouble mean = accurateMean(group);
    for (double& value : group) value = std::abs((value - mean.hi) - mean.lo);
  }
}

OneWay oneWay(GroupedValues& x) {
  const int exponent = scaleToRange(x.values);
  const DoubleDouble mean = accurateMean(x.values);
  double between = 0;
  double within = 0;
  for (std::size_t g = 0; g < x.groups(); ++g) {
    const std::span<const double> group = x.group(g);
    const auto n = static_cast<double>(group.size());
    const double distance = rounded(accurateMean(group) - mean);
    between += n * distance * distance;
    within += sampleVariance(group) * (n - 1);
  }
  OneWay result;
  result.isSpreadWithin = within != 0;
  const auto dfBetween = static_cast<double>(x.groups() - 1);
  const auto dfWithin = static_cast<double>(x.values.size() - x.groups());
  if (result.isSpreadWithin) {
    result.F = (between / dfBetween) / (within / dfWithin);
  } else if (!isConstant(std::span<const double>(x.values))) {
    result.F = std::numeric_limits<double>::max();
  } else {
    between = 0;
  }
  result.between = std::ldexp(between, 2 * exponent);
  result.within = std::ldexp(within, 2 * exponent);
  result.total = std::ldexp(between + within, 2 * exponent);
  return result;
}

}  // namespace zel::kernels
