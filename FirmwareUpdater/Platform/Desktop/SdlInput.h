#pragma once

#include <SDL_events.h>

#include <array>
#include <cstdint>

#include "Platform/WindowSystem.h"

namespace Platform {

// Keys, buttons and wheel as of the events that were handled. SDL's own record runs ahead of them: after
// a busy moment it knows of the release before the press is handled.
class SdlInput {
 public:
  // Video must be started.
  SdlInput();

  // To be called once for each event of its kind, whether somebody hears it or not.
  KeyEvent TakeKey(const SDL_KeyboardEvent& event);
  MouseEvent TakeButton(const SDL_MouseButtonEvent& event);
  // Whole 120ths of a notch; what is left over goes to the next turn.
  std::int32_t TakeWheel(WheelAxis axis, const SDL_MouseWheelEvent& event);
  // Another program may have switched the lights.
  void ReadLights();
  void ReadLayout();

  MouseEvent At(std::int32_t x, std::int32_t y) const;
  bool IsButtonDown() const { return mButtons != 0; }
  std::uint32_t GetModifiers() const { return mModifiers; }
  // Of typed text: it is not for the program while this is held.
  bool IsTextHeldBack() const;
  bool IsDown(std::uint8_t virtualKey) const;
  bool IsToggled(std::uint8_t virtualKey) const;

 private:
  std::uint32_t mModifiers = 0;
  std::uint32_t mButtons = 0;  // SDL_BUTTON masks.
  std::uint16_t mLights = 0;   // SDL_Keymod.
  bool mRightAltIsAltGr = false;
  std::array<std::uint8_t, SDL_NUM_SCANCODES> mKeys{};  // What a key that is down counts as.
  std::array<double, 2> mWheelRests{};
};

}  // namespace Platform
