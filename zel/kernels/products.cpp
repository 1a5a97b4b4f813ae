#include "zel/kernels/products.h"

#include <cmath>
#include <utility>

namespace zel::kernels {

namespace {

double entry(ConstMatrix m, Factor as, std::size_t r, std::size_t c) {
  return as == Factor::plain ? m(r, c) : m(c, r);
}

}  // namespace

void multiply(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c) {
  const std::size_t inner = asA == Factor::plain ? a.columns : a.rows;
  for (std::size_t j = 0; j < c.columns; ++j) {
    for (std::size_t i = 0; i < c.rows; ++i) {
      double sum = 0;
      for (std::size_t k = 0; k < inner; ++k) {
        sum = std::fma(entry(a, asA, i, k), entry(b, asB, k, j), sum);
      }
      c(i, j) = sum;
    }
  }
}

void subtractProduct(ConstMatrix a, Factor asA, ConstMatrix b, Factor asB, Matrix c) {
  const std::size_t inner = asA == Factor::plain ? a.columns : a.rows;
  for (std::size_t j = 0; j < c.columns; ++j) {
    for (std::size_t i = 0; i < c.rows; ++i) {
      for (std::size_t k = 0; k < inner; ++k) {
        c(i, j) = std::fma(-entry(a, asA, i, k), entry(b, asB, k, j), c(i, j));
      }
    }
  }
}

void multiplyVector(ConstMatrix a, Factor asA, std::span<const double> x, std::span<double> y) {
  multiply(a, asA, {x.data(), x.size(), 1, x.size()}, Factor::plain,
           {y.data(), y.size(), 1, y.size()});
}

void squareColumns(ConstMatrix a, double divisor, std::size_t first, std::size_t last, Matrix r) {
  for (std::size_t i = first; i < last; ++i) {
    for (std::size_t j = i; j < a.columns; ++j) {
      double sum = 0;
      for (std::size_t k = 0; k < a.rows; ++k) sum = std::fma(a(k, i), a(k, j), sum);
      r(i, j) = r(j, i) = sum / divisor;
    }
  }
}

void transpose(ConstMatrix from, Matrix to) {
  for (std::size_t c = 0; c < from.columns; ++c) {
    for (std::size_t r = 0; r < from.rows; ++r) to(c, r) = from(r, c);
  }
}

void transposeSquare(Matrix a) {
  for (std::size_t c = 0; c < a.columns; ++c) {
    for (std::size_t r = 0; r < c; ++r) std::swap(a(r, c), a(c, r));
  }
}

}  // namespace zel::kernels
