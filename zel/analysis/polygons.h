/// @file
/// Polygons: sequences of points, numbered from 0, with a closing edge from the last to the first
/// where a routine speaks of a closed polygon or of an area. All routines are reentrant; none
/// raises but for want of memory (std::bad_alloc).
#pragma once

#include <span>
#include <vector>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Removes redundant points: first those that are equal to their predecessor, then those between
/// two steps of the same direction (both vertical, or with slopes that differ by less than 1E-10).
/// The first and the last point stay.
/// @return the number of points that are left
ZEL_API int ReducePolygon(std::vector<TPointDouble>& Poly);
ZEL_API int ReducePolygon(std::vector<TPoint>& Poly);

/// Whether a point lies inside a closed polygon by the even-odd rule; a point on the boundary does
/// not. Exact. O(n).
[[nodiscard]] ZEL_API bool PointIsInsidePolygon(double x, double y,
                                                std::span<const TPointDouble> Poly);

/// Signed area of a closed polygon, positive for counter-clockwise order (y axis up). Parts that
/// the boundary surrounds several times count as often. O(n).
[[nodiscard]] ZEL_API double PolygonArea(std::span<const TPointDouble> Poly);
/// The same, with the number of intersecting pairs of edges less the number of points.
///
/// All pairs count for which SegmentsIntersect is true, so a simple polygon of at least 3 points
/// without repeated points and without collinear edges gives 0, a figure-eight 1. Edges on a common
/// line count as intersecting, and so does an edge without length on the line of another one.
/// @param NumIntersect  limited to the range of int
/// Edges with a coordinate that is not finite do not count.
/// Cost: O(n log n) and the pairs of edges that are tested: by a sweep those that overlap along the
/// better of the two axes, or, if these are many, by a tree those close together; each edge without
/// length takes a pass over all lines.
[[nodiscard]] ZEL_API double PolygonArea(std::span<const TPointDouble> Poly, int& NumIntersect);

/// Sum of the lengths of the edges, with the closing edge if Closed.
[[nodiscard]] ZEL_API double PolygonLength(std::span<const TPointDouble> Poly, bool Closed);

/// Bounding rectangle; all 0 for no points.
ZEL_API void OuterRectOfPolygon(std::span<const TPointDouble> Poly, double& xLow, double& yLow,
                                double& xHigh, double& yHigh);

/// Difference form (chain code): the steps from each point to the next.
/// @param RedMode  above 0: steps of length 0 are dropped; 2: and runs of steps with the same
/// dy/dx,
///   opposite ones included, are added up
/// @return number of steps
ZEL_API int ConvertToDiffPolygon(std::span<const TPointDouble> Poly,
                                 std::vector<TPointDouble>& DiffPoly, int RedMode);
/// The points that begin at StartPt and follow the steps.
/// @return number of points, one more than there are steps
ZEL_API int ConvertFromDiffPolygon(const TPointDouble& StartPt,
                                   std::span<const TPointDouble> DiffPoly,
                                   std::vector<TPointDouble>& Poly);

/// Smallest distance of a point from the edges; uc_MaxDouble if there are none.
/// @param Closed  the closing edge counts too
[[nodiscard]] ZEL_API double DistanceToPolygon(const TPointDouble& Pt,
                                               std::span<const TPointDouble> Poly, bool Closed);

/// Whether a point lies strictly inside a convex polygon whose points are in counter-clockwise
/// order. Exact.
[[nodiscard]] ZEL_API bool PointIsInsideConvexHull(double x, double y,
                                                   std::span<const TPointDouble> Hull);

/// Convex hull: its vertices, none of them between two others on an edge, in counter-clockwise
/// order from the one whose direction from the centroid of all points is the first after straight
/// down. Fewer than 4 points are returned as they are; points on a line give its two ends. Points
/// with a coordinate that is not finite are passed over. Exact, and the same for every order of the
/// points. O(n log n). Method: monotone chains (Andrew, Inf. Process. Lett. 9 (1979) 216) of the
/// points that are not inside an octagon of extreme points (Akl and Toussaint, Inf. Process. Lett.
/// 7 (1978) 219).
[[nodiscard]] ZEL_API std::vector<TPointDouble> Convex2DHull(std::span<const TPointDouble> Points);

/// Great-circle distance of two points on a sphere, in units of the radius.
/// @param Lat1, Long1, Lat2, Long2  degrees
/// Method: haversine formula, which keeps its digits at small distances.
[[nodiscard]] ZEL_API double SphereGreatCircleDist(double Radius, double Lat1, double Long1,
                                                   double Lat2, double Long2);

}  // namespace zel
