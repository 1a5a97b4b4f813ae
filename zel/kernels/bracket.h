/// @file
/// One pass that places keys relative to a bracket, for selection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zel::kernels {

/// How the keys lie relative to a bracket low <= high. If low == high, atHigh is 0.
struct BracketCounts {
  std::size_t below = 0;
  std::size_t atLow = 0;
  std::size_t inside = 0;
  std::size_t atHigh = 0;
  std::size_t above = 0;
  bool overflow = false;   ///< no room for the inside keys; the counts mean nothing
  bool unordered = false;  ///< there is a NaN among the keys; the counts mean nothing
};

/// Room that placeKeys needs in `inside` beyond the keys that it will find there.
inline constexpr std::size_t kBracketSlack = 2048;

/// Counts the keys and copies those strictly inside the bracket, in their order.
BracketCounts placeKeys(std::span<const double> x, double low, double high,
                        std::span<double> inside);
BracketCounts placeKeys(std::span<const float> x, float low, float high, std::span<float> inside);
BracketCounts placeKeys(std::span<const std::int32_t> x, std::int32_t low, std::int32_t high,
                        std::span<std::int32_t> inside);

}  // namespace zel::kernels
