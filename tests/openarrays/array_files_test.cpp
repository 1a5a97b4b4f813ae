// Text and binary files of arrays: round trips, files cut off at each byte, files of other kinds.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "tests/base/temp_dir.h"
#include "zel/matrix/Zel_matrix.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

class ArrayFiles : public testing::Test {
 protected:
  [[nodiscard]] std::string name() const { return folder_.file("array"); }

  template <class Array>
  void expectTextRoundTrip(const Array& a, const std::string& comment) const {
    EXPECT_EQ(StoreArray(name(), a, comment), 0);
    Array b{};
    std::string read;
    EXPECT_EQ(LoadArray(name(), b, read), 0);
    EXPECT_EQ(b, a);
    EXPECT_EQ(read, comment);
    const std::string text = zel_test::readBytes(name());
    // The line end and digits of the last number may be missed.
    for (std::size_t cut = 0; cut <= text.find_last_of(" \n", text.size() - 2); ++cut) {
      zel_test::writeBytes(name(), text.substr(0, cut));
      EXPECT_EQ(LoadArray(name(), b, read), -4) << cut;
    }
    EXPECT_EQ(b, a);
    EXPECT_EQ(read, comment);
  }
  template <class Array>
  void expectBinaryRoundTrip(const Array& a, const std::string& shape) const {
    EXPECT_EQ(SaveBinaryArray(name(), a, "id"), 0);
    Array b;
    std::string id;
    EXPECT_EQ(LoadBinaryArray(name(), b, id), 0);
    EXPECT_EQ(b, a);
    EXPECT_EQ(id, "id");
    int n[5];
    EXPECT_EQ(ReadBinaryArrayHeader(name(), n[0], n[1], n[2], n[3], id, n[4]), 0);
    EXPECT_EQ(testing::PrintToString(n), shape);
    const std::string bytes = zel_test::readBytes(name());
    EXPECT_EQ(bytes.size() % 4096, 0u);
    for (const std::size_t cut : {std::size_t{0}, std::size_t{4095}, bytes.size() - 1}) {
      zel_test::writeBytes(name(), bytes.substr(0, cut));
      EXPECT_EQ(LoadBinaryArray(name(), b, id), -3);
    }
    // An announced extent that the file does not hold.
    zel_test::writeBytes(name(), "\xFF\xFF\xFF\x7F" + bytes.substr(4));
    EXPECT_EQ(LoadBinaryArray(name(), b, id), -3);
    EXPECT_EQ(b, a);
  }

  const zel_test::TempDir folder_;
};

TEST_F(ArrayFiles, TextComesBackBitForBit) {
  expectTextRoundTrip(TDoubleArray{1.0 / 3, 5e-324, -HUGE_VAL, 1e22}, "");
  expectTextRoundTrip(TIntArray{INT_MIN, INT_MAX}, "one line");
  expectTextRoundTrip(TDouble2DArray{{1, 2, 3}, {4, 5, 0.1}}, "two\n  lines");
  expectTextRoundTrip(TInt2DArray{{1}, {-2}}, "layers 3");
  const TInt3DArray cube{{{1, 2, 3, 4}, {5, 6, 7, 8}}, {{9, 10, 11, 12}, {13, 14, 15, 16}}};
  expectTextRoundTrip(cube, "\n1 1 1 1\n");
  expectTextRoundTrip(TDouble3DArray(1, 2, 3), "");
}

TEST_F(ArrayFiles, TextOfAMatrixAndOfOtherRanks) {
  const TMatrix m{{1, 2}, {3, 4.5}, {5, 6}};
  ASSERT_TRUE(m.StoreOnFile(2, 1, 3, 3, name()));
  TInt2DArray a;
  TIntArray v{1};
  TInt3DArray cube;
  std::string comment;
  EXPECT_EQ(LoadArray(name(), a, comment), 0);
  EXPECT_EQ(a, (TInt2DArray{{2, 4, 6}}));
  ASSERT_EQ(StoreArray(name(), TDouble2DArray{{1, 2}, {3, 4}}, ""), 0);
  TMatrix n;
  EXPECT_TRUE(n.LoadFromFile(name(), true));
  EXPECT_EQ(n(2, 1), 3);
  EXPECT_EQ(LoadArray(name(), v, comment), -4);
  EXPECT_EQ(LoadArray(name(), cube, comment), -4);
  for (const char* text :
       {"layers 2\n1 1 1 3\n1 2 3", "layers 0\n1 1 1 2\n1 2", "layers x\n1 1 1 2\n1 2", "1 1 0 0\n",
        "1 1 99999 99999\n1", "// only a comment"}) {
    zel_test::writeBytes(name(), text);
    EXPECT_EQ(LoadArray(name(), cube, comment) + LoadArray(name(), a, comment), -8) << text;
  }
  EXPECT_EQ(LoadArray(folder_.file("none"), v, comment), -3);
  EXPECT_EQ(StoreArray(folder_.file("no/file"), v, ""), -3);
  EXPECT_EQ(StoreArray(name(), v, "", false), -4);
  EXPECT_EQ(StoreArray(name(), TIntArray(), ""), -1);
  EXPECT_EQ(zel_test::readBytes(name()), "// only a comment");
  EXPECT_EQ(folder_.count(), 1);
}

TEST_F(ArrayFiles, BinaryComesBackBitForBit) {
  TDouble4DArray a(3, 50, 2, 4);
  FillArray(a, 0.5);
  for (std::size_t i = 0; i < a.size(); ++i) a.data()[i] /= static_cast<double>(i + 1);
  expectBinaryRoundTrip(a, "{ 3, 50, 2, 4, 1 }");
  expectBinaryRoundTrip(TDouble3DArray{{{1, 2}, {3, 4}, {5, 6}}}, "{ 1, 3, 2, 0, 1 }");
  expectBinaryRoundTrip(TDouble2DArray{{1, -0.0, 3}, {4, 5, 6}}, "{ 2, 3, 0, 0, 1 }");
  expectBinaryRoundTrip(TInt2DArray{{1, INT_MIN, 3}, {4, 5, 6}}, "{ 2, 3, 0, 0, 2 }");
  // Row by row in the file, whatever the order in memory.
  ASSERT_EQ(SaveBinaryArray(name(), TInt2DArray{{1, 2}, {3, 4}}, ""), 0);
  const std::string bytes = zel_test::readBytes(name());
  EXPECT_EQ((std::string{bytes[4096], bytes[4100], bytes[4104]}), "\x01\x03\x02");
  TDouble2DArray doubles;
  std::string id;
  EXPECT_EQ(LoadBinaryArray(name(), doubles, id), -4);
  EXPECT_EQ(LoadBinaryArray(folder_.file("none"), doubles, id), -3);
}

}  // namespace
}  // namespace zel
