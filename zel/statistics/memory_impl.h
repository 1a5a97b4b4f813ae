/// @file
/// Failed allocations of the statistics as their exception. Internal.
#pragma once

#include "zel/base/errors.h"
#include "zel/base/guard_impl.h"

namespace zel::detail {

/// Runs an operation; an allocation that fails in it, also one of the containers that it uses,
/// raises EZELStatisError with the text that message() gives. Nothing but a lack of memory may make
/// the containers raise.
template <class Operation, class Message>
decltype(auto) GuardStatis(Operation&& operation, Message&& message) {
  const auto error = [&] { return EZELStatisError(message()); };
  try {
    return GuardMemory(operation, error);
  } catch (const EZELStatisError&) {
    throw;
  } catch (const EZELError&) {
    throw error();
  }
}

}  // namespace zel::detail
