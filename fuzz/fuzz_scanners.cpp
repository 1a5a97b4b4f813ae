// The scanners of numbers, angles and dates: where they move, what counts as valid, and that what
// was read can be written and read again.
#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "fuzz/target.h"
#include "zel/foundation/Zel_math1.h"

namespace zel_fuzz {
namespace {

/// Runs a scanner from a position. The text that it takes must be valid, and no other.
template <class Scan, class Valid>
auto scanned(std::string_view text, std::size_t start, Scan&& scan, Valid&& isValid) {
  std::size_t pos = start;
  const auto value = scan(text, pos);
  require(pos >= start && (pos == start || pos <= text.size()), "a scanner stays in the text");
  if (start <= text.size()) {
    const std::string_view rest = text.substr(start);
    require(isValid(rest) == (pos == text.size() && pos > start), "valid is what is taken whole");
    require(pos == start || isValid(text.substr(start, pos - start)), "what is taken is valid");
  }
  return value;
}

void scanIntegers(std::string_view text, std::size_t start) {
  const auto hex = scanned(text, start, zel::ScanHex, zel::IsValidHex);
  std::size_t pos = 0;
  require(zel::ScanHex(zel::Hex(static_cast<int>(hex), 8), pos) == (hex & 0xFFFFFFFFU),
          "hexadecimal digits can be read");
  scanned(text, start, zel::ScanOctal, zel::IsValidOct);
  scanned(text, start, zel::ScanBin, zel::IsValidBin);
  const auto integer = scanned(text, start, zel::ScanDecimal, zel::IsValidDecInt);
  pos = 0;
  require(zel::ScanDecimal(std::to_string(integer), pos) == integer, "integers can be read");
}

void scanNumber(std::string_view text, std::size_t start) {
  for (const zel::TDecPSep separator : {zel::dpsPoint, zel::dpsComma, zel::dpsBoth}) {
    const double x = scanned(
        text, start,
        [&](std::string_view s, std::size_t& pos) {
          return zel::ScanFPNum(s, false, separator, pos);
        },
        [&](std::string_view s) { return zel::IsValidFPNum(s, separator); });
    if (!std::isfinite(x)) continue;
    std::string written = zel::strf(x, 29, -1);
    written.erase(0, written[0] == ' ' ? 1 : 0);
    std::size_t pos = 0;
    require(zel::ScanFPNum(written, false, zel::dpsPoint, pos) == x && pos == written.size(),
            "numbers survive");
  }
}

void scanAngle(std::string_view text, std::size_t start) {
  std::size_t pos = start;
  int mode = 0;
  const double angle = zel::ScanDegrees(text, pos, true, mode);
  require(pos >= start && (pos == start || pos <= text.size()), "a scanner stays in the text");
  require((pos > start) == (mode >= 0) && (pos > start) == !std::isnan(angle),
          "one sign of failure");
  if (mode < 0) return;
  const auto format = static_cast<zel::TDegreeFormat>(mode);
  const std::string written = zel::DegreeToStr(angle, format, 8);
  pos = 0;
  const double again = zel::ScanDegrees(written, pos, false, mode);
  require(pos == written.size() && mode == format, "angles can be read");
  require(zel::DegreeToStr(again, format, 8) == written, "angles survive");
}

}  // namespace

/// The first byte chooses the position to start at and the language; a line end separates the text
/// from the format of the date.
int FuzzScanners(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view all = textOf(data, size).substr(1);
  const std::string_view text = all.substr(0, all.find('\n'));
  const std::string_view format = all.substr(std::min(text.size() + 1, all.size()));
  const std::size_t start = data[0] / 8 % 8;
  scanIntegers(text, start);
  scanNumber(text, start);
  scanAngle(text, start);
  std::size_t pos = start;
  const double days = zel::ScanDateTime(text, format, zel::TLanguage(data[0] % 8), pos);
  require(pos >= start && (pos == start || pos <= text.size()), "a scanner stays in the text");
  require((pos > start) == !std::isnan(days), "one sign of failure");
  require(std::isnan(days) || (days >= -693593 && days < 2958466), "the years have four digits");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(scanners, zel_fuzz::FuzzScanners)
