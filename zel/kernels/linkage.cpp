#include "zel/kernels/linkage.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "zel/kernels/nearest_pairs.h"

namespace zel::kernels {

namespace {

/// What the new distance from a third cluster is made of.
struct Union {
  double ni, nj;  ///< sizes
  double dij;     ///< distance
  double f;
};

template <Linkage kLinkage>
double updated(const Union& u, double dik, double djk, double nk) {
  switch (kLinkage) {
    case Linkage::single:
      return dik < djk ? dik : djk;
    case Linkage::complete:
      return dik > djk ? dik : djk;
    case Linkage::ward:
      return ((nk + u.ni) * dik + (nk + u.nj) * djk - nk * u.dij) / (u.ni + u.nj + nk);
    case Linkage::average:
      return (dik + djk) / 2;
    case Linkage::flexible:
      return u.f * (dik + djk) + (1 - 2 * u.f) * u.dij;
    case Linkage::upgma:
      return (u.ni * dik + u.nj * djk) / (u.ni + u.nj);
  }
}

template <Linkage kLinkage>
void updateColumn(const Union& u, std::span<const double> di, std::span<double> dj,
                  std::span<const double> sizes) {
  const std::size_t n = dj.size();
  for (std::size_t k = 0; k < n; ++k) dj[k] = updated<kLinkage>(u, di[k], dj[k], sizes[k]);
}

using UpdateColumn = void (*)(const Union&, std::span<const double>, std::span<double>,
                              std::span<const double>);
constexpr UpdateColumn kUpdates[] = {
    updateColumn<Linkage::single>,  updateColumn<Linkage::complete>, updateColumn<Linkage::ward>,
    updateColumn<Linkage::average>, updateColumn<Linkage::flexible>, updateColumn<Linkage::upgma>};

/// The clusters that are left, each at the place of one of its objects. Their distances are kept in
/// both triangles; of a cluster that is gone, those that a search can still meet are not-a-number.
class Clusters {
 public:
  Clusters(Matrix distances, Linkage linkage, double f)
      : FDistances(distances),
        FUpdate(kUpdates[static_cast<std::size_t>(linkage)]),
        FFlexible(f),
        FPairs(distances.rows),
        FSizes(distances.rows, 1.0),
        FLabels(distances.rows),
        FPlaces(distances.rows) {
    for (std::size_t i = 0; i < FLabels.size(); ++i) FLabels[i] = FPlaces[i] = i;
  }

  Merge mergeNearest(std::size_t label) {
    auto [i, j] = FPairs.nearest([&](std::size_t k) { return search(k); });
    if (i == kNoIndex) {
      i = FPlaces[0];
      j = FPlaces[1];
    }
    const Merge merge{FLabels[i], FLabels[j], FDistances(j, i)};
    unite(i, j, merge.distance);
    FLabels[j] = label;
    return merge;
  }

 private:
  [[nodiscard]] NearestPairs::Partner search(std::size_t i) const {
    const auto later = FDistances[i].subspan(i + 1);
    const auto found = least(later);
    if (found.minIndex == kNoIndex) return {};
    return {i + 1 + found.minIndex, found.minimum};
  }

  void unite(std::size_t i, std::size_t j, double distance) {
    const auto column = FDistances[j];
    FUpdate({FSizes[i], FSizes[j], distance, FFlexible}, FDistances[i], column, FSizes);
    FSizes[j] += FSizes[i];
    FSizes[i] = 0;
    FPlaces.erase(std::ranges::lower_bound(FPlaces, i));
    FPairs.remove(i);
    for (const std::size_t k : FPlaces) {
      double* const own = FDistances.column(k);
      own[j] = column[k];
      if (k >= j) continue;
      if (k < i) {
        own[i] = std::numeric_limits<double>::quiet_NaN();
        FPairs.invalidate(k, i);
      }
      FPairs.invalidate(k, j);
      FPairs.offer(k, j, column[k]);
    }
    FPairs.refresh(j);
  }

