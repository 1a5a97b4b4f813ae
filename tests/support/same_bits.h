/// @file
/// Results that have to agree to the bit, between two ways and between instruction sets.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "tests/support/hostile.h"
#include "tests/support/simd_targets.h"

namespace zel::test {

/// The first place where two arrays differ, in a bit or in being a number; empty if nowhere.
inline std::string firstDifference(std::span<const double> a, std::span<const double> b) {
  if (a.size() != b.size()) return "lengths";
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (sameValue(a[i], b[i])) continue;
    return std::to_string(i) + ": " + std::to_string(a[i]) + " " + std::to_string(b[i]);
  }
  return "";
}

/// Calls compute, which returns numbers, for each instruction set.
template <class Compute>
void expectSameBits(Compute compute) {
  std::vector<std::vector<double>> results;
  forEachTarget([&] {
    results.push_back(compute());
    EXPECT_EQ(firstDifference(results.back(), results.front()), "");
  });
}

}  // namespace zel::test
