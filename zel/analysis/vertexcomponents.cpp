#include "zel/analysis/vertexcomponents.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <span>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/foundation/randoms.h"
#include "zel/kernels/cross_products.h"
#include "zel/kernels/jacobi.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/products.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/sums.h"

namespace zel {

namespace {

using detail::Numbers;
using kernels::ConstMatrix;
using kernels::Factor;
using kernels::Matrix;

/// A matrix with its storage.
struct Dense {
  Dense(std::size_t rows, std::size_t columns) : storage(rows * columns), rows(rows) {}
  explicit Dense(ConstMatrix a) : Dense(a.rows, a.columns) {
    for (std::size_t c = 0; c < a.columns; ++c) std::ranges::copy(a[c], view().column(c));
  }
  [[nodiscard]] Matrix view() { return {storage.data(), rows, storage.size() / rows, rows}; }
  Numbers storage;
  std::size_t rows;
};

/// Unit vectors of the directions in which the data have the largest squares about the centre.
/// @param basis  takes one in each of its columns
/// @return false if the data have fewer dimensions, or without convergence
bool findSubspace(ConstMatrix data, std::span<const double> centre, Matrix basis) {
  const std::size_t n = data.columns;
  Dense squares(n, n);
  kernels::crossProducts(data, centre, Numbers(n, 1.0), 0, n, squares.view());
  kernels::transposeSquare(squares.view());  // the rotations read what is above the diagonal
  Numbers values(n);
  Dense vectors(n, n);
  if (kernels::jacobiEigenvectors(squares.view(), values, vectors.view()) !=
      kernels::JacobiStatus::done) {
    return false;
  }
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), std::size_t{0});
  // Not std::stable_sort, which allocates; ties go by the index.
  std::ranges::sort(order, [&](std::size_t a, std::size_t b) {
    return values[a] > values[b] || (values[a] == values[b] && a < b);
  });
  constexpr double kNothing = 1e-13;
  if (!(values[order[basis.columns - 1]] > kNothing * values[order[0]])) return false;
  for (std::size_t k = 0; k < basis.columns; ++k) {
    std::ranges::copy(vectors.view()[order[k]], basis.column(k));
  }
  return true;
}

/// One row of p numbers per observation, in which the vertices are looked for: its position in the
/// subspace, scaled to the plane of the mean.
Dense projectiveCoordinates(ConstMatrix scores) {
  Numbers mean(scores.columns);
  for (std::size_t k = 0; k < scores.columns; ++k) mean[k] = kernels::mean(scores[k]);
  Numbers sizes(scores.rows);
  kernels::multiplyVector(scores, Factor::plain, mean, sizes);
  Dense result(scores);
  for (std::size_t k = 0; k < scores.columns; ++k) {
    for (std::size_t r = 0; r < scores.rows; ++r) {
      double& y = result.view()(r, k);
      y = sizes[r] > 0 ? y / sizes[r] : 0;
    }
  }
  return result;
}

/// The same for positions about the mean: a last coordinate lifts them all from the origin.
Dense liftedCoordinates(ConstMatrix scores) {
  Dense result(scores.rows, scores.columns + 1);
  double farthest = 0;
  for (std::size_t r = 0; r < scores.rows; ++r) {
    double square = 0;
    for (std::size_t k = 0; k < scores.columns; ++k) {
      const double x = scores(r, k);
      result.view()(r, k) = x;
      square += x * x;
    }
    farthest = std::max(farthest, square);
  }
  std::ranges::fill(result.view()[scores.columns], std::sqrt(farthest));
  return result;
}

