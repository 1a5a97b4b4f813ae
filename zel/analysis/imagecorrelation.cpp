#include "zel/analysis/imagecorrelation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/base/colors.h"
#include "zel/kernels/moments.h"

namespace zel {

namespace {

double comparedValue(TColor color, TImgCompareMode mode) {
  const int red = RedOf(color);
  const int green = GreenOf(color);
  const int blue = BlueOf(color);
  switch (mode) {
    case icmRed:
      return red;
    case icmGreen:
      return green;
    case icmBlue:
      return blue;
    case icmGrayValues:
      return RGBtoGray(red, green, blue);
    default:
      break;
  }
  double h, s, i;
  RGBtoHSI(red, green, blue, h, s, i);
  return mode == icmLightness ? h : mode == icmSaturation ? s : i;
}

/// Places within an area, from its upper left corner on: [begin, end) in both directions.
struct Part {
  std::int64_t left, right, top, bottom;
  [[nodiscard]] bool holds(std::int64_t x, std::int64_t y) const {
    return x >= left && x < right && y >= top && y < bottom;
  }
};

std::int64_t widthOf(const TRect& area) { return std::int64_t{area.Right} - area.Left + 1; }
std::int64_t heightOf(const TRect& area) { return std::int64_t{area.Bottom} - area.Top + 1; }

/// The part of an area that lies in the picture.
Part insideOf(const TBitmap& image, const TRect& area) {
  return {std::max<std::int64_t>(0, -std::int64_t{area.Left}),
          std::min(widthOf(area), image.Width() - std::int64_t{area.Left}),
          std::max<std::int64_t>(0, -std::int64_t{area.Top}),
          std::min(heightOf(area), image.Height() - std::int64_t{area.Top})};
}

template <class Visit>
void forPlaces(const Part& part, Visit&& visit) {
  for (std::int64_t y = part.top; y < part.bottom; ++y) {
    for (std::int64_t x = part.left; x < part.right; ++x) visit(x, y);
  }
}

/// Correlation of x and y with `zeros` more pairs (0, 0), by the sums about the means of both parts
/// (Chan, Golub and LeVeque, Am. Stat. 37 (1983) 242).
double correlationWithZeros(const detail::Numbers& x, const detail::Numbers& y, double zeros) {
  if (static_cast<double>(x.size()) + zeros < 3 || x.empty()) return 0;
  if (zeros == 0) return kernels::pearsonCorrelation(x, y);
  const kernels::CentredProducts c = kernels::centredProducts(x, y);
  const auto n = static_cast<double>(x.size());
  const double weight = n / (n + zeros) * zeros;
  const double xx = c.xx.hi + weight * c.meanX.hi * c.meanX.hi;
  const double yy = c.yy.hi + weight * c.meanY.hi * c.meanY.hi;
  const double xy = c.xy.hi + weight * c.meanX.hi * c.meanY.hi;
  if (xx == 0 || yy == 0) return 0;
  return std::clamp(xy / (std::sqrt(xx) * std::sqrt(yy)), -1.0, 1.0);
}

}  // namespace

double CalcImgCorrelation(const TBitmap* Img1, const TBitmap* Img2, const TRect& Area1,
                          const TRect& Area2, TImgCompareMode CompMode) {
  const std::int64_t width = widthOf(Area1);
  const std::int64_t height = heightOf(Area1);
  if (width != widthOf(Area2) || height != heightOf(Area2)) {
    throw EZELMath2Error("image ranges to compare are not of equal size");
  }
  if (width < 1 || height < 1) return 0;
  const TBitmap black;
  const TBitmap& first = Img1 ? *Img1 : black;
  const TBitmap& second = Img2 ? *Img2 : black;
  return detail::GuardFit("CalcImgCorrelation", [&] {
    detail::Numbers x, y;
    const auto value = [&](const TBitmap& image, const TRect& area, const Part& inside,
                           std::int64_t dx, std::int64_t dy) {
      const bool isInside = inside.holds(dx, dy);
      return comparedValue(isInside ? image.GetPixel(static_cast<int>(area.Left + dx),
                                                     static_cast<int>(area.Top + dy))
                                    : 0,
                           CompMode);
    };
    const Part inside1 = insideOf(first, Area1);
    const Part inside2 = insideOf(second, Area2);
    const auto enter = [&](std::int64_t dx, std::int64_t dy) {
      x.push_back(value(first, Area1, inside1, dx, dy));
      y.push_back(value(second, Area2, inside2, dx, dy));
    };
    forPlaces(inside1, enter);
    forPlaces(inside2, [&](std::int64_t dx, std::int64_t dy) {
      if (!inside1.holds(dx, dy)) enter(dx, dy);
    });
    // Black is 0 in every mode.
    const double all = static_cast<double>(width) * static_cast<double>(height);
    return correlationWithZeros(x, y, all - static_cast<double>(x.size()));
  });
}

}  // namespace zel
