// TMat4D: aggregation of layers into a matrix, serial and threaded.
#include <algorithm>
#include <vector>

#include "zel/base/progress.h"
#include "zel/kernels/layers.h"
#include "zel/matrix/column_workers_impl.h"
#include "zel/matrix/mat4d_impl.h"

namespace zel {

using detail::TGridBlock;
using detail::TGridView;
using kernels::LayerOp;

namespace {

/// Columns computed together. The rows of the source are read in runs of this length.
constexpr std::size_t kRun = 256;
constexpr std::size_t kShortestRun = 16;
/// Result cells computed before they are stored.
constexpr std::size_t kTile = 4096;

/// The aggregates of a block, column by column of the result.
struct TLayerJob {
  LayerOp op;
  TGridView<4> source;
  TGridBlock<4> block;
  TMatrix* result;
  std::size_t divisor;

  /// Stores the columns first..last-1 of the result; afterCells(number) is called as they come.
  template <class AfterCells>
  void Compute(std::size_t first, std::size_t last, AfterCells&& afterCells) const {
    const std::size_t columns = last - first;
    const std::size_t rows = block.Size(1);
    const std::size_t height = std::min(rows, std::max<std::size_t>(1, kTile / columns));
    std::vector<double> tile(columns * height);
    for (std::size_t r = 0; r < rows; r += height) {
      const std::size_t n = std::min(height, rows - r);
      for (std::size_t k = 0; k < n; ++k) {
        const double* const cells =
            &source({block.Low[0] + static_cast<int>(first), block.Low[1] + static_cast<int>(r + k),
                     block.Low[2], block.Low[3]});
        kernels::reduceLayers(
            op,
            {cells, block.Size(2), source.Strides[2], block.Size(3), source.Strides[3], divisor},
            std::span<double>(tile.data() + k * columns, columns));
      }
      for (std::size_t c = 0; c < columns; ++c) {
        for (std::size_t k = 0; k < n; ++k) {
          result->SetVal(static_cast<int>(first + c + 1), static_cast<int>(r + k + 1),
                         tile[k * columns + c]);
        }
        afterCells(n);
      }
    }
  }

  void ComputeSerially() const {
    const std::size_t columns = block.Size(0);
    const std::size_t interval = columns * block.Size(1) / 100 + 1;
    std::size_t sinceStep = 0;
    for (std::size_t first = 0; first < columns; first += kRun) {
      Compute(first, std::min(first + kRun, columns), [&](std::size_t cells) {
        for (sinceStep += cells; sinceStep >= interval; sinceStep -= interval) ProgressStep();
      });
    }
  }
};

}  // namespace

template <class Thread>
void TMat4D::Aggregate(LayerOp op, TMatrix* DestMat, const TGridBlock<4>& block,
                       int NThreads) const {
  if (!DestMat) return;
  NThreads = std::clamp(NThreads, 1, detail::Processors());
  DestMat->Resize(static_cast<int>(block.Size(0)), static_cast<int>(block.Size(1)));
  DestMat->Fill(0);
  const TLayerJob layers{op, View(), block, DestMat, 0};
  Guarded([&] {
    if (NThreads > 1) {
      const std::size_t columns = block.Size(0);
      detail::TColumnJob job{.columns = columns,
                             .threads = std::min(static_cast<std::size_t>(NThreads), columns),
                             .shortestRun = kShortestRun,
                             .longestRun = kRun,
                             .progress = 100 / static_cast<double>(columns),
                             .compute = [&](std::size_t first, std::size_t last) {
                               layers.Compute(first, last, [](std::size_t) {});
                             }};
      const auto result = detail::RunColumnWorkers<Thread>(job, [] { return false; });
      if (result == detail::TColumnResult::kDone) return;
    }
    layers.ComputeSerially();
  });
}

void TMat4D::MeanOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                  int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                  int HighTimeSlot) const {
  MeanOfLayersToMatrix(DestMat, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot,
                       HighTimeSlot, detail::Processors());
}

void TMat4D::MeanOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                  int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                  int HighTimeSlot, int NThreads) const {
  Aggregate<TMeanOfLayersThread>(
      LayerOp::mean, DestMat,
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      NThreads);
}

