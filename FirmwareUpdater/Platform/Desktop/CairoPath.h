#pragma once

#include <cairo.h>

#include <span>
#include <vector>

#include "Platform/Canvas.h"

namespace Platform {

class CairoPath : public CanvasPath {
 public:
  CairoPath(PathKind kind, std::span<const CanvasPoint> points);

  // Adds the path to the current one of cairo, by its present matrix.
  void AppendTo(cairo_t* cairo) const;

 private:
  void AddPoint(cairo_path_data_type_t type, const CanvasPoint& point);

  std::vector<cairo_path_data_t> mData;
};

}  // namespace Platform
