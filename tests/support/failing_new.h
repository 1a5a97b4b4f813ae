/// @file
/// Makes operator new fail on demand.
#pragma once

namespace zel::test {

/// While it lives, the k-th allocation by operator new (counted from 0) throws std::bad_alloc.
class FailingNew {
 public:
  explicit FailingNew(int k);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};

}  // namespace zel::test
