#include "Platform/Desktop/CairoPath.h"

#include <algorithm>
#include <cmath>

namespace Platform {

namespace {

double Limited(double value) {
  return std::isnan(value) ? 0 : std::clamp(value, -kMaxCoordinate, kMaxCoordinate);
}

void Append(cairo_t* cairo, const std::vector<cairo_path_data_t>& data) {
  const cairo_path_t path{CAIRO_STATUS_SUCCESS, const_cast<cairo_path_data_t*>(data.data()),
                          static_cast<int>(data.size())};
  cairo_append_path(cairo, &path);
}

}  // namespace

CairoPath::CairoPath(CanvasPathKind kind, std::span<const CanvasPoint> points) {
  const std::size_t count = kind == CanvasPathKind::kSegments ? points.size() / 2 * 2 : points.size();
  if (count < 2) return;
  for (std::size_t index = 0; index < count; ++index) {
    const bool starts = index == 0 || (kind == CanvasPathKind::kSegments && index % 2 == 0);
    AddPoint(starts ? CAIRO_PATH_MOVE_TO : CAIRO_PATH_LINE_TO, points[index]);
  }
  if (kind != CanvasPathKind::kPolygon) return;
  cairo_path_data_t close{};
  close.header = {CAIRO_PATH_CLOSE_PATH, 1};
  mData.push_back(close);
}

void CairoPath::AddPoint(cairo_path_data_type_t type, const CanvasPoint& point) {
  cairo_path_data_t header{};
  header.header = {type, 2};
  cairo_path_data_t place{};
  place.point = {Limited(point.mX), Limited(point.mY)};
  mReach = std::max({mReach, std::abs(place.point.x), std::abs(place.point.y)});
  mData.insert(mData.end(), {header, place});
}

void CairoPath::AppendTo(cairo_t* cairo, const PathPlacement& placement, double shift) const {
  if (mData.empty()) return;
  const cairo_matrix_t matrix{placement.mScaleX,         0, 0, placement.mScaleY, placement.mOffsetX + shift,
                              placement.mOffsetY + shift};
  const double scale = std::max(std::abs(placement.mScaleX), std::abs(placement.mScaleY));
  if (mReach * scale <= kMaxCoordinate) {
    cairo_set_matrix(cairo, &matrix);
    Append(cairo, mData);
    cairo_identity_matrix(cairo);
  } else {
    Append(cairo, PlacePoints(matrix));
  }
}

std::vector<cairo_path_data_t> CairoPath::PlacePoints(const cairo_matrix_t& matrix) const {
  std::vector<cairo_path_data_t> placed = mData;
  for (std::size_t index = 0; index < placed.size();
       index += static_cast<std::size_t>(placed[index].header.length)) {
    if (placed[index].header.length < 2) continue;
    cairo_path_data_t& place = placed[index + 1];
    cairo_matrix_transform_point(&matrix, &place.point.x, &place.point.y);
    place.point = {Limited(place.point.x), Limited(place.point.y)};
  }
  return placed;
}

}  // namespace Platform
