#include "zel/foundation/integers.h"

#include <array>
#include <limits>
#include <numeric>

#include "zel/base/errors.h"

namespace zel {
namespace {

constexpr int kPrimes = 4792;
constexpr int kSquareRoot = 46340;  // of the largest int

// Sieve over the odd numbers, evaluated by the compiler; cell i stands for 2i + 1.
constexpr std::array<std::uint16_t, kPrimes> sievePrimes() {
  std::array<bool, (kSquareRoot + 1) / 2> composite{};
  std::array<std::uint16_t, kPrimes> primes{2};
  std::size_t found = 1;
  for (std::size_t i = 1; i < composite.size(); ++i) {
    if (composite[i]) continue;
    const std::size_t p = 2 * i + 1;
    primes[found++] = static_cast<std::uint16_t>(p);
    for (std::size_t j = p * p / 2; j < composite.size(); j += p) composite[j] = true;
  }
  return primes;
}
constexpr auto kPrimeTable = sievePrimes();
static_assert(kPrimeTable.back() == 46337);

std::uint32_t magnitude(int n) {
  return n < 0 ? 0U - static_cast<std::uint32_t>(n) : static_cast<std::uint32_t>(n);
}

}  // namespace

int ListOfPrimes(int ix) {
  return ix >= 1 && ix <= kPrimes ? kPrimeTable[static_cast<std::size_t>(ix - 1)] : 0;
}

bool IsPrime(int n) {
  const std::uint32_t m = magnitude(n);
  for (const std::uint32_t p : kPrimeTable) {
    if (p * p > m) return true;
    if (m % p == 0) return false;
  }
  return true;
}

void FindPrimeFactors(int n, TIntArray& Factors) {
  Factors.clear();
  if (n < 2) return;
  auto rest = static_cast<std::uint32_t>(n);
  for (const std::uint32_t p : kPrimeTable) {
    if (p * p > rest) break;
    while (rest % p == 0) {
      Factors.push_back(static_cast<int>(p));
      rest /= p;
    }
  }
  if (rest >= 2) Factors.push_back(static_cast<int>(rest));
}

void CancelFraction(int& Numerator, int& Denominator) {
  if (Numerator == 0 || Denominator == 0) return;
  // In 64 bits, since the divisor of two smallest ints is 2^31.
  const std::int64_t divisor = std::gcd(std::int64_t{Numerator}, std::int64_t{Denominator});
  Numerator = static_cast<int>(Numerator / divisor);
  Denominator = static_cast<int>(Denominator / divisor);
}

std::int64_t ProductConsecInts(int a, int b) {
  if (a > b) std::swap(a, b);
  if (a == 0) return 0;
  if (a < 0) return -2;
  const std::int64_t limit = std::numeric_limits<std::int64_t>::max() / b;
  std::int64_t product = 1;
  std::int64_t k = std::int64_t{a} - 1;
  while (product < limit && k < b) product *= ++k;
  return k < b ? -1 : product;
}

Extended Factorial(int n) {
  if (n < 0) throw EZELMath1Error("Factorial: negative argument");
  if (n > 1000) throw EZELMath1Error("Factorial: argument too big");
  Extended product = 1;
  for (int i = 2; i <= n; ++i) product *= static_cast<Extended>(i);
  return product;
}

}  // namespace zel
