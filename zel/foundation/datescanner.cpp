#include "zel/foundation/datescanner.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

#include "zel/base/ascii_impl.h"
#include "zel/base/stringhelpers.h"

namespace zel {

namespace {

using detail::isDigit;

constexpr int kLanguages = lgSpanish + 1;
constexpr int kNone = -1;

// In lower case and without accents, as foldedLetter gives them.
constexpr std::string_view kMonths[kLanguages][12] = {
    {"january", "february", "march", "april", "may", "june", "july", "august", "september",
     "october", "november", "december"},
    {"januar", "februar", "marz", "april", "mai", "juni", "juli", "august", "september", "oktober",
     "november", "dezember"},
    {"janvier", "fevrier", "mars", "avril", "mai", "juin", "juillet", "aout", "septembre",
     "octobre", "novembre", "decembre"},
    {"gennaio", "febbraio", "marzo", "aprile", "maggio", "giugno", "luglio", "agosto", "settembre",
     "ottobre", "novembre", "dicembre"},
    {"enero", "febrero", "marzo", "abril", "mayo", "junio", "julio", "agosto", "septiembre",
     "octubre", "noviembre", "diciembre"}};

struct OtherName {
  TLanguage language;
  int month;
  std::string_view name;
};
constexpr OtherName kOtherNames[] = {{lgGerman, 1, "janner"}, {lgGerman, 1, "jaenner"},
                                     {lgGerman, 2, "feber"},  {lgGerman, 3, "maerz"},
                                     {lgGerman, 3, "mrz"},    {lgSpanish, 9, "setiembre"}};

bool isBlank(char c) { return c == ' ' || c == '\t'; }

/// Takes a letter, from ASCII or with an accent (UTF-8, also as a combining mark behind it), and
/// gives it in lower case without the accent. 0 if there is none.
char takeFoldedLetter(std::string_view& text) {
  // The letters from U+00C0 on, whose lower case lies 32 above.
  constexpr std::string_view kAccented = "aaaaaa-ceeeeiiii-nooooo--uuuu---";
  if (text.empty()) return '\0';
  const auto byte = [&](std::size_t at) {
    return at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t{0};
  };
  char letter = LowerCase(text.substr(0, 1))[0];
  std::size_t length = 1;
  if (byte(0) == 0xC3 && byte(1) >= 0x80 && byte(1) <= 0xBF) {
    letter = kAccented[byte(1) & 0x1FU];
    length = 2;
  }
  if (letter < 'a' || letter > 'z') return '\0';
  text.remove_prefix(length);
  if (byte(0) == 0xCC && byte(1) >= 0x80 && byte(1) <= 0xBF) text.remove_prefix(2);
  return letter;
}

struct Fields {
  int year = kNone;
  int month = kNone;
  int day = kNone;
  int hour = kNone;
  int minute = kNone;
  int second = kNone;
  int millisecond = kNone;
  int afternoon = kNone;
};

/// Reads text and format side by side. What fails makes the whole fail.
class Reader {
 public:
  Reader(std::string_view text, std::string_view format, TLanguage language)
      : text_(text), format_(format), language_(language) {}

  bool read(Fields& fields) {
    while (!format_.empty()) {
      if (!readItem(fields)) return false;
    }
    return true;
  }

  std::size_t left() const { return text_.size(); }

 private:
  bool readItem(Fields& fields) {
    const char kind = format_[0];
    if (format_.starts_with("am/pm")) {
      format_.remove_prefix(5);
      return readHalf(fields.afternoon);
    }
    if (kind == '\'' || kind == '"') return readQuoted(kind);
    if (isBlank(kind)) return readBlanks();
    const std::size_t count = std::min(format_.find_first_not_of(kind), format_.size());
    const bool isField = std::string_view("ymdhnsz").find(kind) != std::string_view::npos;
    format_.remove_prefix(isField ? count : 1);
    switch (kind) {
      case 'y':
        return count == 2 ? readShortYear(fields.year)
                          : count == 4 && readNumber(4, 4, fields.year);
      case 'm':
        return count == 3 || count == 4 ? readMonth(fields.month)
                                        : readNumber(count, 2, fields.month);
      case 'd':
        return readNumber(count, 2, fields.day);
      case 'h':
        return readNumber(count, 2, fields.hour);
      case 'n':
        return readNumber(count, 2, fields.minute);
      case 's':
        return readNumber(count, 2, fields.second);
      case 'z':
        return count != 2 && readNumber(count, 3, fields.millisecond);
      default:
        return readLiteral(kind);
    }
  }

  static bool agree(int& field, int value) {
    if (field == kNone) field = value;
    return field == value;
  }

  bool readLiteral(char c) {
    if (text_.empty() || text_[0] != c) return false;
    text_.remove_prefix(1);
    return true;
  }

