#include "zel/foundation/angles.h"

#include <cmath>
#include <cstdint>
#include <iterator>

#include "zel/base/Zel_univconst.h"
#include "zel/base/errors.h"

namespace zel {

namespace {

double fraction(double x) { return x - std::trunc(x); }

/// An angle in [-half, half], 2 half being the full circle.
double canonical(double x, Extended half) {
  const Extended full = 2 * half;
  Extended angle = x;
  if (std::abs(angle) > full) angle = std::fmod(angle, full);
  if (angle > half) angle -= full;
  if (angle < -half) angle += full;
  return static_cast<double>(angle);
}

constexpr int kSeries[] = {1, 2, 3, 5, 10, 15, 20, 30, 60, 90, 180, 360};

/// The series value next to seconds / unit, among those up to `most`.
int nextInSeries(std::int64_t seconds, std::int64_t unit, int most, bool up) {
  int below = 1;
  for (const int value : kSeries) {
    if (value > most) break;
    if (up && value * unit >= seconds) return value;
    if (value * unit <= seconds) below = value;
  }
  return up ? most : below;
}

}  // namespace

double AngleToXAxis(double x, double y) {
  if (x == 0) return static_cast<double>(y > 0 ? uc_pi / 2 : 3 * uc_pi / 2);
  Extended angle = std::atan(static_cast<Extended>(y) / x);
  if (x < 0) angle += uc_pi;
  if (angle < 0) angle += uc_2pi;
  if (angle > uc_2pi) angle -= uc_2pi;
  return static_cast<double>(angle);
}

double CanonicalAngleRadians(double x) { return canonical(x, uc_pi); }

double CanonicalAngleDegrees(double x) { return canonical(x, 180); }

void RoundDegrees(int& Deg, int& Min, int& Sec, bool Up) {
  constexpr int kMost = 59;
  if (Deg < 0 || Min < 0 || Sec < 0) {
    Deg = Min = Sec = 0;
    return;
  }
  if (Min > kMost) Min = kMost;
  if (Sec > kMost) Sec = kMost;
  const std::int64_t seconds = std::int64_t{Deg} * 3600 + Min * 60 + Sec;
  if (Deg > 0) {
    Deg = nextInSeries(seconds, 3600, 360, Up);
    Min = Sec = 0;
  } else if (Min > 0) {
    Min = nextInSeries(seconds, 60, 60, Up);
    Sec = 0;
    if (Min == 60) {
      Deg = 1;
      Min = 0;
    }
  } else if (Sec > 0) {
    Sec = nextInSeries(seconds, 1, 60, Up);
    if (Sec == 60) {
      Min = 1;
      Sec = 0;
    }
  }
}

void ConvertDegrees(double& Deg, double& Min, double& Sec, TDegreeFormat FromFormat,
                    TDegreeFormat ToFormat) {
  if (!(Min >= 0 && Min <= 60)) {
    throw EZELMath1Error("ConvertDegrees: invalid range of minutes");
  }
  if (!(Sec >= 0 && Sec <= 60)) {
    throw EZELMath1Error("ConvertDegrees: invalid range of seconds");
  }
  if (FromFormat > dfDegMinSec || ToFormat > dfDegMinSec) return;
  const double whole = std::trunc(Deg);
  switch (ToFormat) {
    case dfDegrees:
      if (FromFormat == dfDegMin) Deg = whole + Min / 60;
      if (FromFormat == dfDegMinSec) Deg = whole + std::trunc(Min) / 60 + Sec / 3600;
      Min = Sec = 0;
      break;
    case dfDegMin:
      if (FromFormat == dfDegrees) {
        Min = fraction(std::abs(Deg)) * 60;
        Deg = whole;
      }
      if (FromFormat == dfDegMinSec) Min += Sec / 60;
      Sec = 0;
      break;
    default:
      if (FromFormat == dfDegrees) {
        const double minutes = fraction(std::abs(Deg)) * 60;
        Deg = whole;
        Min = std::trunc(minutes);
        Sec = fraction(minutes) * 60;
      }
      if (FromFormat == dfDegMin) {
        Sec = fraction(Min) * 60;
        Min = std::trunc(Min);
      }
      break;
  }
}

}  // namespace zel
