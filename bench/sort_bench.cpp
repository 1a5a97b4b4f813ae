// Sorts and order statistics beside the standard library's. Every iteration works on a fresh copy
// of one of several arrays in random order, so that no branch predictor learns them; both rivals
// copy.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "zel/kernels/comb_sort.h"
#include "zel/kernels/order_statistics.h"
#include "zel/kernels/select.h"

namespace {

using Size = std::size_t;

enum class Data { Random, MostlyEqual };

// Arrays of n keys, enough of them that their sizes sum up to 64 thousand keys, and at least two.
template <class T>
class Pool {
 public:
  Pool(Size n, Data data) : work_(n) {
    std::mt19937_64 random(n);
    arrays_.resize(std::max<Size>(2, 65536 / n));
    for (auto& keys : arrays_) {
      keys.resize(n);
      for (T& key : keys) {
        const bool equal = data == Data::MostlyEqual && random() % 20 != 0;
        key = equal ? T(1 << 20) : static_cast<T>(random() >> (std::is_integral_v<T> ? 33 : 11));
      }
    }
  }
  std::span<T> fresh() {
    const auto& keys = arrays_[next_];
    next_ = (next_ + 1) % arrays_.size();
    std::copy(keys.begin(), keys.end(), work_.begin());
    return work_;
  }

 private:
  std::vector<std::vector<T>> arrays_;
  std::vector<T> work_;
  Size next_ = 0;
};

template <class T>
void zelSort(std::span<T> x) {
  zel::kernels::combSortFast(x, x.size(), true);
}
template <class T>
void stdSort(std::span<T> x) {
  std::sort(x.begin(), x.end());
}

template <class T>
double zelMedian(std::span<T> x) {
  return zel::kernels::percentileBySelection(x, 50);
}
template <class T>
double stdMedian(std::span<T> x) {
  const auto middle = x.begin() + static_cast<std::ptrdiff_t>((x.size() - 1) / 2);
  std::nth_element(x.begin(), middle, x.end());
  if (x.size() % 2 == 1) return static_cast<double>(*middle);
  const auto low = static_cast<double>(*middle);
  return low + 0.5 * (static_cast<double>(*std::min_element(middle + 1, x.end())) - low);
}

template <class T>
double zelQuickSelect(std::span<T> x) {
  return static_cast<double>(zel::kernels::quickSelect(x, x.size() / 4));
}
template <class T>
double stdNthElement(std::span<T> x) {
  const auto at = x.begin() + static_cast<std::ptrdiff_t>(x.size() / 4);
  std::nth_element(x.begin(), at, x.end());
  return static_cast<double>(*at);
}

template <class T>
zel::kernels::Quartiles zelQuartiles(std::span<T> x) {
  return zel::kernels::quartilesBySelection(x);
}
template <class T>
zel::kernels::Quartiles sortedQuartiles(std::span<T> x) {
  std::sort(x.begin(), x.end());
  return zel::kernels::quartilesSorted(x);
}

bool same(double a, double b) { return a == b; }
bool same(const zel::kernels::Quartiles& a, const zel::kernels::Quartiles& b) {
  return a.q1 == b.q1 && a.q2 == b.q2 && a.q3 == b.q3;
}

// Registers a kernel and its peer under "<kernel>/<impl>/<n>". Either changes the array, or returns
// the result; both are compared before anything is timed.
template <class T, class Result>
void compare(const std::string& kernel, Size n, Data data, Result (*zel)(std::span<T>),
             const std::string& peerName, Result (*peer)(std::span<T>)) {
  const auto add = [&](const std::string& name, Result (*call)(std::span<T>),
                       Result (*other)(std::span<T>)) {
    const auto run = [=](benchmark::State& state) {
      Pool<T> pool(n, data);
      Pool<T> otherPool(n, data);
      const auto x = pool.fresh();
      const auto y = otherPool.fresh();
      bool equal = false;
      if constexpr (std::is_void_v<Result>) {
        call(x);
        other(y);
        equal = std::equal(x.begin(), x.end(), y.begin());
      } else {
        equal = same(call(x), other(y));
      }
      if (!equal) {
        state.SkipWithError("results differ");
        return;
      }
      for (auto _ : state) {
        const auto keys = pool.fresh();
        if constexpr (std::is_void_v<Result>) {
          call(keys);
        } else {
          benchmark::DoNotOptimize(call(keys));
        }
        benchmark::ClobberMemory();
      }
    };
    benchmark::RegisterBenchmark((kernel + '/' + name + '/' + std::to_string(n)).c_str(), run);
  };
  add("Zel", zel, peer);
  add(peerName, peer, zel);
}

const bool kRegistered = [] {
  for (const Size n : {1000u, 10000u, 100000u, 1000000u, 10000000u}) {
    compare("sort double", n, Data::Random, zelSort<double>, "std::sort", stdSort<double>);
    compare("sort int32", n, Data::Random, zelSort<std::int32_t>, "std::sort",
            stdSort<std::int32_t>);
  }
  for (const Size n : {1000u, 100000u, 1000000u}) {
    compare("median", n, Data::Random, zelMedian<double>, "std::nth_element", stdMedian<double>);
    compare("median 95% equal", n, Data::MostlyEqual, zelMedian<double>, "std::nth_element",
            stdMedian<double>);
    compare("quick select", n, Data::Random, zelQuickSelect<double>, "std::nth_element",
            stdNthElement<double>);
    compare("quick select 95% equal", n, Data::MostlyEqual, zelQuickSelect<double>,
            "std::nth_element", stdNthElement<double>);
    compare("quartiles", n, Data::Random, zelQuartiles<double>, "std::sort",
            sortedQuartiles<double>);
  }
  return true;
}();

}  // namespace
