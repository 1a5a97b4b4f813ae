#include "bench/rivals.h"

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <random>

namespace zel::bench {

void compete(const std::string& kernel, std::size_t n, std::function<bool()> agree,
             std::vector<Rival> rivals) {
  enum class Verdict { unknown, agree, differ };
  const auto verdict = std::make_shared<Verdict>(Verdict::unknown);
  for (const Rival& rival : rivals) {
    const std::string name = kernel + "/" + rival.implementation + "/" + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [verdict, agree, run = rival.run](benchmark::State& state) {
                                   if (*verdict == Verdict::unknown)
                                     *verdict = agree() ? Verdict::agree : Verdict::differ;
                                   if (*verdict == Verdict::differ) {
                                     state.SkipWithError("the results differ from the reference");
                                     return;
                                   }
                                   for ([[maybe_unused]] auto _ : state) run();
                                 });
  }
}

void keep(double value) { benchmark::DoNotOptimize(value); }

const std::vector<double>& normalData(std::size_t n) {
  static std::map<std::size_t, std::vector<double>> data;
  std::vector<double>& x = data[n];
  if (x.empty()) {
    std::mt19937_64 random(n);
    std::normal_distribution<double> normal(5, 2);
    x.resize(n);
    for (double& v : x) v = normal(random);
  }
  return x;
}

}  // namespace zel::bench
