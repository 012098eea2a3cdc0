#pragma once

#include <SDL_video.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "Platform/Desktop/Handles.h"
#include "Platform/Window.h"

namespace Platform {

class SdlWindowSystem;

// A window of SDL with what the window system keeps about it.
class SdlWindow : public Window {
 public:
  // Throws runtime_error.
  SdlWindow(SdlWindowSystem& system, const WindowDescription& description, WindowListener& listener);
  ~SdlWindow() override;

  void Present(const PixelView& pixels, std::span<const PixelRect> rects) override;
  void SetTitle(const std::string& title) override;
  void SetIcon(const PixelView& pixels) override;
  PixelRect GetClientRect() const override;
  PixelRect GetFrameRect() const override;
  void SetClientRect(const PixelRect& rect) override;
  void SetSizeLimits(const PixelSize& minimum, const PixelSize& maximum) override;
  void Show(WindowShow command) override;
  bool IsVisible() const override;
  bool IsMinimized() const override;
  bool IsMaximized() const override;
  void Raise() override;
  void SetTopMost(bool topMost) override;
  bool HasFocus() const override;
  void TakeFocus() override;
  void SetEnabled(bool enabled) override { mIsEnabled = enabled; }
  bool IsEnabled() const override { return mIsEnabled; }
  void RequestPaint() override;
  std::uintptr_t GetNativeHandle() const override;

  WindowListener& GetListener() const { return mListener; }
  std::uint32_t GetId() const { return SDL_GetWindowID(mWindow.get()); }
  bool Contains(std::int32_t x, std::int32_t y) const;

  // True when the listener has not heard of this size.
  bool TakeSize(const PixelSize& client);
  void SetMouseInside(bool inside) { mIsMouseInside = inside; }
  bool IsMouseInside() const { return mIsMouseInside; }

  void Expose() { mIsExposed = true; }
  bool NeedsPaint() const { return mIsExposed || mPaintRequested; }
  bool IsExposed() const { return mIsExposed; }
  bool TakeExposure();
  bool TakePaintRequest() { return mPaintRequested.exchange(false); }

 private:
  bool HasFlag(std::uint32_t flag) const;
  void Place(const PixelPoint& corner);

  SdlWindowSystem& mSystem;
  WindowListener& mListener;
  std::unique_ptr<SDL_Window, Releaser<SDL_DestroyWindow>> mWindow;
  PixelSize mToldSize;
  std::optional<PixelPoint> mPlaceToTake;  // When the window shows itself.
  bool mIsEnabled = true;
  bool mIsMouseInside = false;
  bool mIsExposed = false;
  std::atomic<bool> mPaintRequested{false};
};

}  // namespace Platform
