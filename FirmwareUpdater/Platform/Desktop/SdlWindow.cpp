#include "Platform/Desktop/SdlWindow.h"

#include <SDL.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Platform/Desktop/SdlNative.h"
#include "Platform/Desktop/SdlPixels.h"
#include "Platform/Desktop/SdlVideo.h"
#include "Platform/Desktop/SdlWindowSystem.h"

namespace Platform {

namespace {

// More than any screen has, and what window managers still take.
constexpr std::int32_t kNoLimit = 32767;

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + SDL_GetError());
}

std::int32_t LimitOf(std::int32_t side) {
  return side > 0 ? side : kNoLimit;
}

}  // namespace

SdlWindow::SdlWindow(SdlWindowSystem& system, const WindowDescription& description, WindowListener& listener)
    : mSystem(system), mListener(listener) {
  const PixelRect& client = description.mClient;
  const std::uint32_t flags =
      SDL_WINDOW_HIDDEN | (description.mIsResizable ? SDL_WINDOW_RESIZABLE : SDL_WindowFlags{});
  mWindow.reset(SDL_CreateWindow(description.mTitle.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                                 std::max(client.mWidth, 1), std::max(client.mHeight, 1), flags));
  if (!mWindow) Fail("cannot create a window");
  const PixelRect created = GetClientRect();
  mToldSize = {created.mWidth, created.mHeight};
  Place({client.mX, client.mY});
  const auto* const parent = dynamic_cast<const SdlWindow*>(description.mParent);
  if (parent && SDL_SetWindowModalFor(mWindow.get(), parent->mWindow.get()) != 0)
    Fail("cannot put a window above its parent");
  mSystem.AddWindow(*this);
}

SdlWindow::~SdlWindow() {
  mSystem.RemoveWindow(*this);
}

void SdlWindow::Present(const PixelView& pixels, std::span<const PixelRect> rects) {
  if (rects.empty()) return;
  SDL_Surface* const surface = SDL_GetWindowSurface(mWindow.get());
  if (!surface) Fail("cannot show a window's pixels");
  // SDL makes a surface anew after each change of size, without a word.
  if (surface->userdata != this) mIsExposed = true;
  surface->userdata = this;
  const SdlSurfaceHandle picture = ViewSurface(pixels, SDL_PIXELFORMAT_RGB888);
  std::vector<SDL_Rect> areas;
  const SDL_Rect whole{0, 0, surface->w, surface->h};
  for (const PixelRect& rect : rects) {
    SDL_Rect area{rect.mX, rect.mY, rect.mWidth, rect.mHeight};
    if (SDL_IntersectRect(&area, &whole, &area) != SDL_TRUE) continue;
    areas.push_back(area);
    SDL_Rect target = area;
    if (SDL_BlitSurface(picture.get(), &area, surface, &target) != 0) Fail("cannot copy a window's pixels");
  }
  if (areas.empty()) return;
  if (SDL_UpdateWindowSurfaceRects(mWindow.get(), areas.data(), static_cast<int>(areas.size())) != 0)
    Fail("cannot show a window's pixels");
}

void SdlWindow::SetTitle(const std::string& title) {
  SDL_SetWindowTitle(mWindow.get(), title.c_str());
}

void SdlWindow::SetIcon(const PixelView& pixels) {
  const SdlSurfaceHandle icon = StraightCopy(pixels);
  if (icon) SDL_SetWindowIcon(mWindow.get(), icon.get());
}

PixelRect SdlWindow::GetClientRect() const {
  PixelRect rect;
  SDL_GetWindowSize(mWindow.get(), &rect.mWidth, &rect.mHeight);
  if (IsOnX11()) SDL_GetWindowPosition(mWindow.get(), &rect.mX, &rect.mY);
  return rect;
}

PixelRect SdlWindow::GetFrameRect() const {
  PixelRect rect = GetClientRect();
  int top = 0;
  int left = 0;
  int bottom = 0;
  int right = 0;
  if (SDL_GetWindowBordersSize(mWindow.get(), &top, &left, &bottom, &right) != 0) return rect;
  return {rect.mX - left, rect.mY - top, rect.mWidth + left + right, rect.mHeight + top + bottom};
}

