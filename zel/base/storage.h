/// @file
/// Zeroed, 64-byte aligned storage for arrays. Large blocks come lazily zeroed from the system.
#pragma once

#include <cstddef>

#include "zel/base/api.h"

namespace zel::detail {

/// @throws std::bad_alloc
[[nodiscard]] ZEL_API void* AllocateZeroed(std::size_t bytes);
/// Releases what AllocateZeroed gave; null is allowed.
ZEL_API void ReleaseStorage(void* block) noexcept;

/// Replaceable by tests: false makes the next allocation fail. Null: never fails. Not exported.
extern bool (*AllocationAllowed)(std::size_t bytes);

}  // namespace zel::detail
