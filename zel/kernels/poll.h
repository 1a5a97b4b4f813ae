/// @file
/// A question that long computations ask between their steps.
#pragma once

#include <concepts>
#include <memory>
#include <type_traits>

namespace zel::kernels {

/// Reference to a callable that says whether to go on; it must outlive the call it is given to. One
/// that refers to nothing always says yes.
class Poll {
 public:
  Poll() = default;
  template <class Callable>
  requires(std::predicate<Callable&> && !std::same_as<std::remove_cvref_t<Callable>, Poll>)
      Poll(Callable&& callable)
      : call_([](const void* context) {
          using Target = std::remove_reference_t<Callable>;
          return static_cast<bool>((*static_cast<Target*>(const_cast<void*>(context)))());
        }),
        context_(std::addressof(callable)) {}

  [[nodiscard]] bool operator()() const { return !call_ || call_(context_); }
  explicit operator bool() const { return call_ != nullptr; }

 private:
  bool (*call_)(const void*) = nullptr;
  const void* context_ = nullptr;
};

}  // namespace zel::kernels
