#include "zel/base/random.h"

#include <array>
#include <bit>
#include <chrono>

namespace zel {
namespace {

// xoshiro256++ (Blackman and Vigna, ACM Trans. Math. Softw. 47 (2021) 36), its state filled by
// splitmix64, which never yields the forbidden all-zero state.
class Xoshiro256 {
 public:
  explicit Xoshiro256(std::uint64_t seed) {
    for (auto& word : state_) {
      seed += 0x9E3779B97F4A7C15U;
      std::uint64_t z = seed;
      z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
      z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
      word = z ^ (z >> 31);
    }
  }

  std::uint64_t next() {
    const std::uint64_t result = std::rotl(state_[0] + state_[3], 23) + state_[0];
    const std::uint64_t t = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= t;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

 private:
  std::array<std::uint64_t, 4> state_{};
};

Xoshiro256 generator(0);

}  // namespace

double Random() { return static_cast<double>(generator.next() >> 11) * 0x1p-53; }

int Random(int n) {
  if (n <= 1) return 0;
  const auto range = static_cast<std::uint32_t>(n);
  auto draw = [&] {
    return std::uint64_t{static_cast<std::uint32_t>(generator.next() >> 32)} * range;
  };
  std::uint64_t product = draw();
  if (static_cast<std::uint32_t>(product) < range) {
    const std::uint32_t threshold = (0U - range) % range;
    while (static_cast<std::uint32_t>(product) < threshold) product = draw();
  }
  return static_cast<int>(product >> 32);
}

void Randomize() {
  // Two clock readings may agree; the call count keeps the seeds apart.
  static std::uint64_t calls = 0;
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  SetRandSeed(static_cast<std::uint64_t>(now) + (++calls << 48));
}

void SetRandSeed(std::uint64_t seed) { generator = Xoshiro256(seed); }

}  // namespace zel