  bool readBlanks() {
    format_.remove_prefix(std::min(format_.find_first_not_of(" \t"), format_.size()));
    const std::size_t before = text_.size();
    while (!text_.empty() && isBlank(text_[0])) text_.remove_prefix(1);
    return text_.size() < before;
  }

  bool readQuoted(char quote) {
    format_.remove_prefix(1);
    const std::string_view literal = format_.substr(0, format_.find(quote));
    format_.remove_prefix(std::min(literal.size() + 1, format_.size()));
    if (!text_.starts_with(literal)) return false;
    text_.remove_prefix(literal.size());
    return true;
  }

  /// count letters of the format: one stands for up to `most` digits, more for exactly so many.
  bool readNumber(std::size_t count, std::size_t most, int& field) {
    if (count > most) return false;
    const std::size_t limit = count == 1 ? most : count;
    int value = 0;
    std::size_t digits = 0;
    for (; digits < limit && digits < text_.size() && isDigit(text_[digits]); ++digits) {
      value = 10 * value + (text_[digits] - '0');
    }
    text_.remove_prefix(digits);
    return digits >= count && agree(field, value);
  }

  bool readShortYear(int& field) {
    constexpr int kFirstOfLastCentury = 69;  // as in POSIX
    int year = kNone;
    return readNumber(2, 2, year) &&
           agree(field, year + (year < kFirstOfLastCentury ? 2000 : 1900));
  }

  bool readHalf(int& field) {
    const std::string_view word = text_.substr(0, 2);
    const int half = StringIx(word, std::initializer_list<std::string_view>{"am", "pm"});
    if (half < 0) return false;
    text_.remove_prefix(2);
    return agree(field, half);
  }

  bool readMonth(int& field) {
    constexpr std::size_t kShortest = 3;
    std::string word;
    std::string_view rest = text_;
    while (const char letter = takeFoldedLetter(rest)) word += letter;
    bool isFull = false;
    bool isAmbiguous = false;
    int month = kNone;
    const auto compare = [&](std::string_view name, int which) {
      if (isFull || !name.starts_with(word)) return;
      isFull = word == name;
      isAmbiguous = !isFull && (isAmbiguous || (month != kNone && month != which));
      month = which;
    };
    if (word.size() < kShortest) return false;
    for (int m = 0; m < 12; ++m) compare(kMonths[language_][m], m + 1);
    for (const OtherName& other : kOtherNames) {
      if (other.language == language_) compare(other.name, other.month);
    }
    if (month == kNone || isAmbiguous) return false;
    text_ = rest;
    if (!isFull && text_.starts_with('.') && !format_.starts_with('.')) text_.remove_prefix(1);
    return agree(field, month);
  }

  std::string_view text_;
  std::string_view format_;
  TLanguage language_;
};

/// @return false if a time of day does not exist
bool toMilliseconds(const Fields& fields, std::int64_t& time) {
  int hour = std::max(fields.hour, 0);
  if (fields.afternoon != kNone) {
    if (fields.hour < 1 || fields.hour > 12) return false;
    hour = fields.hour % 12 + 12 * fields.afternoon;
  }
  const int minute = std::max(fields.minute, 0);
  const int second = std::max(fields.second, 0);
  time =
      ((std::int64_t{hour} * 60 + minute) * 60 + second) * 1000 + std::max(fields.millisecond, 0);
  return hour < 24 && minute < 60 && second < 60;
}

/// @return false if a date does not exist
bool toDays(const Fields& fields, std::int64_t& days) {
  using namespace std::chrono;
  days = 0;
  if (fields.year == kNone) return fields.month == kNone && fields.day == kNone;
  const auto orFirst = [](int field) { return static_cast<unsigned>(field == kNone ? 1 : field); };
  const year_month_day date{year{fields.year}, month{orFirst(fields.month)},
                            day{orFirst(fields.day)}};
  if (fields.year < 1 || !date.ok()) return false;
  days = (sys_days{date} - sys_days{year{1899} / December / 30}).count();
  return true;
}

}  // namespace

double ScanDateTime(std::string_view s, std::string_view Format, TLanguage Language,
                    std::size_t& Pos) {
  constexpr double kNoDate = std::numeric_limits<double>::quiet_NaN();
  constexpr std::int64_t kDay = 86400000;
  if (Pos >= s.size() || Language >= kLanguages) return kNoDate;
  Reader reader(s.substr(Pos), Format, Language);
  Fields fields;
  std::int64_t time = 0;
  std::int64_t days = 0;
  if (!reader.read(fields) || !toMilliseconds(fields, time) || !toDays(fields, days)) {
    return kNoDate;
  }
  const std::size_t end = s.size() - reader.left();
  if (end == Pos) return kNoDate;
  Pos = end;
  return static_cast<double>(days * kDay + time) / static_cast<double>(kDay);
}

}  // namespace zel
