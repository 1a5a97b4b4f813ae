#include "zel/statistics/densityestimate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "zel/analysis/results_impl.h"
#include "zel/base/types.h"
#include "zel/statistics/memory_impl.h"

namespace zel {

namespace {

/// Local widths of sorted values, found from the ends of the two walks: their gaps add up to the
/// distance between the ends.
class Widths {
 public:
  Widths(std::span<const double> x, double radius) : x_(x), radius_(radius) {}

  /// To be called for i = 0, 1, 2, ... in turn.
  double operator()(std::size_t i) {
    const std::size_t last = x_.size() - 1;
    while (low_ < i && !isNear(low_, i)) ++low_;
    high_ = std::max(high_, i);
    while (high_ < last && isNear(high_ + 1, i)) ++high_;
    double sum = 0;
    std::size_t count = 0;
    const auto walk = [&](std::size_t from, std::size_t to) {
      sum += x_[to] - x_[from];
      count += to - from;
    };
    const std::size_t above = std::min(i + 1, last);
    const std::size_t below = i > 0 ? i - 1 : 0;
    if (isNear(above, i)) walk(low_ > 0 ? low_ - 1 : 0, above);
    if (isNear(below, i)) walk(below, std::min(high_ + 1, last));
    if (count == 0) return radius_;
    return (sum == 0 ? radius_ : sum) / static_cast<double>(count);
  }

 private:
  [[nodiscard]] bool isNear(std::size_t j, std::size_t i) const {
    return std::abs(x_[j] - x_[i]) < radius_;
  }

  std::span<const double> x_;
  double radius_;
  std::size_t low_ = 0;   // the first value near x[i]
  std::size_t high_ = 0;  // the last one
};

double densityAt(double at, std::span<const double> x, std::span<const double> h) {
  constexpr double kVanishes = 1500;  // exp(-750) is 0
  Extended sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double z = (at - x[i]) / h[i];
    if (!(z * z > kVanishes)) sum += std::exp(-z * z / 2) / h[i];
  }
  constexpr double kPeak = 0.3989422804014327;
  return static_cast<double>(sum * kPeak / static_cast<Extended>(x.size()));
}

}  // namespace

void EstimateProbDensity(TVector* Data, TVector* Density, double LowX, double HighX, double Factor,
                         double Radius, int NumSteps, int& MinIx, int& MaxIx,
                         const TDensityFeedback& Callback) {
  if (!Data || !Density) return;
  NumSteps = std::clamp(NumSteps, 10, 10000);
  if (Factor <= 0) Factor = 1;
  Data->SortElems(true, 1, Data->NrOfElem());
  detail::TResults results;
  std::vector<double> x, h;
  std::span<double> density;
  detail::GuardStatis(
      [&] {
        x.assign(Data->begin(), Data->end());
        h.resize(x.size());
        density = results.Add<double>(Density, static_cast<std::size_t>(NumSteps) + 1);
      },
      [] { return "EstimateProbDensity: not enough memory"; });
  const double steps = static_cast<double>(x.size()) + NumSteps;
  double count = 0;
  const auto report = [&] {
    ++count;
    if (Callback) Callback(nullptr, 100 * count / steps, count);
  };
  Widths width(x, Radius);
  for (std::size_t i = 0; i < x.size(); ++i) {
    h[i] = width(i) * Factor;
    if (h[i] == 0) h[i] = Factor;
    report();
  }
  int smallestIx = MinIx;
  int largestIx = MaxIx;
  double smallest = std::numeric_limits<double>::max();
  double largest = 0;
  for (int k = 0; k <= NumSteps; ++k) {
    const double value = densityAt(LowX + k * (HighX - LowX) / NumSteps, x, h);
    density[static_cast<std::size_t>(k)] = value;
    if (value < smallest) {
      smallest = value;
      smallestIx = k + 1;
    }
    if (value > largest) {
      largest = value;
      largestIx = k + 1;
    }
    report();
  }
  MinIx = smallestIx;
  MaxIx = largestIx;
  results.Commit();
}

}  // namespace zel
