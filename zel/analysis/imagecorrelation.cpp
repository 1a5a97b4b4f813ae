#include "zel/analysis/imagecorrelation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/base/colors.h"
#include "zel/kernels/double_double.h"
#include "zel/kernels/moments.h"

namespace zel {

namespace {

/// Places within an area, from its upper left corner on: [begin, end) in both directions.
struct Part {
  std::int64_t left, right, top, bottom;
  friend bool operator==(const Part&, const Part&) = default;
  [[nodiscard]] bool isEmpty() const { return left >= right; }
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

/// The colours of a row of a part of an area.
std::span<const TColor> rowOf(const TBitmap& image, const TRect& area, const Part& part,
                              std::int64_t dy) {
  return image.Row(static_cast<int>(area.Top + dy))
      .subspan(static_cast<std::size_t>(area.Left + part.left),
               static_cast<std::size_t>(part.right - part.left));
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

/// Calls rows(colours, colours) for runs of neighbouring pixels of both areas, which cover all
/// places where one of them lies in its picture; what lies outside is black.
template <class Rows>
void forPairs(const TBitmap& first, const TRect& area1, const TBitmap& second, const TRect& area2,
              Rows&& rows) {
  const Part inside1 = insideOf(first, area1);
  const Part inside2 = insideOf(second, area2);
  if (inside1 == inside2) {
    for (std::int64_t dy = inside1.top; dy < inside1.bottom && !inside1.isEmpty(); ++dy) {
      rows(rowOf(first, area1, inside1, dy), rowOf(second, area2, inside2, dy));
    }
    return;
  }
  const auto at = [](const TBitmap& image, const TRect& area, const Part& inside, std::int64_t dx,
                     std::int64_t dy) {
    return inside.holds(dx, dy)
               ? image.GetPixel(static_cast<int>(area.Left + dx), static_cast<int>(area.Top + dy))
               : TColor{0};
  };
  const auto enter = [&](std::int64_t dx, std::int64_t dy) {
    const TColor a = at(first, area1, inside1, dx, dy);
    const TColor b = at(second, area2, inside2, dx, dy);
    rows(std::span(&a, 1), std::span(&b, 1));
  };
  forPlaces(inside1, enter);
  forPlaces(inside2, [&](std::int64_t dx, std::int64_t dy) {
    if (!inside1.holds(dx, dy)) enter(dx, dy);
  });
}

/// Sums of values from 0 to 255 and of their products, which are exact.
struct ByteSums {
  std::uint64_t n = 0, x = 0, y = 0, xx = 0, yy = 0, xy = 0;

  template <class Value>
  void add(std::span<const TColor> a, std::span<const TColor> b, Value&& value) {
    n += a.size();
    // Sums of so many products fit into 32 bits.
    constexpr std::size_t kMost = 512;
    std::array<std::int16_t, kMost> u, v;
    for (std::size_t at = 0; at < a.size(); at += kMost) {
      const std::size_t count = std::min(a.size() - at, kMost);
      for (std::size_t i = 0; i < count; ++i) u[i] = static_cast<std::int16_t>(value(a[at + i]));
      for (std::size_t i = 0; i < count; ++i) v[i] = static_cast<std::int16_t>(value(b[at + i]));
      std::int32_t sums[5] = {};
      for (std::size_t i = 0; i < count; ++i) {
        sums[0] += u[i];
        sums[1] += v[i];
        sums[2] += u[i] * u[i];
        sums[3] += v[i] * v[i];
        sums[4] += u[i] * v[i];
      }
      x += static_cast<std::uint64_t>(sums[0]);
      y += static_cast<std::uint64_t>(sums[1]);
      xx += static_cast<std::uint64_t>(sums[2]);
      yy += static_cast<std::uint64_t>(sums[3]);
      xy += static_cast<std::uint64_t>(sums[4]);
    }
  }

  /// Of `all` pairs, the others of which are (0, 0).
  [[nodiscard]] double correlation(double all) const {
    if (all < 3 || n == 0) return 0;
    const auto exact = [](std::uint64_t v) {
      const auto hi = static_cast<double>(v >> 32) * 0x1p32;
      return kernels::twoSum(hi, static_cast<double>(v & 0xFFFFFFFFU));
    };
    const auto centred = [&](std::uint64_t product, std::uint64_t a, std::uint64_t b) {
      return (exact(product) * all - exact(a) * exact(b)).hi;
    };
    const double cxx = centred(xx, x, x);
    const double cyy = centred(yy, y, y);
    if (!(cxx > 0) || !(cyy > 0)) return 0;
    return std::clamp(centred(xy, x, y) / (std::sqrt(cxx) * std::sqrt(cyy)), -1.0, 1.0);
  }
};

}  // namespace

double CalcImgCorrelation(const TBitmap* Img1, const TBitmap* Img2, const TRect& Area1,
                          const TRect& Area2, TImgCompareMode CompMode) {
  const std::int64_t width = widthOf(Area1);
  const std::int64_t height = heightOf(Area1);
  if (width != widthOf(Area2) || height != heightOf(Area2)) {
    throw EZELMath2Error("image ranges to compare are not of equal size");
  }
  if (width < 1 || height < 1) return 0;
  const double all = static_cast<double>(width) * static_cast<double>(height);
  const TBitmap black;
  const auto forAll = [&](auto&& rows) {
    forPairs(Img1 ? *Img1 : black, Area1, Img2 ? *Img2 : black, Area2, rows);
  };
  const auto ofBytes = [&](auto value) {
    ByteSums sums;
    forAll([&](auto a, auto b) { sums.add(a, b, value); });
    return sums.correlation(all);
  };
  switch (CompMode) {
    case icmRed:
      return ofBytes([](TColor c) { return RedOf(c); });
    case icmGreen:
      return ofBytes([](TColor c) { return GreenOf(c); });
    case icmBlue:
      return ofBytes([](TColor c) { return BlueOf(c); });
    case icmGrayValues:
      return ofBytes([](TColor c) { return GrayOf(c); });
    default:
      break;
  }
  return detail::GuardFit("CalcImgCorrelation", [&] {
    detail::Numbers x, y;
    const auto valueOf = [&](TColor colour) {
      double h, s, i;
      RGBtoHSI(RedOf(colour), GreenOf(colour), BlueOf(colour), h, s, i);
      return CompMode == icmLightness ? h : CompMode == icmSaturation ? s : i;
    };
    forAll([&](std::span<const TColor> a, std::span<const TColor> b) {
      for (const TColor colour : a) x.push_back(valueOf(colour));
      for (const TColor colour : b) y.push_back(valueOf(colour));
    });
    // Black is 0 in every mode.
    return correlationWithZeros(x, y, all - static_cast<double>(x.size()));
  });
}

}  // namespace zel
