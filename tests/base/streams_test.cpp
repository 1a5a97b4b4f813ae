#include "zel/base/Zel_streams.h"

#include "tests/support/testing.h"
#include "zel/base/extended_impl.h"

namespace zel {
namespace {

using detail::ExtendedBits;
using namespace zel_test;
using FileStream = InFolder;
using MixedFStream = InFolder;

constexpr bool kHasExtended = std::numeric_limits<Extended>::digits == 64;

std::string stored(Extended x) {
  TMemoryStream s;
  WriteExtendedToStream(s, x);
  return s.str();
}

std::string itemBytes(std::uint64_t significand, unsigned signExponent) {
  std::string bytes;
  for (int i = 0; i < 10; ++i) {
    bytes += static_cast<char>(i < 8 ? significand >> (8 * i) : signExponent >> (8 * i - 64));
  }
  return bytes;
}

Extended loaded(const std::string& bytes) {
  TMemoryStream s(bytes);
  bool fail = true;
  const Extended x = ReadExtendedFromStream(s, fail);
  EXPECT_FALSE(fail);
  return x;
}

TEST(ExtendedItem, HasTheLayoutOfTheFormat) {
  EXPECT_EQ(stored(1), itemBytes(0x8000000000000000U, 0x3FFF));
  EXPECT_EQ(stored(-2.5), itemBytes(0xA000000000000000U, 0xC000));
  EXPECT_EQ(stored(-0.0), itemBytes(0, 0x8000));
  EXPECT_EQ(stored(-std::numeric_limits<Extended>::infinity()), itemBytes(1ULL << 63, 0xFFFF));
}

/// What machines without the format compute must be what this one stores.
TEST(ExtendedItem, EveryEncodingComesBackOrIsNoNumber) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 60000; ++i) {
    // Random significands, at the ends of the range and with their leading bit, too.
    const std::uint64_t leading = i % 2 == 0 ? 1ULL << 63 : 0;
    const std::uint64_t significand = random() >> (random() % 64) | leading;
    unsigned exponent = static_cast<unsigned>(random()) & 0xFFFFU;
    if (i % 5 == 0) exponent |= 0x7FFFU;
    if (i % 5 == 1) exponent &= 0x8000U;
    if (i % 5 == 2) exponent &= 0x803FU;
    const Extended x = loaded(itemBytes(significand, exponent));
    const bool isNormal = (exponent & 0x7FFFU) != 0;
    if (isNormal && significand >> 63 == 0) {
      ASSERT_TRUE(std::isnan(x));
    } else if (kHasExtended) {
      if (!isNormal && significand >> 63 != 0) exponent |= 1U;
      ASSERT_EQ(stored(x), itemBytes(significand, exponent));
      if (std::isnan(x)) continue;
      const ExtendedBits bits{significand, static_cast<std::uint16_t>(exponent)};
      ASSERT_EQ(detail::packExtended(x), bits);
      ASSERT_EQ(detail::unpackExtended<Extended>(bits), x);
      ASSERT_EQ(std::signbit(detail::unpackExtended<Extended>(bits)), std::signbit(x));
      if (std::abs(x) > std::numeric_limits<double>::min()) {
        ASSERT_EQ(detail::unpackExtended<double>(bits), static_cast<double>(x));
      }
    }
  }
  for (const double x : {0.0, -0.0, 1e-320, 5e-324, 1e308, 0.1, -3.0, HUGE_VAL}) {
    ASSERT_EQ(detail::packExtended(x), detail::bitsOf(static_cast<Extended>(x)));
    ASSERT_EQ(detail::unpackExtended<double>(detail::packExtended(x)), x);
  }
  EXPECT_TRUE(std::isnan(detail::unpackExtended<double>(detail::packExtended(std::nan("")))));
}

