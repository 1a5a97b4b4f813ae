/// @file
/// Clusters of the rows of a table.
#pragma once

#include <string>
#include <vector>

#include "cluster.h"
#include "objects.h"

namespace tool {

/// The words of --method for trees, for its help.
std::string treeWords();

/// A union of two clusters: 1..n are the objects, n + s is the cluster of union s.
struct Union {
  int first = 0;
  int second = 0;
  double height = 0;
};

/// A partition of the objects, the largest cluster first, those of one size by their first objects.
struct Clusters {
  std::string method;           // in words
  std::vector<int> assignment;  // of each object, from 1
  std::vector<int> sizes;
  std::vector<std::vector<double>> means;  // [cluster][variable], as in the file
  double within = 0;                       // sums of squares as they were clustered
  double total = 0;
  // Of a tree only:
  std::vector<Union> unions;
  std::vector<double> positions;  // of clusters 1..2n - 1 in a drawing

  [[nodiscard]] bool isTree() const { return !positions.empty(); }
};

/// @throws Failure  an option does not suit; the distances are too large
Clusters clustersOf(const Table& table, Objects& objects, const ClusterOptions& options);

}  // namespace tool
