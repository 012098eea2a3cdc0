#include "TFFramework/System/WindowPlacement.h"

#include <algorithm>

namespace TF {

namespace {

enum Field : std::size_t { kLength = 0, kState = 2, kLeft = 7, kTop = 8, kRight = 9, kBottom = 10 };

// Pixels, each way.
constexpr std::int32_t kFarthest = 1 << 20;

std::int32_t FieldOf(std::span<const unsigned char> bytes, std::size_t field) {
  std::uint32_t value = 0;
  for (std::size_t byte = 4; byte-- > 0;) value = value << 8 | bytes[field * 4 + byte];
  return static_cast<std::int32_t>(value);
}

bool IsOnSomeScreen(std::int32_t coordinate) {
  return coordinate >= -kFarthest && coordinate <= kFarthest;
}

}  // namespace

std::array<unsigned char, WindowPlacement::kRecordSize> WindowPlacement::Encode() const {
  std::array<unsigned char, kRecordSize> bytes{};
  const auto store = [&bytes](std::size_t field, std::int32_t value) {
    for (std::size_t byte = 0; byte < 4; ++byte)
      bytes[field * 4 + byte] = static_cast<unsigned char>(static_cast<std::uint32_t>(value) >> byte * 8);
  };
  store(kLength, kRecordSize);
  store(kState, static_cast<std::int32_t>(mState));
  store(kLeft, mNormal.mX);
  store(kTop, mNormal.mY);
  store(kRight, mNormal.mX + mNormal.mWidth);
  store(kBottom, mNormal.mY + mNormal.mHeight);
  return bytes;
}

std::optional<WindowPlacement> WindowPlacement::Decode(std::span<const unsigned char> bytes) {
  if (bytes.size() != kRecordSize || FieldOf(bytes, kLength) != kRecordSize) return std::nullopt;
  for (const std::size_t field : {kLeft, kTop, kRight, kBottom}) {
    if (!IsOnSomeScreen(FieldOf(bytes, field))) return std::nullopt;
  }
  WindowPlacement placement;
  const std::int32_t state = FieldOf(bytes, kState);
  if (state == static_cast<std::int32_t>(State::kMinimized)) placement.mState = State::kMinimized;
  if (state == static_cast<std::int32_t>(State::kMaximized)) placement.mState = State::kMaximized;
  placement.mNormal.mX = FieldOf(bytes, kLeft);
  placement.mNormal.mY = FieldOf(bytes, kTop);
  placement.mNormal.mWidth = FieldOf(bytes, kRight) - placement.mNormal.mX;
  placement.mNormal.mHeight = FieldOf(bytes, kBottom) - placement.mNormal.mY;
  if (placement.mNormal.mWidth <= 0 || placement.mNormal.mHeight <= 0) return std::nullopt;
  return placement;
}

RectT<std::int32_t> FitIntoDesktop(RectT<std::int32_t> rect, const RectT<std::int32_t>& desktop) {
  rect.mWidth = std::min(rect.mWidth, desktop.mWidth);
  rect.mHeight = std::min(rect.mHeight, desktop.mHeight);
  rect.mX = std::clamp(rect.mX, desktop.mX, desktop.mX + desktop.mWidth - rect.mWidth);
  rect.mY = std::clamp(rect.mY, desktop.mY, desktop.mY + desktop.mHeight - rect.mHeight);
  return rect;
}

}  // namespace TF
