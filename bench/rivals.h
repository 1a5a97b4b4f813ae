/// @file
/// Registration of benchmarks. Every one is called `<kernel>/<implementation>/<n>`; main.cpp sets
/// the implementation "Zel" beside each other one of the same kernel and size.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zel::bench {

struct Rival {
  std::string implementation;
  std::function<void()> run;
};

/// Registers the rivals of one kernel at one size. Before the first of them is timed, agree() runs
/// once: it compares their results with the reference, and if it returns false none is timed and
/// the program fails. Data should be made inside agree() or on first use, so that a filtered run
/// stays quick.
void compete(const std::string& kernel, std::size_t n, std::function<bool()> agree,
             std::vector<Rival> rivals);

/// Keeps a result alive without storing it.
void keep(double value);

/// n normal deviates with mean 5 and standard deviation 2, the same for everyone who asks.
const std::vector<double>& normalData(std::size_t n);

}  // namespace zel::bench