void TMat4D::MaximumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                     int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                     int HighTimeSlot) const {
  MaximumOfLayersToMatrix(DestMat, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer,
                          LowTimeSlot, HighTimeSlot, detail::Processors());
}

void TMat4D::MaximumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                     int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                     int HighTimeSlot, int NThreads) const {
  Aggregate<TMaximumOfLayersThread>(
      LayerOp::maximum, DestMat,
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      NThreads);
}

void TMat4D::MinimumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                     int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                     int HighTimeSlot) const {
  MinimumOfLayersToMatrix(DestMat, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer,
                          LowTimeSlot, HighTimeSlot, detail::Processors());
}

void TMat4D::MinimumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                     int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                     int HighTimeSlot, int NThreads) const {
  Aggregate<TMinimumOfLayersThread>(
      LayerOp::minimum, DestMat,
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      NThreads);
}

void TMat4D::StdDevOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                    int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                    int HighTimeSlot) const {
  StdDevOfLayersToMatrix(DestMat, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer,
                         LowTimeSlot, HighTimeSlot, detail::Processors());
}

void TMat4D::StdDevOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow,
                                    int HighRow, int LowLayer, int HighLayer, int LowTimeSlot,
                                    int HighTimeSlot, int NThreads) const {
  Aggregate<TStdDevOfLayersThread>(
      LayerOp::standardDeviation, DestMat,
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeSlot, HighTimeSlot),
      NThreads);
}

// The workers, used one by one.

TOfLayersThread::~TOfLayersThread() { WaitFor(); }

void TOfLayersThread::Aggregate(LayerOp op, int divisor) {
  const std::int64_t columns = std::max<std::int64_t>(1, std::int64_t{HighCol} - LowCol + 1);
  if (Mat && DestMat) {
    const auto extent = [&](int dim) { return static_cast<int>(Mat->Length(dim)); };
    const TGridBlock<4> block{{LowCol, LowRow, LowLayer, LowTimeSlot},
                              {HighCol, HighRow, HighLayer, HighTimeSlot}};
    const TGridView<4> source(Mat->data(), {extent(3), extent(2), extent(1), extent(0)});
    bool lies = Column >= LowCol && Column <= HighCol;
    for (std::size_t d = 0; d < 4; ++d) {
      lies = lies && block.Low[d] >= 1 && block.Low[d] <= block.High[d] &&
             block.High[d] <= source.Sizes[d];
    }
    const auto first = static_cast<std::size_t>(std::int64_t{Column} - LowCol);
    const TLayerJob layers{op, source, block, DestMat, static_cast<std::size_t>(divisor)};
    if (lies) layers.Compute(first, first + 1, [](std::size_t) {});
  }
  ProcStat += 100 / static_cast<double>(columns);
}

TMeanOfLayersThread::~TMeanOfLayersThread() { WaitFor(); }
std::string_view TMeanOfLayersThread::ClassName() const { return "TMeanOfLayersThread"; }
void TMeanOfLayersThread::Execute() { Aggregate(LayerOp::mean, std::max(NTotal, 1)); }

TStdDevOfLayersThread::~TStdDevOfLayersThread() { WaitFor(); }
std::string_view TStdDevOfLayersThread::ClassName() const { return "TStdDevOfLayersThread"; }
void TStdDevOfLayersThread::Execute() {
  Aggregate(LayerOp::standardDeviation, std::max(NTotal, 1));
}

TMaximumOfLayersThread::~TMaximumOfLayersThread() { WaitFor(); }
std::string_view TMaximumOfLayersThread::ClassName() const { return "TMaximumOfLayersThread"; }
void TMaximumOfLayersThread::Execute() { Aggregate(LayerOp::maximum, 0); }

TMinimumOfLayersThread::~TMinimumOfLayersThread() { WaitFor(); }
std::string_view TMinimumOfLayersThread::ClassName() const { return "TMinimumOfLayersThread"; }
void TMinimumOfLayersThread::Execute() { Aggregate(LayerOp::minimum, 0); }

}  // namespace zel
