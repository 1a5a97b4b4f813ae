#include "zel/analysis/TSLine.h"

#include <cmath>

#include "zel/base/Zel_univconst.h"

namespace zel {

namespace {

constexpr double kInsteadOfZero = 1e-100;

void requireDirection(double a, double b) {
  if (a == 0 && b == 0) throw EZELSLineError("parameter A and B must not both be zero");
}

}  // namespace

TSLine::~TSLine() = default;

std::string_view TSLine::ClassName() const { return "TSLine"; }

void TSLine::SetParA(double v) {
  requireDirection(v, FParB);
  FParA = v;
}

void TSLine::SetParB(double v) {
  requireDirection(FParA, v);
  FParB = v;
}

bool TSLine::InterSection(const TSLine* OtherLine, double& x, double& y) const {
  if (!OtherLine) return false;
  const Extended a1 = FParA, b1 = FParB, c1 = FParC;
  const Extended a2 = OtherLine->FParA, b2 = OtherLine->FParB, c2 = OtherLine->FParC;
  const Extended det = a1 * b2 - a2 * b1;
  if (det == 0) return false;
  x = static_cast<double>((b1 * c2 - b2 * c1) / det);
  y = static_cast<double>((c1 * a2 - c2 * a1) / det);
  return true;
}

double TSLine::AngleBetweenLines(const TSLine* OtherLine) const {
  if (!OtherLine) return 0;
  const Extended a1 = FParA, b1 = FParB;
  const Extended a2 = OtherLine->FParA, b2 = OtherLine->FParB;
  const Extended s = a1 * a2 + b1 * b2;
  if (s == 0) return static_cast<double>(uc_pi / 2);
  return static_cast<double>(std::abs(std::atan((a1 * b2 - b1 * a2) / s)));
}

void TSLine::LineThroughPoint(double px, double py, double angle) {
  FParA = -std::sin(angle);
  FParB = std::cos(angle);
  FParC = static_cast<double>(-Extended{FParA} * px - Extended{FParB} * py);
}

void TSLine::CalcKDForm(double& k, double& d) const {
  if (FParB == 0) throw EZELSLineError("cannot convert to k-d-form if ParB is zero");
  k = -FParA / FParB;
  d = -FParC / FParB;
}

bool TSLine::LineFrom2Points(double P1X, double P1Y, double P2X, double P2Y) {
  if (P1X == P2X && P1Y == P2Y) return false;
  FParA = P1Y - P2Y;
  FParB = P2X - P1X;
  FParC = static_cast<double>(Extended{P1X} * P2Y - Extended{P1Y} * P2X);
  return true;
}

void TSLine::LineFromSlopeIcpt(double k, double d) {
  FParA = k;
  FParB = -1;
  FParC = d;
}

double TSLine::Distance(double px, double py) const {
  const Extended a = FParA, b = FParB;
  return static_cast<double>((a * px + b * py + FParC) / std::sqrt(a * a + b * b));
}

void TSLine::NormalLine(double px, double py, const TSLine* OtherLine) {
  if (!OtherLine) return;
  const double a = OtherLine->FParA;
  FParA = -OtherLine->FParB;
  FParB = a;
  FParC = static_cast<double>(-Extended{FParA} * px - Extended{FParB} * py);
}

void TSLine::ParallelLine(double px, double py, const TSLine* OtherLine) {
  if (!OtherLine) return;
  FParA = OtherLine->FParA;
  FParB = OtherLine->FParB;
  FParC = static_cast<double>(-Extended{FParA} * px - Extended{FParB} * py);
}

double TSLine::CalcX(double y) const {
  if (FParA == 0 && !FSubstInf) throw EZELSLineError("cannot calculate x");
  return (-y * FParB - FParC) / (FParA == 0 ? kInsteadOfZero : FParA);
}

double TSLine::CalcY(double x) const {
  if (FParB == 0 && !FSubstInf) throw EZELSLineError("cannot calculate y");
  return (-x * FParA - FParC) / (FParB == 0 ? kInsteadOfZero : FParB);
}

double TSLine::GetDirect() const {
  Extended angle =
      FParB == 0 ? (FParA <= 0 ? -uc_pi / 2 : uc_pi / 2) : std::atan(-Extended{FParA} / FParB);
  if (FParB <= 0) {
    angle += uc_pi;
  } else if (FParA > 0) {
    angle += uc_2pi;
  }
  const auto direction = static_cast<double>(angle);
  return direction >= static_cast<double>(uc_2pi) ? 0 : direction + 0.0;
}

double TSLine::GetSlope() const {
  if (FParB == 0) throw EZELSLineError("slope is infinite");
  return -FParA / FParB;
}

double TSLine::GetIntercept() const {
  if (FParB == 0) {
    throw EZELSLineError("cannot calculate intercept (line is parallel to y axis)");
  }
  return -FParC / FParB;
}

bool TSLine::ClipBox(double bllx, double blly, double burx, double bury, double& x1, double& y1,
                     double& x2, double& y2) const {
  TSLine line;  // substitutes, whatever this one does
  line.FParA = FParA;
  line.FParB = FParB;
  line.FParC = FParC;
  line.FSubstInf = true;
  int found = 0;
  const auto take = [&](double x, double y, bool isOnEdge) {
    if (!isOnEdge || found == 2) return;
    if (++found == 1) {
      x1 = x;
      y1 = y;
    }
    x2 = x;
    y2 = y;
  };
  for (const double x : {bllx, burx}) {
    const double y = line.CalcY(x);
    take(x, y, y >= blly && y <= bury);
  }
  for (const double y : {blly, bury}) {
    const double x = line.CalcX(y);
    take(x, y, x >= bllx && x <= burx);
  }
  return found > 0;
}

}  // namespace zel
