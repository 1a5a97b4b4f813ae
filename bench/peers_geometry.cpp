#define BOOST_ALLOW_DEPRECATED_HEADERS  // by Boost itself
#include "bench/peers_geometry.h"

#include <boost/geometry/algorithms/area.hpp>
#include <boost/geometry/algorithms/convex_hull.hpp>
#include <boost/geometry/algorithms/intersects.hpp>
#include <boost/geometry/algorithms/within.hpp>
#include <boost/geometry/geometries/multi_point.hpp>
#include <boost/geometry/geometries/register/point.hpp>
#include <boost/geometry/geometries/ring.hpp>
#include <boost/geometry/strategies/strategies.hpp>

BOOST_GEOMETRY_REGISTER_POINT_2D(zel::TPointDouble, double, boost::geometry::cs::cartesian, X, Y)

namespace zel::bench {

namespace geometry = boost::geometry;

namespace {

using Ring = geometry::model::ring<TPointDouble, false, false>;  // counter-clockwise, open

}  // namespace

struct BoostPoints::Forms {
  geometry::model::multi_point<TPointDouble> points;
  Ring ring;
};

BoostPoints::BoostPoints(std::span<const TPointDouble> points) : FForms(std::make_unique<Forms>()) {
  FForms->points.assign(points.begin(), points.end());
  FForms->ring.assign(points.begin(), points.end());
}

BoostPoints::~BoostPoints() = default;

std::vector<TPointDouble> BoostPoints::hull() const {
  Ring hull;
  geometry::convex_hull(FForms->points, hull);
  return hull;
}

bool BoostPoints::isInside(TPointDouble p) const { return geometry::within(p, FForms->ring); }

double BoostPoints::area() const { return geometry::area(FForms->ring); }

bool BoostPoints::intersectsItself() const { return geometry::intersects(FForms->ring); }

}  // namespace zel::bench
