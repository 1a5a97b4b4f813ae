#include "bench/peers_clustering.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <limits>
#include <nanoflann.hpp>
#include <numeric>
#include <vector>

namespace zel::bench {

namespace {

using Eigen::ArrayXd;
using Eigen::MatrixXd;
using View = Eigen::Map<const MatrixXd>;

MatrixXd distancesOf(const View& data) {
  const Eigen::MatrixXd rows = data.transpose();
  MatrixXd d(data.rows(), data.rows());
  for (long j = 0; j < d.cols(); ++j) {
    d.col(j) = (rows.colwise() - rows.col(j)).colwise().norm().transpose();
  }
  return d;
}

}  // namespace

int eigenLloyd(const double* data, long rows, long columns, long clusters, int* assignment) {
  const View x(data, rows, columns);
  MatrixXd centres = x.topRows(clusters);
  Eigen::Map<Eigen::ArrayXi> own(assignment, rows);
  own.setConstant(-1);
  for (int passes = 1;; ++passes) {
    // |x - c|^2 - |x|^2
    MatrixXd scores = -2 * x * centres.transpose();
    scores.rowwise() += centres.rowwise().squaredNorm().transpose();
    bool changed = false;
    for (long i = 0; i < rows; ++i) {
      long nearest = 0;
      scores.row(i).minCoeff(&nearest);
      if (nearest == own[i]) continue;
      own[i] = static_cast<int>(nearest);
      changed = true;
    }
    if (!changed) return passes;
    centres.setZero();
    ArrayXd sizes = ArrayXd::Zero(clusters);
    for (long i = 0; i < rows; ++i) sizes[own[i]] += 1;
    for (long c = 0; c < columns; ++c) {
      for (long i = 0; i < rows; ++i) centres(own[i], c) += x(i, c);
    }
    centres.array().colwise() /= sizes.max(1);
  }
}

double plainChain(const double* data, long rows, long columns, TreeRule rule) {
  MatrixXd d = distancesOf(View(data, rows, columns));
  std::vector<double> sizes(static_cast<std::size_t>(rows), 1);
  std::vector<long> active(static_cast<std::size_t>(rows));
  std::iota(active.begin(), active.end(), 0);
  std::vector<long> chain;
  double sum = 0;
  const auto size = [&](long i) -> double& { return sizes[static_cast<std::size_t>(i)]; };
  while (active.size() > 1) {
    if (chain.empty()) chain.push_back(active.front());
    while (true) {
      const long i = chain.back();
      long nearest = chain.size() > 1 ? chain[chain.size() - 2] : -1;
      double least = nearest < 0 ? std::numeric_limits<double>::infinity() : d(nearest, i);
      for (const long k : active) {
        if (k != i && d(k, i) < least) {
          least = d(k, i);
          nearest = k;
        }
      }
      if (chain.size() > 1 && nearest == chain[chain.size() - 2]) break;
      chain.push_back(nearest);
    }
    const long i = chain[chain.size() - 2];
    const long j = chain.back();
    chain.resize(chain.size() - 2);
    const double dij = d(i, j);
    sum += dij;
    active.erase(std::lower_bound(active.begin(), active.end(), i));
    for (const long k : active) {
      if (k == j) continue;
      double v = 0;
      switch (rule) {
        case TreeRule::complete:
          v = std::max(d(k, i), d(k, j));
          break;
        case TreeRule::average:
          v = (size(i) * d(k, i) + size(j) * d(k, j)) / (size(i) + size(j));
          break;
        case TreeRule::ward:
          v = ((size(k) + size(i)) * d(k, i) + (size(k) + size(j)) * d(k, j) - size(k) * dij) /
              (size(i) + size(j) + size(k));
      }
      d(k, j) = d(j, k) = v;
    }
    size(j) += size(i);
  }
  return sum;
}

double plainSpanningTree(const double* data, long rows, long columns) {
  const MatrixXd points = View(data, rows, columns).transpose();
  std::vector<long> outside(static_cast<std::size_t>(rows - 1));
  std::iota(outside.begin(), outside.end(), 1);
  std::vector<double> reach(outside.size(), std::numeric_limits<double>::infinity());
  double sum = 0;
  for (long last = 0; !outside.empty();) {
    std::size_t best = 0;
    for (std::size_t k = 0; k < outside.size(); ++k) {
      reach[k] = std::min(reach[k], (points.col(outside[k]) - points.col(last)).norm());
      if (reach[k] < reach[best]) best = k;
    }
    sum += reach[best];
    last = outside[best];
    outside[best] = outside.back();
    outside.pop_back();
    reach[best] = reach.back();
    reach.pop_back();
  }
  return sum;
}

void plainCenters(double* data, long rows, long columns, long wanted) {
  const Eigen::Map<MatrixXd> given(data, rows, columns);
  MatrixXd points = given.transpose();
  std::vector<double> weights(static_cast<std::size_t>(rows), 1);
  for (long n = rows; n > wanted; --n) {
    double least = std::numeric_limits<double>::infinity();
    long a = 0;
    long b = 1;
    for (long i = 0; i < n; ++i) {
      for (long j = i + 1; j < n; ++j) {
        const double d = (points.col(i) - points.col(j)).squaredNorm();
        if (d < least) {
          least = d;
          a = i;
          b = j;
        }
      }
    }
    double& wa = weights[static_cast<std::size_t>(a)];
    double& wb = weights[static_cast<std::size_t>(b)];
    points.col(a) = (wa * points.col(a) + wb * points.col(b)) / (wa + wb);
    wa += wb;
    points.col(b) = points.col(n - 1);
    wb = weights[static_cast<std::size_t>(n - 1)];
  }
  Eigen::Map<MatrixXd>(data, rows, columns) = points.transpose();
}

void eigenNearest(const double* data, long rows, long columns, const double* point,
                  std::span<int> numbers, std::span<double> distances) {
  const View x(data, rows, columns);
  ArrayXd squares = ArrayXd::Zero(rows);
  for (long c = 0; c < columns; ++c) squares += (x.col(c).array() - point[c]).square();
  std::vector<int> order(static_cast<std::size_t>(rows));
  std::iota(order.begin(), order.end(), 0);
  std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(numbers.size()),
                    order.end(), [&](int a, int b) { return squares[a] < squares[b]; });
  for (std::size_t k = 0; k < numbers.size(); ++k) {
    numbers[k] = order[k];
    distances[k] = std::sqrt(squares[order[k]]);
  }
}

