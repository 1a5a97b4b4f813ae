#include "zel/base/Zel_zelcolors.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

using namespace zel_test;
using Bitmap = InFolder;

TEST(Colors, PackRedLowest) {
  EXPECT_EQ(RGB(1, 2, 3), 0x030201U);
  EXPECT_EQ(RGB(-1, 256, 255), 0xFFFF00U);
  EXPECT_EQ(RGB(RedOf(0xFF030201U), GreenOf(0xFF030201U), BlueOf(0xFF030201U)), 0x030201U);
}

TEST(RGBtoGray, WeighsTheComponents) {
  EXPECT_EQ(RGBtoGray(255, 0, 0), 76);   // 76.245
  EXPECT_EQ(RGBtoGray(0, 255, 0), 150);  // 149.685
  EXPECT_EQ(RGBtoGray(0, 0, 255), 29);   // 29.07
  for (int c = 0; c < 256; ++c) EXPECT_EQ(RGBtoGray(c, c, c), c);
}

TEST(RGBtoHSI, AgreesWithTheArcCosineFormulaAndComesBack) {
  for (int r = 0; r < 256; r += 15) {
    for (int g = 0; g < 256; g += 15) {
      for (int b = 0; b < 256; b += 15) {
        double h = -1, s = -1, i = -1;
        RGBtoHSI(r, g, b, h, s, i);
        ASSERT_TRUE(h >= 0 && h < 360 && s >= 0 && s <= 1 && i >= 0 && i <= 1);
        if (r != g || g != b) {
          const double cosine = 0.5 * (2 * r - g - b) /
                                std::sqrt(double((r - g) * (r - g)) + double((r - b) * (g - b)));
          const double angle = std::acos(std::clamp(cosine, -1.0, 1.0)) * 180 / std::acos(-1.0);
          ASSERT_NEAR(h, b > g ? 360 - angle : angle, 1e-5);
        } else {
          ASSERT_TRUE(h == 0 && s == 0);
        }
        int red = -1, green = -1, blue = -1;
        HSItoRGB(h + 720, s, i, red, green, blue);
        ASSERT_EQ(RGB(red, green, blue), RGB(r, g, b));
      }
    }
  }
  int r = 9, g = 9, b = 9;
  HSItoRGB(NAN, NAN, NAN, r, g, b);
  EXPECT_EQ(RGB(r, g, b), 0U);
  HSItoRGB(60, 2, 0.5, r, g, b);
  EXPECT_EQ(RGB(r, g, b), RGB(191, 191, 0)) << "a saturation of 1 at most";
}

/// Every pixel another colour, so that an exchange of rows, columns or components shows.
void paint(TBitmap& picture, int width, int height) {
  picture.SetSize(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) picture.SetPixel(x, y, RGB(7 * x, 200 - 5 * y, x + y));
  }
}

void expectSame(const TBitmap& a, const TBitmap& b) {
  ASSERT_TRUE(a.Width() == b.Width() && a.Height() == b.Height());
  for (int y = 0; y < a.Height(); ++y) ASSERT_TRUE(std::ranges::equal(a.Row(y), b.Row(y))) << y;
}

TEST_F(Bitmap, ReadsZeroOutsideAndIgnoresWrites) {
  TBitmap picture(3, 2);
  for (const auto& [x, y] : {std::pair(-1, 0), {3, 0}, {0, -1}, {0, 2}, {INT_MAX, INT_MIN}}) {
    picture.SetPixel(x, y, 5);
    EXPECT_EQ(picture.GetPixel(x, y), 0U);
    EXPECT_TRUE(picture.Row(x == 0 ? y : 9).empty());
  }
  picture.SetPixel(2, 1, 5);
  EXPECT_TRUE(picture.Row(1)[2] == 5 && picture.Pixels(2, 1) == 5 && picture.Row(0).size() == 3);
  TBitmap copy;
  copy.Assign(&picture);
  expectSame(copy, picture);
  EXPECT_THROW(picture.SetSize(INT_MAX, INT_MAX), EZELError);
  expectSame(copy, picture);
  for (const int none : {-1, 0}) {
    picture.SetSize(3, none);
    EXPECT_EQ(picture.Width(), 0);
  }
}

