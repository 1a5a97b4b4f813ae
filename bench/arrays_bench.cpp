// Routines on plain arrays beside Eigen, the standard library and textbook loops.

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/peers_arrays.h"
#include "bench/rivals.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel::bench {
namespace {

bool areClose(double a, double b) { return std::abs(a - b) <= 1e-11 * std::abs(b); }

template <class T>
std::vector<T> numbers(std::size_t n, unsigned seed = 1) {
  std::mt19937 random(seed);
  std::vector<T> x(n);
  for (T& v : x) v = static_cast<T>(random() >> 8);
  return x;
}

/// Data that is made on first use.
template <class Make>
auto onFirstUse(Make make) {
  return [ data = std::make_shared<std::unique_ptr<decltype(make())>>(), make ]() -> auto& {
    if (!*data) *data = std::make_unique<decltype(make())>(make());
    return **data;
  };
}

void addOneDimensional(std::size_t n) {
  const auto x = onFirstUse([n] { return numbers<double>(n); });
  const auto ints = onFirstUse([n] { return numbers<int>(n); });
  const auto more = onFirstUse([n] { return numbers<int>(n, 2); });
  const auto singles = onFirstUse([n] { return numbers<float>(n); });
  const int last = static_cast<int>(n) - 1;

  const auto percentile = [x] { return PercentileArray(30, x()); };
  const auto nth = [x, n] {
    std::vector<double> copy = x();
    const auto at = copy.begin() + static_cast<std::ptrdiff_t>(std::nearbyint(0.3 * double(n)));
    std::nth_element(copy.begin(), at, copy.end());
    return *at;
  };
  compete("PercentileArray", n, [=] { return percentile() == nth(); },
          {{"Zel", [=] { keep(percentile()); }}, {"std::nth_element", [=] { keep(nth()); }}});

  const auto sort = [x] {
    std::pair<TDoubleArray, TIntArray> sorted{x(), {}};
    SortArray(true, sorted.first, sorted.second);
    return sorted;
  };
  const auto sortPlaces = [x] {
    std::pair<TDoubleArray, TIntArray> sorted{x(), TIntArray(x().size())};
    auto& [keys, places] = sorted;
    std::iota(places.begin(), places.end(), 1);
    const auto key = [&](int place) { return x()[static_cast<std::size_t>(place - 1)]; };
    std::sort(places.begin(), places.end(), [&](int a, int b) { return key(a) < key(b); });
    std::ranges::transform(places, keys.begin(), key);
    return sorted;
  };
  compete("SortArray with places", n, [=] { return sort().first == sortPlaces().first; },
          {{"Zel", [=] { keep(sort().first[0]); }},
           {"std::sort", [=] { keep(sortPlaces().first[0]); }}});

  const auto deviation = [=] {
    double result = 0;
    StdDevArray(ints(), 0, last, result);
    return result;
  };
  const auto eigen = [=] { return eigenDeviation(ints().data(), n); };
  compete("StdDevArray int", n, [=] { return areClose(deviation(), eigen()); },
          {{"Zel", [=] { keep(deviation()); }}, {"Eigen", [=] { keep(eigen()); }}});

  const auto limits = [=](bool zel) {
    float low = 0;
    float high = 0;
    if (zel) {
      MinMaxArray(singles(), low, high);
    } else {
      eigenMinMax(singles().data(), n, low, high);
    }
    return std::pair(low, high);
  };
  compete("MinMaxArray single", n, [=] { return limits(true) == limits(false); },
          {{"Zel", [=] { keep(double(limits(true).first)); }},
           {"Eigen", [=] { keep(double(limits(false).first)); }}});

  const auto sum = onFirstUse([n] { return std::vector<int>(n); });
  compete("AddArrays int", n,
          [=] {
            std::vector<int> result;
            AddArrays(ints(), more(), result);
            eigenAdd(ints().data(), more().data(), n, sum().data());
            return result == sum();
          },
          {{"Zel", [=] { AddArrays(ints(), more(), sum()); }},
           {"Eigen", [=] { eigenAdd(ints().data(), more().data(), n, sum().data()); }}});
}

void addImages(std::size_t n) {
  const auto image = onFirstUse([n] {
    TDouble2DArray a(n, n);
    std::ranges::copy(numbers<double>(n * n), a.begin());
    return a;
  });
  const int last = static_cast<int>(n) - 1;
  const auto innerMean = [=] {
    double mean = 0;
    MeanArray(image(), 1, 1, last - 1, last - 1, mean);
    return mean;
  };
  const auto eigenMean = [=] { return eigenInnerMean(image().data(), n, n); };
  compete("MeanArray of a region", n, [=] { return areClose(innerMean(), eigenMean()); },
          {{"Zel", [=] { keep(innerMean()); }}, {"Eigen", [=] { keep(eigenMean()); }}});

  const auto canvas = onFirstUse([n] { return TDouble2DArray(n, n); });
  compete("FillArray of a region", n,
          [=] {
            TDouble2DArray other(n, n);
            eigenFillInner(other.data(), n, n, 3);
            FillArray(canvas(), 3, 1, 1, last - 1, last - 1);
            return canvas() == other;
          },
          {{"Zel", [=] { FillArray(canvas(), 3, 1, 1, last - 1, last - 1); }},
           {"Eigen", [=] { eigenFillInner(canvas().data(), n, n, 3); }}});

  const auto edge = onFirstUse([n] { return TDoubleArray(n); });
  compete("EdgeVector of rows", n,
          [=] {
            TDoubleArray means;
            EdgeVector(image(), orVertical, eoMean, means);
            eigenRowMeans(image().data(), n, n, edge().data());
            return std::ranges::equal(means, edge(), areClose);
          },
          {{"Zel", [=] { EdgeVector(image(), orVertical, eoMean, edge()); }},
           {"Eigen", [=] { eigenRowMeans(image().data(), n, n, edge().data()); }}});

  // Connected ground with a cell in five left out; every fill turns it into another colour.
  const auto ground = onFirstUse([n] {
    TInt2DArray a(n, n);
    std::mt19937 random(4);
    for (int& cell : a) cell = random() % 5 == 0 ? -1 : 0;
    a(0, 0) = 0;
    return std::pair(a, 0);
  });
  const auto fill = [=](bool zel) {
    auto& [a, colour] = ground();
    int bound = 0;
    const int size = static_cast<int>(n);
    colour = 1 - colour;
    return zel ? FloodFillArray(0, 0, colour, a, bound, bound, bound, bound)
               : stackFloodFill(a.data(), size, size, 0, 0, colour);
  };
  compete("FloodFillArray", n, [=] { return fill(true) == fill(false); },
          {{"Zel", [=] { keep(fill(true)); }}, {"stack of cells", [=] { keep(fill(false)); }}});
}

const bool kRegistered = [] {
  for (const std::size_t n : {1000u, 100000u, 1000000u}) addOneDimensional(n);
  for (const std::size_t n : {100u, 1000u}) addImages(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
