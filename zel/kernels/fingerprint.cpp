#include "zel/kernels/fingerprint.h"
#include "zel/kernels/digits.h"

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
constexpr std::size_t kWindow = 1024;  // elements reduced between two moves of the history

/// One checksum per byte of an element.
template <class Word>
using Registers = std::array<std::uint32_t, sizeof(Word)>;

template <class Word>
void step(Word element, Registers<Word>& registers) {
  for (std::size_t k = 0; k < registers.size(); ++k) {
    registers[k] = CalcNextCRC32(static_cast<std::uint8_t>(element >> (8 * k)), registers[k]);
  }
}

/// A register acts like bytes added to the first four of the message that follows, which then
/// starts from 0: what the registers add to element i of that message.
template <class Word>
Word carried(const Registers<Word>& registers, std::size_t i) {
  Word element = 0;
  for (std::size_t k = 0; k < registers.size(); ++k) {
    element |= static_cast<Word>(static_cast<Word>((registers[k] >> (8 * i)) & 0xFFU) << (8 * k));
  }
  return element;
}

template <class Word, class T>
void feed(std::span<const T> x, std::span<std::uint32_t, sizeof(T)> state) {
  static_assert(sizeof(Word) == sizeof(T));
  Registers<Word> registers;
  std::copy(state.begin(), state.end(), registers.begin());
  std::size_t next = 0;
  if (x.size() > 2 * kReach) {
    // reduced[kReach + i] is element next + i with everything added that was removed before it; the
    // kReach elements in front are the history that still has to be added further on.
    Word reduced[kReach + kWindow] = {};
    for (std::size_t count = 0; next + kReach < x.size(); next += count) {
      count = std::min(kWindow, x.size() - kReach - next);
      const T* input = x.data() + next;
      std::size_t i = 0;
      if (next == 0) {  // no history yet
        for (; i < kDistances[0]; ++i) reduced[kReach + i] = std::bit_cast<Word>(input[i]);
        for (std::size_t k = 0; k < 4; ++k) reduced[kReach + k] ^= carried<Word>(registers, k);
        registers.fill(0);
      }
      for (; i < count; ++i) {
        const std::size_t at = kReach + i;
        reduced[at] = std::bit_cast<Word>(input[i]) ^ reduced[at - kDistances[0]] ^
                      reduced[at - kDistances[1]] ^ reduced[at - kDistances[2]] ^
                      reduced[at - kDistances[3]];
      }
      std::memmove(reduced, reduced + count, kReach * sizeof(Word));
    }
    // Everything before `next` has been removed; what it left behind is added to the last kReach.
    for (std::size_t i = 0; i < kReach; ++i) {
      Word element = std::bit_cast<Word>(x[next + i]);
      for (const std::size_t distance : kDistances) {
        if (i < distance) element ^= reduced[kReach + i - distance];
      }
      step<Word>(element, registers);
    }
    next += kReach;
  }
  for (; next < x.size(); ++next) step<Word>(std::bit_cast<Word>(x[next]), registers);
  std::copy(registers.begin(), registers.end(), state.begin());
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
  feed<std::uint64_t, double>(x, registers);
}

void fingerprint(std::span<const std::int32_t> x, std::span<std::uint32_t, 4> registers) {
  feed<std::uint32_t, std::int32_t>(x, registers);
}

std::string fingerprintText(std::span<const std::uint32_t> registers) {
  std::string text;
  text.reserve(8 * registers.size());
  for (const std::uint32_t r : registers) appendDigits(text, ~r, 4, 8);
  return text;
}

std::string fingerprintText(std::span<const double> x) { return textOf<8>(x); }
std::string fingerprintText(std::span<const std::int32_t> x) { return textOf<4>(x); }

}  // namespace zel::kernels
