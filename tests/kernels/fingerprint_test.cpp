#include "zel/kernels/fingerprint.h"

#include <cstring>

#include "tests/support/testing.h"

namespace zel::kernels {
namespace {

/// The bitwise definition, one byte at a time.
std::uint32_t slowStep(std::uint8_t byte, std::uint32_t crc) {
  crc ^= byte;
  for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1u) != 0 ? 0xEDB88320u : 0u);
  return crc;
}

template <class T>
std::array<std::uint32_t, sizeof(T)> slowRegisters(const std::vector<T>& x) {
  std::array<std::uint32_t, sizeof(T)> registers;
  registers.fill(kCrc32Start);
  for (const T v : x) {
    std::array<std::uint8_t, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &v, sizeof v);
    for (std::size_t k = 0; k < sizeof v; ++k) registers[k] = slowStep(bytes[k], registers[k]);
  }
  return registers;
}

template <class T>
class Fingerprint : public testing::Test {};
using Elements = testing::Types<double, std::int32_t>;
TYPED_TEST_SUITE(Fingerprint, Elements);

template <class T>
std::vector<T> randomElements(std::size_t n) {
  std::mt19937_64 random(n + 1);
  std::vector<T> x(n);
  for (auto& v : x) {
    const std::uint64_t bits = random();
    std::memcpy(&v, &bits, sizeof v);
  }
  return x;
}

TYPED_TEST(Fingerprint, IsTheByteLoopAtEveryLengthAlsoInPieces) {
  for (std::size_t n = 0; n < 6000; n += n < 1400 ? 7 : 331) {
    const auto x = randomElements<TypeParam>(n);
    const std::span<const TypeParam> all(x);
    const auto expected = slowRegisters(x);
    ASSERT_EQ(fingerprintText(all), fingerprintText(expected)) << n;
    for (const std::size_t cut : {std::min<std::size_t>(n, 3), n / 7, n / 2, n - n / 5000}) {
      std::array<std::uint32_t, sizeof(TypeParam)> registers;
      registers.fill(kCrc32Start);
      fingerprint(all.first(cut), registers);
      fingerprint(all.subspan(cut), registers);
      ASSERT_EQ(registers, expected) << cut << " of " << n;
    }
  }
}

TEST(FingerprintText, KnownValues) {
  // The check value of the polynomial: "123456789" gives CBF43926.
  std::uint32_t crc = kCrc32Start;
  for (const char c : std::string("123456789"))
    crc = CalcNextCRC32(static_cast<std::uint8_t>(c), crc);
  EXPECT_EQ(fingerprintText(std::array{crc}), "CBF43926");
  EXPECT_EQ(fingerprintText(std::array{~0x0000000Au}), "0000000A");
  EXPECT_EQ(fingerprintText(std::vector<double>{}), std::string(64, '0'));
  // python3 -c "import zlib,struct; d=[struct.pack('<d',v) for v in (1.5,-2.25)];
  // print(''.join('%08X'%zlib.crc32(bytes(e[k] for e in d)) for k in range(8)))"
  EXPECT_EQ(fingerprintText(std::vector<double>{1.5, -2.25}),
            "41D912FF41D912FF41D912FF41D912FF41D912FF41D912FF73B218668263FA73");
}

}  // namespace
}  // namespace zel::kernels
