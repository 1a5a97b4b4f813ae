/// @file
/// Failed allocations as the exceptions of components. Internal.
#pragma once

#include <new>
#include <stdexcept>

namespace zel::detail {

/// End of the message after the name of the component.
inline constexpr const char kNoMemory[] = "\": not enough memory on heap";

/// Runs an operation; an allocation that fails in it, or a size that cannot be, throws makeError().
template <class Operation, class MakeError>
decltype(auto) GuardMemory(Operation&& operation, MakeError&& makeError) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    throw makeError();
  } catch (const std::length_error&) {
    throw makeError();
  }
}

}  // namespace zel::detail
