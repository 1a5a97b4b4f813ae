// Angles, integers and floating-point numbers as text, and bit patterns. The digits of references
// come from exact rational arithmetic.
#include "zel/foundation/Zel_math1.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

constexpr bool kHas80Bits = std::numeric_limits<Extended>::digits == 64;

TEST(DegreeToStr, WritesEveryNotation) {
  const std::tuple<double, TDegreeFormat, int, const char*> cases[] = {
      {-0.5, dfDegMin, 1, "-0° 30.0'"},
      {12.5, dfDegrees, 2, "12.50°"},
      {-12.5, dfNumber, 99, "-12.50000000"},
      {12.5, dfNumber, -1, "12"},
      {-1.0 / 3, dfDegMinSec, 8, "-0° 20'  0.00000000\""},
      {359.99999999, dfDegMinSec, 4, "360°  0'  0.0000\""},
      {123456789012.34567, dfDegMinSec, 8, "123456789012° 20' 44.42138672\""},
      {-1e23, dfDegMin, 0, "-99999999999999991611392°   0'"},
      {0.025, dfDegMin, 0, "0°   2'"},  // 1.5 minutes
      {0.075, dfDegMin, 0, "0°   4'"},  // a little below 4.5 minutes
      {std::nextafter(0.0083, 1) - 0.0083, dfDegMin, 0, "0°   0'"},
      {-0.000138, dfDegMinSec, 0, "0°  0'   0\""},                // rounds to zero: no sign
      {7.0000000000029, dfDegMinSec, 8, "7°  0'  0.00000000\""},  // within 3e-12
      {7.0000000000058, dfDegMinSec, 8, "7°  0'  0.00000002\""},
      {-kInf, dfDegMin, 1, "-INF°"},
      {1, TDegreeFormat(4), 1, ""}};
  for (const auto& [x, format, d, text] : cases) EXPECT_EQ(DegreeToStr(x, format, d), text);
}

TEST(Strf, ChoosesTheNotationByDecimals) {
  const std::tuple<double, int, int, std::string> cases[] = {
      {1.5, 8, 2, "    1.50"},  {1.5, 12, -2, " 1.50000E+00"}, {-1e-99, 14, -1, "-1.00000E-0099"},
      {0, 1, -3, " 0.0E+0000"}, {-kInf, 9, -2, "     -INF"},   {kInf, 1, -2, "     INF"}};
  for (const auto& [x, width, d, text] : cases) EXPECT_EQ(strf(x, width, d), text);
  EXPECT_EQ(strf(-9.9999999e99, 12, -2), "************") << "rounds up to a third digit";
  EXPECT_EQ(strf(9.99999e-100, 8, -2), " 1.0E-99") << "rounds up to two digits";
  if (!kHas80Bits) GTEST_SKIP() << "no 80-bit format here";
  EXPECT_EQ(strf(std::ldexp(Extended{0xDEADBEEFCAFEBABFU}, 5000), 29, -1),
            " 2.26640095235074359955E+1524");
  EXPECT_EQ(strf(std::ldexp(Extended{12345}, -16445), 29, -1), " 4.49999882210891489682E-4947");
}

TEST(MakeEFormat, PutsTheMantissaBelowOne) {
  EXPECT_EQ(MakeEFormat(123.4, 12, 4), "  0.1234E+03");
  EXPECT_EQ(MakeEFormat(-0.05, 0, 0), "-0.50E-01");
  EXPECT_EQ(MakeEFormat(0, 10, 3), " 0.000E+00");
  EXPECT_EQ(MakeEFormat(9.9996, 1, 4), " 0.1000E+02");
  EXPECT_EQ(MakeEFormat(-1e150, 99, 99), "                 -0.100000000000000E+151");
  EXPECT_EQ(MakeEFormat(std::nan(""), 8, 4), "     NAN");
}

TEST(EEngStr, PlacesThePrefix) {
  const std::tuple<double, int, std::string> cases[] = {
      {4.7e3, 2, "4.7k"},    {-4.7e3, -2, "-4k7"},      {-5e6, -1, "-5M"},
      {12.34, -3, "12.3"},   {999.96, 4, "1000.0"},     {999999, 3, "1000k"},
      {1e-20, 3, "0.0100a"}, {9.996e-20, 3, "0.1000a"}, {1e20, 99, "100000000T"},
      {-0.0, 3, "0.00"},     {kInf, 3, "INF"}};
  for (const auto& [x, digits, text] : cases) EXPECT_EQ(EEngStr(x, digits), text);
  EXPECT_EQ(EEngStr(1e28, 1), "10000000000000000T");
  EXPECT_EQ(EEngStr(std::nextafter(1000.0, 0), 9), "1.00000000k");
  // The doubles nearest to the powers of ten lie below or above them.
  for (int power = -18; power <= 14; ++power) {
    const std::string digits[] = {"1.00", "10.0", "100"};
    const int third = (power + 18) / 3;
    std::string expected = digits[(power + 18) % 3];
    if (third != 6) expected += "afpnum kMGT"[third];
    EXPECT_EQ(EEngStr(std::stod("1e" + std::to_string(power)), 3), expected);
  }
}

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
  EXPECT_EQ(Octal(15, 0), "7");
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
  for (const std::string bad : {"", "3f80000", "3f8000g0", "3ff000000000000", "+ff0000000000000",
                                "3fff800000000000000", "+3fff80000000000000"}) {
    const std::string problem = ": invalid hex string \"" + bad + '"';
    EXPECT_THROW_MSG((void)HexToSingle(bad), EZELError, "HexToSingle" + problem);
    EXPECT_THROW_MSG((void)HexToDouble(bad), EZELError, "HexToDouble" + problem);
    EXPECT_THROW_MSG((void)HexToExtended(bad), EZELError, "HexToExtended" + problem);
  }
}

}  // namespace
}  // namespace zel
