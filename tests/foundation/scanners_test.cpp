// Numbers, angles and dates read out of a text.
#include <charconv>

#include "tests/support/testing.h"
#include "zel/foundation/Zel_math1.h"

namespace zel {
namespace {

/// The scanner reads at the position what the standard reader does, here with a plus sign too.
template <class Scan, class T, class... Base>
void expectStandard(Scan&& scan, const std::string& text, std::size_t start, T expected,
                    Base... base) {
  const T none = expected;
  const auto tail = std::string_view(text).substr(std::min(start, text.size()));
  const bool plus = std::is_signed_v<T> && tail.starts_with('+') && !tail.starts_with("+-");
  const auto [end, error] =
      std::from_chars(tail.data() + (plus ? 1 : 0), tail.data() + tail.size(), expected, base...);
  constexpr bool kSaturates = std::is_floating_point_v<T>;
  const bool isNumber =
      error == std::errc() || (kSaturates && error != std::errc::invalid_argument);
  std::size_t pos = start;
  const T value = scan(text, pos);
  ASSERT_EQ(pos, start + (isNumber ? static_cast<std::size_t>(end - tail.data()) : 0)) << text;
  if (isNumber && error != std::errc()) return;
  const T wanted = isNumber ? expected : none;
  ASSERT_TRUE(value == wanted || (value != value && wanted != wanted)) << text << ' ' << value;
}

TEST(NumberScanners, TakeWhatTheStandardReaderTakes) {
  constexpr std::string_view kAlphabet = "0011789aAfFeE.,+-x infINFnan";
  std::mt19937_64 random(4);
  for (int k = 0; k < 200000; ++k) {
    std::string text;
    for (auto n = random() % 24; n-- > 0;) text += kAlphabet[random() % kAlphabet.size()];
    const std::size_t start = random() % 3;
    expectStandard(ScanBin, text, start, std::uint64_t{0}, 2);
    expectStandard(ScanOctal, text, start, std::uint64_t{0}, 8);
    expectStandard(ScanHex, text, start, std::uint64_t{0}, 16);
    expectStandard(ScanDecimal, text, start, std::int64_t{0}, 10);
    expectStandard([](std::string_view s, std::size_t& pos) { return ScanFPNum(s, true, 0, pos); },
                   text, start, std::nan(""));
    std::size_t pos = start;
    const double x = ScanFPNum(text, false, dpsPoint, pos);
    ASSERT_FALSE(std::isnan(x) && pos > start) << text;
    for (char& c : text) c = c == ',' ? '.' : c == '.' ? ',' : c;
    std::size_t comma = start;
    const double same = ScanFPNum(text, false, dpsComma, comma);
    ASSERT_EQ(comma, pos) << text;
    ASSERT_TRUE(same == x || std::isnan(x)) << text;
    if (HasFatalFailure()) return;
  }
}

TEST(NumberScanners, RangesAndSeparators) {
  std::size_t pos = 0;
  EXPECT_EQ(ScanHex("ffffffffFFFFFFFF", pos), UINT64_MAX);
  EXPECT_FALSE(IsValidHex("10000000000000000")) << "65 bits";
  pos = 2;
  EXPECT_EQ(ScanDecimal("a:-9223372036854775808;", pos), INT64_MIN);
  EXPECT_EQ(pos, 22U);
  pos = 9;
  EXPECT_TRUE(std::isnan(ScanFPNum("12", true, 0, pos)));
  EXPECT_EQ(pos, 9U) << "beyond the end";
  for (const char* number : {"0", "+1", "-9223372036854775808"}) EXPECT_TRUE(IsValidDecInt(number));
  for (const char* none : {"", "+", "+-1", "1.", " 1", "1 ", "9223372036854775808"}) {
    EXPECT_FALSE(IsValidDecInt(none)) << none;
  }
  EXPECT_TRUE(IsValidHex("0aF"));
  EXPECT_FALSE(IsValidHex("0x1") || IsValidOct("08") || IsValidBin("-1"));
  const std::pair<const char*, std::array<bool, 3>> cases[] = {
      // by separator
      {"1.5e-3", {true, false, true}}, {"-,5", {false, true, true}},
      {"1,5E+3", {false, true, true}}, {"1e5", {true, true, true}},
      {"1,", {false, true, true}},     {"1.5,2", {false, false, false}},
      {",", {false, false, false}},    {"1,5e", {false, false, false}},
      {"inf", {false, false, false}},  {"", {false, false, false}}};
  for (const auto& [text, isNumber] : cases) {
    for (const TDecPSep separator : {dpsPoint, dpsComma, dpsBoth}) {
      EXPECT_EQ(IsValidFPNum(text, separator), isNumber[separator]) << text << separator;
      EXPECT_EQ(IsValidDouble(text, false, separator), isNumber[separator]) << text;
    }
  }
  const std::string zeros(100, '0');
  pos = 0;
  EXPECT_EQ(ScanFPNum("-1,5" + zeros + "e2;", false, dpsComma, pos), -150);
  EXPECT_EQ(pos, 106U);
  pos = 0;
  EXPECT_EQ(ScanFPNum("-1e400", false, 7, pos), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(pos, 6U);
  EXPECT_TRUE(IsValidFPNum("1e400", dpsPoint) && !IsValidDouble("1e400", true, dpsPoint));
  for (const char* word : {"1e-400", "-INF", "nan"})
    EXPECT_TRUE(IsValidDouble(word, true, dpsPoint));
}

TEST(ScanDegrees, ReadsWhatIsWritten) {
  std::mt19937_64 random(6);
  for (int k = 0; k < 20000; ++k) {
    const auto bits = random();
    const double angle =
        std::ldexp(static_cast<double>(bits >> 11) - 0x1p52, static_cast<int>(random() % 90) - 80);
    const auto format = static_cast<TDegreeFormat>(k % 4);
    const int decimals = static_cast<int>(random() % 9);
    const std::string text = DegreeToStr(angle, format, decimals);
    std::size_t pos = 0;
    int mode = 9;
    const double read = ScanDegrees(text, pos, false, mode);
    ASSERT_EQ(pos, text.size()) << text;
    ASSERT_EQ(mode, format) << text;
    ASSERT_EQ(DegreeToStr(read, format, decimals), text);
  }
}

TEST(ScanDegrees, ReadsWhatOthersWrite) {
  const std::string nines(310, '9');  // beyond any double
  const std::tuple<const char*, double, int, std::size_t> cases[] = {
      {"12.5E", 12.5, dfNumber, 5},
      {"12d 30' 36''N!", 12.51, dfDegMinSec, 13},
      {"12\xB0"
       "30′36″W",
       -12.51, dfDegMinSec, 14},
      {"+12º30\t’ S", 12.5, dfDegMin, 11},
      {"12.5° 30'", 12.5, dfDegrees, 6},
      {"12° 60'", 12, dfDegrees, 4},
      {"12° 30.5' 3\"", 12 + 30.5 / 60, dfDegMin, 10},
      {"12° 36\"", 12, dfDegrees, 4},
      {"12 days", 12, dfNumber, 2},
      {"-12 S", -12, dfNumber, 3},
      {"12e5", 12, dfNumber, 2},
      {"", NAN, -1, 0},
      {"-", NAN, -1, 0},
      {"N1", NAN, -1, 0},
      {nines.c_str(), NAN, -1, 0}};
  for (const auto& [text, wanted, notation, length] : cases) {
    std::size_t pos = 0;
    int mode = 9;
    const double angle = ScanDegrees(text, pos, true, mode);
    EXPECT_LE(test::sameValue(angle, wanted) ? 0 : test::ulpsApart(angle, wanted), 4) << text;
    EXPECT_EQ(mode, notation) << text;
    EXPECT_EQ(pos, length) << text;
  }
}

TEST(ScanDateTime, ReadsByFormat) {
  const std::tuple<std::string_view, const char*, TLanguage, double> cases[] = {
      {"2024-02-29T12:30:15.250Z", "yyyy-mm-ddThh:nn:ss.zzzZ", lgEnglish, 45351.52100983796},
      {"0001-01-01", "yyyy-mm-dd", lgEnglish, -693593},
      {"99991231235959999", "yyyymmddhhnnsszzz", lgEnglish, 2958465.9999999884},
      {"1899-12-29 \t6:00", "yyyy-mm-dd h:nn", lgEnglish, -0.75},
      {"12:00 AM", "h:nn am/pm", lgEnglish, 0},
      {"12:00 pm", "h:nn am/pm", lgEnglish, 0.5},
      {"3. MÄR 99", "d. mmm yy", lgGerman, 36222},
      {"3. Maerz 99", "d. mmmm yy", lgGerman, 36222},
      {"1 de Ene. de 68", "d 'de' mmm \"de\" yy", lgSpanish, 61363},
      {"1 AOU\xCC\x82T 2000", "d mmmm yyyy", lgFrench, 36739},
      {"1 maggio 2000", "d mmmm yyyy", lgItalian, 36647},
      {"1 maggio. 2000", "d mmmm yyyy", lgItalian, NAN},
      {"jui 2000", "mmm yyyy", lgFrench, NAN},  // June or July
      {"1.3.2000 2", "d.m.yyyy d", lgEnglish, NAN},
      {"30.2.2000", "d.m.yyyy", lgEnglish, NAN},
      {"29.2.1900", "d.m.yyyy", lgEnglish, NAN},
      {"1.1.0000", "d.m.yyyy", lgEnglish, NAN},
      {"1.2", "d.m", lgEnglish, NAN},
      {"1.2.2000", "dd.mm.yyyy", lgEnglish, NAN},
      {"24:00", "hh:nn", lgEnglish, NAN},
      {"13:00 pm", "h:nn am/pm", lgEnglish, NAN},
      {"0:30 am", "h:nn am/pm", lgEnglish, NAN},
      {"00:00:60", "hh:nn:ss", lgEnglish, NAN},
      {"1", "zzzzzzzzzzzzzzzzzzzzz", lgEnglish, NAN},
      {"x", "", lgEnglish, NAN},
      {"1", "h", TLanguage(5), NAN}};
  for (const auto& [text, format, language, wanted] : cases) {
    std::size_t pos = 0;
    const double days = ScanDateTime(text, format, language, pos);
    EXPECT_TRUE(test::sameValue(days, wanted)) << text << ' ' << days;
    EXPECT_EQ(pos, std::isnan(wanted) ? 0 : text.size()) << text;
  }
}

}  // namespace
}  // namespace zel