TEST(LongintItem, IsLittleEndianTwosComplement) {
  const int values[] = {1, -2, std::numeric_limits<int>::min(), 0x01020304};
  TMemoryStream s;
  for (const int i : values) WriteLongintToStream(s, i);
  EXPECT_EQ(s.str(), std::string("\1\0\0\0\xFE\xFF\xFF\xFF\0\0\0\x80\4\3\2\1", 16));
  bool fail = true;
  for (const int i : values) {
    EXPECT_EQ(ReadLongintFromStream(s, fail), i);
    EXPECT_FALSE(fail);
  }
  EXPECT_EQ(ReadLongintFromStream(s, fail), 0);
  EXPECT_TRUE(fail);
  TMemoryStream cut("nine byte");
  EXPECT_EQ(ReadExtendedFromStream(cut, fail = false), 0);
  EXPECT_TRUE(fail);
}

TEST(TMemoryStream, AppendsToWhatItHolds) {
  TMemoryStream s("abc");
  s << "def";
  std::string word;
  s >> word;
  EXPECT_EQ(word, "abcdef");
}

TEST_F(FileStream, OpensByMode) {
  const std::string name = path("a");
  for (const int mode : {fmOpenRead, fmOpenReadWrite}) {
    EXPECT_THROW(TFileStream(name, mode), EInOutError);
    EXPECT_THROW(TFileStream(path("."), mode), EInOutError);
  }
  EXPECT_THROW(TFileStream(path("none/a"), fmCreate), EInOutError);
  EXPECT_EQ(folder.count(), 0);
  TFileStream(name, fmCreate) << "0123\r\n";
  TFileStream(name, fmOpenWrite) << "ab";
  {
    TFileStream f(name, fmOpenReadWrite);
    f.seekp(3);
    f << "x";
    f.seekg(0);
    std::string line;
    std::getline(f, line);
    EXPECT_EQ(line, "ab2x\r");
  }
  EXPECT_FALSE(TFileStream(name, fmOpenRead) << "no");
  EXPECT_EQ(readBytes(name), "ab2x\r\n");
}

/// Two doubles of which the second has the bytes of a line end inside.
const double kValues[] = {-0.1, std::bit_cast<double>(std::uint64_t{0x400D0A0D0A0D0A0AU})};

void writeModel(const std::string& name) {
  TMixedFStream f(name, fmCreate);
  f.WriteString("TMemBasedLearner/Orbiset");
  f.WriteInteger(-7);
  f.WriteLn("");
  f.WriteLn("cr \r lf \n end\r");
  f.WriteLn("\n");
  for (const double x : kValues) f.WriteDouble(x);
  f.WriteByte(255);
  f.WriteString("two\r\nlines\r\n");
  f.WriteString("");
  f.Close();
  EXPECT_FALSE(f.Valid());
}

/// Reads all of it; the number of items up to the first that failed.
int readModel(TMixedFStream& f) {
  bool fail = false;
  int items = 0;
  const auto check = [&](bool equal) {
    if (fail) return false;
    EXPECT_TRUE(equal) << "item " << items;
    ++items;
    return true;
  };
  check(f.ReadString(fail) == "TMemBasedLearner/Orbiset") && check(f.ReadInteger(fail) == -7) &&
      check(f.ReadLn(4, fail).empty()) && check(f.ReadLn(4, fail) == "cr \r lf \n end\r") &&
      check(f.ReadLn(4, fail) == "\n") && check(f.ReadDouble(fail) == kValues[0]) &&
      check(f.ReadDouble(fail) == kValues[1]) && check(f.ReadByte(fail) == 255) &&
      check(f.ReadString(fail) == "two\r\nlines\r\n") && check(f.ReadString(fail).empty());
  return items;
}

