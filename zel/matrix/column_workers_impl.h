/// @file
/// Worker threads that share out the columns of a result. Internal.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>

#include "zel/base/progress.h"
#include "zel/base/thread.h"

namespace zel::detail {

/// The number of logical processors, at least 1.
inline int Processors() {
  return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

/// The columns that are left, and what the workers and the caller's thread tell one another.
struct TColumnJob {
  std::size_t columns;
  std::size_t threads;
  /// Lengths of the runs of columns that are computed together; runs are not shorter as long as
  /// there are enough columns for every worker.
  std::size_t shortestRun;
  std::size_t longestRun;
  double progress;  ///< of one column
  /// Computes columns first..last-1.
  std::function<void(std::size_t first, std::size_t last)> compute;

  std::atomic<bool> stop = false;
  std::mutex mutex{};
  std::condition_variable news{};
  // Under the mutex:
  std::size_t next = 0;             // first column that nobody has taken
  std::size_t events = 0;           // runs and workers that came to their end
  std::size_t running = 0;          // workers
  std::exception_ptr failure = {};  // the first exception of a worker

  /// Takes the next run: half of a worker's share of the columns that are left, so that the last
  /// runs are small and the workers end together.
  /// @return false if no column is left, or the work is to stop
  bool Take(std::size_t& first, std::size_t& last) {
    const std::lock_guard lock(mutex);
    const std::size_t left = columns - next;
    if (left == 0 || stop) return false;
    const std::size_t shortest = std::clamp<std::size_t>(columns / threads, 1, shortestRun);
    const std::size_t run = std::clamp<std::size_t>(left / (2 * threads), shortest, longestRun);
    first = next;
    last = next = first + std::min(run, left);
    return true;
  }
};

/// Takes runs of columns until none is left.
/// @tparam Thread  the class of the workers
template <class Thread>
class TColumnWorker : public Thread {
 public:
  explicit TColumnWorker(TColumnJob& job) : FJob(job) {}
  ~TColumnWorker() override { this->WaitFor(); }

 protected:
  void Execute() override {
    std::size_t first = 0;
    std::size_t last = 0;
    try {
      while (FJob.Take(first, last)) {
        FJob.compute(first, last);
        ProcStat += FJob.progress * static_cast<double>(last - first);
        Tell(0, nullptr);
      }
      Tell(1, nullptr);
    } catch (...) {
      FJob.stop = true;
      Tell(1, std::current_exception());
    }
  }

 private:
  void Tell(std::size_t ended, std::exception_ptr failure) {
    const std::lock_guard lock(FJob.mutex);
    ++FJob.events;
    FJob.running -= ended;
    if (failure && !FJob.failure) FJob.failure = failure;
    FJob.news.notify_one();
  }

  TColumnJob& FJob;
};

/// Ends and joins the workers whatever happens to the caller's thread.
template <class Thread>
class TColumnWorkers {
 public:
  explicit TColumnWorkers(TColumnJob& job) : FJob(job) {}
  ~TColumnWorkers() { FJob.stop = true; }  // the workers then wait for themselves

  /// Starts another worker, if the system has a thread for it.
  bool Start() {
    auto& worker = FWorkers.emplace_back(FJob);
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
  TColumnJob& FJob;
  std::deque<TColumnWorker<Thread>> FWorkers;
};

enum class TColumnResult { kDone, kStopped, kNoThread };

/// Computes all columns by at most job.threads workers, while the caller's thread calls
/// MathFeedBackProc and asks isStopped().
/// @return kNoThread, with nothing computed, if the system has no thread
/// @throws what a worker threw, and std::bad_alloc; no worker outlives the call
template <class Thread, class IsStopped>
TColumnResult RunColumnWorkers(TColumnJob& job, IsStopped&& isStopped) {
  TColumnWorkers<Thread> workers(job);
  std::size_t started = 0;
  while (started < job.threads && workers.Start()) ++started;
  if (started == 0) return TColumnResult::kNoThread;
  for (std::size_t seen = 0;;) {
    if (MathFeedBackProc) MathFeedBackProc(ProcStat);
    if (isStopped()) return TColumnResult::kStopped;
    std::unique_lock lock(job.mutex);
    if (job.running == 0) break;
    job.news.wait_for(lock, std::chrono::milliseconds(10), [&] { return job.events != seen; });
    seen = job.events;
  }
  if (job.failure) std::rethrow_exception(job.failure);
  if (MathFeedBackProc) MathFeedBackProc(ProcStat);
  return TColumnResult::kDone;
}

}  // namespace zel::detail
