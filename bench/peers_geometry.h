/// @file
/// Plane geometry of other libraries.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "zel/base/types.h"

namespace zel::bench {

/// Boost.Geometry's forms of a set of points and of the polygon through them.
class BoostPoints {
 public:
  explicit BoostPoints(std::span<const TPointDouble> points);
  ~BoostPoints();

  [[nodiscard]] std::vector<TPointDouble> hull() const;
  /// Whether a point is inside the polygon, not on its border.
  [[nodiscard]] bool isInside(TPointDouble p) const;
  [[nodiscard]] double area() const;
  /// Whether edges of the polygon meet other than at a common vertex.
  [[nodiscard]] bool intersectsItself() const;

 private:
  struct Forms;
  std::unique_ptr<Forms> FForms;
};

}  // namespace zel::bench
