#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "Platform/WindowSystem.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/ControlBase/WindowOSServices.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Renderer/RenderContextInfo.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/System/MessageLoop.h"
#include "TFFramework/Utilities/Graphics/Region.h"

namespace TF {

// A window on the desktop: turns what the display tells into calls of its root window, and does for that
// one what a window can do. Presses hold the mouse by themselves: the display tells of it until the last
// button is up, and of its leaving afterwards. It owns renderer and root window, and holds itself from Create
// to its end.
//
// Threads: main thread, InvalidateRect and InvalidateAll excepted.
class OSWindow : public virtual LRefCountedObject,
                 public IWindowOSServices,
                 private Platform::WindowListener {
 public:
  using ClosingHandler = std::function<void(OSWindow&)>;

  enum class Role {
    kMain,     // Its end is up to the application, which is asked by "NID_APP_EXIT_REQ".
    kFurther,  // Ends when its user or its controls want it.
  };

  // Both must outlive the window.
  OSWindow(Platform::WindowSystem& windowSystem, MessageLoop& messageLoop, Role role);
  ~OSWindow() override;

  // Hidden at first. kFailure when the display gives no window.
  TFRESULT Create(const Platform::WindowDescription& description);
  // Makes the window's renderer, of a type as of LRenderer::Create, and its root window, and adds that to
  // the application's.
  TFRESULT AttachRenderer(std::int32_t type);
  void AttachRenderer(const RCPtr<LRenderer>& renderer);
  // Destroys the controls, then the window. Nothing when it has gone already.
  void Close();
  // Called by Close while everything still stands.
  void SetClosingHandler(ClosingHandler handler) { mOnClosing = std::move(handler); }

  // Null before AttachRenderer and after the end.
  const RCPtr<LRootWindow>& GetRootWindow() const { return mRootWindow; }
  // Null before Create and after the end.
  Platform::Window* GetPlatformWindow() const { return mWindow.get(); }
  // The client area on the screen as it is, or was last, neither minimized nor maximized.
  RectT<std::int32_t> GetNormalRect() const;
  // The window that modal windows above this one disable.
  void SetParent(const RCPtr<OSWindow>& parent) { mParent = parent; }

  TFRESULT SetTitle(const String& title) override;
  TFRESULT InvalidateAll() override;
  TFRESULT InvalidateRect(const RectT<std::int32_t>& rect) override;
  TFRESULT GetClientRect(RectT<std::int32_t>& rect) override;
  TFRESULT ScreenToClient(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) override;
  TFRESULT ClientToScreen(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) override;
  TFRESULT SetClientRect(const RectT<std::int32_t>& rect) override;
  TFRESULT Show(std::int32_t command) override;
  TFRESULT RedrawNow() override;
  TFRESULT BringToTop() override;
  TFRESULT SetTopMost(bool topMost) override;
  TFRESULT EndWindow(std::int32_t result) override;
  std::int32_t RunModal() override;
  bool IsModal() override { return mIsModal; }
  bool IsActive() override { return HasFocus(); }
  bool HasFocus() override;
  TFRESULT TakeFocus() override;
  std::uintptr_t SetCursor(std::uintptr_t cursor) override;
  TFRESULT GetMousePosition(PointT<std::int32_t>& point) override;
  std::uint32_t GetMouseButtons() override { return mMouseButtons; }
  std::uintptr_t GetWindowHandle() override;
  TFRESULT SetTextInputTarget(bool on, const PointT<std::int32_t>& position) override;

 private:
  static constexpr std::int32_t kWheelNotch = 120;

  void OnMousePress(const Platform::MouseEvent& event) override;
  void OnMouseRelease(const Platform::MouseEvent& event) override;
  void OnMouseMove(const Platform::MouseEvent& event) override;
  void OnMouseLeave() override;
  void OnWheel(Platform::WheelAxis axis, std::int32_t delta, const Platform::MouseEvent& event) override;
  void OnKey(const Platform::KeyEvent& event) override;
  void OnCharacter(char16_t character, std::uint32_t modifiers) override;
  void OnFocus(bool hasFocus) override;
  void OnResize(const Platform::PixelSize& client) override;
  void OnMove() override;
  void OnExpose() override;
  void OnCloseRequest() override;
  void OnDisplayChange() override;
  void OnClipboardLost() override;
  void OnPaint() override;

  // The parent first, so that it is the one that becomes active.
  void EndModal(bool enablesParent);
  // The end of Close, whatever the controls have thrown.
  void LetGo(const RCPtr<LRootWindow>& root);
  void TakeSize(const SizeT<std::int32_t>& client);
  void StoreNormalRect();
  void StorePoint(const Platform::PixelPoint& point);
  void SendKey(const KeyCode& key);
  void PaintDirt();
  void PaintFrame(LRootWindow& root, const Region& dirty);
  void TellSizeLimits();
  void HoldSizeLimits(const Platform::PixelSize& client);

  Platform::WindowSystem& mWindowSystem;
  MessageLoop& mMessageLoop;
  const Role mRole;
  RCPtr<OSWindow> mSelf;  // From Create to Close.
  RCPtr<OSWindow> mParent;
  ClosingHandler mOnClosing;
  std::unique_ptr<Platform::Window> mWindow;
  RCPtr<LRenderer> mRenderer;
  RCPtr<LRenderContextInfo> mRenderContext;
  RCPtr<LRootWindow> mRootWindow;
  std::int32_t mMouseX = 0;
  std::int32_t mMouseY = 0;
  std::uint32_t mMouseButtons = 0;
  std::array<std::int32_t, 2> mWheelRemainder{};
  bool mIsModal = false;
  bool mIsPainting = false;
  bool mIsResizing = false;
  std::int32_t mModalResult = 0;
  bool mWasOffWorkArea = false;
  bool mCorrectedSize = false;  // The last size that broke the limits was corrected.
  std::atomic<bool> mRepaintsAll{false};
  Platform::PixelRect mNormalRect;
  Platform::PixelSize mSmallest;
  Platform::PixelSize mLargest;
};

}  // namespace TF
