#include "bench/peers_matrix.h"

#include <cmath>

#include <Eigen/Core>

namespace zel::bench {

void eigenTranspose(double* a, std::size_t n) {
  const auto m = static_cast<Eigen::Index>(n);
  Eigen::Map<Eigen::MatrixXd>(a, m, m).transposeInPlace();
}

void plainDistances(const double* x, std::size_t rows, std::size_t columns, double* distances) {
  for (std::size_t i = 0; i < rows; ++i) {
    distances[i * rows + i] = 0;
    for (std::size_t j = i + 1; j < rows; ++j) {
      double sum = 0;
      for (std::size_t c = 0; c < columns; ++c) {
        const double d = x[c * rows + i] - x[c * rows + j];
        sum += d * d;
      }
      distances[i * rows + j] = distances[j * rows + i] = std::sqrt(sum);
    }
  }
}

namespace {

using Runs =
    Eigen::Map<const Eigen::Array<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>>;

Runs runsOf(const double* x, std::size_t n, std::size_t runs) {
  return {x, static_cast<Eigen::Index>(runs), static_cast<Eigen::Index>(n)};
}

Eigen::Map<Eigen::Array<double, 1, Eigen::Dynamic>> rowOf(double* x, std::size_t n) {
  return {x, static_cast<Eigen::Index>(n)};
}

}  // namespace

void eigenMeanOfRuns(const double* x, std::size_t n, std::size_t runs, double* result) {
  rowOf(result, n) = runsOf(x, n, runs).colwise().mean();
}

void eigenMaximumOfRuns(const double* x, std::size_t n, std::size_t runs, double* result) {
  rowOf(result, n) = runsOf(x, n, runs).colwise().maxCoeff();
}

void eigenDeviationOfRuns(const double* x, std::size_t n, std::size_t runs, double* result) {
  const auto all = runsOf(x, n, runs);
  const Eigen::Array<double, 1, Eigen::Dynamic> mean = all.colwise().mean();
  rowOf(result, n) = (all.rowwise() - mean).square().colwise().mean().sqrt();
}

}  // namespace zel::bench
