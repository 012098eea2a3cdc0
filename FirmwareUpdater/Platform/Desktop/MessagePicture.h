#pragma once

#include <pango/pangocairo.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/LiveObjects.h"
#include "Platform/WindowSystem.h"

namespace Platform {

// How the buttons of a message look at the moment, by their numbers from the left.
struct MessageButtonStates {
  std::size_t mFocused = 0;
  std::optional<std::size_t> mHovered;
  std::optional<std::size_t> mPressed;

  bool operator==(const MessageButtonStates&) const = default;
};

// Lays out and draws what a message window shows: icon, text and a row of buttons.
class MessagePicture {
 public:
  // The picture becomes as large as its contents, but not larger than largest. Throws runtime_error.
  MessagePicture(PangoContext* context, const MessageRequest& request, const PixelSize& largest);

  PixelSize GetSize() const { return mSize; }
  // In the order of the buttons; never empty.
  const std::vector<MessageAnswer>& GetAnswers() const { return mAnswers; }
  std::optional<std::size_t> FindButton(const PixelPoint& point) const;
  // Good until the next call.
  PixelView Draw(const MessageButtonStates& states);

 private:
  struct Button {
    PixelRect mRect;
    GObjectHandle<PangoLayout> mLabel;
  };

  void FitText(const PixelSize& room);
  void MakeButtons(PangoContext* context, const MessageRequest& request);
  std::int32_t PlaceButtons(std::int32_t right, std::int32_t top);
  void DrawButton(const Button& button, std::size_t index, const MessageButtonStates& states) const;

  LiveObject mLive;
  MessageIcon mIcon;
  std::vector<MessageAnswer> mAnswers;
  std::vector<Button> mButtons;
  GObjectHandle<PangoLayout> mText;
  PixelPoint mTextCorner;
  PixelSize mTextSize;
  PixelSize mSize;
  CairoSurfaceHandle mSurface;
  CairoHandle mCairo;
};

}  // namespace Platform
