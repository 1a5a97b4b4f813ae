#include "clusters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/analysis/Zel_math2.h"

namespace tool {
namespace {

struct TreeMethod {
  const char* word;
  zel::TClusterMethod method;
};

constexpr TreeMethod kTrees[] = {{"single", zel::cmSingleLink}, {"complete", zel::cmCompleteLink},
                                 {"ward", zel::cmWard},         {"average", zel::cmAvgLink},
                                 {"flexible", zel::cmFlexLink}, {"upgma", zel::cmUpgma}};

zel::TClusterMethod methodOf(const std::string& word) {
  for (const TreeMethod& tree : kTrees) {
    if (word == tree.word) return tree.method;
  }
  throw Failure("--method: " + inQuotes(word) + " is none of kmeans, " + treeWords());
}

zel::TDistMode distanceOf(const std::string& word) {
  if (word == "euclid") return zel::dmEuclid;
  if (word == "squared") return zel::dmSqrEuclid;
  if (word == "manhattan") return zel::dmManhattan;
  throw Failure("--distance: " + inQuotes(word) + " is none of euclid, squared and manhattan");
}

/// Numbers the clusters by size and takes their sizes and means.
/// @param label  of each object; equal ones are one cluster
void describe(Clusters& clusters, const Objects& objects, const std::vector<int>& label) {
  struct Group {
    int label = 0;
    int size = 0;
  };
  std::vector<Group> groups;
  std::vector<std::size_t> groupOf(static_cast<std::size_t>(*std::ranges::max_element(label)) + 1,
                                   std::numeric_limits<std::size_t>::max());
  for (const int l : label) {
    std::size_t& g = groupOf[static_cast<std::size_t>(l)];
    if (g > groups.size()) {
      g = groups.size();
      groups.push_back({l, 0});
    }
    ++groups[g].size;
  }
  std::ranges::stable_sort(groups, std::greater(), &Group::size);
  for (std::size_t g = 0; g < groups.size(); ++g) {
    groupOf[static_cast<std::size_t>(groups[g].label)] = g;
    clusters.sizes.push_back(groups[g].size);
  }
  for (const int l : label) {
    clusters.assignment.push_back(static_cast<int>(groupOf[static_cast<std::size_t>(l)]) + 1);
  }
  const std::size_t variables = objects.names.size();
  std::vector<std::vector<double>> centres(groups.size(), std::vector<double>(variables));
  for (std::size_t v = 0; v < variables; ++v) {
    const auto column = objects.data.Column(static_cast<int>(v) + 1);
    for (std::size_t i = 0; i < column.size(); ++i) {
      centres[static_cast<std::size_t>(clusters.assignment[i] - 1)][v] += column[i];
    }
    for (std::size_t g = 0; g < groups.size(); ++g) centres[g][v] /= groups[g].size;
    for (std::size_t i = 0; i < column.size(); ++i) {
      const double d = column[i] - centres[static_cast<std::size_t>(clusters.assignment[i] - 1)][v];
      clusters.within += d * d;
      clusters.total += column[i] * column[i];
    }
  }
  for (auto& centre : centres) {
    for (std::size_t v = 0; v < variables; ++v) {
      centre[v] = centre[v] * objects.scales[v] + objects.means[v];
    }
  }
  clusters.means = std::move(centres);
}

/// The best of several starts.
void partition(Clusters& clusters, const Objects& objects, const ClusterOptions& options) {
  zel::TMatrix centres;
  zel::TIntVector assignment;
  zel::TIntVector sizes;
  std::vector<int> best;
  double least = std::numeric_limits<double>::infinity();
  const bool isRandom = options.starts > 0;
  for (int start = 0; start < std::max(options.starts, 1); ++start) {
    const double within =
        zel::kMeansClustering(&objects.data, 0, 0, options.clusters,
                              isRandom ? options.seed + start : 0, &centres, &assignment, &sizes);
    if (!(within < least)) continue;
    least = within;
    best.assign(assignment.begin(), assignment.end());
  }
  describe(clusters, objects, best);
  clusters.method = "k-means, " + (isRandom ? "the best of " + counted(options.starts, "start")
                                            : "started from the first rows");
}

/// The clusters that are left before the last clusters - 1 unions.
std::vector<int> cut(const std::vector<Union>& unions, std::size_t objects, std::size_t clusters) {
  std::vector<int> above(objects + unions.size() + 1);
  std::iota(above.begin(), above.end(), 0);
  for (std::size_t s = 0; s + clusters < objects; ++s) {
    for (const int part : {unions[s].first, unions[s].second}) {
      above[static_cast<std::size_t>(part)] = static_cast<int>(objects + s) + 1;
    }
  }
  // What is above has a higher number.
  for (std::size_t k = above.size(); k-- > 0;) {
    above[k] = above[static_cast<std::size_t>(above[k])];
  }
  return {above.begin() + 1, above.begin() + static_cast<std::ptrdiff_t>(objects) + 1};
}

void grow(Clusters& clusters, const Table& table, Objects& objects, zel::TClusterMethod method,
          const ClusterOptions& options) {
  zel::TIntMatrix tree;
  zel::TVector heights;
  zel::TVector positions;
  zel::AgglomClustering(nullptr, &objects.data, distanceOf(options.distance), method,
                        options.flexible, &tree, &heights, &positions, {}, {});
  for (int s = 1; s <= heights.NrOfElem(); ++s) {
    clusters.unions.push_back({tree.GetVal(1, s), tree.GetVal(2, s), heights(s)});
    if (!std::isfinite(heights(s))) {
      throw Failure(table.source + ": the distances exceed the range of numbers");
    }
  }
  clusters.positions.assign(positions.begin(), positions.end());
  describe(clusters, objects,
           cut(clusters.unions, static_cast<std::size_t>(objects.rows),
               static_cast<std::size_t>(options.clusters)));
  clusters.method = std::string(zel::ClusterMethodNames[method]);
  if (method == zel::cmFlexLink) clusters.method += ", parameter " + shortest(options.flexible);
  clusters.method += ", distance " + options.distance;
}

}  // namespace

std::string treeWords() {
  std::string words;
  for (const TreeMethod& tree : kTrees) {
    if (!words.empty()) words += &tree == std::end(kTrees) - 1 ? " and " : ", ";
    words += tree.word;
  }
  return words;
}

Clusters clustersOf(const Table& table, Objects& objects, const ClusterOptions& options) {
  const bool isPartition = options.method == "kmeans";
  const zel::TClusterMethod method = isPartition ? zel::cmWard : methodOf(options.method);
  if (options.clusters > objects.rows) {
    throw Failure("--clusters: " + table.source + " has only " + counted(objects.rows, "row") +
                  " without a missing value");
  }
  Clusters clusters;
  if (isPartition) {
    partition(clusters, objects, options);
  } else {
    grow(clusters, table, objects, method, options);
  }
  return clusters;
}

}  // namespace tool
