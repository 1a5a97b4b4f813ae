// Numbers as text and back beside the readers and writers of the standard library. Writers deliver
// a string each, readers go through one text.

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bench/rivals.h"
#include "zel/base/Zel_stringl.h"
#include "zel/foundation/Zel_math1.h"

namespace zel::bench {
namespace {

std::uint64_t bitsOf(double x) { return std::bit_cast<std::uint64_t>(x); }
/// Mixes the bits, of which neighbours share many; the highest of 32 is set, so that all have
/// eight hexadecimal digits.
int integerOf(double x) {
  return static_cast<int>(static_cast<std::uint32_t>(bitsOf(x) * 0x9E3779B97F4A7C15U >> 32) |
                          0x80000000U);
}

template <class... Args>
std::string standardText(Args... args) {
  std::array<char, 400> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), args...).ptr};
}

template <class Zel, class Standard>
void addWriter(const char* kernel, std::size_t n, Zel zel, Standard standard) {
  const auto run = [n](const auto& write) {
    std::size_t length = 0;
    for (const double x : normalData(n)) {
      const std::string text = write(x);
      length += text.size() + static_cast<unsigned char>(text.back());
    }
    keep(static_cast<double>(length));
  };
  compete(kernel, n,
          [=] {
            for (const double x : normalData(n)) {
              if (LowerCase(zel(x)) != standard(x)) return false;
            }
            return true;
          },
          {{"Zel", [=] { run(zel); }}, {"std", [=] { run(standard); }}});
}

/// @param write  of a deviate; a blank follows each
/// @param zel, standard  read the number at a position and move it
template <class Write, class Zel, class Standard>
void addReader(const char* kernel, std::size_t n, Write write, Zel zel, Standard standard) {
  const auto run = [n, write](const auto& read, std::vector<double>* values = nullptr) {
    static const std::string text = [&] {
      std::string all;
      for (const double x : normalData(n)) all.append(write(x)).append(" ");
      return all;
    }();
    double sum = 0;
    for (std::size_t pos = 0; pos < text.size(); ++pos) {
      const auto x = static_cast<double>(read(std::string_view(text), pos));
      sum += x;
      if (values) values->push_back(x);
    }
    keep(sum);
  };
  compete(kernel, n,
          [=] {
            std::vector<double> ours;
            std::vector<double> theirs;
            run(zel, &ours);
            run(standard, &theirs);
            return ours.size() == n && ours == theirs;
          },
          {{"Zel", [=] { run(zel); }}, {"std", [=] { run(standard); }}});
}

template <class T, int... Base>
T standardRead(std::string_view text, std::size_t& pos) {
  T value{};
  const char* const first = text.data() + pos;
  pos += static_cast<std::size_t>(
      std::from_chars(first, text.data() + text.size(), value, Base...).ptr - first);
  return value;
}

[[maybe_unused]] const bool kRegistered = [] {
  constexpr std::size_t n = 10000;
  addWriter(
      "Hex", n, [](double x) { return Hex(integerOf(x), 8); },
      [](double x) { return standardText(static_cast<std::uint32_t>(integerOf(x)), 16); });
  addWriter(
      "FPNumToHex", n, [](double x) { return FPNumToHex(x); },
      [](double x) { return standardText(bitsOf(x), 16); });
  addWriter(
      "strff, 6 decimals", n, [](double x) { return strff(x, 0, 6); },
      [](double x) { return standardText(x, std::chars_format::fixed, 6); });
  addReader(
      "ScanHex", n, [](double x) { return FPNumToHex(x); }, ScanHex,
      standardRead<std::uint64_t, 16>);
  addReader(
      "ScanDecimal", n, [](double x) { return std::to_string(integerOf(x)); }, ScanDecimal,
      standardRead<std::int64_t>);
  addReader(
      "ScanFPNum", n, [](double x) { return standardText(x); },
      [](std::string_view s, std::size_t& pos) { return ScanFPNum(s, false, dpsPoint, pos); },
      standardRead<double>);
  addReader(
      "ScanFPNum, comma", n,
      [](double x) { return ReplaceCharInString(standardText(x), '.', ','); },
      [](std::string_view s, std::size_t& pos) { return ScanFPNum(s, false, dpsComma, pos); },
      [](std::string_view s, std::size_t& pos) {
        // What a user would do: replace the comma in a copy of the field.
        std::string field(s.substr(pos, s.find(' ', pos) - pos));
        if (const auto comma = field.find(','); comma != std::string::npos) field[comma] = '.';
        std::size_t length = 0;
        const double x = standardRead<double>(field, length);
        pos += length;
        return x;
      });
  return true;
}();

}  // namespace
}  // namespace zel::bench