// Whole, and cut off anywhere: what fails once fails for all.
TEST_F(MixedFStream, ReadsBackInTheOrderWritten) {
  writeModel(path("a"));
  const std::string bytes = bytesOf("a");
  int before = 0;
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    write("b", bytes.substr(0, size));
    TMixedFStream f(path("b"), fmOpenRead);
    ASSERT_EQ(f.EndOfFile(), size == 0);
    const bool isWhole = size == bytes.size();
    const int items = readModel(f);
    ASSERT_GE(items, before);
    ASSERT_EQ(items == 10, isWhole);
    before = items;
    ASSERT_EQ(f.Valid(), isWhole);
    ASSERT_TRUE(!isWhole || f.EndOfFile());
    bool fail = false;
    ASSERT_EQ(f.ReadByte(fail), 0);
    ASSERT_TRUE(fail && !f.Valid());
    EXPECT_THROW(static_cast<void>(f.ReadByte()), EInOutError);
  }
}

TEST_F(MixedFStream, BelievesNoLength) {
  using namespace std::string_view_literals;
  for (const auto bytes :
       {"\xFF\xFF\xFF\x7F\x61\x62\x63\r\n"sv, "\xFF\xFF\xFF\xFF\r\n"sv, "\2\0\0\0abc\r\n"sv}) {
    write("a", bytes);
    TMixedFStream f(path("a"), fmOpenRead);
    bool fail = false;
    EXPECT_EQ(f.ReadString(fail), "");
    EXPECT_TRUE(fail);
  }
}

TEST_F(MixedFStream, ReadsLinesOfAnyOrigin) {
  const auto lines = [&](int lineEnd, const char* last = "d") {
    write("a", std::string("a\rb\nc\r\n\n\r").append(last));
    TMixedFStream f(path("a"), fmOpenRead);
    std::string all;
    for (bool fail = false;;) {
      const std::string line = f.ReadLn(lineEnd, fail);
      if (fail) return all;
      all += "[" + line + "]";
    }
  };
  EXPECT_EQ(lines(leCR), "[a][b\nc][\n\n]");
  EXPECT_EQ(lines(leLF), "[a\rb][c\r][]");
  EXPECT_EQ(lines(leAny), "[a][b][c][][][d]");
  EXPECT_EQ(lines(leAny, ""), "[a][b][c][][]");
  EXPECT_EQ(lines(leCRLF), "[a\rb\nc]");
}

TEST_F(MixedFStream, KeepsTheOldFileUntilComplete) {
  const std::string name = path("a");
  writeBytes(name, "old");
  const auto write = [&](bool givesUp) {
    TMixedFStream f(name, fmCreate);
    EXPECT_THROW(f.WriteLn("a\r\nb"), EInOutError);
    f.WriteLn("a");
    if (givesUp) throw EInOutError("given up");
  };
  EXPECT_THROW(write(true), EInOutError);
  EXPECT_EQ(readBytes(name), "old");
  write(false);
  EXPECT_EQ(readBytes(name), "a\r\n");
  EXPECT_EQ(folder.count(), 1);
}

TEST_F(MixedFStream, RaisesWhatCannotBeOpenedOrWritten) {
  EXPECT_THROW(TMixedFStream(path("none"), fmOpenRead), EInOutError);
  EXPECT_THROW(TMixedFStream(path("."), fmOpenRead), EInOutError);
  EXPECT_THROW(TMixedFStream(path("none/a"), fmCreate), EInOutError);
  EXPECT_THROW(TMixedFStream(path("a"), fmOpenReadWrite), EInOutError);
  if (FileExists("/dev/full")) {
    TMixedFStream f("/dev/full", fmCreate);
    f.WriteInteger(1);
    EXPECT_THROW(f.Close(), EInOutError);
    EXPECT_THROW(f.WriteInteger(1), EInOutError);
  }
  write("a", "12345");
  TMixedFStream f(path("a"), fmOpenRead);
  EXPECT_THROW(f.WriteByte(1), EInOutError);
  static_cast<void>(f.ReadInteger());
  EXPECT_THROW(static_cast<void>(f.ReadDouble()), EInOutError);
}

}  // namespace
}  // namespace zel
