/// @file
/// Alignment of scratch memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::kernels {

/// Doubles in a line of the cache.
constexpr std::size_t kLine = 8;

/// The first double from p on that begins a line of the cache; up to kLine - 1 are lost.
inline double* alignedToLine(double* p) {
  const auto address = reinterpret_cast<std::uintptr_t>(p);
  const std::uintptr_t bytes = kLine * sizeof(double);
  return p + (bytes - address % bytes) % bytes / sizeof(double);
}

}  // namespace zel::kernels
