// Runs the benchmarks with the rivals interleaved, several times each, and prints one table of
// medians: kernel, size, Zel's time, the peer and its time, the ratio (below 1 Zel is faster), and
// the growth exponent of Zel's time since the next smaller size. Options of the benchmark library
// may follow, for example --benchmark_filter=sum.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace {

struct Entry {
  std::string kernel;
  std::string implementation;
  double n = 0;
  std::vector<double> nanoseconds;

  [[nodiscard]] double median() const {
    std::vector<double> sorted = nanoseconds;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 != 0 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2;
  }
};

/// Collects the repetitions.
class Collector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const std::string name = run.run_name.function_name;
      if (run.error_occurred) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
        hasFailed = true;
        continue;
      }
      if (run.run_type != Run::RT_Iteration) continue;
      Entry& entry = EntryOf(name);
      entry.nanoseconds.push_back(run.real_accumulated_time / static_cast<double>(run.iterations) *
                                  1e9);
    }
  }

  std::vector<Entry> entries;
  bool hasFailed = false;

 private:
  Entry& EntryOf(const std::string& name) {
    const auto [found, isNew] = FPositions.try_emplace(name, entries.size());
    if (isNew) {
      const std::size_t last = name.rfind('/');
      const std::size_t middle = name.rfind('/', last - 1);
      entries.push_back({name.substr(0, middle),
                         name.substr(middle + 1, last - middle - 1),
                         std::strtod(name.c_str() + last + 1, nullptr),
                         {}});
    }
    return entries[found->second];
  }

  std::map<std::string, std::size_t> FPositions;
};

std::string timeText(double nanoseconds) {
  const char* const units[] = {"ns", "us", "ms", "s"};
  int unit = 0;
  while (nanoseconds >= 1000 && unit < 3) {
    nanoseconds /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.3g %s", nanoseconds, units[unit]);
  return text;
}

void printTable(std::vector<Entry> entries) {
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.kernel, a.n, a.implementation) < std::tie(b.kernel, b.n, b.implementation);
  });
  std::printf("%-34s %9s %10s  %-12s %10s %9s %7s\n", "kernel", "n", "Zel", "peer", "time",
              "Zel/peer", "growth");
  const Entry* smaller = nullptr;
  for (std::size_t i = 0; i < entries.size();) {
    std::size_t end = i;
    const Entry* zel = nullptr;
    for (; end < entries.size() && entries[end].kernel == entries[i].kernel &&
           entries[end].n == entries[i].n;
         ++end) {
      if (entries[end].implementation == "Zel") zel = &entries[end];
    }
    std::string growth;
    if (zel != nullptr && smaller != nullptr && smaller->kernel == zel->kernel) {
      char text[16];
      std::snprintf(text, sizeof text, "%.2f",
                    std::log(zel->median() / smaller->median()) / std::log(zel->n / smaller->n));
      growth = text;
    }
    bool hasPeer = false;
    for (std::size_t k = i; k < end; ++k) {
      const Entry& peer = entries[k];
      if (&peer == zel) continue;
      std::printf("%-34s %9.0f %10s  %-12s %10s", peer.kernel.c_str(), peer.n,
                  zel != nullptr ? timeText(zel->median()).c_str() : "-",
                  peer.implementation.c_str(), timeText(peer.median()).c_str());
      if (zel != nullptr) std::printf(" %9.3f %7s", zel->median() / peer.median(), growth.c_str());
      std::printf("\n");
      hasPeer = true;
    }
    if (!hasPeer && zel != nullptr) {
      std::printf("%-34s %9.0f %10s  %-12s %10s %9s %7s\n", zel->kernel.c_str(), zel->n,
                  timeText(zel->median()).c_str(), "-", "-", "-", growth.c_str());
    }
    if (zel != nullptr) smaller = zel;
    i = end;
  }
}

}  // namespace

int main(int argc, char** argv) {
  // What the caller gives comes later and so wins.
  std::vector<std::string> options{"--benchmark_enable_random_interleaving=true",
                                   "--benchmark_repetitions=9", "--benchmark_min_time=0.05"};
  options.insert(options.begin(), argv[0]);
  options.insert(options.end(), argv + 1, argv + argc);
  std::vector<char*> arguments;
  for (std::string& option : options) arguments.push_back(option.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return EXIT_FAILURE;
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  printTable(collector.entries);
  return collector.hasFailed ? EXIT_FAILURE : EXIT_SUCCESS;
}
