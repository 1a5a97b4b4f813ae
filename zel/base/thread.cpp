#include "zel/base/thread.h"

namespace zel {

TThread::~TThread() { TThread::WaitFor(); }

std::string_view TThread::ClassName() const { return "TThread"; }

void TThread::Start() {
  if (FThread.joinable() || FFinished) return;
  FThread = std::thread([this] {
    Execute();
    FFinished = true;
  });
}

void TThread::WaitFor() {
  if (FThread.joinable()) FThread.join();
}

}  // namespace zel
