#include "tests/support/failing_new.h"

#include <cstdlib>
#include <new>

namespace {
int countdown = -1;  // negative: never fails
}

namespace zel::test {
FailingNew::FailingNew(int k) { countdown = k; }
FailingNew::~FailingNew() { countdown = -1; }
}  // namespace zel::test

// Replaces the allocation of the whole test program.
void* operator new(std::size_t size) {
  if (countdown >= 0 && countdown-- == 0) throw std::bad_alloc();
  if (void* block = std::malloc(size > 0 ? size : 1)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
