#include "zel/foundation/integers.h"

#include "tests/support/testing.h"
#include "zel/foundation/bits.h"

using namespace zel;

TEST(Primes, TableAndTestAgreeWithTrialDivision) {
  const auto hasNoDivisor = [](std::int64_t n) {
    for (std::int64_t d = 2; d * d <= n; ++d) {
      if (n % d == 0) return false;
    }
    return true;
  };
  int ix = 0, wrong = 0;
  for (int n = 0; n <= 46340; ++n) {
    ASSERT_EQ(IsPrime(-n), hasNoDivisor(n)) << n;
    if (n >= 2 && IsPrime(n)) wrong += ListOfPrimes(++ix) != n;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(ix, 4792);
  EXPECT_EQ(ListOfPrimes(0) + ListOfPrimes(4793), 0);
  for (int n = INT_MAX; n > INT_MAX - 200; --n) ASSERT_EQ(IsPrime(n), hasNoDivisor(n)) << n;
  EXPECT_FALSE(IsPrime(46337 * 46337));
  EXPECT_FALSE(IsPrime(INT_MIN));
}

TEST(Primes, FactorsAreOrderedPrimesWithTheRightProduct) {
  const int ends[] = {INT_MAX, 46337 * 46337, INT_MIN};
  TIntArray factors{7};
  SetRandSeed(5);
  for (int trial = 0; trial < 3000; ++trial) {
    const int n = trial < 1000 ? trial : trial < 2997 ? 1 + Random(INT_MAX) : ends[trial - 2997];
    FindPrimeFactors(n, factors);
    ASSERT_TRUE(std::is_sorted(factors.begin(), factors.end()));
    ASSERT_TRUE(std::all_of(factors.begin(), factors.end(), IsPrime));
    ASSERT_EQ(std::accumulate(factors.begin(), factors.end(), 1, std::multiplies<>()),
              std::max(n, 1));
  }
}

TEST(CancelFraction, LowestTermsWithTheSignsKept) {
  const auto cancelled = [](int n, int d) {
    CancelFraction(n, d);
    return std::pair(n, d);
  };
  for (int a = -60; a <= 60; ++a) {
    for (int b = -60; b <= 60; ++b) {
      const int divisor = a == 0 || b == 0 ? 1 : std::gcd(a, b);
      ASSERT_EQ(cancelled(a, b), std::pair(a / divisor, b / divisor));
    }
  }
  EXPECT_EQ(cancelled(INT_MIN, INT_MIN), std::pair(-1, -1));
  EXPECT_EQ(cancelled(INT_MIN, 6), std::pair(INT_MIN / 2, 3));
}

TEST(Products, ConsecutiveIntegersAndTheirLimits) {
  EXPECT_EQ(ProductConsecInts(5, 3), 60);
  EXPECT_EQ(ProductConsecInts(1, 20), 2432902008176640000);  // 20!, the last one in 64 bits
  EXPECT_EQ(ProductConsecInts(INT_MAX, INT_MAX - 1), std::int64_t{INT_MAX} * (INT_MAX - 1));
  EXPECT_EQ(ProductConsecInts(INT_MAX, INT_MAX), INT_MAX);
  for (const auto& [a, b] : {std::pair(1, 21), {1, INT_MAX}, {INT_MAX, INT_MAX - 2}}) {
    EXPECT_EQ(ProductConsecInts(a, b), -1) << a;
  }
  EXPECT_EQ(ProductConsecInts(9, 0), 0);
  EXPECT_EQ(ProductConsecInts(9, -1), -2);
}

// Reference values: exact integer products in another language.
TEST(Products, FactorialInExtendedPrecision) {
  EXPECT_EQ(Factorial(0), 1);
  EXPECT_NEAR(static_cast<double>(Factorial(170) / 7.257415615307998967396728211129263114717e306L),
              1, 1e-15);
  if (std::numeric_limits<Extended>::max_exponent > 10000) {
    EXPECT_NEAR(static_cast<double>(Factorial(1000) / 4.023872600770937735437024339230039857e2567L),
                1, 1e-15);
  }
  EXPECT_THROW_MSG((void)Factorial(-1), EZELMath1Error, "Factorial: negative argument");
  EXPECT_THROW_MSG((void)Factorial(1001), EZELMath1Error, "Factorial: argument too big");
}

TEST(Bits, BytesAgreeWithTheirBinaryDigits) {
  for (int b = 0; b < 256; ++b) {
    int reversed = 0;
    int count = 0;
    for (int i = 0; i < 8; ++i) {
      const int digit = b / (1 << i) % 2;
      reversed = 2 * reversed + digit;
      count += digit;
    }
    const auto byte = static_cast<std::uint8_t>(b);
    ASSERT_EQ(BitReversal(byte), reversed);
    ASSERT_EQ(CountBits(byte), count);
    ASSERT_EQ(CheckPowerOfTwo(byte), count <= 1);
    const int changed = GrayCode(byte) ^ GrayCode(static_cast<std::uint16_t>(b + 1));
    ASSERT_EQ(changed, 1 << EncodeLong(b + 1));  // one bit, at the place of the carry
  }
}

TEST(Bits, PowersAndTheirIndices) {
  for (int ix = 0; ix < 32; ++ix) {
    ASSERT_EQ(EncodeLong(DecodeLong(ix)), ix);
    ASSERT_EQ(DecodeBit(ix), ix < 8 ? 1 << ix : 0);
  }
  EXPECT_EQ(DecodeLong(32) + DecodeLong(-1) + DecodeBit(-1), 0);
  EXPECT_EQ(EncodeLong(0), 31);
}

template <class T>
concept HasReversedBytes = requires(T x) {
  ConvertEndian(x);
};

TEST(Bits, ByteOrderOfTheFourTypesOnly) {
  static_assert(!HasReversedBytes<short> && !HasReversedBytes<char> && !HasReversedBytes<long>);
  EXPECT_EQ(ConvertEndian(0x01020304), 0x04030201);
  EXPECT_EQ(ConvertEndian(std::uint16_t{0x0102}), 0x0201);
  EXPECT_EQ(ConvertEndian(1.0), 0xF03Fp-1074);
  EXPECT_EQ(ConvertEndian(1.0F), 0x1.007Ep-134F);
}
