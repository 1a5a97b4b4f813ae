#include "zel/kernels/cross_products.h"

#include <algorithm>
#include <vector>

#include "zel/kernels/double_double.h"
#include "zel/kernels/products.h"
#include "zel/kernels/scratch.h"

namespace zel::kernels {

void crossProducts(ConstMatrix a, std::span<const double> c, std::span<const double> f,
                   std::size_t first, std::size_t last, Matrix r) {
  constexpr std::size_t kRun = 256;
  const std::size_t count = last - first;
  const Scratch scratch(kRun * last + 2 * count * last);
  const Matrix sums{scratch.data() + kRun * last, count, last, count};
  double* const low = sums.data + count * last;
  for (std::size_t j = 0; j < last; ++j) std::fill_n(r.column(j), count, 0.0);
  std::fill_n(low, count * last, 0.0);
  for (std::size_t row = 0; row < a.rows; row += kRun) {
    const std::size_t rows = std::min(kRun, a.rows - row);
    const Matrix run{scratch.data(), rows, last, rows};
    for (std::size_t j = 0; j < last; ++j) {
      const double* from = a.column(j) + row;
      double* to = run.column(j);
      if (f[j] == 1) {
        for (std::size_t k = 0; k < rows; ++k) to[k] = from[k] - c[j];
      } else {
        const double centre = c[j] * f[j];
        for (std::size_t k = 0; k < rows; ++k) to[k] = from[k] * f[j] - centre;
      }
    }
    multiply(run.block(0, first, rows, count), Factor::transposed, run, Factor::plain, sums);
    for (std::size_t j = 0; j < last; ++j) {
      double* const high = r.column(j);
      for (std::size_t i = 0; i < count; ++i) {
        const auto sum = twoSum(high[i], sums(i, j));
        high[i] = sum.hi;
        low[j * count + i] += sum.lo;
      }
    }
  }
  for (std::size_t j = 0; j < last; ++j) {
    for (std::size_t i = 0; i < count; ++i) r(i, j) += low[j * count + i];
  }
}

}  // namespace zel::kernels
