/// @file
/// Sets of the values of a small enumeration.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace zel {

/// Set of values of an enumeration with ordinals 0..31, one bit each.
template <class Enum>
class TEnumSet {
 public:
  constexpr TEnumSet() = default;
  constexpr TEnumSet(std::initializer_list<Enum> values) {
    for (const Enum value : values) include(value);
  }

  [[nodiscard]] constexpr bool contains(Enum value) const { return (bits_ & Bit(value)) != 0; }
  [[nodiscard]] constexpr bool empty() const { return bits_ == 0; }
  constexpr void include(Enum value) { bits_ |= Bit(value); }
  constexpr void exclude(Enum value) { bits_ &= ~Bit(value); }
  constexpr bool operator==(const TEnumSet&) const = default;

 private:
  static constexpr std::uint32_t Bit(Enum value) {
    return std::uint32_t{1} << static_cast<unsigned>(value);
  }
  std::uint32_t bits_ = 0;
};

}  // namespace zel
