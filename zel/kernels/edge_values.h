/// @file
/// The values of a matrix aggregated along one of its dimensions.
#pragma once

#include <cstddef>
#include <limits>
#include <span>

#include "zel/base/Zel_univconst.h"
#include "zel/base/types.h"
#include "zel/kernels/dense.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/rows.h"
#include "zel/kernels/sums.h"

namespace zel::kernels {

/// The value of one column or row. Of no values: the minimum is the largest double and the maximum
/// its negative, sum and mean are 0. Minimum and maximum never are not-a-number.
template <class T>
[[nodiscard]] double edgeValue(std::span<const T> x, TEdgeOp operation) {
  // Every element of T is an extreme that may be found here, the smallest integer too.
  constexpr MinMaxStart<T> start{std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()};
  switch (operation) {
    case eoMin:
      return x.empty() ? uc_MaxDouble : static_cast<double>(minMax(x, start).minimum);
    case eoMax:
      return x.empty() ? -uc_MaxDouble : static_cast<double>(minMax(x, start).maximum);
    case eoSum:
      return sum(x).hi;
    case eoMean:
      return mean(x);
  }
  return 0;
}

/// edge[k] is the value of row k for orVertical, of column k for orHorizontal.
/// @throws std::bad_alloc
template <class T>
void edgeValues(MatrixSpan<const T> m, TOrientation orientation, TEdgeOp operation,
                std::span<double> edge) {
  const auto aggregate = [&](std::size_t k, std::span<const T> x) {
    edge[k] = edgeValue(x, operation);
  };
  orientation == orVertical ? forEachRow(m, aggregate) : forEachColumn(m, aggregate);
}

}  // namespace zel::kernels
