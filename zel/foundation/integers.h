/// @file
/// Primes, fractions, factorials.
#pragma once

#include <cstdint>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/types.h"

namespace zel {

/// The ix-th prime for 1 <= ix <= 4792 (2, 3, ..., 46337: the primes below the square root of the
/// largest int), otherwise 0.
[[nodiscard]] ZEL_API int ListOfPrimes(int ix);

/// True if no d with 2 <= d <= sqrt(|n|) divides n. A negative n is judged by its magnitude, and
/// -1, 0 and 1 count as prime. Trial division by primes only, at most 4792 of them.
[[nodiscard]] ZEL_API bool IsPrime(int n);

/// Prime factors of n in increasing order, each as often as it divides n, at most 30. None for
/// n < 2. Trial division by primes only, at most 4792 of them.
ZEL_API void FindPrimeFactors(int n, TIntArray& Factors);

/// Reduces a fraction to lowest terms. Both signs stay as they were; a fraction with a zero above
/// or below the line is left alone. Method: Euclid.
ZEL_API void CancelFraction(int& Numerator, int& Denominator);

/// Product of the consecutive integers from the smaller to the larger argument.
/// @return 0 if the smaller one is 0, -2 if it is negative, -1 if the product may exceed 64 bits:
///   when a partial product reaches the largest 64-bit integer divided by the larger argument
[[nodiscard]] ZEL_API std::int64_t ProductConsecInts(int a, int b);

/// n!, the product in extended precision: exact up to 25! with the 80-bit format, then with at
/// most one rounding per factor.
/// @throws EZELMath1Error  for n < 0 and for n > 1000
[[nodiscard]] ZEL_API Extended Factorial(int n);

}  // namespace zel
