/// @file
/// Hierarchical clustering.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "zel/base/api.h"
#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// How the distance of a union of two clusters from another cluster follows from theirs; see
/// AgglomClustering.
enum TClusterMethod : std::uint8_t {
  cmSingleLink,
  cmCompleteLink,
  cmWard,
  cmAvgLink,
  cmFlexLink,
  cmUpgma
};

/// Display names of the methods, indexed by TClusterMethod.
inline constexpr std::string_view ClusterMethodNames[] = {
    "single linkage",  "complete linkage",  "Ward's method",
    "average linkage", "flexible strategy", "unweighted pair group"};

/// Progress of a clustering: the sender given to it, ProcStat, percentage done.
using TClusterFeedback = std::function<void(TObject* Sender, double Count, double Percent)>;

/// Agglomerative hierarchical clustering of the n rows of a matrix: each row starts as a cluster,
/// and the two nearest clusters become one until a single one is left.
///
/// Distance of the union of i and j from k, with cluster sizes n (Lance and Williams, Comput. J. 9
/// (1967) 373), from the distances as they are, not squared:
/// - cmSingleLink min(d_ik, d_jk), cmCompleteLink max(d_ik, d_jk), cmAvgLink (d_ik + d_jk) / 2,
/// - cmWard ((n_k + n_i) d_ik + (n_k + n_j) d_jk - n_k d_ij) / (n_i + n_j + n_k),
/// - cmFlexLink FlexParam (d_ik + d_jk) + (1 - 2 FlexParam) d_ij,
/// - cmUpgma (n_i d_ik + n_j d_jk) / (n_i + n_j).
///
/// The objects are the clusters 1..n; merge s makes cluster n + s. Each cluster has the place of
/// its highest object; of equally near pairs the one with the lowest place is merged, then the one
/// with the lowest second place. Distances that are not a number or not below the largest double
/// are never the nearest; if there are no others, the first two clusters are merged.
/// @param Sender         handed to Feedback
/// @param DataMat        only read, but for its event OnCalcDistance
/// @param DistMode       distance of the objects, see TMatrix::DistanceOfObjects
/// @param FlexParam      limited to 0.5..1
/// @param Dendrogram     resized to 3 x (n - 1): row s holds the clusters of merge s and n + s
/// @param MergeDist      resized to n - 1: the distance of merge s
/// @param NodePos        resized to 2 n - 1: position of each cluster in a drawing of the tree; the
///   objects stand at 1..n without crossings, a union in the middle of its two clusters
/// @param Feedback       called at the start with 0 %, then before each merge, when ProcStat has
///   grown by 1
/// @param CalcDistEvent  OnCalcDistance of DataMat while the distances of dmUser are computed
/// Results may be null.
/// @return 0; -1 if AbortMathProc, which is cleared at the start, gets set: the results have their
///   sizes and are 0 then; -1, with nothing changed, for a null DataMat
/// @throws EZELMath2Error  "AgglomClustering: not enough memory"; the results are unchanged then
/// O(n^2) for most data, and n^2 doubles of memory.
ZEL_API int AgglomClustering(TObject* Sender, TMatrix* DataMat, TDistMode DistMode,
                             TClusterMethod Method, double FlexParam, TIntMatrix* Dendrogram,
                             TVector* MergeDist, TVector* NodePos, TClusterFeedback Feedback,
                             TOnCalcDistanceEvent CalcDistEvent);

}  // namespace zel
