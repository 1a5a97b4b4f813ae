#include "zel/foundation/interpolation.h"

#include <algorithm>
#include <cmath>

#include "zel/base/errors.h"
#include "zel/base/rounding.h"

namespace zel {
namespace {

struct Pivots {
  std::span<const double> x;
  std::span<const double> y;

  // The line through pivots i and i + 1, which it meets exactly. Not std::lerp: it takes a
  // position that is not a number for 1.
  double line(double at, std::size_t i) const {
    if (x[i] == x[i + 1] && !std::isnan(at)) return y[i];
    const double t = (at - x[i]) / (x[i + 1] - x[i]);
    return t == 1 ? y[i + 1] : y[i] + t * (y[i + 1] - y[i]);
  }
};

template <class T>
double interpolate(double x, double first, double last, std::span<const T> table) {
  if (table.size() < 2) {
    throw EZELMath1Error("InterpolTable: pivot array must contain at least 2 values");
  }
  if (first == last) {
    throw EZELMath1Error("InterpolTable: specified range of pivot array is zero");
  }
  if (x == last) return static_cast<double>(table.back());
  const double position = static_cast<double>(table.size() - 1) * (x - first) / (last - first);
  const auto lastSegment = static_cast<std::ptrdiff_t>(table.size() - 2);
  const auto k = std::clamp<std::ptrdiff_t>(TruncToInt<std::ptrdiff_t>(position), 0, lastSegment);
  const auto i = static_cast<std::size_t>(k);
  // In double before the difference, which two ints can overflow.
  const auto low = static_cast<double>(table[i]);
  const auto high = static_cast<double>(table[i + 1]);
  return low + (position - static_cast<double>(k)) * (high - low);
}

}  // namespace

double InterpolXYTable(double x, const TDouble2DArray& Table, bool Extrapolate) {
  const std::size_t n = Table.Length(1);
  if (n < 2) {
    throw EZELMath1Error("InterpolXYTable: pivot array must contain at least 2 rows");
  }
  if (Table.Length(0) != 2) {
    throw EZELMath1Error("InterpolXYTable: pivot array must contain 2 columns");
  }
  const Pivots pivots{Table[0], Table[1]};
  const double first = pivots.x.front();
  const double last = pivots.x.back();
  const bool upward = first <= last;
  if (upward ? x <= first : x >= first) return Extrapolate ? pivots.line(x, 0) : 0;
  if (upward ? x >= last : x <= last) return Extrapolate ? pivots.line(x, n - 2) : 0;
  // Bounded by the table, since an x or a pivot that is not a number satisfies no comparison.
  std::size_t i = upward ? 0 : n - 2;
  if (upward) {
    while (i < n - 2 && !(x <= pivots.x[i + 1])) ++i;
  } else {
    while (i > 0 && !(x <= pivots.x[i])) --i;
  }
  return pivots.line(x, i);
}

double InterpolTable(double x, double FirstX, double LastX, std::span<const double> Table) {
  return interpolate(x, FirstX, LastX, Table);
}

double InterpolTable(double x, double FirstX, double LastX, std::span<const int> Table) {
  return interpolate(x, FirstX, LastX, Table);
}

double InterpolZofXYRect(double z1, double z2, double z3, double z4, double fx, double fy) {
  const double a = z1 + fx * (z3 - z1);
  const double b = z2 + fx * (z4 - z2);
  return a + fy * (b - a);
}

}  // namespace zel
