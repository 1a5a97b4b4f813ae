/// @file
/// Hierarchical agglomerative clustering of a distance matrix.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

/// Distance d(k, i+j) of a cluster k from the union of i and j, whose sizes are n (Lance and
/// Williams, Comput. J. 9 (1967) 373).
enum class Linkage {
  single,    ///< min(d(k,i), d(k,j))
  complete,  ///< max(d(k,i), d(k,j))
  ward,      ///< ((n_k + n_i) d(k,i) + (n_k + n_j) d(k,j) - n_k d(i,j)) / (n_i + n_j + n_k)
  average,   ///< (d(k,i) + d(k,j)) / 2
  flexible,  ///< f (d(k,i) + d(k,j)) + (1 - 2 f) d(i,j)
  upgma      ///< (n_i d(k,i) + n_j d(k,j)) / (n_i + n_j)
};

/// Two clusters that become one: clusters 0..n-1 are the objects, n + s is the union of merge s.
struct Merge {
  std::size_t first;
  std::size_t second;
  double distance;
};

/// Merges the nearest pair of clusters until one is left: n - 1 merges of n objects.
///
/// The union takes the place of the cluster with the higher place. Of several nearest pairs the one
/// with the lowest places is merged, the lower place deciding first. If no distance is below the
/// largest double, these are the first two clusters.
/// @param distances  square and symmetric; overwritten
/// @param f          parameter of the flexible linkage
/// @param goOn       asked before each merge
/// @return the merges; fewer than n - 1 if it was stopped
/// @throws std::bad_alloc
/// O(n^2) for most data, O(n^3) at worst; single linkage goes by the minimum spanning tree where
/// that leaves no choice.
[[nodiscard]] std::vector<Merge> agglomerate(Matrix distances, Linkage linkage, double f,
                                             Poll goOn = {});

/// The objects in an order in which every cluster is contiguous, the first one of a merge before
/// the second: the objects 0..n-1 as the leaves of the tree from left to right.
/// @param merges  all n - 1 of n >= 1 objects
[[nodiscard]] std::vector<std::size_t> leavesOf(std::span<const Merge> merges);

}  // namespace zel::kernels
