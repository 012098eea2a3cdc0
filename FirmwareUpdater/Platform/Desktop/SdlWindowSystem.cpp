#include "Platform/Desktop/SdlWindowSystem.h"

#include <SDL.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "Platform/Desktop/MessageWindow.h"
#include "Platform/Desktop/SdlVideo.h"
#include "Platform/Desktop/SdlWindow.h"

namespace Platform {

namespace {

std::uint32_t StartAndRegister() {
  StartSdlVideo();
  const std::uint32_t type = SDL_RegisterEvents(1);
  if (type == std::numeric_limits<std::uint32_t>::max()) throw std::runtime_error("no event types left");
  return type;
}

constexpr std::uint32_t kFirstScreen = 0;
constexpr std::uint32_t kModalTick = 1000;  // ms; each event ends it sooner.

// Lets one window alone hear input.
class ModalTurn {
 public:
  ModalTurn(std::uint32_t& modal, std::uint32_t window)
      : mModal(modal), mBefore(std::exchange(modal, window)) {}
  ModalTurn(const ModalTurn&) = delete;
  ModalTurn& operator=(const ModalTurn&) = delete;
  ~ModalTurn() { mModal = mBefore; }

 private:
  std::uint32_t& mModal;
  const std::uint32_t mBefore;
};

}  // namespace

SdlWindowSystem::SdlWindowSystem(TextContextSource textContext)
    : mTextContext(std::move(textContext)), mUserEvent(StartAndRegister()) {
  SDL_StartTextInput();
}

std::unique_ptr<Window> SdlWindowSystem::CreateWindow(const WindowDescription& description,
                                                      WindowListener& listener) {
  return std::make_unique<SdlWindow>(*this, description, listener);
}

bool SdlWindowSystem::DispatchInput() {
  SDL_PumpEvents();
  bool any = mIsWoken.exchange(false);
  SDL_Event event;
  while (TakeEvent(event)) any = HandleEvent(event) || any;
  return any;
}

void SdlWindowSystem::DispatchPaints() {
  std::vector<std::uint32_t> windows;
  for (const SdlWindow* const window : mWindows)
    if (window->NeedsPaint()) windows.push_back(window->GetId());
  for (const std::uint32_t id : windows) {
    SdlWindow* window = FindWindow(id);
    if (window && window->TakeExposure()) window->GetListener().OnExpose();
    if (!Paints(id)) continue;
    window = FindWindow(id);
    if (window && window->TakePaintRequest()) window->GetListener().OnPaint();
  }
}

void SdlWindowSystem::Wait(std::uint32_t milliseconds) {
  if (mIsWoken || NeedsPaint() || !mPending.empty()) return;
  constexpr std::uint32_t kLongest = std::numeric_limits<int>::max();
  SDL_WaitEventTimeout(nullptr, milliseconds > kLongest ? -1 : static_cast<int>(milliseconds));
}

void SdlWindowSystem::Wake() {
  if (!mIsWoken.exchange(true)) PushEvent(kWakeCode);
}

void SdlWindowSystem::AnswerDisplay() {
  SDL_PumpEvents();
}

void SdlWindowSystem::RequestQuit() {
  mQuitRequested = true;
  PushEvent(kWakeCode);
}

CursorId SdlWindowSystem::MakeCursor(const PixelView& pixels, const PixelPoint& hotSpot) {
  return mCursors.MakeCursor(pixels, hotSpot);
}

void SdlWindowSystem::ShowCursor(bool show) {
  SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

bool SdlWindowSystem::SetCursorPosition(const PixelPoint& point) {
  return IsOnX11() && SDL_WarpMouseGlobal(point.mX, point.mY) == 0;
}

bool SdlWindowSystem::GetCursorPosition(PixelPoint& point) {
  if (!IsOnX11()) return false;
  // While a button is down SDL does not keep its record of the screen.
  if (mInput.IsButtonDown())
    point = mMousePoint;
  else
    SDL_GetGlobalMouseState(&point.mX, &point.mY);
  return true;
}

void SdlWindowSystem::GetKeyState(std::uint8_t virtualKey, bool& isDown, bool& isToggled) const {
  isDown = mInput.IsDown(virtualKey);
  isToggled = mInput.IsToggled(virtualKey);
}

PixelRect SdlWindowSystem::GetWorkArea() {
  SDL_Rect area{};
  if (SDL_GetDisplayUsableBounds(kFirstScreen, &area) != 0) SDL_GetDisplayBounds(kFirstScreen, &area);
  return {area.x, area.y, area.w, area.h};
}

MessageAnswer SdlWindowSystem::ShowMessage(const MessageRequest& request) {
  MessageWindow message(*this, mTextContext(), request, FindMessageParent());
  RunModal(
      static_cast<SdlWindow&>(message.GetWindow()).GetId(), [&] { return message.GetAnswer().has_value(); },
      [&] { message.Dismiss(); });
  return *message.GetAnswer();
}

void SdlWindowSystem::WaitWithoutInput(const std::function<bool()>& isDone,
                                       const std::function<void()>& onQuit) {
  RunModal(kNobody, isDone, onQuit);
}

void SdlWindowSystem::RunModal(std::uint32_t window, const std::function<bool()>& isDone,
                               const std::function<void()>& onQuit) {
  {
    const ModalTurn turn(mModal, window);
    while (!isDone()) {
      DispatchInput();
      if (mQuitRequested) onQuit();
      DispatchPaints();
      if (!isDone()) Wait(kModalTick);
    }
  }
  // Wake-ups that came meanwhile were not for this loop.
  Wake();
}

void SdlWindowSystem::AddWindow(SdlWindow& window) {
  mWindows.push_back(&window);
}

void SdlWindowSystem::RemoveWindow(const SdlWindow& window) {
  if (HasFocus(window)) mFocus = 0;
  std::erase(mWindows, &window);
}

bool SdlWindowSystem::HasFocus(const SdlWindow& window) const {
  return mFocus != 0 && window.GetId() == mFocus;
}

void SdlWindowSystem::PushEvent(std::int32_t code) {
  SDL_Event event{};
  event.type = mUserEvent;
  event.user.code = code;
  // Where the queue is full nobody has to be woken.
  SDL_PushEvent(&event);
}

bool SdlWindowSystem::TakeEvent(SDL_Event& event) {
  if (mPending.empty()) return SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1;
  event = mPending.front();
  mPending.pop_front();
  return true;
}

void SdlWindowSystem::PutBackWindowEvent(std::uint32_t window, std::uint8_t kind) {
  SDL_Event event{};
  event.type = SDL_WINDOWEVENT;
  event.window.windowID = window;
  event.window.event = kind;
  PutBack(event);
}

SdlWindow* SdlWindowSystem::FindWindow(std::uint32_t id) const {
  const auto found = std::find_if(mWindows.begin(), mWindows.end(),
                                  [&](const SdlWindow* window) { return window->GetId() == id; });
  return found == mWindows.end() ? nullptr : *found;
}

SdlWindow* SdlWindowSystem::FindInputWindow(std::uint32_t id) const {
  if (mModal != 0 && id != mModal) return nullptr;
  SdlWindow* const window = FindWindow(id);
  return window && window->IsEnabled() ? window : nullptr;
}

SdlWindow* SdlWindowSystem::FindMessageParent() const {
  if (SdlWindow* const focused = FindWindow(mFocus)) return focused;
  const auto visible = std::find_if(mWindows.begin(), mWindows.end(),
                                    [](const SdlWindow* window) { return window->IsVisible(); });
  return visible == mWindows.end() ? nullptr : *visible;
}

bool SdlWindowSystem::NeedsPaint() const {
  return std::any_of(mWindows.begin(), mWindows.end(), [&](const SdlWindow* window) {
    return Paints(window->GetId()) ? window->NeedsPaint() : window->IsExposed();
  });
}

// What is drawn anew would hide a fault that a message tells of behind the next one.
bool SdlWindowSystem::Paints(std::uint32_t window) const {
  return mModal == 0 || mModal == kNobody || mModal == window;
}

}  // namespace Platform
