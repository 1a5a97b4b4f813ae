/// @file
/// TMat3D: what its sources share. Included by them only.
#pragma once

#include "zel/base/guard_impl.h"
#include "zel/matrix/TMat3D.h"

namespace zel {

template <class Operation>
decltype(auto) TMat3D::Guarded(Operation&& operation) const {
  return detail::GuardMemory(operation,
                             [&] { return EZELMatrixError(ComponentMessage(detail::kNoMemory)); });
}

}  // namespace zel
