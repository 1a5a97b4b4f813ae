// Sums, moments, extremes and the fingerprint beside what a user would call instead.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "bench/peers_sums.h"
#include "bench/rivals.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/sums.h"

namespace zel::bench {
namespace {

bool areClose(double a, double b) { return std::abs(a - b) <= 1e-11 * std::abs(b); }

void addSum(std::size_t n) {
  const auto x = [n]() -> const std::vector<double>& { return normalData(n); };
  compete("sum", n, [x, n] { return areClose(kernels::sum(x()).hi, eigenSum(x().data(), n)); },
          {{"Zel", [x] { keep(kernels::sum(x()).hi); }},
           {"Eigen", [x, n] { keep(eigenSum(x().data(), n)); }}});
}

void addDot(std::size_t n) {
  const auto x = [n]() -> const std::vector<double>& { return normalData(n); };
  compete("sum of squares", n,
          [x, n] {
            return areClose(kernels::sumOfSquares(x()).hi, eigenDot(x().data(), x().data(), n));
          },
          {{"Zel", [x] { keep(kernels::sumOfSquares(x()).hi); }},
           {"Eigen", [x, n] { keep(eigenDot(x().data(), x().data(), n)); }}});
}

/// The data with an offset, made on first use.
const std::vector<double>& offsetData(std::size_t n, double offset) {
  if (offset == 0) return normalData(n);
  static std::map<std::size_t, std::vector<double>> data;
  std::vector<double>& x = data[n];
  if (x.empty()) {
    for (const double v : normalData(n)) x.push_back(v + offset);
  }
  return x;
}

void addMeanVariance(const char* kernel, std::size_t n, double offset) {
  const auto x = [n, offset]() -> const std::vector<double>& { return offsetData(n, offset); };
  const auto with = [x, n](void (*peer)(const double*, std::size_t, double&, double&)) {
    return [x, n, peer] {
      double mean = 0;
      double variance = 0;
      peer(x().data(), n, mean, variance);
      keep(mean + variance);
    };
  };
  compete(kernel, n,
          [x, n] {
            double mean = 0;
            double variance = 0;
            gslMeanVariance(x().data(), n, mean, variance);
            const kernels::MeanVariance zel = kernels::meanVariance(x());
            return areClose(zel.mean, mean) && areClose(zel.variance, variance);
          },
          {{"Zel",
            [x] {
              const kernels::MeanVariance mv = kernels::meanVariance(x());
              keep(mv.mean + mv.variance);
            }},
           {"Eigen", with(eigenMeanVariance)},
           {"GSL", with(gslMeanVariance)}});
}

void addMinMax(std::size_t n) {
  const auto x = [n]() -> const std::vector<double>& { return normalData(n); };
  const auto eigen = [x, n] {
    kernels::MinMax<double> r{};
    std::ptrdiff_t minIndex = 0;
    std::ptrdiff_t maxIndex = 0;
    eigenMinMax(x().data(), n, r.minimum, r.maximum, minIndex, maxIndex);
    r.minIndex = static_cast<std::size_t>(minIndex);
    r.maxIndex = static_cast<std::size_t>(maxIndex);
    return r;
  };
  compete("minimum and maximum", n,
          [x, eigen] {
            const auto a = kernels::minMax(x());
            const auto b = eigen();
            return a.minimum == b.minimum && a.maximum == b.maximum && a.minIndex == b.minIndex &&
                   a.maxIndex == b.maxIndex;
          },
          {{"Zel",
            [x] {
              const auto r = kernels::minMax(x());
              keep(r.maximum - r.minimum + static_cast<double>(r.minIndex + r.maxIndex));
            }},
           {"Eigen", [eigen] { keep(static_cast<double>(eigen().minIndex)); }}});
}

std::array<std::uint32_t, 8> zelRegisters(const std::vector<double>& x) {
  std::array<std::uint32_t, 8> registers;
  registers.fill(kernels::kCrc32Start);
  kernels::fingerprint(x, registers);
  for (auto& r : registers) r = ~r;
  return registers;
}

void addFingerprint(std::size_t n) {
  const auto planes = [n]() -> const std::vector<unsigned char>& {
    static std::map<std::size_t, std::vector<unsigned char>> all;
    std::vector<unsigned char>& bytes = all[n];
    if (bytes.empty()) {
      bytes.resize(8 * n);
      const auto* source = reinterpret_cast<const unsigned char*>(normalData(n).data());
      for (std::size_t i = 0; i < 8 * n; ++i) bytes[i % 8 * n + i / 8] = source[i];
    }
    return bytes;
  };
  const auto peer = [planes, n] {
    std::array<std::uint32_t, 8> crcs{};
    zlibCrcOfPlanes(planes().data(), n, crcs.data());
    return crcs;
  };
  compete("fingerprint", n, [peer, n] { return zelRegisters(normalData(n)) == peer(); },
          {{"Zel", [n] { keep(zelRegisters(normalData(n))[0]); }},
           {"zlib", [peer] { keep(peer()[0]); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {1'000u, 10'000u, 100'000u, 1'000'000u, 10'000'000u}) addSum(n);
  for (const std::size_t n : {1'000u, 1'000'000u}) addDot(n);
  for (const std::size_t n : {1'000u, 10'000u, 100'000u, 1'000'000u, 10'000'000u}) {
    addMeanVariance("mean and variance", n, 0);
  }
  for (const std::size_t n : {1'000u, 1'000'000u})
    addMeanVariance("mean and variance, offset 1e9", n, 1e9);
  for (const std::size_t n : {1'000u, 1'000'000u}) addMinMax(n);
  for (const std::size_t n : {1'000u, 100'000u, 1'000'000u}) addFingerprint(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
