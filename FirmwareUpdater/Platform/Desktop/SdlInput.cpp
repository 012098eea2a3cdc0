#include "Platform/Desktop/SdlInput.h"

#include <algorithm>
#include <cmath>

#include "Platform/Desktop/SdlKeys.h"
#include "Platform/Desktop/SdlNative.h"

namespace Platform {

namespace {

constexpr std::uint16_t kLights = KMOD_CAPS | KMOD_NUM | KMOD_SCROLL;
constexpr double kNotch = 120;

std::uint32_t ToButton(std::uint8_t button) {
  switch (button) {
    case SDL_BUTTON_LEFT:
      return MouseButton::kLeft;
    case SDL_BUTTON_MIDDLE:
      return MouseButton::kMiddle;
    case SDL_BUTTON_RIGHT:
      return MouseButton::kRight;
    default:
      return 0;
  }
}

}  // namespace

SdlInput::SdlInput() {
  ReadLights();
  ReadLayout();
}

KeyEvent SdlInput::TakeKey(const SDL_KeyboardEvent& event) {
  const bool pressed = event.type == SDL_KEYDOWN;
  const auto place = static_cast<std::size_t>(event.keysym.scancode);
  // A key goes up as what it went down as, whatever layout and NumLock say by then.
  std::uint8_t key = mKeys.at(place);
  if (key == 0) key = ToVirtualKey(event.keysym);
  mKeys.at(place) = pressed ? key : std::uint8_t{0};
  mLights = event.keysym.mod & kLights;
  mModifiers = ToModifiers(event.keysym.mod, mRightAltIsAltGr);
  return {key, pressed, pressed && event.repeat != 0, mModifiers};
}

MouseEvent SdlInput::TakeButton(const SDL_MouseButtonEvent& event) {
  const std::uint32_t mask = SDL_BUTTON(event.button);
  const bool pressed = event.type == SDL_MOUSEBUTTONDOWN;
  mButtons = pressed ? mButtons | mask : mButtons & ~mask;
  MouseEvent result = At(event.x, event.y);
  result.mButton = ToButton(event.button);
  result.mIsDoubleClick = pressed && event.clicks != 0 && event.clicks % 2 == 0;
  return result;
}

std::int32_t SdlInput::TakeWheel(WheelAxis axis, const SDL_MouseWheelEvent& event) {
  const bool vertical = axis == WheelAxis::kVertical;
  const double sign = (event.direction == SDL_MOUSEWHEEL_FLIPPED) == vertical ? -1 : 1;
  double& rest = mWheelRests.at(static_cast<std::size_t>(axis));
  rest += sign * kNotch * static_cast<double>(vertical ? event.preciseY : event.preciseX);
  const double whole = std::trunc(rest);
  rest -= whole;
  return static_cast<std::int32_t>(whole);
}

void SdlInput::ReadLights() {
  mLights = static_cast<std::uint16_t>(SDL_GetModState()) & kLights;
}

void SdlInput::ReadLayout() {
  mRightAltIsAltGr = HasAltGr();
}

MouseEvent SdlInput::At(std::int32_t x, std::int32_t y) const {
  MouseEvent event;
  event.mPoint = {x, y};
  event.mModifiers = mModifiers;
  return event;
}

bool SdlInput::IsTextHeldBack() const {
  return (mModifiers & (ModifierBit::kAlt | ModifierBit::kCtrl)) != 0;
}

bool SdlInput::IsDown(std::uint8_t virtualKey) const {
  return virtualKey != 0 && std::find(mKeys.begin(), mKeys.end(), virtualKey) != mKeys.end();
}

bool SdlInput::IsToggled(std::uint8_t virtualKey) const {
  constexpr std::uint8_t kCapsLock = 0x14;
  constexpr std::uint8_t kNumLock = 0x90;
  constexpr std::uint8_t kScrollLock = 0x91;
  switch (virtualKey) {
    case kCapsLock:
      return (mLights & KMOD_CAPS) != 0;
    case kNumLock:
      return (mLights & KMOD_NUM) != 0;
    case kScrollLock:
      return (mLights & KMOD_SCROLL) != 0;
    default:
      return false;
  }
}

}  // namespace Platform
