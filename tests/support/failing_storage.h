/// @file
/// Makes array storage fail on demand.
#pragma once

#include "zel/base/storage.h"

namespace zel::test {

/// While it lives, the k-th allocation of array storage (counted from 0) fails; or every one above
/// a size.
class FailingStorage {
 public:
  explicit FailingStorage(int k) {
    countdown() = k;
    detail::AllocationAllowed = [](std::size_t) { return countdown()-- != 0; };
  }
  ~FailingStorage() { detail::AllocationAllowed = nullptr; }
  FailingStorage(const FailingStorage&) = delete;
  FailingStorage& operator=(const FailingStorage&) = delete;

 private:
  static int& countdown() {
    static int left = 0;
    return left;
  }
};

}  // namespace zel::test
