#include "zel/base/colors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "zel/base/rounding.h"

namespace zel {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

int component(int c) { return std::clamp(c, 0, 255); }
int componentOf(double share) { return component(RoundToInt<int>(255 * share)); }

/// Not-a-number becomes 0.
double unitInterval(double x) { return x > 0 ? std::min(x, 1.0) : 0.0; }

}  // namespace

TColor RGB(int r, int g, int b) {
  return static_cast<TColor>(component(r) | component(g) << 8 | component(b) << 16);
}

int RGBtoGray(int r, int g, int b) { return GrayOf(RGB(r, g, b)); }

void RGBtoHSI(int r, int g, int b, double& h, double& s, double& i) {
  r = component(r);
  g = component(g);
  b = component(b);
  const int sum = r + g + b;
  i = sum / 765.0;
  s = sum == 0 ? 0.0 : (sum - 3 * std::min({r, g, b})) / static_cast<double>(sum);
  // The angle in the colour plane; the usual arc cosine of it loses half the digits near its ends.
  h = std::atan2(std::numbers::sqrt3 * (g - b), 2.0 * r - g - b) / kDegree;
  if (h < 0) h += 360;
}

void HSItoRGB(double h, double s, double i, int& r, int& g, int& b) {
  s = unitInterval(s);
  i = unitInterval(i);
  double angle = std::isfinite(h) ? std::fmod(h, 360.0) : 0.0;
  if (angle < 0) angle += 360;
  const int sector = std::min(static_cast<int>(angle / 120), 2);
  angle -= 120.0 * sector;
  const double low = i * (1 - s);
  const double high = i * (1 + s * std::cos(angle * kDegree) / std::cos((60 - angle) * kDegree));
  const double rest = 3 * i - low - high;
  // Sector 0 lies between red and green, 1 between green and blue, 2 between blue and red.
  int* const order[] = {&r, &g, &b};
  *order[sector] = componentOf(high);
  *order[(sector + 1) % 3] = componentOf(rest);
  *order[(sector + 2) % 3] = componentOf(low);
}

}  // namespace zel
