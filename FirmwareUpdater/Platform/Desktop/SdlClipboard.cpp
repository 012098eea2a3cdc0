#include "Platform/Desktop/SdlClipboard.h"

#include <SDL.h>

#include <memory>

#include "Platform/Desktop/CleanUtf8.h"
#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/SdlNative.h"

namespace Platform {

namespace {

// Every display takes as much; only above it the display has to be asked.
constexpr std::size_t kSmallText = 0x2000;

}  // namespace

// What would be too much for the display is not even tried: SDL calls that a success, and other programs
// would go on finding the text before.
bool SdlClipboard::SetText(const std::string& text) {
  const std::string valid = CleanUtf8(text.c_str());
  if ((valid.size() > kSmallText && valid.size() > MostBytesAtOnce()) || !Hand(valid)) {
    SetPrivate();
    return false;
  }
  mHolder = Holder::kOwnText;
  return true;
}

bool SdlClipboard::SetPrivate() {
  const bool taken = Hand({});
  mHolder = Holder::kOwnPrivate;
  return taken;
}

std::string SdlClipboard::GetText() const {
  return CleanUtf8(mText);
}

// Nobody has to be asked who has nothing to lose: another program may take its time to answer.
bool SdlClipboard::TakeLoss() {
  if (mHolder == Holder::kOther) return false;
  Look();
  return mHolder == Holder::kOther;
}

bool SdlClipboard::Hand(const std::string& text) {
  mText = text;
  return SDL_SetClipboardText(text.c_str()) == 0;
}

void SdlClipboard::Look() {
  const std::unique_ptr<char, Releaser<SDL_free>> found(SDL_GetClipboardText());
  if (!found || mText == found.get()) return;
  mText = found.get();
  mHolder = Holder::kOther;
  ++mSequence;
}

}  // namespace Platform
