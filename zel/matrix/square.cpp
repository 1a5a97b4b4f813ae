// TMatrix: the square product, serial and threaded.
#include <algorithm>
#include <cmath>
#include <new>

#include "zel/base/progress.h"
#include "zel/kernels/products.h"
#include "zel/matrix/TMatSq1ColThread.h"
#include "zel/matrix/TMatrix.h"
#include "zel/matrix/column_workers_impl.h"
#include "zel/matrix/container_impl.h"

namespace zel {

namespace {

/// Columns computed together: enough to use the product kernel well, which reads all columns behind
/// the first for each run, few enough that an abort is soon noticed.
constexpr std::size_t kRun = 96;
/// The shortest run of a worker, if there are enough columns for every worker.
constexpr std::size_t kShortestRun = 32;

/// Columns first..last-1; without storage for the kernel by the plain loop, which has the same
/// bits.
void SquareRun(kernels::ConstMatrix a, double norm, std::size_t first, std::size_t last,
               kernels::Matrix r) {
  try {
    kernels::squareColumns(a, norm, first, last, r);
  } catch (const std::bad_alloc&) {
    for (std::size_t i = first; i < last; ++i) {
      for (std::size_t j = i; j < a.columns; ++j) {
        double sum = 0;
        for (std::size_t k = 0; k < a.rows; ++k) sum = std::fma(a(k, i), a(k, j), sum);
        r(i, j) = r(j, i) = sum / norm;
      }
    }
  }
}

bool SquareSerially(kernels::ConstMatrix a, double norm, kernels::Matrix r) {
  for (std::size_t first = 0; first < a.columns;) {
    const std::size_t end = std::min(first + kRun, a.columns);
    std::size_t last = first;
    for (; last < end && !AbortMathProc; ++last) ProgressStep();
    SquareRun(a, norm, first, last, r);
    if (last < end) return false;
    first = last;
  }
  return true;
}

bool SquareByThreads(kernels::ConstMatrix a, double norm, kernels::Matrix r, std::size_t threads) {
  if (AbortMathProc) return false;
  detail::TColumnJob job{
      .columns = a.columns,
      .threads = threads,
      .shortestRun = kShortestRun,
      .longestRun = kRun,
      .progress = 1,
      .compute = [&](std::size_t first, std::size_t last) { SquareRun(a, norm, first, last, r); }};
  const auto result =
      detail::RunColumnWorkers<TMatSq1ColThread>(job, [] { return AbortMathProc.load(); });
  if (result == detail::TColumnResult::kNoThread) return SquareSerially(a, norm, r);
  return result == detail::TColumnResult::kDone;
}

}  // namespace

bool TMatrix::Square(TMatrix* MatRes, double Norm) {
  return Square(MatRes, Norm, detail::Processors());
}

bool TMatrix::Square(TMatrix* MatRes, double Norm, int NThreads) {
  if (!MatRes) return false;
  if (MatRes == this) {
    TMatrix source;
    source.Clone(this);
    return source.Square(MatRes, Norm, NThreads);
  }
  const int n = NrOfColumns();
  MatRes->Resize(n, n);
  const auto threads = static_cast<std::size_t>(std::clamp(NThreads, 1, std::max(n, 1)));
  const bool done =
      NThreads > 1 ? Guarded([&] { return SquareByThreads(View(), Norm, MatRes->View(), threads); })
                   : SquareSerially(View(), Norm, MatRes->View());
  if (done) MatRes->Changed();
  return done;
}

TMatSq1ColThread::~TMatSq1ColThread() { WaitFor(); }

std::string_view TMatSq1ColThread::ClassName() const { return "TMatSq1ColThread"; }

void TMatSq1ColThread::Execute() {
  if (SrcMat && ResMat && SrcMat != ResMat) SrcMat->SquareColumn(Column, Norm, *ResMat);
  ProcStat += 1;
}

void TMatrix::SquareColumn(int column, double Norm, TMatrix& result) const {
  const int n = NrOfColumns();
  if (column < 1 || column > n || result.NrOfColumns() != n || result.NrOfRows() != n) return;
  const auto last = static_cast<std::size_t>(column);
  SquareRun(View(), Norm, last - 1, last, result.View());
}

}  // namespace zel
