#include "zel/kernels/power_of_matrix.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

#include "zel/kernels/products.h"

namespace zel::kernels {

ScaledNumber centreOfPower(ConstMatrix a, int n) {
  const std::size_t m = a.rows;
  std::vector<double> now(m * m);
  std::vector<double> next(m * m);
  const auto view = [m](std::vector<double>& storage) { return Matrix{storage.data(), m, m, m}; };
  for (std::size_t c = 0; c < m; ++c) std::ranges::copy(a[c], view(now).column(c));
  int exponent = 0;
  const auto multiplyBy = [&](ConstMatrix factor) {
    multiply(view(now), Factor::plain, factor, Factor::plain, view(next));
    now.swap(next);
  };
  const auto power = static_cast<unsigned>(n);
  for (unsigned bit = std::bit_floor(power) >> 1; bit != 0; bit >>= 1) {
    multiplyBy(view(now));
    exponent *= 2;
    if (power & bit) multiplyBy(a);
    if (view(now)(m / 2, m / 2) > 1e140) {
      for (double& v : now) v *= 1e-140;
      exponent += 140;
    }
  }
  return {view(now)(m / 2, m / 2), exponent};
}

}  // namespace zel::kernels
