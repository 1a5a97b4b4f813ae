/// @file
/// The process-wide uniform generator. The same seed gives the same sequence on every platform. Not
/// synchronised.
#pragma once

#include <cstdint>

#include "zel/base/api.h"

namespace zel {

/// Uniform in [0, 1), a multiple of 2^-53.
ZEL_API double Random();
/// Uniform integer in 0..n-1, without bias; 0 for n <= 1.
/// Method: Lemire, ACM Trans. Model. Comput. Simul. 29 (2019) 3.
ZEL_API int Random(int n);
/// Seeds the generator from the clock.
ZEL_API void Randomize();
/// Seeds the generator; every value, 0 included, is a good seed.
ZEL_API void SetRandSeed(std::uint64_t seed);

}  // namespace zel
