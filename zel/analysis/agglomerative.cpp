#include "zel/analysis/agglomerative.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/linkage.h"

namespace zel {

namespace {

kernels::Linkage linkageOf(TClusterMethod method) {
  switch (method) {
    case cmSingleLink:
      return kernels::Linkage::single;
    case cmCompleteLink:
      return kernels::Linkage::complete;
    case cmWard:
      return kernels::Linkage::ward;
    case cmAvgLink:
      return kernels::Linkage::average;
    case cmFlexLink:
      return kernels::Linkage::flexible;
    case cmUpgma:
      break;
  }
  return kernels::Linkage::upgma;
}

/// A handler in the place of another one, which comes back in the end.
class BorrowedEvent {
 public:
  BorrowedEvent(TOnCalcDistanceEvent& event, TOnCalcDistanceEvent& handler)
      : FEvent(event), FBefore(std::exchange(event, std::move(handler))) {}
  BorrowedEvent(const BorrowedEvent&) = delete;
  BorrowedEvent& operator=(const BorrowedEvent&) = delete;
  ~BorrowedEvent() { FEvent = std::move(FBefore); }

 private:
  TOnCalcDistanceEvent& FEvent;
  TOnCalcDistanceEvent FBefore;
};

/// Positions of the objects, then of the unions.
void layOut(const std::vector<kernels::Merge>& merges, std::span<double> positions) {
  double next = 0;
  for (const std::size_t object : kernels::leavesOf(merges)) positions[object] = ++next;
  std::size_t node = merges.size() + 1;
  for (const auto& merge : merges) {
    positions[node++] = (positions[merge.first] + positions[merge.second]) / 2;
  }
}

}  // namespace

int AgglomClustering(TObject* Sender, TMatrix* DataMat, TDistMode DistMode, TClusterMethod Method,
                     double FlexParam, TIntMatrix* Dendrogram, TVector* MergeDist, TVector* NodePos,
                     TClusterFeedback Feedback, TOnCalcDistanceEvent CalcDistEvent) {
  if (!DataMat) return -1;
  if (Feedback) Feedback(Sender, ProcStat, 0);
  FlexParam = FlexParam >= 0.5 ? std::min(FlexParam, 1.0) : 0.5;
  return detail::GuardFit("AgglomClustering", [&] {
    const int rows = DataMat->NrOfRows();
    TMatrix distances;
    distances.Resize(rows, rows);
    {
      const BorrowedEvent borrowed(DataMat->OnCalcDistance, CalcDistEvent);
      DataMat->CalcDistMat(DistMode, &distances);
    }
    const auto n = static_cast<std::size_t>(rows);
    const std::size_t unions = n > 0 ? n - 1 : 0;
    TIntMatrix tree;
    tree.Resize(3, static_cast<int>(unions));
    detail::TResults results;
    const auto lengths = results.Add(MergeDist, MergeDist ? unions : 0);
    const auto positions = results.Add(NodePos, NodePos ? n + unions : 0);

    AbortMathProc = false;
    int step = 0;
    const auto merges =
        kernels::agglomerate(detail::ViewOf(distances), linkageOf(Method), FlexParam, [&] {
          ProcStat += 1;
          ++step;
          if (Feedback) Feedback(Sender, ProcStat, 100.0 * step / rows);
          return !AbortMathProc;
        });
    const bool complete = merges.size() == unions;
    if (complete) {
      for (std::size_t s = 0; s < unions; ++s) {
        const int row = static_cast<int>(s) + 1;
        tree.SetVal(1, row, static_cast<int>(merges[s].first) + 1);
        tree.SetVal(2, row, static_cast<int>(merges[s].second) + 1);
        tree.SetVal(3, row, rows + row);
        if (!lengths.empty()) lengths[s] = merges[s].distance;
      }
      if (n > 0 && !positions.empty()) layOut(merges, positions);
    }
    if (Dendrogram) Dendrogram->Clone(&tree);
    results.Commit();
    return complete ? 0 : -1;
  });
}

}  // namespace zel
