// Integers in several notations, bit patterns of floating-point numbers.
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/expect_message.h"
#include "zel/foundation/Zel_math1.h"

namespace zel {
namespace {

TEST(IntegerText, DigitsOfEveryNotation) {
  EXPECT_EQ(Hex(-1, 4), "FFFF");
  EXPECT_EQ(Hex(291, 3), "123");
  EXPECT_EQ(Hex(291, 0), "3");
  EXPECT_EQ(Hex(INT_MIN, 255), "80000000");
  EXPECT_EQ(Decimal(-42, 5), "-00042");
  EXPECT_EQ(Decimal(987, 2), "87");
  EXPECT_EQ(Decimal(INT_MIN, 10), "-2147483648");
  EXPECT_EQ(Decimal(7, 0), "7");
  EXPECT_EQ(Decimal(0, 255), std::string(255, '0'));
  EXPECT_EQ(Octal(8, 3), "010");
  EXPECT_EQ(Octal(-1, 99), "37777777777");
  EXPECT_EQ(Bin(5, 0), "1");
  EXPECT_EQ(Bin(-2, 40), std::string(31, '1').append("0"));
  EXPECT_EQ(Roman(994), "CMXCIV");
  EXPECT_EQ(Roman(3888), "MMMDCCCLXXXVIII");
  EXPECT_EQ(Roman(29999), std::string(29, 'M').append("CMXCIX"));
  for (const int none : {0, -1, 30000, INT_MIN}) EXPECT_EQ(Roman(none), "");
}

TEST(IntegerText, Defaults) {
  const std::pair<const char*, int> cases[] = {
      {"12", 12}, {" \t-12", -12}, {"+5", 5}, {"2147483647", INT_MAX}, {"12x", 7}, {"", 7},
      {"+-5", 7}, {"- 5", 7},      {"5 ", 7}, {"2147483648", 7},       {"1.5", 7}, {"0x10", 7}};
  for (const auto& [text, value] : cases) EXPECT_EQ(StrToIntDefault(text, 7), value) << text;
}

TEST(BitPatterns, RoundTrip) {
  EXPECT_EQ(FPNumToHex(1.0F), "3F800000");
  EXPECT_EQ(FPNumToHex(-0.0), "8000000000000000");
  EXPECT_EQ(HexToDouble("3ff0000000000000"), 1);
  std::mt19937_64 random(1);
  for (int k = 0; k < 1000; ++k) {
    const auto bits = random();
    const double x = std::bit_cast<double>(bits);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(HexToDouble(FPNumToHex(x))), bits);
    const auto f = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    EXPECT_EQ(FPNumToHex(HexToSingle(FPNumToHex(f))), FPNumToHex(f));
    const Extended e =
        std::ldexp(static_cast<Extended>(bits), static_cast<int>(random() % 32000) - 16200);
    EXPECT_EQ(HexToExtended(FPNumToHex(e)), e);
    EXPECT_EQ(FPNumToHex(e).size(), 20U);
  }
  EXPECT_EQ(FPNumToHex(Extended{1}), "3FFF8000000000000000");
  EXPECT_TRUE(std::isnan(HexToExtended("3FFF0000000000000001"))) << "no leading bit";
  const std::string problem = ": invalid hex string \"+ff0000000000000\"";
  EXPECT_THROW_MSG((void)HexToSingle("+ff0000000000000"), EZELError, "HexToSingle" + problem);
  EXPECT_THROW_MSG((void)HexToDouble("+ff0000000000000"), EZELError, "HexToDouble" + problem);
  EXPECT_THROW_MSG((void)HexToExtended("+ff0000000000000"), EZELError, "HexToExtended" + problem);
}

}  // namespace
}  // namespace zel
