/// @file
/// Strings of a small fixed capacity.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace zel {

/// String of at most N bytes, stored in place: one length byte and N bytes, never an allocation.
/// A longer text is cut to its first N bytes; a byte may have any value, 0 included.
template <std::size_t N>
class TShortString {
  static_assert(N >= 1 && N <= 255);

 public:
  /// Arrays of them need not be written to be empty.
  static constexpr bool kZeroIsAllBitsZero = true;

  constexpr TShortString() = default;
  constexpr TShortString(std::string_view text)
      : FLength(static_cast<std::uint8_t>(std::min(N, text.size()))) {
    std::copy_n(text.data(), FLength, FText);
  }

  constexpr operator std::string_view() const { return {FText, FLength}; }
  /// The text, valid as long as the object is unchanged.
  [[nodiscard]] constexpr std::string_view view() const { return *this; }
  [[nodiscard]] constexpr std::size_t size() const { return FLength; }
  [[nodiscard]] constexpr bool empty() const { return FLength == 0; }
  [[nodiscard]] static constexpr std::size_t max_size() { return N; }

  friend constexpr bool operator==(const TShortString& a, const TShortString& b) {
    return a.view() == b.view();
  }
  friend constexpr bool operator==(const TShortString& a, std::string_view b) {
    return a.view() == b;
  }
  friend std::ostream& operator<<(std::ostream& out, const TShortString& text) {
    return out << text.view();
  }

 private:
  std::uint8_t FLength = 0;
  char FText[N] = {};
};

}  // namespace zel
