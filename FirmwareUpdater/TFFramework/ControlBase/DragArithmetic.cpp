#include "TFFramework/ControlBase/DragArithmetic.h"

#include <algorithm>
#include <cmath>

namespace TF {

namespace {

constexpr double kSmoothingTime = 0.2;  // Seconds; a longer pause forgets the speed before.

// depth: pixels into the margin.
double SpeedAt(double depth) {
  return (depth + 1) * kEdgeScrollSpeed;
}

double MarginFor(double viewEdge, double limit) {
  return std::clamp(kScrollMargin - std::abs(viewEdge - limit), 0.0, kScrollMargin);
}

}  // namespace

double FindEdgeScrollSpeed(const DragRange& range, double movement) {
  const double pointer = range.mGrab + movement;
  if (pointer < range.mViewStart + range.mViewSize / 2) {
    const double depth = range.mViewStart + MarginFor(range.mViewStart, range.mLimitStart) - pointer;
    return depth >= 0 ? -SpeedAt(depth) : 0;
  }
  const double viewEnd = range.mViewStart + range.mViewSize;
  const double depth = pointer - viewEnd + MarginFor(viewEnd, range.mLimitStart + range.mLimitSize);
  return depth >= 0 ? SpeedAt(depth) : 0;
}

double FindViewScrollSpeed(double place, double viewSize, bool scrollsNear, bool scrollsFar) {
  const double nearDepth = std::min(kScrollMargin - place, kScrollMargin);
  const double farDepth = std::min(place - viewSize + kScrollMargin, kScrollMargin);
  if (scrollsNear && nearDepth >= 0 && place < viewSize / 2) return -SpeedAt(nearDepth);
  if (scrollsFar && farDepth >= 0 && place >= viewSize / 2) return SpeedAt(farDepth);
  return 0;
}

double LimitMovement(const DragRange& range, double movement) {
  const double least = range.mLimitStart - range.mGrab;
  return std::max(std::min(movement, least + range.mLimitSize), least);
}

double LimitNearEdge(double movement, double size) {
  return std::min(movement, size - 1);
}

double LimitFarEdge(double movement, double size) {
  return std::max(movement, 1 - size);
}

double FindFlickSpeed(double distance, double seconds, double before) {
  const double speed = distance / seconds;
  return before != 0 && seconds < kSmoothingTime ? (speed + before) / 2 : speed;
}

double SlowedSpeed(double speed, double loss) {
  const double left = std::abs(speed) - loss;
  return left > 0 ? std::copysign(left, speed) : 0;
}

}  // namespace TF
