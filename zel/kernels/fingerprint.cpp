#include "zel/kernels/fingerprint.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

namespace zel::kernels {

static_assert(std::endian::native == std::endian::little,
              "byte k of an element is its k-th lowest byte");

namespace {

// x^300 + x^155 + x^117 + x^89 + 1 is a multiple of the CRC polynomial, and so is its eighth power,
// where the exponents are whole bytes (squaring is linear over GF(2)). A byte therefore may be
// removed from the message if it is added, without carries, at these distances behind it; this is
// true in every register, so it is done to whole elements. Of all such multiples with five terms
// and a degree below 900 this one has the lowest degree; its shortest distance leaves room for long
// vector loops.
constexpr std::size_t kDistances[] = {145, 183, 211, 300};
constexpr std::size_t kReach = 300;
constexpr std::size_t kStride = 144;          // elements that do not depend on each other
constexpr std::size_t kWindow = 8 * kStride;  // reduced between two moves of the history

template <class Word, std::size_t kRegisters>
void step(Word element, std::span<std::uint32_t, kRegisters> registers) {
  for (std::size_t k = 0; k < kRegisters; ++k) {
    registers[k] = CalcNextCRC32(static_cast<std::uint8_t>(element >> (8 * k)), registers[k]);
  }
}

/// A register is what the first four bytes of its message would have been multiplied into it, so it
/// moves into them and starts again from 0.
template <class Word, std::size_t kRegisters>
void moveIntoMessage(std::span<std::uint32_t, kRegisters> registers, Word* message) {
  for (std::size_t k = 0; k < kRegisters; ++k) {
    for (std::size_t i = 0; i < 4; ++i) {
      message[i] ^=
          static_cast<Word>(static_cast<Word>((registers[k] >> (8 * i)) & 0xFFu) << (8 * k));
    }
    registers[k] = 0;
  }
}

template <class Word, class T, std::size_t kRegisters>
void feed(std::span<const T> x, std::span<std::uint32_t, kRegisters> registers) {
  static_assert(sizeof(Word) == sizeof(T) && kRegisters == sizeof(T));
  const auto wordAt = [&](std::size_t i) { return std::bit_cast<Word>(x[i]); };
  std::size_t next = 0;
  if (x.size() > 2 * kReach) {
    // reduced[kReach + j] is element next + j with everything added that was removed before it; the
    // kReach elements in front are the history that still has to be added further on.
    alignas(64) Word reduced[kReach + kWindow] = {};
    alignas(64) Word input[kStride];
    bool isFirst = true;
    while (x.size() - next >= kReach + kStride) {
      std::size_t filled = kReach;
      for (; filled + kStride <= kReach + kWindow && x.size() - next >= kReach + kStride;
           filled += kStride) {
        std::memcpy(input, x.data() + next, sizeof input);
        if (isFirst) moveIntoMessage<Word>(registers, input);
        isFirst = false;
        Word* out = reduced + filled;
        for (std::size_t i = 0; i < kStride; ++i) {
          input[i] ^= out[i - kDistances[0]] ^ out[i - kDistances[1]] ^ out[i - kDistances[2]] ^
                      out[i - kDistances[3]];
        }
        std::memcpy(out, input, sizeof input);
        next += kStride;
      }
      std::memmove(reduced, reduced + filled - kReach, kReach * sizeof(Word));
    }
    // Everything before `next` has been removed; what it left behind is added to the next kReach.
    for (std::size_t i = 0; i < kReach; ++i) {
      Word element = wordAt(next + i);
      for (const std::size_t distance : kDistances) {
        if (i < distance) element ^= reduced[kReach + i - distance];
      }
      step<Word>(element, registers);
    }
    next += kReach;
  }
  for (; next < x.size(); ++next) step<Word>(wordAt(next), registers);
}

template <std::size_t kRegisters, class T>
std::string textOf(std::span<const T> x) {
  std::array<std::uint32_t, kRegisters> registers;
  registers.fill(kCrc32Start);
  fingerprint(x, std::span<std::uint32_t, kRegisters>(registers));
  return fingerprintText(std::span<const std::uint32_t>(registers));
}

}  // namespace

void fingerprint(std::span<const double> x, std::span<std::uint32_t, 8> registers) {
  feed<std::uint64_t>(x, registers);
}

void fingerprint(std::span<const std::int32_t> x, std::span<std::uint32_t, 4> registers) {
  feed<std::uint32_t>(x, registers);
}

std::string fingerprintText(std::span<const std::uint32_t> registers) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(8 * registers.size());
  for (const std::uint32_t r : registers) {
    for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[(~r >> shift) & 0xFu];
  }
  return text;
}

std::string fingerprintText(std::span<const double> x) { return textOf<8>(x); }
std::string fingerprintText(std::span<const std::int32_t> x) { return textOf<4>(x); }

}  // namespace zel::kernels
