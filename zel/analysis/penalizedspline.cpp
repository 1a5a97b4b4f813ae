#include "zel/analysis/penalizedspline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>

#include "zel/kernels/spline.h"

namespace zel {

bool PenalizedCubicSpline(int n1, int n2, double Smooth, std::span<const double> x,
                          std::span<const double> y, std::span<const double> w, std::span<double> a,
                          std::span<double> b, std::span<double> c, std::span<double> d) {
  if (n1 < 0 || n2 <= n1 || std::isnan(Smooth)) return false;
  const auto first = static_cast<std::size_t>(n1);
  const std::size_t count = static_cast<std::size_t>(n2) - first + 1;
  const std::size_t shortest =
      std::min({x.size(), y.size(), w.size(), a.size(), b.size(), c.size(), d.size()});
  if (shortest < first + count) return false;
  x = x.subspan(first, count);
  y = y.subspan(first, count);
  w = w.subspan(first, count);
  const auto finite = [](double v) { return std::isfinite(v); };
  const auto isWeight = [](double v) { return v > 0 && std::isfinite(v); };
  if (!std::all_of(x.begin(), x.end(), finite) || !std::all_of(y.begin(), y.end(), finite) ||
      !std::all_of(w.begin(), w.end(), isWeight) ||
      std::adjacent_find(x.begin(), x.end(), std::greater_equal<>()) != x.end()) {
    return false;
  }
  return kernels::penalizedSpline(x, y, w, Smooth,
                                  {a.subspan(first, count), b.subspan(first, count),
                                   c.subspan(first, count), d.subspan(first, count)});
}

}  // namespace zel
