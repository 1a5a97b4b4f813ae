/// @file
/// Products and transposes of integer matrices, modulo 2^32. The conventions are those of
/// products.h.
#pragma once

#include <cstdint>
#include <span>

#include "zel/kernels/products.h"

namespace zel::kernels {

using IntMatrix = MatrixSpan<std::int32_t>;
using ConstIntMatrix = MatrixSpan<const std::int32_t>;

/// c = A B, where A is a or its transpose and B is b or its transpose. Allocates nothing.
void multiply(ConstIntMatrix a, Factor asA, ConstIntMatrix b, Factor asB, IntMatrix c);

/// y = A x.
void multiplyVector(ConstIntMatrix a, Factor asA, std::span<const std::int32_t> x,
                    std::span<std::int32_t> y);

void transpose(ConstIntMatrix from, IntMatrix to);
void transposeSquare(IntMatrix a);

}  // namespace zel::kernels
