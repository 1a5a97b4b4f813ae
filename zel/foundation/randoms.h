/// @file
/// Random deviates. All but LongRand draw from the process-wide generator that SetRandSeed seeds.
/// Not synchronised.
#pragma once

#include "zel/base/api.h"
#include "zel/base/random.h"

namespace zel {

/// Bernoulli deviate: true with probability p. For p >= 1 nothing is drawn.
[[nodiscard]] ZEL_API bool BRandom(double p);

/// Cauchy deviate with the given location (median) and scale (half width at half maximum): one
/// draw, by inversion.
[[nodiscard]] ZEL_API double CRandom(double Location, double Scale);

/// Standard normal deviate.
///
/// Deviates arise in pairs; every second call returns the one kept from the call before and draws
/// nothing. The kept deviate belongs to the process and outlives SetRandSeed and Randomize: after
/// an odd number of calls, the first deviate after seeding is still the old one.
/// Method: polar method, Marsaglia and Bray, SIAM Rev. 6 (1964) 260.
[[nodiscard]] ZEL_API double GRandom();

/// Uniform deviate in [0, 1) from a generator of its own: the fractional part of the sum of three
/// multiplicative congruential generators. Other random routines do not disturb its sequence.
/// @param Seed  not 0: starts the sequence that belongs to Seed; 0: continues. Multiples of
///   990923, and a process that has not passed a seed yet, get the constant 0.
/// Method: Wichmann and Hill, Appl. Stat. 31 (1982) 188, with other moduli and multipliers.
[[nodiscard]] ZEL_API double LongRand(int Seed);

}  // namespace zel
