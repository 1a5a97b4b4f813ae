/// @file
/// Exact arithmetic for checking sums: integers of any size, doubles as multiples of 2^-1074, and
/// the correctly rounded quotient of two integers. Slow and simple.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace zel::test {

class BigInt {
 public:
  BigInt(std::int64_t v = 0) : FNegative(v < 0) {
    for (std::uint64_t m = v < 0 ? 0 - static_cast<std::uint64_t>(v)
                                 : static_cast<std::uint64_t>(v);
         m != 0; m >>= 32) {
      FLimbs.push_back(static_cast<std::uint32_t>(m));
    }
  }

  /// x * 2^1074, for finite x.
  static BigInt scaled(double x) {
    int exponent = 0;
    const auto significand = static_cast<std::int64_t>(std::ldexp(std::frexp(x, &exponent), 53));
    // Denormals have trailing zeros where the shift is negative.
    const int shift = exponent - 53 + 1074;
    return shift >= 0 ? BigInt(significand) << shift : BigInt(significand >> -shift);
  }

  [[nodiscard]] bool isNegative() const { return FNegative; }
  [[nodiscard]] bool isZero() const { return FLimbs.empty(); }
  [[nodiscard]] int bitLength() const {
    if (FLimbs.empty()) return 0;
    int bits = 32 * static_cast<int>(FLimbs.size() - 1);
    for (std::uint32_t top = FLimbs.back(); top != 0; top >>= 1) ++bits;
    return bits;
  }

  friend BigInt operator-(BigInt a) {
    a.FNegative = !a.FNegative && !a.isZero();
    return a;
  }
  friend BigInt operator+(const BigInt& a, const BigInt& b) {
    if (a.FNegative != b.FNegative) {
      return compareMagnitudes(a, b) >= 0 ? difference(a, b) : difference(b, a);
    }
    BigInt r = a;
    r.FLimbs.resize(std::max(a.FLimbs.size(), b.FLimbs.size()) + 1);
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < r.FLimbs.size(); ++i) {
      carry += std::uint64_t{r.FLimbs[i]} + (i < b.FLimbs.size() ? b.FLimbs[i] : 0);
      r.FLimbs[i] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    return r.trimmed();
  }
  friend BigInt operator-(const BigInt& a, const BigInt& b) { return a + (-b); }
  friend BigInt operator*(const BigInt& a, const BigInt& b) {
    BigInt r;
    r.FLimbs.resize(a.FLimbs.size() + b.FLimbs.size());
    for (std::size_t i = 0; i < a.FLimbs.size(); ++i) {
      std::uint64_t carry = 0;
      for (std::size_t j = 0; j < b.FLimbs.size(); ++j) {
        carry += std::uint64_t{a.FLimbs[i]} * b.FLimbs[j] + r.FLimbs[i + j];
        r.FLimbs[i + j] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
      }
      r.FLimbs[i + b.FLimbs.size()] = static_cast<std::uint32_t>(carry);
    }
    r.FNegative = a.FNegative != b.FNegative;
    return r.trimmed();
  }
  friend BigInt operator<<(const BigInt& a, int bits) {
    BigInt r;
    r.FNegative = a.FNegative;
    r.FLimbs.resize(static_cast<std::size_t>(bits / 32) + a.FLimbs.size() + 1);
    for (std::size_t i = 0; i < a.FLimbs.size(); ++i) {
      const std::uint64_t v = std::uint64_t{a.FLimbs[i]} << (bits % 32);
      r.FLimbs[i + static_cast<std::size_t>(bits / 32)] |= static_cast<std::uint32_t>(v);
      r.FLimbs[i + static_cast<std::size_t>(bits / 32) + 1] |= static_cast<std::uint32_t>(v >> 32);
    }
    return r.trimmed();
  }

  /// a / b * 2^scale rounded to nearest, ties to even; b is not 0.
  template <class T>
  static T quotient(const BigInt& a, const BigInt& b, int scale = 0) {
    if (a.isZero()) return 0;
    constexpr int kDigits = std::numeric_limits<T>::digits;
    // The unit in the last place of the result, or half of that.
    int unit =
        std::max(a.bitLength() - b.bitLength() + scale, std::numeric_limits<T>::min_exponent) -
        kDigits;
    BigInt remainder = a << std::max(scale - unit, 0), divisor = b << std::max(unit - scale, 0);
    remainder.FNegative = divisor.FNegative = false;
    if (compareMagnitudes(remainder, divisor << kDigits) >= 0) {
      divisor = divisor << 1;
      ++unit;
    }
    std::uint64_t q = 0;
    for (int bit = kDigits - 1; bit >= 0; --bit) {
      const BigInt part = divisor << bit;
      if (compareMagnitudes(remainder, part) < 0) continue;
      remainder = remainder - part;
      q |= std::uint64_t{1} << bit;
    }
    const int half = compareMagnitudes(remainder << 1, divisor);
    const bool up = half > 0 || (half == 0 && (q & 1) != 0);
    const T value = std::ldexp(static_cast<T>(q) + static_cast<T>(up ? 1 : 0), unit);
    return a.FNegative != b.FNegative ? -value : value;
  }

 private:
  static int compareMagnitudes(const BigInt& a, const BigInt& b) {
    if (a.FLimbs.size() != b.FLimbs.size()) return a.FLimbs.size() < b.FLimbs.size() ? -1 : 1;
    for (std::size_t i = a.FLimbs.size(); i-- > 0;) {
      if (a.FLimbs[i] != b.FLimbs[i]) return a.FLimbs[i] < b.FLimbs[i] ? -1 : 1;
    }
    return 0;
  }
  /// a - b in magnitude with the sign of a; |a| >= |b|.
  static BigInt difference(const BigInt& a, const BigInt& b) {
    BigInt r = a;
    std::int64_t borrow = 0;
    for (std::size_t i = 0; i < r.FLimbs.size(); ++i) {
      borrow += std::int64_t{r.FLimbs[i]} - (i < b.FLimbs.size() ? std::int64_t{b.FLimbs[i]} : 0);
      r.FLimbs[i] = static_cast<std::uint32_t>(borrow);
      borrow >>= 32;
    }
    return r.trimmed();
  }
  BigInt& trimmed() {
    while (!FLimbs.empty() && FLimbs.back() == 0) FLimbs.pop_back();
    if (FLimbs.empty()) FNegative = false;
    return *this;
  }

  std::vector<std::uint32_t> FLimbs;  // magnitude, least significant first
  bool FNegative = false;
};

/// Sums of doubles and of their squares, exact; scaled by 2^1074 and 2^2148.
struct ExactPowerSums {
  std::int64_t n = 0;
  BigInt s1, s2;

  explicit ExactPowerSums(const auto& values) {
    for (const auto v : values) {
      const BigInt x = BigInt::scaled(static_cast<double>(v));
      ++n;
      s1 = s1 + x;
      s2 = s2 + x * x;
    }
  }

  [[nodiscard]] double sumOfSquares() const { return BigInt::quotient<double>(s2, 1, -2148); }
  [[nodiscard]] double mean() const { return BigInt::quotient<double>(s1, n, -1074); }
  /// n sum of d^2, exact and scaled by 2^2148.
  [[nodiscard]] BigInt spread() const { return BigInt(n) * s2 - s1 * s1; }
  [[nodiscard]] double variance() const {
    return BigInt::quotient<double>(spread(), BigInt(n) * BigInt(n - 1), -2148);
  }
};

}  // namespace zel::test
