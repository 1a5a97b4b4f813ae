/// @file
/// Callables that a kernel reports to. An empty hook is an instantiation of its own and costs
/// nothing.
#pragma once

#include <utility>

namespace zel::kernels {

struct NoHook {
  template <class... Args>
  constexpr void operator()(Args&&...) const noexcept {}
};

/// Runs call(event) if a handler is set, call(NoHook{}) if not: one test per operation, none per
/// step.
template <class Event, class Call>
decltype(auto) withHook(const Event& event, Call&& call) {
  return event ? call(event) : call(NoHook{});
}

}  // namespace zel::kernels
