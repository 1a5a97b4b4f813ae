/// @file
/// Process-wide progress counter, progress hook and abort request of long computations. The library
/// only adds to the counter. The abort request is the caller's to reset, but for routines that say
/// that they clear it first.
#pragma once

#include <atomic>

#include "zel/base/api.h"

namespace zel {

/// Progress hook: receives the current value of ProcStat.
using TMathFeedBackProc = void (*)(double);

/// Progress counter of the running computation.
extern ZEL_API std::atomic<double> ProcStat;
/// Called after each progress step, on the caller's thread; null: nobody listens.
extern ZEL_API TMathFeedBackProc MathFeedBackProc;
/// While true, routines that poll it stop at their next poll and return failure.
extern ZEL_API std::atomic<bool> AbortMathProc;

/// One progress step: adds to ProcStat, then calls MathFeedBackProc.
ZEL_API void ProgressStep(double amount = 1.0);

}  // namespace zel
