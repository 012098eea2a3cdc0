#pragma once

namespace TF {

// One axis of a drag in a view, in pixels of the view's content.
struct DragRange {
  double mGrab = 0;  // Where the mouse took hold.
  double mViewStart = 0;
  double mViewSize = 0;
  double mLimitStart = 0;  // The pointer may go from here
  double mLimitSize = 0;   // so far.
};

// Pixels along the edges of a view in which it scrolls.
inline constexpr double kScrollMargin = 30;
// Pixels per second at the inner end of the margin, and so many more for each pixel further out.
inline constexpr double kEdgeScrollSpeed = 15;
// Pixels per second; a slower flick has no inertia.
inline constexpr double kLeastFlickSpeed = 1000;

// Pixels per second, below 0 towards the near side; 0 for none. movement: of the pointer since it took hold.
double FindEdgeScrollSpeed(const DragRange& range, double movement);
// The same for a pointer at a place in a view, in which it may scroll to these sides.
double FindViewScrollSpeed(double place, double viewSize, bool scrollsNear, bool scrollsFar);

// What is left of a movement inside the limits.
double LimitMovement(const DragRange& range, double movement);
// What is left of a movement of the near or the far edge of something so large: a pixel stays.
double LimitNearEdge(double movement, double size);
double LimitFarEdge(double movement, double size);

// The speed of content that was moved by distance within seconds above 0, smoothed by the one before.
double FindFlickSpeed(double distance, double seconds, double before);
// What is left of a speed; 0 when it ends.
double SlowedSpeed(double speed, double loss);

}  // namespace TF
