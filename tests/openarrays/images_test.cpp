// Regions and images beside an obvious version on random images, and picture files read back.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <tuple>

#include "tests/base/temp_dir.h"
#include "zel/base/bitmap.h"
#include "zel/openarrays/Zel_openarrays.h"

namespace zel {
namespace {

struct Filled {
  int count = 0;
  std::array<int, 4> bounds{};  // as the routine gives them: high row, low row, low and high column
};

/// By repeated passes over the whole image.
template <class T>
Filled fillSlowly(TDynArray<T, 2>& a, int x, int y, T value, std::function<bool(T)> belongs) {
  const int columns = static_cast<int>(a.Length(0));
  const int rows = static_cast<int>(a.Length(1));
  TBool2DArray in(columns, rows);
  in(x, y) = true;
  const auto isIn = [&](int c, int r) {
    return c >= 0 && c < columns && r >= 0 && r < rows && in(c, r);
  };
  for (bool grows = true; grows;) {
    grows = false;
    for (int c = 0; c < columns; ++c) {
      for (int r = 0; r < rows; ++r) {
        if (in(c, r) || !belongs(a(c, r))) continue;
        in(c, r) = isIn(c - 1, r) || isIn(c + 1, r) || isIn(c, r - 1) || isIn(c, r + 1);
        grows |= in(c, r);
      }
    }
  }
  Filled filled{0, {y, y, x, x}};
  auto& [highRow, lowRow, lowColumn, highColumn] = filled.bounds;
  for (int c = 0; c < columns; ++c) {
    for (int r = 0; r < rows; ++r) {
      if (!in(c, r)) continue;
      a(c, r) = value;
      ++filled.count;
      std::tie(lowColumn, highColumn) = std::pair(std::min(lowColumn, c), std::max(highColumn, c));
      std::tie(lowRow, highRow) = std::pair(std::min(lowRow, r), std::max(highRow, r));
    }
  }
  return filled;
}

TEST(FloodFill, IsTheRegionOnRandomImages) {
  std::mt19937 random(3);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int trial = 0; trial < 600; ++trial) {
    const int columns = 1 + below(12);
    const int rows = 1 + below(12);
    TInt2DArray a(columns, rows);
    TDouble2DArray b(columns, rows);
    for (int& cell : a) cell = below(5) < 3 ? 0 : below(3);
    for (double& cell : b) cell = 0.5 * below(7);
    const int x = below(columns);
    const int y = below(rows);
    std::array<int, 4> k{};
    TInt2DArray slow = a;
    const int seed = a(x, y);
    const Filled filled = fillSlowly<int>(slow, x, y, 9, [=](int cell) { return cell == seed; });
    EXPECT_EQ(FloodFillArray(x, y, 9, a, k[0], k[1], k[2], k[3]), filled.count);
    EXPECT_EQ(a, slow);
    EXPECT_EQ(k, filled.bounds);
    EXPECT_EQ(FloodFillArray(x, y, 9, a, k[0], k[1], k[2], k[3]), -2);
    EXPECT_EQ(FloodFillArray(columns, y, 8, a, k[0], k[1], k[2], k[3]), -1);
    EXPECT_EQ(FloodFillArray(x, -1, 8, a, k[0], k[1], k[2], k[3]), -1);

    // Half of the values lie in the tolerance band.
    const double centre = b(x, y);
    const double value = trial % 2 == 0 ? centre + 0.25 : 99;
    TDouble2DArray slowly = b;
    const Filled region = fillSlowly<double>(
        slowly, x, y, value, [=](double cell) { return std::fabs(cell - centre) <= 0.5; });
    EXPECT_EQ(FloodFillArray(x, y, -0.5, value, b, k[0], k[1], k[2], k[3]), region.count);
    EXPECT_EQ(b, slowly);
    EXPECT_EQ(k, region.bounds);
  }
  // A region of a million cells that winds through the whole image takes no stack.
  TInt2DArray maze(2001, 1001);
  for (int c = 1; c < 2001; c += 2) {
    for (int r = 0; r < 1001; ++r) maze(c, r) = r != (c % 4 == 1 ? 1000 : 0);
  }
  std::array<int, 4> k{};
  EXPECT_EQ(FloodFillArray(0, 0, 7, maze, k[0], k[1], k[2], k[3]), 1001 * 1001 + 1000);
  EXPECT_EQ(k, (std::array{1000, 0, 0, 2000}));
}

TEST(Frequencies, CountEachCellOnceAndCheckInOrder) {
  TIntArray counts{9};
  int under = 0;
  int over = 0;
  int most = 0;
  const TDouble2DArray a{{-0.1, 0, 0.99}, {10.5, 11, 1}};
  TBool2DArray mask(2, 3);
  EXPECT_EQ(FrequDistOfArray(a, mask, 0, 0, 0, 0, 0, 10, 1, counts, under, over, most), 0);
  EXPECT_EQ(counts, (TIntArray{2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ((TIntArray{under, over, most}), (TIntArray{1, 1, 2}));
  mask(0, 1) = true;
  EXPECT_EQ(FrequDistOfArray(a, mask, 0, 1, 1, 2, 0, 10, 1, counts, under, over, most), 0);
  EXPECT_EQ((TIntArray{under, over, most, counts[0], counts[1]}), (TIntArray{0, 1, 1, 1, 1}));
  EXPECT_EQ(FrequDistOfArray(TDoubleArray{5, 1, 1}, 1, 2, 0, 1, 1, counts, under, over, most), 0);
  EXPECT_EQ(counts, (TIntArray{0, 2}));
  const auto code = [&](int low, int high, double first, double last, double width) {
    return FrequDistOfArray(a, TBool2DArray(), low, 0, high, 0, first, last, width, counts, under,
                            over, most);
  };
  EXPECT_EQ(code(1, 2, 0, 10, 1), -1);
  EXPECT_EQ(code(1, 0, 10, 0, 1), -2);
  EXPECT_EQ(code(0, 1, 10, 10, 0), -3);
  EXPECT_EQ(code(0, 1, 0, 10, 0), -4);
  EXPECT_EQ(code(0, 1, 0, 1000, 1), -5);
  EXPECT_EQ(code(0, 1, 0, 999, 1), -6);
  EXPECT_EQ(counts, (TIntArray{0, 2}));
}

TEST(Images, MasksAndPictureFiles) {
  TInt2DArray a(4, 3);
  TBool2DArray mask(4, 3);
  mask(1, 2) = true;
  EXPECT_EQ(FillArrayMasked(a, 0x0102F3, mask), 0);
  EXPECT_EQ(a(1, 2), 0);
  EXPECT_EQ(a(0, 2), 0x0102F3);
  EXPECT_EQ(FillArrayMasked(a, 1, TBool2DArray(3, 4)), -1);
  TInt2DArray none;
  EXPECT_EQ(FillArrayMasked(none, 1, mask), -2);
  for (int c = 0; c < 4; ++c) a(c, 0) = 100 * c;
  const zel_test::TempDir folder;
  for (const char* name : {"a.bmp", "a.PNG"}) {
    EXPECT_EQ(SaveArrayAsImg(folder.file(name), a, 2), 0);
    TBitmap picture;
    picture.LoadFromFile(folder.file(name));
    ASSERT_EQ(picture.Width() * 100 + picture.Height(), 806);
    for (int x = 0; x < 8; ++x) {
      for (int y = 0; y < 6; ++y) EXPECT_EQ(int(picture.GetPixel(x, y)), a(x / 2, y / 2));
    }
  }
  EXPECT_EQ(SaveArrayAsImg(folder.file("a.jpg"), a, 10), 0);
  EXPECT_EQ(zel_test::readBytes(folder.file("a.jpg")).substr(0, 3), "\xFF\xD8\xFF");
  EXPECT_EQ(SaveArrayAsImg(folder.file("out.gif"), a, 0), -2);
  EXPECT_EQ(SaveArrayAsImg(folder.file("out.gif"), a, 1), -1);
  EXPECT_EQ(SaveArrayAsImg(folder.file("out.jpeg"), a, 1), -1);
  EXPECT_THROW(SaveArrayAsImg(folder.file("no/a.png"), a, 1), EInOutError);
}

}  // namespace
}  // namespace zel
