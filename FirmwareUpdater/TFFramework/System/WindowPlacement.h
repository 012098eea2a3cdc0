#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// Where a window stood when it was closed.
struct WindowPlacement {
  enum class State : std::uint32_t { kNormal = 1, kMinimized = 2, kMaximized = 3 };

  // Eleven numbers of 32 bits, the lowest byte first: the record's length, flags, the state, the places of
  // the minimized and the maximized window, and left, top, right and bottom of the normal one.
  static constexpr std::size_t kRecordSize = 44;

  State mState = State::kNormal;
  RectT<std::int32_t> mNormal;  // The client area on the screen, in pixels.

  std::array<unsigned char, kRecordSize> Encode() const;
  // Nothing for other bytes, or for an area that has no size or lies beyond what a screen can be.
  static std::optional<WindowPlacement> Decode(std::span<const unsigned char> bytes);
};

// The rectangle cut to the desktop's size and moved into it.
RectT<std::int32_t> FitIntoDesktop(RectT<std::int32_t> rect, const RectT<std::int32_t>& desktop);

}  // namespace TF
