#include "zel/base/progress.h"

namespace zel {

std::atomic<double> ProcStat{0.0};
TMathFeedBackProc MathFeedBackProc = nullptr;
std::atomic<bool> AbortMathProc{false};

void ProgressStep(double amount) {
  const double reached = ProcStat.fetch_add(amount) + amount;
  if (MathFeedBackProc) MathFeedBackProc(reached);
}

}  // namespace zel
