/// @file
/// Colours and conversions between colour models.
#pragma once

#include <cstdint>

#include "zel/base/api.h"

namespace zel {

/// A colour: red in bits 0-7, green in bits 8-15, blue in bits 16-23; the other bits are not used.
using TColor = std::uint32_t;

/// Colour of components 0..255; others are limited to that range, here and below.
[[nodiscard]] ZEL_API TColor RGB(int r, int g, int b);
[[nodiscard]] constexpr int RedOf(TColor c) { return static_cast<int>(c & 0xFFU); }
[[nodiscard]] constexpr int GreenOf(TColor c) { return static_cast<int>((c >> 8) & 0xFFU); }
[[nodiscard]] constexpr int BlueOf(TColor c) { return static_cast<int>((c >> 16) & 0xFFU); }

/// Grey value of a colour, as RGBtoGray.
[[nodiscard]] constexpr int GrayOf(TColor c) {
  const std::uint32_t luma = 299 * (c & 0xFFU) + 587 * (c >> 8 & 0xFFU) + 114 * (c >> 16 & 0xFFU);
  return static_cast<int>((luma + 500) / 1000);
}

/// Grey value 0..255: luma 0.299 r + 0.587 g + 0.114 b (ITU-R BT.601), rounded to nearest.
[[nodiscard]] ZEL_API int RGBtoGray(int r, int g, int b);

/// Hue, saturation and intensity of a colour.
/// @param h  hue in degrees, 0 <= h < 360: red 0, green 120, blue 240; 0 for a grey
/// @param s  saturation in 0..1: 1 - min(r, g, b) / mean(r, g, b); 0 for black
/// @param i  intensity in 0..1: mean(r, g, b) / 255
/// Method: Gonzalez and Woods, Digital Image Processing, section "The HSI color model".
ZEL_API void RGBtoHSI(int r, int g, int b, double& h, double& s, double& i);

/// The inverse of RGBtoHSI, rounded to nearest. The hue may be any finite number of degrees, s and
/// i are limited to 0..1; components that come out above 255 are limited.
ZEL_API void HSItoRGB(double h, double s, double i, int& r, int& g, int& b);

}  // namespace zel