/// Rows of the vertices, as many as there are coordinates.
/// @return false if fewer are found
bool findVertices(ConstMatrix coordinates, std::vector<std::size_t>& vertices) {
  const std::size_t p = coordinates.columns;
  Dense found(p, p);
  found.view()(p - 1, 0) = 1;
  Numbers direction(p);
  Numbers parts(p);
  Numbers distances(coordinates.rows);
  for (std::size_t k = 0; k < p; ++k) {
    // The first direction is orthogonal to the last axis; then there is a vertex for each column.
    const ConstMatrix span = found.view().block(0, 0, p, std::max<std::size_t>(k, 1));
    for (double& v : direction) v = GRandom();
    const std::span<double> part(parts.data(), span.columns);
    bool isNearSingular = false;
    if (!kernels::svdLeastSquares(span, direction, part, {}, isNearSingular)) return false;
    for (std::size_t c = 0; c < span.columns; ++c) {
      for (std::size_t i = 0; i < p; ++i) direction[i] -= part[c] * span(i, c);
    }
    kernels::multiplyVector(coordinates, Factor::plain, direction, distances);
    const auto farthest = static_cast<std::size_t>(
        std::ranges::max_element(distances, {}, [](double d) { return std::abs(d); }) -
        distances.begin());
    if (std::ranges::find(vertices, farthest) != vertices.end()) return false;
    vertices.push_back(farthest);
    for (std::size_t i = 0; i < p; ++i) found.view()(i, k) = coordinates(farthest, i);
  }
  return true;
}

}  // namespace

bool VertexCompAnalysis(const TMatrix* Data, int NEndmembers, bool HighSNR, TMatrix* Endmembers,
                        TIntVector* Indices, TMatrix* Fractions) {
  if (!Data || NEndmembers < 2 || NEndmembers > std::min(Data->NrOfRows(), Data->NrOfColumns())) {
    return false;
  }
  return detail::GuardFit("VertexCompAnalysis", [&] {
    const auto exponent = kernels::extremeExponent(detail::ViewOf(*Data));
    if (!exponent) return false;
    Dense storage(detail::ViewOf(*Data));
    const Matrix data = storage.view();
    kernels::scaleByPower(data, -*exponent);

    const std::size_t n = data.columns;
    const auto p = static_cast<std::size_t>(NEndmembers);
    Numbers centre(n);
    if (!HighSNR) {
      for (std::size_t c = 0; c < n; ++c) centre[c] = kernels::mean(data[c]);
    }
    Dense basis(n, HighSNR ? p : p - 1);
    if (!findSubspace(data, centre, basis.view())) return false;
    if (!HighSNR) {
      for (std::size_t c = 0; c < n; ++c) {
        for (double& x : data[c]) x -= centre[c];
      }
    }
    Dense scores(data.rows, basis.view().columns);
    kernels::multiply(data, Factor::plain, basis.view(), Factor::plain, scores.view());

    std::vector<std::size_t> vertices;
    Dense coordinates =
        HighSNR ? projectiveCoordinates(scores.view()) : liftedCoordinates(scores.view());
    if (!findVertices(coordinates.view(), vertices)) return false;

    Dense chosen(p, basis.view().columns);
    for (std::size_t k = 0; k < p; ++k) {
      for (std::size_t c = 0; c < chosen.view().columns; ++c) {
        chosen.view()(k, c) = scores.view()(vertices[k], c);
      }
    }
    detail::TResults results;
    Dense pure(p, n);
    kernels::multiply(chosen.view(), Factor::plain, basis.view(), Factor::transposed, pure.view());
    for (std::size_t c = 0; c < n; ++c) {
      for (double& x : pure.view()[c]) x += centre[c];
    }
    if (Fractions) {
      Dense inverse(n, p);
      if (!kernels::pseudoInverse(pure.view(), 0, inverse.view())) return false;
      // The data are still those about the centre, which has its own mixture.
      Numbers ofCentre(p);
      kernels::multiplyVector(inverse.view(), Factor::transposed, centre, ofCentre);
      const Matrix fractions = results.Add(Fractions, data.rows, p);
      kernels::multiply(data, Factor::plain, inverse.view(), Factor::plain, fractions);
      for (std::size_t k = 0; k < p; ++k) {
        for (double& x : fractions[k]) x += ofCentre[k];
      }
    }
    kernels::scaleByPower(pure.view(), *exponent);
    results.Add(Endmembers, pure.view());
    const std::span<int> rows = results.Add(Indices, Indices ? p : 0);
    for (std::size_t k = 0; k < rows.size(); ++k) rows[k] = static_cast<int>(vertices[k]) + 1;
    results.Commit();
    return true;
  });
}

}  // namespace zel
