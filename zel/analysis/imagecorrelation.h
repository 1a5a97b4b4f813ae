/// @file
/// Correlation of two parts of pictures.
#pragma once

#include "zel/base/api.h"
#include "zel/base/bitmap.h"
#include "zel/base/types.h"

namespace zel {

/// What of two pictures is compared: a component of the colour, its hue, saturation or intensity
/// (RGBtoHSI), or its grey value (RGBtoGray).
enum TImgCompareMode : std::uint8_t {
  icmRed,
  icmBlue,
  icmGreen,
  icmHue,
  icmLightness,
  icmSaturation,
  icmGrayValues
};

/// Pearson correlation of the pixels of an area of one picture with those of an area of another.
/// @param Area1, Area2  with both edges (Left..Right, Top..Bottom), of one size; a reversed area
///   has no pixels. Pixels outside a picture, and all of a null one, are black.
/// @param CompMode  icmLightness, icmSaturation and icmHue compare the first, second and third
///   output of RGBtoHSI, which are the hue, the saturation and the intensity.
/// @return -1..1; 0 for fewer than three pixels and if an area is uniform
/// @throws EZELMath2Error  "image ranges to compare are not of equal size";
///   "CalcImgCorrelation: not enough memory"
/// O(pixels that lie in one of the pictures), however large the areas are.
[[nodiscard]] ZEL_API double CalcImgCorrelation(const TBitmap* Img1, const TBitmap* Img2,
                                                const TRect& Area1, const TRect& Area2,
                                                TImgCompareMode CompMode);

}  // namespace zel
