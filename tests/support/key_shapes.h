/// @file
/// Arrays of many shapes for tests of sorts and selections.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace zel::test {

template <class T>
struct KeyShape {
  std::string name;
  std::vector<T> keys;
};

/// A quiet NaN that can be told from others.
template <class T>
T nanWithPayload(unsigned payload) {
  if constexpr (sizeof(T) == 8) {
    return std::bit_cast<T>(0x7ff8000000000000u + payload);
  } else {
    return std::bit_cast<T>(0x7fc00000u + payload);
  }
}

template <class T>
std::vector<KeyShape<T>> keyShapes(std::size_t n, unsigned seed) {
  using Limits = std::numeric_limits<T>;
  std::mt19937_64 random(seed + n);
  const auto below = [&](std::size_t m) { return static_cast<std::size_t>(random() % m); };
  std::vector<KeyShape<T>> shapes;
  const auto add = [&](const char* name, auto rule) {
    std::vector<T> keys(n);
    for (std::size_t i = 0; i < n; ++i) keys[i] = static_cast<T>(rule(i));
    shapes.push_back({name, std::move(keys)});
  };
  const auto key = [](auto i) { return static_cast<double>(i); };
  add("random", [&](std::size_t) { return key(below(1u << 30)) - 5e8; });
  add("sorted", [&](std::size_t i) { return key(i / 2); });
  add("reversed", [&](std::size_t i) { return key(n - i); });
  add("few", [&](std::size_t) { return key(below(4)); });
  add("one value", [&](std::size_t) { return key(below(20) == 0 ? below(9) : 4); });
  add("constant", [&](std::size_t) { return 7.0; });
  add("sawtooth", [&](std::size_t i) { return key(i % 37) - key(i % 5); });
  add("nearly sorted", [&](std::size_t i) { return key(below(50) ? i : below(n)); });
  add("interleaved", [&](std::size_t i) { return key(i % 2 ? i : n - i); });
  const T extremes[] = {Limits::lowest(), Limits::max(), T{0}, T{1}};
  add("extremes", [&](std::size_t) { return extremes[below(4)]; });
  if constexpr (std::is_floating_point_v<T>) {
    add("zeros", [&](std::size_t) { return below(2) ? 0.0 : -0.0; });
    const double special[] = {0.0, -0.0, 1.0, -1.0, HUGE_VAL, -HUGE_VAL, 5e-324};
    add("zeros and more", [&](std::size_t) { return special[below(7)]; });
    for (const std::size_t every : {2u, 9u, 200u}) {
      add("", [&](std::size_t) { return key(below(100)) - 50; });
      shapes.back().name = "NaN 1 in " + std::to_string(every);
      for (std::size_t i = 0; i < n; ++i) {
        if (below(every) == 0) {
          shapes.back().keys[i] = nanWithPayload<T>(static_cast<unsigned>(i % 1000));
        }
      }
    }
  }
  return shapes;
}

template <class T>
bool sameBits(std::span<const T> a, std::span<const T> b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

/// A copy of keys between two zones that must keep their contents, at a chosen misalignment.
template <class T>
class Guarded {
 public:
  explicit Guarded(std::span<const T> keys, std::size_t shift = 0)
      : begin_(kZone + shift), size_(keys.size()), all_(begin_ + size_ + kZone, T(1234)) {
    std::copy(keys.begin(), keys.end(), all_.begin() + static_cast<std::ptrdiff_t>(begin_));
  }
  std::span<T> keys() { return std::span<T>(all_).subspan(begin_, size_); }
  bool zonesIntact() const {
    for (std::size_t i = 0; i < all_.size(); ++i) {
      if ((i < begin_ || i >= begin_ + size_) && all_[i] != T(1234)) return false;
    }
    return true;
  }

 private:
  static constexpr std::size_t kZone = 64;
  std::size_t begin_;
  std::size_t size_;
  std::vector<T> all_;
};

}  // namespace zel::test
