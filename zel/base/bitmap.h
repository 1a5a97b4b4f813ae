/// @file
/// A picture in memory and its files.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "zel/base/api.h"
#include "zel/base/colors.h"
#include "zel/base/component.h"

namespace zel {

/// Rectangle of coloured pixels, (0, 0) at the upper left.
class ZEL_API TBitmap : public TPersistent {
 public:
  /// A picture without pixels.
  TBitmap();
  /// A black picture; the same conditions as SetSize.
  TBitmap(int Width, int Height);
  ~TBitmap() override;
  [[nodiscard]] std::string_view ClassName() const override;

  [[nodiscard]] int Width() const { return FWidth; }
  [[nodiscard]] int Height() const { return FHeight; }
  /// Makes the picture this large and black. Negative sizes count as 0; if one is 0, so is the
  /// other.
  /// @throws EZELError  if there is not enough memory; the picture is then unchanged
  void SetSize(int Width, int Height);

  /// The colour of a pixel; 0 outside the picture.
  [[nodiscard]] TColor GetPixel(int x, int y) const {
    return Inside(x, y) ? FPixels[Index(x, y)] : 0;
  }
  [[nodiscard]] TColor Pixels(int x, int y) const { return GetPixel(x, y); }
  /// Ignored outside the picture.
  void SetPixel(int x, int y, TColor color) {
    if (Inside(x, y)) FPixels[Index(x, y)] = color;
  }
  /// The pixels of row y from left to right, without a copy; empty outside the picture.
  [[nodiscard]] std::span<TColor> Row(int y);
  [[nodiscard]] std::span<const TColor> Row(int y) const;

  /// Copies the picture, if Source is one.
  /// @throws EConvertError  if it is not
  void Assign(const TPersistent* Source) override;

  /// Writes the picture in the format that the ending of the name tells, in any case: .bmp (24
  /// bits), .png, .jpg or .jpeg (both with the default settings of their encoders). An old file is
  /// replaced only by a complete new one.
  /// @throws EInOutError  for another ending, an empty picture, one too large for the format, or a
  ///   file that cannot be written
  void SaveToFile(std::string_view FileName) const;
  /// Reads a .png file, or a .bmp file with 24 or 32 bits and no compression. Transparent pixels
  /// are shown on white.
  /// @throws EInOutError  for another ending, a file that cannot be read, is damaged or announces
  ///   more pixels than it can hold; the picture is then unchanged
  void LoadFromFile(std::string_view FileName);

 private:
  [[nodiscard]] bool Inside(int x, int y) const {
    return x >= 0 && x < FWidth && y >= 0 && y < FHeight;
  }
  [[nodiscard]] std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(FWidth) +
           static_cast<std::size_t>(x);
  }

  int FWidth = 0;
  int FHeight = 0;
  std::vector<TColor> FPixels;
};

}  // namespace zel
