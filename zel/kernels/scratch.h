/// @file
/// Working memory of kernels.
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <new>

namespace zel::kernels {

/// Numbers aligned to 64 bytes, not initialised. A few stand inside the object, which is meant for
/// the stack.
class Scratch {
 public:
  /// @throws std::bad_alloc
  explicit Scratch(std::size_t n) : FData(FFew) {
    if (n <= std::size(FFew)) return;
    std::size_t bytes = n * sizeof(double);
    std::size_t space = bytes + kAlignment;
    FMany.reset(::operator new(space));
    void* first = FMany.get();
    FData = static_cast<double*>(std::align(kAlignment, bytes, first, space));
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  [[nodiscard]] double* data() const { return FData; }

 private:
  static constexpr std::size_t kAlignment = 64;
  struct Release {
    void operator()(void* block) const { ::operator delete(block); }
  };
  alignas(kAlignment) double FFew[512];
  std::unique_ptr<void, Release> FMany;
  double* FData;
};

}  // namespace zel::kernels
