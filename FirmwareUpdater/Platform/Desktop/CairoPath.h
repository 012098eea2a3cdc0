#pragma once

#include <cairo.h>

#include <span>
#include <vector>

#include "Platform/Canvas.h"

namespace Platform {

// Farther out nothing can be seen, and Cairo computes in 24 bits before the point.
inline constexpr double kMaxCoordinate = 1 << 20;

class CairoPath : public CanvasPath {
 public:
  CairoPath(CanvasPathKind kind, std::span<const CanvasPoint> points);

  // Adds the path to the current one of cairo, placed and then moved by shift on both axes. Points that land
  // too far out to be drawn are pulled in.
  void AppendTo(cairo_t* cairo, const PathPlacement& placement, double shift) const;

 private:
  std::vector<cairo_path_data_t> PlacePoints(const cairo_matrix_t& matrix) const;
  void AddPoint(cairo_path_data_type_t type, const CanvasPoint& point);

  std::vector<cairo_path_data_t> mData;
  double mReach = 0;  // The largest coordinate, positive.
};

}  // namespace Platform