void SdlWindow::SetClientRect(const PixelRect& rect) {
  SDL_SetWindowSize(mWindow.get(), std::max(rect.mWidth, 1), std::max(rect.mHeight, 1));
  Place({rect.mX, rect.mY});
}

void SdlWindow::SetSizeLimits(const PixelSize& minimum, const PixelSize& maximum) {
  // SDL takes back the size that it knows of, with each limit: it must know what the user did.
  SDL_PumpEvents();
  // SDL refuses a minimum above the maximum of the moment.
  SDL_SetWindowMaximumSize(mWindow.get(), kNoLimit, kNoLimit);
  SDL_SetWindowMinimumSize(mWindow.get(), std::max(minimum.mWidth, 1), std::max(minimum.mHeight, 1));
  SDL_SetWindowMaximumSize(mWindow.get(), LimitOf(maximum.mWidth), LimitOf(maximum.mHeight));
}

void SdlWindow::Show(WindowShow command) {
  if (command == WindowShow::kHide) {
    SDL_HideWindow(mWindow.get());
    return;
  }
  SDL_ShowWindow(mWindow.get());
  if (mPlaceToTake) {
    // By this SDL learns how thick the frame is, which stands around the place so far.
    SDL_PumpEvents();
    Place(*std::exchange(mPlaceToTake, std::nullopt));
  }
  if (command == WindowShow::kMinimize) SDL_MinimizeWindow(mWindow.get());
  if (command == WindowShow::kMaximize) SDL_MaximizeWindow(mWindow.get());
  if (command == WindowShow::kRestore) SDL_RestoreWindow(mWindow.get());
}

bool SdlWindow::IsVisible() const {
  return HasFlag(SDL_WINDOW_SHOWN);
}

bool SdlWindow::IsMinimized() const {
  return HasFlag(SDL_WINDOW_MINIMIZED);
}

bool SdlWindow::IsMaximized() const {
  return HasFlag(SDL_WINDOW_MAXIMIZED);
}

void SdlWindow::Raise() {
  if (IsVisible()) SDL_RaiseWindow(mWindow.get());
}

void SdlWindow::SetTopMost(bool topMost) {
  SDL_SetWindowAlwaysOnTop(mWindow.get(), topMost ? SDL_TRUE : SDL_FALSE);
}

bool SdlWindow::HasFocus() const {
  return mSystem.HasFocus(*this);
}

void SdlWindow::TakeFocus() {
  if (!IsVisible() || IsMinimized()) return;
  if (SDL_SetWindowInputFocus(mWindow.get()) != 0) SDL_RaiseWindow(mWindow.get());
}

void SdlWindow::RequestPaint() {
  if (!mPaintRequested.exchange(true)) mSystem.WakeForPaint();
}

std::uintptr_t SdlWindow::GetNativeHandle() const {
  return NativeHandleOf(mWindow.get());
}

bool SdlWindow::Contains(std::int32_t x, std::int32_t y) const {
  const PixelRect client = GetClientRect();
  return x >= 0 && y >= 0 && x < client.mWidth && y < client.mHeight;
}

bool SdlWindow::TakeSize(const PixelSize& client) {
  if (client == mToldSize) return false;
  mToldSize = client;
  return true;
}

bool SdlWindow::TakeExposure() {
  const bool exposed = mIsExposed;
  mIsExposed = false;
  return exposed;
}

// A hidden window has no frame yet, and the frame would take the place.
void SdlWindow::Place(const PixelPoint& corner) {
  if (!IsOnX11()) return;
  const PixelRect present = GetClientRect();
  // SDL waits for the window manager each time.
  if (PixelPoint{present.mX, present.mY} != corner)
    SDL_SetWindowPosition(mWindow.get(), corner.mX, corner.mY);
  if (!IsVisible()) mPlaceToTake = corner;
}

bool SdlWindow::HasFlag(std::uint32_t flag) const {
  return (SDL_GetWindowFlags(mWindow.get()) & flag) != 0;
}

}  // namespace Platform
