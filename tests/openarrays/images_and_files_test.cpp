// Regions beside an obvious version on random images, and files read back: pictures, text and
// binary files of arrays, cut off at each byte, of other kinds.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <random>

#include "tests/base/temp_dir.h"
#include "zel/base/bitmap.h"
#include "zel/matrix/Zel_matrix.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

/// Count, high row, low row, low column, high column.
using Filled = std::array<int, 5>;

/// By repeated passes over the whole image.
template <class T, class Belongs>
Filled fillSlowly(TDynArray<T, 2>& a, int x, int y, T value, Belongs belongs) {
  const int columns = static_cast<int>(a.Length(0));
  const int rows = static_cast<int>(a.Length(1));
  TBool2DArray in(columns + 2, rows + 2);  // with a border
  in(x + 1, y + 1) = true;
  a(x, y) = value;
  Filled filled{1, y, y, x, x};
  for (bool grows = true; grows;) {
    grows = false;
    for (int c = 0; c < columns; ++c) {
      for (int r = 0; r < rows; ++r) {
        const bool touches = in(c, r + 1) || in(c + 2, r + 1) || in(c + 1, r) || in(c + 1, r + 2);
        if (in(c + 1, r + 1) || !touches || !belongs(a(c, r))) continue;
        grows = in(c + 1, r + 1) = true;
        a(c, r) = value;
        const auto& [n, highRow, lowRow, lowColumn, highColumn] = filled;
        filled = {n + 1, std::max(highRow, r), std::min(lowRow, r), std::min(lowColumn, c),
                  std::max(highColumn, c)};
      }
    }
  }
  return filled;
}

TEST(FloodFill, IsTheRegionOnRandomImages) {
  std::mt19937 random(3);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  Filled k{};
  const auto fill = [&](int x, int y, auto... rest) {
    k[0] = FloodFillArray(x, y, rest..., k[1], k[2], k[3], k[4]);
    return k;
  };
  for (int trial = 0; trial < 600; ++trial) {
    const int columns = 1 + below(12), rows = 1 + below(12);
    TInt2DArray a(columns, rows);
    TDouble2DArray b(columns, rows);
    for (int& cell : a) cell = below(5) < 3 ? 0 : below(3);
    for (double& cell : b) cell = 0.5 * below(7);
    const int x = below(columns), y = below(rows);
    TInt2DArray slow = a;
    const int seed = a(x, y);
    const Filled region = fillSlowly(slow, x, y, 9, [=](int cell) { return cell == seed; });
    EXPECT_TRUE(fill(x, y, 9, std::ref(a)) == region && a == slow);
    EXPECT_EQ(fill(x, y, 9, std::ref(a))[0], -2);
    EXPECT_EQ(fill(columns, y, 8, std::ref(a))[0] + fill(x, -1, 8, std::ref(a))[0], -2);

    // Every other value of the filling lies in the tolerance band.
    const double centre = b(x, y);
    const double value = trial % 2 == 0 ? centre + 0.25 : 99;
    TDouble2DArray slowly = b;
    const Filled band = fillSlowly(slowly, x, y, value,
                                   [=](double cell) { return std::fabs(cell - centre) <= 0.5; });
    EXPECT_TRUE(fill(x, y, -0.5, value, std::ref(b)) == band && b == slowly);
  }
}

