#include <SDL.h>

#include <string_view>

#include "Platform/Desktop/SdlKeys.h"
#include "Platform/Desktop/SdlWindow.h"
#include "Platform/Desktop/SdlWindowSystem.h"
#include "Platform/Desktop/Utf16.h"

// What the window system does with the events.
namespace Platform {

bool SdlWindowSystem::HandleEvent(const SDL_Event& event) {
  if (event.type == mUserEvent) return HandleUserEvent(event.user);
  switch (event.type) {
    case SDL_QUIT:
      mQuitRequested = true;
      return true;
    case SDL_WINDOWEVENT:
      return HandleWindowEvent(event.window);
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      HandleKey(event.key);
      return true;
    case SDL_TEXTINPUT:
      HandleText(event.text);
      return true;
    case SDL_MOUSEMOTION:
      HandleMotion(event.motion);
      return true;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
      HandleButton(event);
      return true;
    case SDL_MOUSEWHEEL:
      HandleWheel(event.wheel);
      return true;
    case SDL_DISPLAYEVENT:
      HandleDisplayChange();
      return true;
    case SDL_CLIPBOARDUPDATE:
      HandleClipboardChange();
      return false;
    case SDL_KEYMAPCHANGED:
      mInput.ReadLayout();
      return false;
    default:
      return false;
  }
}

bool SdlWindowSystem::HandleUserEvent(const SDL_UserEvent& event) {
  if (event.code != kCharacterCode) return false;
  SdlWindow* const window = FindInputWindow(event.windowID);
  const auto character = static_cast<char16_t>(reinterpret_cast<std::uintptr_t>(event.data1));
  if (window) window->GetListener().OnCharacter(character, mInput.GetModifiers());
  return true;
}

bool SdlWindowSystem::HandleWindowEvent(const SDL_WindowEvent& event) {
  SdlWindow* const window = FindWindow(event.windowID);
  if (!window) return false;
  WindowListener& listener = window->GetListener();
  switch (event.event) {
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_RESTORED:
      window->Expose();
      return false;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
    case SDL_WINDOWEVENT_FOCUS_LOST:
      HandleFocus(event);
      return true;
    case SDL_WINDOWEVENT_ENTER:
      window->SetMouseInside(true);
      return true;
    case SDL_WINDOWEVENT_LEAVE:
      HandleLeave(*window);
      return true;
    case SDL_WINDOWEVENT_MOVED:
      listener.OnMove();
      return true;
    case SDL_WINDOWEVENT_SIZE_CHANGED: {
      const PixelSize client{event.data1, event.data2};
      if (window->TakeSize(client)) listener.OnResize(client);
      return true;
    }
    case SDL_WINDOWEVENT_DISPLAY_CHANGED:
      listener.OnDisplayChange();
      return true;
    case SDL_WINDOWEVENT_CLOSE:
      if (FindInputWindow(event.windowID)) listener.OnCloseRequest();
      return true;
    default:
      return false;
  }
}

void SdlWindowSystem::HandleFocus(const SDL_WindowEvent& event) {
  const bool gained = event.event == SDL_WINDOWEVENT_FOCUS_GAINED;
  if (gained == (mFocus == event.windowID)) return;
  if (gained && mFocus != 0) {
    // The one that had the focus hears of it first, by an event of its own.
    SDL_Event later{};
    later.window = event;
    PutBack(later);
    PutBackWindowEvent(mFocus, SDL_WINDOWEVENT_FOCUS_LOST);
    return;
  }
  if (gained) mInput.ReadLights();
  mFocus = gained ? event.windowID : 0;
  SdlWindow* const window = FindWindow(event.windowID);
  if (window) window->GetListener().OnFocus(gained);
}

// With a button down the mouse still belongs to the window.
void SdlWindowSystem::HandleLeave(SdlWindow& window) {
  if (mInput.IsButtonDown() || !window.IsMouseInside()) return;
  window.SetMouseInside(false);
  if (FindInputWindow(window.GetId())) window.GetListener().OnMouseLeave();
}

void SdlWindowSystem::HandleKey(const SDL_KeyboardEvent& event) {
  const KeyEvent key = mInput.TakeKey(event);
  SdlWindow* const window = FindInputWindow(event.windowID);
  if (!window) return;
  const char16_t character = key.mPressed ? ToControlCharacter(key.mVirtualKey, key.mModifiers) : u'\0';
  if (character != 0) PutBackCharacter(event.windowID, character);
  window->GetListener().OnKey(key);
}

void SdlWindowSystem::HandleText(const SDL_TextInputEvent& event) {
  if (mInput.IsTextHeldBack()) return;
  const std::u16string units = ToUtf16(std::string_view(event.text));
  for (auto unit = units.rbegin(); unit != units.rend(); ++unit) PutBackCharacter(event.windowID, *unit);
}

void SdlWindowSystem::PutBackCharacter(std::uint32_t window, char16_t character) {
  SDL_Event event{};
  event.type = mUserEvent;
  event.user.windowID = window;
  event.user.code = kCharacterCode;
  event.user.data1 = reinterpret_cast<void*>(static_cast<std::uintptr_t>(character));
  PutBack(event);
}

void SdlWindowSystem::HandleMotion(const SDL_MouseMotionEvent& event) {
  SdlWindow* const window = FindInputWindow(event.windowID);
  if (!window) return;
  // SDL makes up a movement to the corner when the mouse leaves.
  const bool atCorner = event.x == 0 && event.y == 0 && !mInput.IsButtonDown();
  if (atCorner && (!window->IsMouseInside() || IsLeaveNext(event.windowID))) return;
  window->SetMouseInside(true);
  const PixelRect client = window->GetClientRect();
  mMousePoint = {client.mX + event.x, client.mY + event.y};
  window->GetListener().OnMouseMove(mInput.At(event.x, event.y));
}

bool SdlWindowSystem::IsLeaveNext(std::uint32_t window) const {
  SDL_Event next{};
  if (!mPending.empty())
    next = mPending.front();
  else if (SDL_PeepEvents(&next, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) != 1)
    return false;
  return next.type == SDL_WINDOWEVENT && next.window.event == SDL_WINDOWEVENT_LEAVE &&
         next.window.windowID == window;
}

void SdlWindowSystem::HandleButton(const SDL_Event& event) {
  const SDL_MouseButtonEvent& button = event.button;
  SdlWindow* const window = FindInputWindow(button.windowID);
  if (window && event.type == SDL_MOUSEBUTTONDOWN && !HasFocus(*window)) {
    // The press activates the window, which the display may tell only later.
    PutBack(event);
    PutBackWindowEvent(button.windowID, SDL_WINDOWEVENT_FOCUS_GAINED);
    return;
  }
  const MouseEvent mouse = mInput.TakeButton(button);
  if (!window) return;
  const PixelRect client = window->GetClientRect();
  mMousePoint = {client.mX + button.x, client.mY + button.y};
  if (event.type == SDL_MOUSEBUTTONUP && !mInput.IsButtonDown() && !window->Contains(button.x, button.y))
    PutBackWindowEvent(button.windowID, SDL_WINDOWEVENT_LEAVE);
  // Further buttons have no number here.
  if (mouse.mButton == 0) return;
  if (event.type == SDL_MOUSEBUTTONDOWN) {
    window->SetMouseInside(true);
    window->GetListener().OnMousePress(mouse);
  } else {
    window->GetListener().OnMouseRelease(mouse);
  }
}

void SdlWindowSystem::HandleWheel(const SDL_MouseWheelEvent& event) {
  if (event.preciseX != 0 && event.preciseY != 0) {
    SDL_Event sideways{};
    sideways.wheel = event;
    sideways.wheel.preciseY = 0;
    PutBack(sideways);
  }
  const WheelAxis axis = event.preciseY != 0 ? WheelAxis::kVertical : WheelAxis::kHorizontal;
  const std::int32_t delta = mInput.TakeWheel(axis, event);
  SdlWindow* const window = FindInputWindow(event.windowID);
  if (window && delta != 0) window->GetListener().OnWheel(axis, delta, mInput.At(event.mouseX, event.mouseY));
}

void SdlWindowSystem::HandleDisplayChange() {
  for (const SdlWindow* const window : mWindows)
    PutBackWindowEvent(window->GetId(), SDL_WINDOWEVENT_DISPLAY_CHANGED);
}

void SdlWindowSystem::HandleClipboardChange() {
  if (mClipboard.TakeLoss() && !mWindows.empty()) mWindows.front()->GetListener().OnClipboardLost();
}

}  // namespace Platform
