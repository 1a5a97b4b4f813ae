#include "bench/peers_arrays.h"

#include <Eigen/Core>
#include <cmath>
#include <utility>

namespace zel::bench {

namespace {

template <class T>
using Image = Eigen::Array<T, Eigen::Dynamic, Eigen::Dynamic>;

template <class T>
auto inner(T* a, std::size_t rows, std::size_t columns) {
  using Plain = Image<std::remove_const_t<T>>;
  using Mapped = std::conditional_t<std::is_const_v<T>, const Plain, Plain>;
  const auto r = static_cast<Eigen::Index>(rows);
  const auto c = static_cast<Eigen::Index>(columns);
  return Eigen::Map<Mapped>(a, r, c).block(1, 1, r - 2, c - 2);
}

template <class T>
Eigen::Map<const Eigen::ArrayX<T>> mapped(const T* x, std::size_t n) {
  return {x, static_cast<Eigen::Index>(n)};
}
template <class T>
Eigen::Map<Eigen::ArrayX<T>> mapped(T* x, std::size_t n) {
  return {x, static_cast<Eigen::Index>(n)};
}

}  // namespace

double eigenInnerMean(const double* a, std::size_t rows, std::size_t columns) {
  return inner(a, rows, columns).mean();
}

void eigenFillInner(double* a, std::size_t rows, std::size_t columns, double value) {
  inner(a, rows, columns) = value;
}

double eigenDeviation(const int* x, std::size_t n) {
  const double mean = mapped(x, n).cast<double>().mean();
  const double squares = (mapped(x, n).cast<double>() - mean).square().sum();
  return std::sqrt(squares / static_cast<double>(n - 1));
}

void eigenMinMax(const float* x, std::size_t n, float& minimum, float& maximum) {
  minimum = mapped(x, n).minCoeff();
  maximum = mapped(x, n).maxCoeff();
}

void eigenRowMeans(const double* a, std::size_t rows, std::size_t columns, double* means) {
  const Eigen::Map<const Image<double>> m(a, static_cast<Eigen::Index>(rows),
                                          static_cast<Eigen::Index>(columns));
  mapped(means, rows) = m.rowwise().mean();
}

void eigenAdd(const int* a, const int* b, std::size_t n, int* sum) {
  mapped(sum, n) = mapped(a, n) + mapped(b, n);
}

void eigenAccumulate(double* a, const double* b, std::size_t n, double factor) {
  mapped(a, n) += factor * mapped(b, n);
}

int stackFloodFill(int* a, int rows, int columns, int x, int y, int value) {
  const auto cell = [&](int c, int r) -> int& {
    return a[static_cast<std::ptrdiff_t>(c) * rows + r];
  };
  const int seed = cell(x, y);
  std::vector<std::pair<int, int>> stack{{x, y}};
  int count = 0;
  while (!stack.empty()) {
    const auto [c, r] = stack.back();
    stack.pop_back();
    if (c < 0 || c >= columns || r < 0 || r >= rows || cell(c, r) != seed) continue;
    cell(c, r) = value;
    ++count;
    for (const auto& next : {std::pair{c - 1, r}, {c + 1, r}, {c, r - 1}, {c, r + 1}}) {
      stack.push_back(next);
    }
  }
  return count;
}

}  // namespace zel::bench
