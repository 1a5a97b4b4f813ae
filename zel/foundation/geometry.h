/// @file
/// Points, segments, rectangles and ellipses of the plane. All routines are reentrant and return a
/// defined value for every input; a not-a-number leads to not-a-number, false or 0.
#pragma once

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Euclidean distance of two points. Neither overflows nor loses digits on the way.
[[nodiscard]] ZEL_API double EuclideanDistance(double x1, double y1, double x2, double y2);
[[nodiscard]] inline double EuclideanDistance(TPointDouble P1, TPointDouble P2) {
  return EuclideanDistance(P1.X, P1.Y, P2.X, P2.Y);
}

/// Sense of rotation of three points: 1 counter-clockwise (y axis up), -1 clockwise, 0 collinear.
/// The sign is that of the exact determinant of the given doubles, whatever their magnitudes.
[[nodiscard]] ZEL_API int CcwTriangle(TPointDouble P1, TPointDouble P2, TPointDouble P3);

/// Whether the segments P1 P2 and Q1 Q2 have a point in common. Collinear segments count as
/// intersecting even when they do not overlap. False if a coordinate is not finite. Exact, like
/// CcwTriangle.
[[nodiscard]] ZEL_API bool SegmentsIntersect(TPointDouble P1, TPointDouble P2, TPointDouble Q1,
                                             TPointDouble Q2);

/// Distance of P from the segment A B, which may be a single point.
[[nodiscard]] ZEL_API double DistanceToSegment(TPointDouble P, TPointDouble A, TPointDouble B);

/// Distance of P from a rectangle: 0 inside and on the border; beside a corner the distance from
/// it, rounded to the nearest integer. Limited to the range of int. The corners must be in order.
[[nodiscard]] ZEL_API int DistFromRect(TPoint P, TRect R);

/// Distance of P from the ellipse with the centre (Xc, Yc) and semi-axes along the coordinate axes.
/// @param SemiAxisX, SemiAxisY  magnitudes count; one or both may be 0 (a segment, a point)
/// @param Nearest  the point of the ellipse that is nearest to P; of several, one with x and y not
///   below the centre
/// Method: bisection after Eberly, Distance from a Point to an Ellipse, an Ellipsoid, or a
/// Hyperellipsoid (2013).
ZEL_API double DistFromEllipse(TPointDouble P, double Xc, double Yc, double SemiAxisX,
                               double SemiAxisY, TPointDouble& Nearest);

/// Whether P lies in the rectangle or on its border; its corners may be in any order.
[[nodiscard]] ZEL_API bool WithinRect(TPointDouble P, TRectDouble R);

/// Moves the coordinates of P that lie outside the rectangle to its border; its corners may be in
/// any order.
/// @return true if P was moved
ZEL_API bool ConfinePointToRect(TPointDouble& P, TRectDouble R);

}  // namespace zel
