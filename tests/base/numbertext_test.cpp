#include "zel/base/numbertext.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace zel {
namespace {

constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Values whose text is hard, and doubles of random bits over the whole range.
std::vector<double> hardDoubles() {
  std::vector<double> x = {
      0.0,  -0.0, 1.0,   -1.0,  0.1,  0.5,    9.9999995, 999999.5,
      1e22, 1e23, kTiny, -kMax, kMax, 2.5e-5, 5e-324,    2.2250738585072011e-308};
  std::mt19937_64 random(7);
  while (x.size() < 5000) {
    const auto value = std::bit_cast<double>(random());
    if (std::isfinite(value)) x.push_back(value);
  }
  return x;
}

bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(ParseNumber, TakesWholeDecimalWordsOnly) {
  for (const char* word : {"1", "+1", "01", "1.", "1e0", "1E+00", "0.1e1", ".1e+1", "10e-1"}) {
    const auto x = ParseNumber(word);
    ASSERT_TRUE(x) << word;
    EXPECT_EQ(*x, 1.0) << word;
  }
  EXPECT_TRUE(sameBits(ParseNumber("-0").value(), -0.0));
  for (const char* word :
       {"",         "+",   "-",   ".",      "-.",  "e5", ".e5",  "1e",  "1e+", "+-1",  "-+1",
        "++1",      "--1", "1,5", "1.5.2",  " 1",  "1 ", "0x10", "1p3", "inf", "-inf", "+inf",
        "INFINITY", "nan", "NAN", "nan(1)", "###", "1f", "1d5",  "--",  "1-",  "1e5e5"}) {
    EXPECT_FALSE(ParseNumber(word)) << word;
  }
}

TEST(ParseNumber, RefusesOverflowAndFlushesUnderflow) {
  const std::string zeros(5000, '0');
  for (const std::string& word :
       std::vector<std::string>{"1e309", "-1.8e308", "1" + zeros, "1e99999999999999999999",
                                "0." + zeros + "1e99999", "1" + zeros + "e-4000"}) {
    EXPECT_FALSE(ParseNumber(word)) << word;
  }
  for (const std::string& word :
       std::vector<std::string>{"1e-400", "0." + zeros + "1", "1" + zeros + "e-9999",
                                "1e-99999999999999999999", "0e99999", "0." + zeros}) {
    EXPECT_TRUE(sameBits(ParseNumber(word).value(), 0.0)) << word;
    EXPECT_TRUE(sameBits(ParseNumber("-" + word).value(), -0.0)) << word;
  }
  EXPECT_EQ(ParseNumber("1.7976931348623158e308"), kMax);
  EXPECT_EQ(ParseNumber("3e-324"), kTiny);
  EXPECT_EQ(ParseNumber("1" + zeros + "e-5000"), 1.0);
}

TEST(ReadNumber, ConsumesOneWordEvenIfItIsNone) {
  std::istringstream in(" \t1.5\r\n+2 x3 4");
  double x = 9;
  EXPECT_TRUE(ReadNumber(in, x));
  EXPECT_EQ(x, 1.5);
  EXPECT_TRUE(ReadNumber(in, x));
  EXPECT_EQ(x, 2.0);
  EXPECT_FALSE(ReadNumber(in, x));
  EXPECT_EQ(x, 2.0);
  EXPECT_TRUE(ReadNumber(in, x));
  EXPECT_FALSE(ReadNumber(in, x));
  EXPECT_EQ(x, 4.0);
}

TEST(FormatFixed, AgreesWithTheCLibrary) {
  std::mt19937_64 random(3);
  for (const double x : hardDoubles()) {
    const int decimals = static_cast<int>(random() % 30);
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, x);
    ASSERT_EQ(FormatFixed(x, decimals), text);
    ASSERT_EQ(strff(x, 0, decimals), text);
  }
}

TEST(FormatFixed, GivesEveryDigitThatIsAskedFor) {
  const std::string exact = FormatFixed(kTiny, 1074);
  EXPECT_EQ(exact.size(), 1076U);
  EXPECT_EQ(exact.back(), '5');
  EXPECT_EQ(ParseNumber(exact), kTiny);
  EXPECT_EQ(ParseNumber(FormatFixed(kMax, 0)), kMax);
  EXPECT_EQ(FormatFixed(2.5, -7), "2");
  EXPECT_EQ(FormatFixed(1, 1 << 30).size(), 16447U);
}

TEST(FormatExp, FillsTheFieldAndRoundsCorrectly) {
  EXPECT_EQ(FormatExp(150, 13), " 1.50000E+002");
  EXPECT_EQ(FormatExp(-1.0 / 3, 26), "-3.333333333333333148E-001");
  EXPECT_EQ(FormatExp(9.9999995, 13), " 1.00000E+001");
  EXPECT_EQ(FormatExp(-0.0, 13), "-0.00000E+000");
  for (const double x : hardDoubles()) {
    for (const int width : {9, 13, 25, 26}) {
      const std::string text = FormatExp(x, width);
      ASSERT_EQ(text.size(), static_cast<std::size_t>(width)) << x;
      char expected[64];
      std::snprintf(expected, sizeof expected, "%.*e", width - 8, x);
      const auto value = ParseNumber(text.substr(text[0] == ' ' ? 1 : 0));
      // The largest double may round up to what no double holds.
      ASSERT_EQ(value.value_or(std::copysign(kInf, x)), std::strtod(expected, nullptr)) << text;
      if (width >= 25) {
        ASSERT_TRUE(sameBits(value.value(), x)) << text;
      }
    }
  }
}

TEST(NumberText, NamesWhatIsNotFinite) {
  EXPECT_EQ(FormatFixed(kNan, 3), "NAN");
  EXPECT_EQ(FormatFixed(-kInf, 3), "-INF");
  EXPECT_EQ(strff(kInf, 6, 2), "   INF");
  EXPECT_EQ(FormatExp(-kNan, 13), "          NAN");
  EXPECT_EQ(FormatExp(-kInf, 9), "     -INF");
}

TEST(Strff, PadsToTheWidthOnTheLeft) {
  EXPECT_EQ(strff(1.5, 12, 3), "       1.500");
  EXPECT_EQ(strff(-2, 12, 3), "      -2.000");
  EXPECT_EQ(strff(123456, 3, 0), "123456");
  EXPECT_EQ(strff(0.125, 1, 2), "0.12");  // a tie
  EXPECT_EQ(strff(1, -4, 1), "1.0");
}

TEST(Strff, KeepsExtendedDigits) {
  if (std::numeric_limits<Extended>::digits < 64) GTEST_SKIP() << "no extended precision here";
  // 1 + 2^-63 = 1.000000000000000000108420217...
  EXPECT_EQ(strff(1 + std::ldexp(Extended(1), -63), 0, 21), "1.000000000000000000108");
  EXPECT_EQ(strff(std::numeric_limits<Extended>::max(), 0, 1).size(), 4933U + 2U);
}

TEST(NumberText, IgnoresTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  // Without such a locale on the machine the test still checks the default one.
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, name)) break;
  }
  EXPECT_EQ(strff(std::sqrt(Extended(2)), 8, 3), "   1.414");
  EXPECT_EQ(ParseNumber("1.5"), 1.5);
  EXPECT_FALSE(ParseNumber("1,5"));
  std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
}  // namespace zel
