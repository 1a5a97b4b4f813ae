/// @file
/// Data on which a careless sum or moment fails.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zel::test {

struct NamedData {
  std::string name;
  std::vector<double> values;
};

/// Around the sixteen lanes, and around the runs that the kernels fold.
inline const std::vector<std::size_t> kLengths{
    0,  1,  2,  3,  4,  5,   7,   8,   9,   15,   16,   17,   31,   32,   33,   47,
    48, 49, 63, 64, 65, 127, 128, 129, 255, 1000, 2047, 2048, 2049, 4113, 6150, 8209};

inline std::vector<NamedData> hostileData(std::size_t n) {
  std::mt19937_64 random(20240517 + n);
  std::uniform_real_distribution<double> unit(0, 1);
  std::normal_distribution<double> normal;
  std::vector<NamedData> all;
  const auto make = [&](const char* name, auto value) {
    NamedData data{name, std::vector<double>(n)};
    for (std::size_t i = 0; i < n; ++i) data.values[i] = value(i);
    all.push_back(std::move(data));
  };
  make("uniform", [&](std::size_t) { return unit(random); });
  make("normal", [&](std::size_t) { return normal(random); });
  make("offset 1e9", [&](std::size_t) { return 1e9 + normal(random); });
  make("offset 1e15", [&](std::size_t) { return 1e15 + normal(random); });
  make("offset -40", [&](std::size_t) { return -40 + normal(random); });
  make("1e16 and 1", [](std::size_t i) { return i % 2 == 0 ? 1e16 : 1.0; });
  make("cancelling", [](std::size_t i) { return i % 3 == 0 ? 1e16 : i % 3 == 1 ? 1.0 : -1e16; });
  make("constant", [](std::size_t) { return 0.1; });
  make("zero", [](std::size_t) { return 0.0; });
  make("zero, then not",
       [n](std::size_t i) { return i < n / 2 ? 0.0 : 0.3 + static_cast<double>(i); });
  make("outlier first", [&](std::size_t i) { return i == 0 ? 1e12 : normal(random); });
  make("outlier last", [&](std::size_t i) { return i + 1 == n ? 1e25 : normal(random); });
  make("growing",
       [&](std::size_t i) { return std::pow(1.01, static_cast<double>(i)) * normal(random); });
  make("shrinking",
       [&](std::size_t i) { return std::pow(1.02, -static_cast<double>(i)) * normal(random); });
  make("sorted",
       [n](std::size_t i) { return 100 + static_cast<double>(i) / static_cast<double>(n); });
  make("denormal", [&](std::size_t) { return unit(random) * 1e-310; });
  make("tiny", [&](std::size_t) { return normal(random) * 1e-158; });
  make("around the square root of the range", [&](std::size_t) { return normal(random) * 1e154; });
  make("huge", [&](std::size_t) { return normal(random) * 2e307; });
  make("all magnitudes", [&](std::size_t) {
    return std::ldexp(normal(random), static_cast<int>(random() % 400) - 200);
  });
  return all;
}

/// Equal bits, or both not-a-number.
inline bool sameValue(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) ||
         std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// Distance in units in the last place; 0 for equal values, huge for different signs or
/// not-a-number.
inline double ulpsApart(double a, double b) {
  if (a == b) return 0;
  if (!std::isfinite(a) || !std::isfinite(b)) return 1e300;
  const double unit = std::nextafter(std::abs(b), INFINITY) - std::abs(b);
  return std::abs(a - b) / unit;
}

}  // namespace zel::test