TEST(Frequencies, CountEachCellOnceAndCheckInOrder) {
  TIntArray counts;
  int under = 0, over = 0, most = 0;
  const TDouble2DArray a{{-0.1, 0, 0.99}, {10.5, 11, 1}};
  TBool2DArray mask(2, 3);
  EXPECT_EQ(FrequDistOfArray(a, mask, 0, 0, 0, 0, 0, 10, 1, counts, under, over, most), 0);
  EXPECT_EQ(counts, (TIntArray{2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ((TIntArray{under, over, most}), (TIntArray{1, 1, 2}));
  mask(0, 1) = true;
  EXPECT_EQ((TIntArray{FrequDistOfArray(a, mask, 0, 1, 1, 2, 0, 10, 1, counts, under, over, most),
                       under, over, counts[0], counts[1]}),
            (TIntArray{0, 0, 1, 1, 1}));
  EXPECT_EQ(FrequDistOfArray(TDoubleArray{1, 1, 0}, 0, 1, 0, 1, 1, counts, under, over, most), 0);
  const auto code = [&](int low, int high, double first, double last, double width) {
    return FrequDistOfArray(a, {}, low, 0, high, 0, first, last, width, counts, under, over, most);
  };
  EXPECT_EQ((TIntArray{code(1, 2, 0, 10, 1), code(1, 0, 10, 0, 1), code(0, 1, 10, 10, 0),
                       code(0, 1, 0, 10, 0), code(0, 1, 0, 1000, 1), code(0, 1, 0, 999, 1)}),
            (TIntArray{-1, -2, -3, -4, -5, -6}));
  EXPECT_EQ(counts, (TIntArray{0, 2}));
}

TEST(Images, MasksAndPictureFiles) {
  TInt2DArray a(4, 3), none;
  TBool2DArray mask(4, 3);
  mask(1, 2) = true;
  EXPECT_EQ((TIntArray{FillArrayMasked(a, 0x0102F3, mask), a(1, 2), a(0, 2),
                       FillArrayMasked(a, 1, TBool2DArray(3, 4)), FillArrayMasked(none, 1, mask)}),
            (TIntArray{0, 0, 0x0102F3, -1, -2}));
  for (int c = 0; c < 4; ++c) a(c, 0) = 100 * c;
  const zel_test::TempDir folder;
  for (const char* name : {"a.bmp", "a.PNG"}) {
    EXPECT_EQ(SaveArrayAsImg(folder.file(name), a, 2), 0);
    TBitmap picture;
    picture.LoadFromFile(folder.file(name));
    ASSERT_EQ(picture.Width() * 100 + picture.Height(), 806);
    for (int k = 0; k < 48; ++k) {
      EXPECT_EQ(int(picture.GetPixel(k % 8, k / 8)), a(k % 8 / 2, k / 8 / 2));
    }
  }
  EXPECT_EQ((TIntArray{SaveArrayAsImg("out.gif", a, 0), SaveArrayAsImg("out.gif", a, 1),
                       SaveArrayAsImg("out.jpeg", a, 1), SaveArrayAsImg("", a, 1),
                       SaveArrayAsImg(folder.file("a.jpg"), a, 10)}),
            (TIntArray{-2, -1, -1, -3, 0}));
  EXPECT_THROW(SaveArrayAsImg(folder.file("no/a.png"), a, 1), EInOutError);
}

class ArrayFiles : public testing::Test {
 protected:
  [[nodiscard]] std::string name() const { return folder_.file("array"); }

  template <class Array>
  void expectTextRoundTrip(const Array& a, const std::string& comment) const {
    Array b{};
    std::string read;
    EXPECT_EQ(StoreArray(name(), a, comment) + LoadArray(name(), b, read), 0);
    EXPECT_TRUE(b == a && read == comment);
    const std::string text = zel_test::readBytes(name());
    // The line end and digits of the last number may be missed.
    for (std::size_t cut = 0; cut <= text.find_last_of(" \n", text.size() - 2); ++cut) {
      zel_test::writeBytes(name(), text.substr(0, cut));
      EXPECT_EQ(LoadArray(name(), b, read), -4) << cut;
    }
    EXPECT_TRUE(b == a && read == comment);
  }
  template <class Array>
  void expectBinaryRoundTrip(const Array& a, const std::string& shape) const {
    Array b;
    std::string id;
    int n[5];
    EXPECT_EQ(SaveBinaryArray(name(), a, "id") + LoadBinaryArray(name(), b, id), 0);
    EXPECT_TRUE(b == a && id == "id");
    EXPECT_EQ(ReadBinaryArrayHeader(name(), n[0], n[1], n[2], n[3], id, n[4]), 0);
    EXPECT_EQ(testing::PrintToString(n), shape);
    const std::string bytes = zel_test::readBytes(name());
    // Cut off, and with an announced extent that the file does not hold.
    for (const std::string& bad : {bytes.substr(0, 4095), bytes.substr(0, bytes.size() - 1),
                                   "\xFF\xFF\xFF\x7F" + bytes.substr(4)}) {
      zel_test::writeBytes(name(), bad);
      EXPECT_TRUE(LoadBinaryArray(name(), b, id) == -3 && b == a);
    }
  }

  const zel_test::TempDir folder_;
};

TEST_F(ArrayFiles, TextComesBackBitForBit) {
  expectTextRoundTrip(TDoubleArray{1.0 / 3, 5e-324, -HUGE_VAL, 1e22}, "");
  expectTextRoundTrip(TIntArray{INT_MIN, INT_MAX}, "one line");
  expectTextRoundTrip(TDouble2DArray{{1, 2, 3}, {4, 5, 0.1}}, "two\n  lines");
  expectTextRoundTrip(TInt2DArray{{1}, {-2}}, "layers 3");
  expectTextRoundTrip(TInt3DArray{{{1, 2, 3}, {5, 6, 7}}, {{9, 10, 11}, {13, 14, 15}}}, "\n1 1\n");
}

TEST_F(ArrayFiles, TextOfAMatrixAndOfOtherRanks) {
  const TMatrix m{{1, 2}, {3, 4.5}, {5, 6}};
  ASSERT_TRUE(m.StoreOnFile(2, 1, 3, 3, name()));
  TInt2DArray a;
  TIntArray v{1};
  TInt3DArray cube;
  std::string comment;
  EXPECT_TRUE(LoadArray(name(), a, comment) == 0 && a == (TInt2DArray{{2, 4, 6}}));
  ASSERT_EQ(StoreArray(name(), TDouble2DArray{{1, 2}, {3, 4}}, ""), 0);
  TMatrix n;
  EXPECT_TRUE(n.LoadFromFile(name(), true) && n(2, 1) == 3);
  EXPECT_EQ(LoadArray(name(), v, comment) + LoadArray(name(), cube, comment), -8);
  for (const char* text :
       {"layers 2\n1 1 1 3\n1 2 3", "layers 0\n1 1 1 2\n1 2", "layers x\n1 1 1 2\n1 2", "1 1 0 0\n",
        "1 1 99999 99999\n1", "// only a comment"}) {
    zel_test::writeBytes(name(), text);
    EXPECT_EQ(LoadArray(name(), cube, comment) + LoadArray(name(), a, comment), -8) << text;
  }
  EXPECT_EQ((TIntArray{LoadArray(folder_.file("none"), v, comment),
                       StoreArray(folder_.file("no/file"), v, ""), StoreArray(name(), v, "", false),
                       StoreArray(name(), TIntArray(), "")}),
            (TIntArray{-3, -3, -4, -1}));
  EXPECT_TRUE(zel_test::readBytes(name()) == "// only a comment" && folder_.count() == 1);
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
  SaveBinaryArray(name(), TInt2DArray{{1, 2}, {3, 4}}, "");
  const std::string bytes = zel_test::readBytes(name());
  EXPECT_EQ((std::string{bytes[4096], bytes[4100], bytes[4104]}), "\x01\x03\x02");
  TDouble2DArray doubles;
  std::string id;
  EXPECT_EQ(LoadBinaryArray(name(), doubles, id) + LoadBinaryArray("none", doubles, id), -7);
}

}  // namespace
}  // namespace zel