TEST_F(Bitmap, KeepsItsPixelsInLosslessFiles) {
  for (const int width : {1, 2, 3, 4, 33}) {  // every padding of a row
    for (const char* name : {"a.bmp", "a.PNG"}) {
      TBitmap picture;
      paint(picture, width, 5);
      picture.SaveToFile(path(name));
      TBitmap copy;
      copy.LoadFromFile(path(name));
      expectSame(copy, picture);
    }
  }
}

TEST_F(Bitmap, WritesTheBytesOfTheBmpFormat) {
  TBitmap picture;
  paint(picture, 1, 2);
  picture.SaveToFile(path("a.bmp"));
  const std::string bytes = bytesOf("a.bmp");
  EXPECT_EQ(bytes.substr(0, 30),
            std::string("BM\x3E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\2\0\0\0\1\0\x18\0", 30));
  // From the bottom up, blue first.
  EXPECT_EQ(bytes.substr(54), std::string("\1\xC3\0\0\0\xC8\0\0", 8));
}

TEST_F(Bitmap, WritesWholeJpegFiles) {
  // More than one block of output, with detail that does not compress.
  TBitmap large(700, 690);
  unsigned value = 1;
  for (int y = 0; y < 690; ++y) {
    for (TColor& c : large.Row(y)) c = (value = value * 1664525 + 1013904223) >> 8;
  }
  for (const char* name : {"a.jpeg", "a.Jpg"}) {
    large.SaveToFile(path(name));
    const std::string bytes = bytesOf(name);
    EXPECT_GT(bytes.size(), 131072U);
    EXPECT_TRUE(bytes.starts_with("\xFF\xD8\xFF") && bytes.ends_with("\xFF\xD9"));
    // The frame header holds height and width, high byte first.
    EXPECT_NE(bytes.find("\x08\x02\xB2\x02\xBC\x03"), std::string::npos);
  }
}

TEST_F(Bitmap, ReportsWhatItCannotWrite) {
  TBitmap picture(2, 2);
  for (const char* name : {"a.gif", "a", "png", "none/a.png"}) {
    EXPECT_THROW(picture.SaveToFile(path(name)), EInOutError) << name;
  }
  EXPECT_THROW(TBitmap().SaveToFile(path("a.png")), EInOutError);
  // Wider than the format allows: the encoder's own error path.
  EXPECT_THROW(TBitmap(70000, 1).SaveToFile(path("a.jpg")), EInOutError);
  EXPECT_EQ(folder.count(), 0);
}

TEST_F(Bitmap, SurvivesDamagedFiles) {
  TBitmap before;
  paint(before, 3, 3);
  for (const std::string ending : {".bmp", ".png"}) {
    before.SaveToFile(path("good" + ending));
    const std::string bytes = bytesOf("good" + ending);
    TBitmap picture;
    picture.Assign(&before);
    const auto load = [&](const std::string& damaged) {
      write("bad" + ending, damaged);
      picture.LoadFromFile(path("bad" + ending));
    };
    for (std::size_t size = 0; size + 12 < bytes.size(); ++size) {
      EXPECT_THROW(load(bytes.substr(0, size)), EInOutError) << ending << size;
    }
    expectSame(picture, before);
    // Any byte may be wrong: an error or a picture, but neither a crash nor a huge allocation.
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      std::string damaged = bytes;
      damaged[i] = static_cast<char>(~damaged[i]);
      try {
        load(damaged);
      } catch (const EInOutError&) {
      }
      EXPECT_LT(picture.Width(), 100000);
    }
  }
  TBitmap picture;
  EXPECT_THROW(picture.LoadFromFile(path("none.png")), EInOutError);
  EXPECT_THROW(picture.LoadFromFile(path("good.gif")), EInOutError);
}

}  // namespace
}  // namespace zel
