/// @file
/// Failed allocations of curve fitting as its exception. Internal.
#pragma once

#include <string>
#include <string_view>

#include "zel/base/errors.h"
#include "zel/base/guard_impl.h"

namespace zel::detail {

/// Runs an operation; an allocation that fails in it, also one of its matrices and vectors, raises
/// EZELMath2Error with "<routine>: not enough memory".
template <class Operation>
decltype(auto) GuardFit(std::string_view routine, Operation&& operation) {
  const auto error = [&] { return EZELMath2Error(std::string(routine) + ": not enough memory"); };
  try {
    return GuardMemory(operation, error);
  } catch (const EZELMatrixError&) {
    throw error();
  } catch (const EZELVectorError&) {
    throw error();
  }
}

}  // namespace zel::detail
