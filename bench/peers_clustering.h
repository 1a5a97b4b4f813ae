/// @file
/// What a user would call to cluster and to find neighbours. Compiled apart, with -O3
/// -march=native. Data matrices are stored by columns, an object in each row.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace zel::bench {

/// Lloyd's iteration from the first rows as centres; squared distances come from a matrix product.
/// Returns the number of passes.
int eigenLloyd(const double* data, long rows, long columns, long clusters, int* assignment);

enum class TreeRule { complete, average, ward };
/// Euclidean distances and a nearest-neighbour chain over a full matrix (F. Murtagh, 1983). Returns
/// the sum of the heights.
double plainChain(const double* data, long rows, long columns, TreeRule rule);
/// Single linkage: the minimum spanning tree (Prim). Returns the sum of the heights.
double plainSpanningTree(const double* data, long rows, long columns);

/// Replaces the two nearest points by their weighted mean until `wanted` are left, in the first
/// rows; a search over all pairs each time.
void plainCenters(double* data, long rows, long columns, long wanted);

/// The nearest rows of a point, and their distances.
void eigenNearest(const double* data, long rows, long columns, const double* point,
                  std::span<int> numbers, std::span<double> distances);

/// A k-d tree of nanoflann over points of 3 or 10 dimensions.
class KdTree {
 public:
  KdTree(const double* data, std::size_t rows, int columns);
  ~KdTree();
  void nearest(const double* point, std::span<std::size_t> numbers,
               std::span<double> squares) const;
  /// Of every point, the mean distance of the nearest points, itself included.
  void meanDistances(std::size_t neighbours, std::span<double> means) const;

 private:
  struct Tree;
  std::unique_ptr<Tree> FTree;
};

}  // namespace zel::bench
