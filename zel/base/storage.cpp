#include "zel/base/storage.h"

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zel::detail {
namespace {
constexpr std::size_t kAlignment = 64;

/// Large blocks take most of their time for page faults; huge pages, where the system has them,
/// save nearly all of these.
void AskForHugePages([[maybe_unused]] std::uintptr_t first, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kPage = std::uintptr_t{1} << 21;
  const std::uintptr_t begin = (first + kPage - 1) / kPage * kPage;
  const std::uintptr_t end = (first + bytes) / kPage * kPage;
  // A hint only: a system that does not know it goes on with small pages.
  if (begin < end)
    static_cast<void>(::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
#endif
}

}  // namespace

bool (*AllocationAllowed)(std::size_t bytes) = nullptr;

// calloc instead of an aligned allocation: only calloc hands out fresh pages without clearing them
// again. The pointer that free needs is kept in the word below the block.
void* AllocateZeroed(std::size_t bytes) {
  constexpr std::size_t extra = kAlignment + sizeof(void*);
  if (bytes > SIZE_MAX - extra || (AllocationAllowed && !AllocationAllowed(bytes)))
    throw std::bad_alloc();
  void* raw = std::calloc(bytes + extra, 1);
  if (!raw) throw std::bad_alloc();
  const auto first = reinterpret_cast<std::uintptr_t>(raw) + sizeof(void*);
  const auto aligned = (first + kAlignment - 1) / kAlignment * kAlignment;
  std::memcpy(reinterpret_cast<void*>(aligned - sizeof(void*)), &raw, sizeof raw);
  AskForHugePages(aligned, bytes);
  return reinterpret_cast<void*>(aligned);
}

void ReleaseStorage(void* block) noexcept {
  if (!block) return;
  void* raw = nullptr;
  std::memcpy(&raw, static_cast<char*>(block) - sizeof(void*), sizeof raw);
  std::free(raw);
}

}  // namespace zel::detail