/// Points beside each other, as a tree likes them best.
struct KdTree::Tree {
  std::size_t rows;
  int columns;
  std::vector<double> points;

  [[nodiscard]] std::size_t kdtree_get_point_count() const { return rows; }
  [[nodiscard]] double kdtree_get_pt(std::size_t i, std::size_t c) const {
    return points[i * static_cast<std::size_t>(columns) + c];
  }
  template <class Box>
  bool kdtree_get_bbox(Box&) const {
    return false;
  }

  template <int kColumns>
  using Index = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Tree>,
                                                    Tree, kColumns, std::size_t>;
  std::unique_ptr<Index<3>> three;
  std::unique_ptr<Index<10>> ten;
};

KdTree::KdTree(const double* data, std::size_t rows, int columns)
    : FTree(std::make_unique<Tree>()) {
  FTree->rows = rows;
  FTree->columns = columns;
  for (std::size_t i = 0; i < rows; ++i) {
    for (int c = 0; c < columns; ++c) {
      FTree->points.push_back(data[static_cast<std::size_t>(c) * rows + i]);
    }
  }
  if (columns == 3) {
    FTree->three = std::make_unique<Tree::Index<3>>(3, *FTree);
  } else {
    FTree->ten = std::make_unique<Tree::Index<10>>(10, *FTree);
  }
}

KdTree::~KdTree() = default;

void KdTree::nearest(const double* point, std::span<std::size_t> numbers,
                     std::span<double> squares) const {
  if (FTree->three) {
    FTree->three->knnSearch(point, numbers.size(), numbers.data(), squares.data());
  } else {
    FTree->ten->knnSearch(point, numbers.size(), numbers.data(), squares.data());
  }
}

void KdTree::meanDistances(std::size_t neighbours, std::span<double> means) const {
  std::vector<std::size_t> numbers(neighbours);
  std::vector<double> squares(neighbours);
  for (std::size_t i = 0; i < FTree->rows; ++i) {
    nearest(&FTree->points[i * static_cast<std::size_t>(FTree->columns)], numbers, squares);
    double sum = 0;
    for (const double square : squares) sum += std::sqrt(square);
    means[i] = sum / static_cast<double>(neighbours);
  }
}

}  // namespace zel::bench
