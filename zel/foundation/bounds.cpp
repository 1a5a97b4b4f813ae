#include "zel/foundation/bounds.h"

#include <algorithm>
#include <cmath>

#include "zel/base/rounding.h"

namespace zel {

double ConfineValue(double x, double Low, double High) {
  return ConfineValue<double, double, double>(x, Low, High);
}

float ConfineValue(float x, float Low, float High) {
  return static_cast<float>(ConfineValue<float, float, float>(x, Low, High));
}

int ConfineValue(int x, int Low, int High) {
  return static_cast<int>(ConfineValue<int, int, int>(x, Low, High));
}

bool WithinBounds(double x, double Low, double High) { return WithinBounds(x, Low, High, 0); }

bool WithinBounds(double x, double Low, double High, double Tolerance) {
  if (Low > High) std::swap(Low, High);
  return Low - Tolerance <= x && x <= High + Tolerance;
}

std::int64_t RoundLimit(Extended x, std::int64_t Low, std::int64_t High) {
  return std::min(std::max(RoundToInt<std::int64_t>(x), Low), High);
}

int IntPos(double x) { return RoundToInt<int>(std::ceil(x)); }

int IntNeg(double x) { return RoundToInt<int>(std::floor(x)); }

int Signum(double x) { return x >= 0 ? 1 : -1; }

double modr(double a, double b) { return b == 0 ? 0 : std::fmod(a, b); }

}  // namespace zel
