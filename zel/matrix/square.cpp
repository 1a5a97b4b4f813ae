// TMatrix: the square product, serial and threaded.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "zel/base/progress.h"
#include "zel/kernels/products.h"
#include "zel/matrix/TMatSq1ColThread.h"
#include "zel/matrix/TMatrix.h"
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

/// The columns that are left, and what the workers and the caller's thread tell one another.
struct TSquareJob {
  kernels::ConstMatrix a;
  double norm;
  kernels::Matrix r;
  std::size_t threads;
  std::atomic<bool> stop = false;
  std::mutex mutex{};
  std::condition_variable news{};
  // Under the mutex:
  std::size_t next = 0;     // first column that nobody has taken
  std::size_t events = 0;   // runs and workers that came to their end
  std::size_t running = 0;  // workers

  /// Takes the next run: half of a worker's share of the columns that are left. Their columns grow
  /// shorter, so the last runs are small and the workers end together.
  /// @return false if no column is left, or the work is to stop
  bool Take(std::size_t& first, std::size_t& last) {
    const std::lock_guard lock(mutex);
    const std::size_t left = a.columns - next;
    if (left == 0 || stop) return false;
    const std::size_t shortest = std::clamp<std::size_t>(a.columns / threads, 1, kShortestRun);
    const std::size_t run = std::clamp<std::size_t>(left / (2 * threads), shortest, kRun);
    first = next;
    last = next = first + std::min(run, left);
    return true;
  }
};

/// Takes runs of columns until none is left.
class TSquareWorker : public TMatSq1ColThread {
 public:
  explicit TSquareWorker(TSquareJob& job) : FJob(job) {}
  ~TSquareWorker() override { WaitFor(); }

 protected:
  void Execute() override {
    std::size_t first = 0;
    std::size_t last = 0;
    while (FJob.Take(first, last)) {
      SquareRun(FJob.a, FJob.norm, first, last, FJob.r);
      ProcStat += static_cast<double>(last - first);
      Tell(0);
    }
    Tell(1);
  }

 private:
  void Tell(std::size_t ended) {
    const std::lock_guard lock(FJob.mutex);
    ++FJob.events;
    FJob.running -= ended;
    FJob.news.notify_one();
  }

  TSquareJob& FJob;
};

/// Ends and joins the workers whatever happens to the caller's thread.
class TSquareWorkers {
 public:
  explicit TSquareWorkers(TSquareJob& job) : FJob(job) {}
  ~TSquareWorkers() { FJob.stop = true; }  // the workers then wait for themselves

  /// Starts another worker, if the system has a thread for it.
  bool Start() {
    TSquareWorker& worker = FWorkers.emplace_back(FJob);
    {
      const std::lock_guard lock(FJob.mutex);
      ++FJob.running;
    }
    try {
      worker.Start();
    } catch (const std::system_error&) {
      const std::lock_guard lock(FJob.mutex);
      --FJob.running;
      return false;
    }
    return true;
  }

 private:
  TSquareJob& FJob;
  std::deque<TSquareWorker> FWorkers;
};

bool SquareByThreads(kernels::ConstMatrix a, double norm, kernels::Matrix r, std::size_t threads) {
  if (AbortMathProc) return false;
  TSquareJob job{.a = a, .norm = norm, .r = r, .threads = threads};
  TSquareWorkers workers(job);
  std::size_t started = 0;
  while (started < threads && workers.Start()) ++started;
  if (started == 0) return SquareSerially(a, norm, r);
  for (std::size_t seen = 0;;) {
    if (MathFeedBackProc) MathFeedBackProc(ProcStat);
    if (AbortMathProc) return false;
    std::unique_lock lock(job.mutex);
    if (job.running == 0) break;
    job.news.wait_for(lock, std::chrono::milliseconds(10), [&] { return job.events != seen; });
    seen = job.events;
  }
  if (MathFeedBackProc) MathFeedBackProc(ProcStat);
  return true;
}

}  // namespace

bool TMatrix::Square(TMatrix* MatRes, double Norm) {
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  return Square(MatRes, Norm, static_cast<int>(processors));
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
