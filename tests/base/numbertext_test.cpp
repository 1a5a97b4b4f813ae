#include "zel/base/numbertext.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "tests/support/testing.h"

namespace zel {
namespace {

constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

/// Values whose text is hard, and doubles of random bits over the whole range.
std::vector<double> hardDoubles() {
  std::vector<double> x = {
      0.0,  -0.0, 1.0,   0.125, 0.1,  0.5,    2.5,      9.9999995,
      1e22, 1e23, kTiny, -kMax, kMax, 2.5e-5, 999999.5, 2.2250738585072011e-308};
  std::mt19937_64 random(7);
  while (x.size() < 5000) {
    const auto value = std::bit_cast<double>(random());
    if (std::isfinite(value)) x.push_back(value);
  }
  return x;
}

TEST(ParseNumber, TakesWholeDecimalWordsOnly) {
  for (const char* word : {"1", "+1", "01", "1.", "1e0", "1E+00", "0.1e1", ".1e+1", "10e-1"}) {
    EXPECT_EQ(ParseNumber(word), 1.0) << word;
  }
  EXPECT_TRUE(test::sameValue(ParseNumber("-0").value(), -0.0));
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
    EXPECT_TRUE(test::sameValue(ParseNumber(word).value(), 0.0)) << word;
    EXPECT_TRUE(test::sameValue(ParseNumber("-" + word).value(), -0.0)) << word;
  }
  EXPECT_EQ(ParseNumber("1.7976931348623158e308"), kMax);
  EXPECT_EQ(ParseNumber("3e-324"), kTiny);
  EXPECT_EQ(ParseNumber("1" + zeros + "e-5000"), 1.0);
}

TEST(ReadNumber, ConsumesOneWordEvenIfItIsNone) {
  std::istringstream in(" \t1.5\r\n+2 x3 4");
  double x = 9;
  for (const auto& [isNumber, value] :
       {std::pair(true, 1.5), {true, 2}, {false, 2}, {true, 4}, {false, 4}}) {
    EXPECT_EQ(ReadNumber(in, x), isNumber);
    EXPECT_EQ(x, value);
  }
}

/// What the C library prints.
template <class F>
std::string printed(const char* format, int width, int decimals, F x) {
  std::string text(7000, '\0');
  text.resize(static_cast<std::size_t>(
      std::snprintf(text.data(), text.size(), format, width, decimals, x)));
  return text;
}

TEST(NumberText, FixedPointAgreesWithTheCLibrary) {
  std::mt19937_64 random(3);
  for (const double x : hardDoubles()) {
    const int width = static_cast<int>(random() % 40);
    const int decimals = static_cast<int>(random() % (width == 7 ? 1500 : 30));
    ASSERT_EQ(FormatFixed(x, decimals), printed("%*.*f", 0, decimals, x));
    ASSERT_EQ(strff(x, width, decimals), printed("%*.*f", width, decimals, x));
    const Extended extended = std::ldexp(static_cast<Extended>(random()) + x / kMax,
                                         static_cast<int>(random() % 20000) - 10000);
    ASSERT_EQ(strff(extended, width, decimals), printed("%*.*Lf", width, decimals, extended));
  }
  EXPECT_EQ(FormatFixed(2.5, -7), "2");
  EXPECT_EQ(FormatFixed(1, 1 << 30).size(), 16447U);
  EXPECT_EQ(strff(1, -4, 1), "1.0");
  EXPECT_EQ(strff(std::numeric_limits<Extended>::max(), 0, 1),
            printed("%*.*Lf", 0, 1, std::numeric_limits<Extended>::max()));
}

TEST(FormatExp, FillsTheFieldAndRoundsCorrectly) {
  for (const double x : hardDoubles()) {
    for (const int width : {9, 13, 25, 26}) {
      const std::string expected = printed("% *.*e", 0, width - 8, x);
      const std::size_t mark = expected.find('e');
      const int power = std::atoi(expected.c_str() + mark + 1);
      const std::string text = FormatExp(x, width);
      ASSERT_EQ(text, expected.substr(0, mark) + printed("E%+*.*d", 0, 3, power));
      const auto value = ParseNumber(text.substr(text[0] == ' ' ? 1 : 0));
      // The largest double may round up to what no double holds.
      const double nearest = std::strtod(expected.c_str(), nullptr);
      ASSERT_TRUE(test::sameValue(value.value_or(std::copysign(kInf, x)), nearest)) << text;
      if (width >= 25) {
        ASSERT_TRUE(test::sameValue(nearest, x)) << text;
      }
    }
  }
}

TEST(NumberText, NamesWhatIsNotFinite) {
  EXPECT_EQ(FormatFixed(NAN, 3), "NAN");
  EXPECT_EQ(FormatFixed(-kInf, 3), "-INF");
  EXPECT_EQ(strff(kInf, 6, 2), "   INF");
  EXPECT_EQ(FormatExp(-NAN, 13), "          NAN");
  EXPECT_EQ(FormatExp(-kInf, 9), "     -INF");
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