  Matrix FDistances;
  UpdateColumn FUpdate;
  double FFlexible;
  NearestPairs FPairs;
  std::vector<double> FSizes;
  std::vector<std::size_t> FLabels;
  std::vector<std::size_t> FPlaces;  // of the clusters that are left, ascending
};

/// An edge of a tree over objects.
struct Edge {
  std::size_t a, b;
  double length;
};

/// The minimum spanning tree, the shortest edge first; empty if two of its edges have one length,
/// if one is not below the largest double, or if a distance is not a number. The lengths are those
/// of every such tree, so the clusters that they unite one after the other are those of single
/// linkage. Method: Prim, Bell Syst. Tech. J. 36 (1957) 1389; Gower and Ross, Appl. Stat. 18
/// (1969) 54.
std::vector<Edge> distinctSpanningTree(ConstMatrix distances) {
  const std::size_t n = distances.rows;
  std::vector<Edge> tree;
  tree.reserve(n - 1);
  // Of the objects outside the tree.
  std::vector<std::size_t> outside(n - 1);
  std::vector<std::size_t> partner(n - 1, 0);
  std::vector<double> length(n - 1, std::numeric_limits<double>::infinity());
  for (std::size_t k = 0; k < outside.size(); ++k) outside[k] = k + 1;
  bool isNumber = true;
  for (std::size_t last = 0; !outside.empty();) {
    const double* const from = distances.column(last);
    for (std::size_t k = 0; k < outside.size(); ++k) {
      const double d = from[outside[k]];
      isNumber &= d == d;
      if (d < length[k]) {
        length[k] = d;
        partner[k] = last;
      }
    }
    const std::size_t best = least(length).minIndex;
    if (!isNumber || best == kNoIndex) return {};
    last = outside[best];
    tree.push_back({partner[best], last, length[best]});
    for (auto* list : {&outside, &partner}) {
      (*list)[best] = list->back();
      list->pop_back();
    }
    length[best] = length.back();
    length.pop_back();
  }
  std::ranges::sort(tree, {}, &Edge::length);
  const auto equal = std::ranges::adjacent_find(tree, {}, &Edge::length);
  if (equal != tree.end()) tree.clear();
  return tree;
}

/// Unites the clusters of objects along edges; each has the place of its highest object.
class Forest {
 public:
  explicit Forest(std::size_t n) : FAbove(n), FLabels(n) {
    for (std::size_t i = 0; i < n; ++i) FAbove[i] = FLabels[i] = i;
  }
  Merge unite(const Edge& edge, std::size_t label) {
    std::size_t i = placeOf(edge.a);
    std::size_t j = placeOf(edge.b);
    if (i > j) std::swap(i, j);
    const Merge merge{FLabels[i], FLabels[j], edge.length};
    FAbove[i] = j;
    FLabels[j] = label;
    return merge;
  }

 private:
  std::size_t placeOf(std::size_t i) {
    for (; FAbove[i] != i; i = FAbove[i]) FAbove[i] = FAbove[FAbove[i]];
    return i;
  }

  std::vector<std::size_t> FAbove;
  std::vector<std::size_t> FLabels;
};

}  // namespace

std::vector<Merge> agglomerate(Matrix distances, Linkage linkage, double f, Poll goOn) {
  const std::size_t n = distances.rows;
  std::vector<Merge> merges;
  if (n < 2) return merges;
  merges.reserve(n - 1);
  if (linkage == Linkage::single) {
    const std::vector<Edge> tree = distinctSpanningTree(distances);
    Forest forest(n);
    for (const Edge& edge : tree) {
      if (!goOn()) return merges;
      merges.push_back(forest.unite(edge, n + merges.size()));
    }
    if (!tree.empty()) return merges;
  }
  Clusters clusters(distances, linkage, f);
  while (merges.size() + 1 < n && goOn()) {
    merges.push_back(clusters.mergeNearest(n + merges.size()));
  }
  return merges;
}

std::vector<std::size_t> leavesOf(std::span<const Merge> merges) {
  const std::size_t n = merges.size() + 1;
  std::vector<std::size_t> leaves;
  leaves.reserve(n);
  std::vector<std::size_t> waiting{n + merges.size() - 1};
  while (!waiting.empty()) {
    const std::size_t cluster = waiting.back();
    waiting.pop_back();
    if (cluster < n) {
      leaves.push_back(cluster);
    } else {
      waiting.push_back(merges[cluster - n].second);
      waiting.push_back(merges[cluster - n].first);
    }
  }
  return leaves;
}

}  // namespace zel::kernels
