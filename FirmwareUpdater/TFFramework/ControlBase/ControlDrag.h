#pragma once

#include <cstdint>

namespace TF {

// What dragging a control with the left button moves.
enum class DragMode : std::int32_t {
  kNone = 0,
  kCarry = 1,            // The control floats to a drop target.
  kMove = 2,             // The control, inside its limits.
  kMoveScrolling = 3,    // The same, and the parent scrolls at the edges of its view.
  kResize = 4,           // An edge of the control.
  kResizeScrolling = 5,  // The same, and the parent scrolls.
  kFlick = 6,            // The content of the control.
};

// Masks of the edges or axes that a drag may move. The first two count for kCarry, kMove,
// kMoveScrolling and kFlick, the others for resizing; those tell directions of scrolling, too.
struct DragEdges {
  static constexpr std::uint32_t kX = 1;
  static constexpr std::uint32_t kY = 2;
  static constexpr std::uint32_t kRight = 4;
  static constexpr std::uint32_t kLeft = 8;
  static constexpr std::uint32_t kTop = 16;
  static constexpr std::uint32_t kBottom = 32;
};

}  // namespace TF
