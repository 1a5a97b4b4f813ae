/// @file
/// Straight lines of the plane.
#pragma once

#include "zel/base/api.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"

namespace zel {

/// The straight line A x + B y + C = 0; at first the x axis (0, 1, 0). A and B are never both 0.
/// Failures raise EZELSLineError and leave the line as it is.
class ZEL_API TSLine : public TComponent {
 public:
  explicit TSLine(TComponent* AOwner = nullptr) : TComponent(AOwner) {}
  ~TSLine() override;
  [[nodiscard]] std::string_view ClassName() const override;

  [[nodiscard]] double ParA() const { return FParA; }
  [[nodiscard]] double ParB() const { return FParB; }
  [[nodiscard]] double ParC() const { return FParC; }
  /// @throws EZELSLineError  "parameter A and B must not both be zero"
  void SetParA(double v);
  void SetParB(double v);
  void SetParC(double v) { FParC = v; }
  /// CalcX and CalcY divide by 1E-100 instead of failing for a line along the axis in question; at
  /// first false.
  [[nodiscard]] bool SubstituteInf() const { return FSubstInf; }
  void SetSubstituteInf(bool v) { FSubstInf = v; }

  /// Point of intersection.
  /// @return false, with x and y unchanged, for parallel lines and for null
  bool InterSection(const TSLine* OtherLine, double& x, double& y) const;
  /// Angle between the lines in radians, in [0, pi/2]; 0 for null.
  [[nodiscard]] double AngleBetweenLines(const TSLine* OtherLine) const;
  /// Becomes the line through (px, py) at an angle against the x axis in radians.
  void LineThroughPoint(double px, double py, double angle);
  /// Slope k and intercept d of y = k x + d.
  /// @throws EZELSLineError  "cannot convert to k-d-form if ParB is zero"; k and d are unchanged
  void CalcKDForm(double& k, double& d) const;
  /// Becomes the line through two points.
  /// @return false, with the line unchanged, if they are the same
  bool LineFrom2Points(double P1X, double P1Y, double P2X, double P2Y);
  /// Becomes y = k x + d.
  void LineFromSlopeIcpt(double k, double d);
  /// Signed distance of a point, positive on the side that the vector (A, B) points to.
  [[nodiscard]] double Distance(double px, double py) const;
  /// Becomes the line through (px, py) perpendicular (parallel) to the other one, which may be
  /// this; null changes nothing.
  void NormalLine(double px, double py, const TSLine* OtherLine);
  void ParallelLine(double px, double py, const TSLine* OtherLine);
  /// x on the line for a given y.
  /// @throws EZELSLineError  "cannot calculate x" for A = 0, unless SubstituteInf
  [[nodiscard]] double CalcX(double y) const;
  /// y on the line for a given x.
  /// @throws EZELSLineError  "cannot calculate y" for B = 0, unless SubstituteInf
  [[nodiscard]] double CalcY(double x) const;
  /// Direction of the vector (B, -A) against the x axis in radians, in [0, 2 pi).
  [[nodiscard]] double GetDirect() const;
  [[nodiscard]] double Direction() const { return GetDirect(); }
  /// @throws EZELSLineError  "slope is infinite" for B = 0
  [[nodiscard]] double GetSlope() const;
  [[nodiscard]] double Slope() const { return GetSlope(); }
  /// @throws EZELSLineError  "cannot calculate intercept (line is parallel to y axis)" for B = 0
  [[nodiscard]] double GetIntercept() const;
  [[nodiscard]] double Intercept() const { return GetIntercept(); }
  /// The part of the line in the rectangle with the lower left corner (bllx, blly) and the upper
  /// right corner (burx, bury), border included: the first two of its intersections with the left,
  /// the right, the lower and the upper edge, in this order.
  /// @return whether there is any. Of a single one, which is a corner, both ends are the same;
  ///   without any, nothing changes.
  bool ClipBox(double bllx, double blly, double burx, double bury, double& x1, double& y1,
               double& x2, double& y2) const;

 private:
  double FParA = 0;
  double FParB = 1;
  double FParC = 0;
  bool FSubstInf = false;
};

}  // namespace zel
