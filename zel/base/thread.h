/// @file
/// Threads as objects.
#pragma once

#include <atomic>
#include <thread>

#include "zel/base/component.h"

namespace zel {

/// A thread of execution that is created suspended and started once.
///
/// The destructor waits for the end; a class with a thread body must call WaitFor in its own
/// destructor, since the body must not run on an object that is half destroyed.
class ZEL_API TThread : public TObject {
 public:
  TThread() = default;
  ~TThread() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Starts Execute on a thread of its own; a second call does nothing.
  /// @throws std::system_error  if the system has no thread left
  void Start();
  /// Waits until Execute has returned. Returns at once if the thread was never started.
  void WaitFor();
  /// Execute has returned.
  [[nodiscard]] bool Finished() const { return FFinished; }

 protected:
  /// The thread body. It must not throw.
  virtual void Execute() = 0;

 private:
  std::thread FThread;
  std::atomic<bool> FFinished = false;
};

}  // namespace zel
