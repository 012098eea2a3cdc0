#pragma once

#include <array>
#include <cstdint>

#include "TFFramework/ControlBase/ControlParams.h"
#include "TFFramework/ControlBase/ControlWindow.h"
#include "TFFramework/ControlBase/HotKeys.h"
#include "TFFramework/ControlBase/WindowOSServices.h"
#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/Notification/NotificationQueue.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Graphics/Region.h"
#include "TFFramework/Utilities/Storage/RCPtrQueue.h"

namespace TF {

class LControl;
class LGlobalHotKeyManager;
class LRenderer;

// Stands between one window of the system and one tree of controls: knows which control has the focus,
// which the mouse is over, which has captured it and whose tool tip shows; takes events to the right
// control, collects what must be painted, and paints it. Controls register on it for "NID_IDLE".
//
// Coordinates are pixels of the client area. A control may be destroyed by whatever it is told, and a
// window by whatever its controls do.
//
// Threads: main thread; InvalidateRect, TakeDirtyRegion and QueueKey on any, as long as the window exists.
class LRootWindow : public LNotificationDistributor, public LNotificationQueue, public IControlWindow {
 public:
  // Both may be null. The services must outlive this object, or Detach.
  LRootWindow(const RCPtr<LRenderer>& renderer, IWindowOSServices* services);
  ~LRootWindow() override;

  TFRESULT ReleaseInternalReferences() override;
  // The window of the system goes: events and paints do nothing from now on.
  void Detach();

  const RCPtr<LRenderer>& GetRenderer() const { return mRenderer; }
  IWindowOSServices* GetServices() const { return mOSServices; }

  // The tree: RootWindow.cpp.

  // Destroys the present tree and takes this one, which fills the client area whatever its skin says and
  // gets the focus. A null control leaves none; kNothingDone for the present one.
  TFRESULT SetTopControl(const RCPtr<LControl>& control);
  // One of the current skin. An empty name leaves none; kFailure when there is no such control.
  TFRESULT SetTopControlByName(const String& name);
  const RCPtr<LControl>& GetTopControl() const { return mTopControl; }
  // The frame on the screen that the skin gave the top control when it came; empty without one.
  const RectT<std::int32_t>& GetSkinFrame() const { return mSkinFrame; }
  // What a client area of this size becomes by the limits of the top control; true when it changes.
  bool ConstrainClientSize(SizeT<std::int32_t>& size);
  // Moves and sizes the window's client area on the screen.
  void SetClientRect(const RectT<std::int32_t>& rect);
  RectT<std::int32_t> GetClientRect() const;
  // The top control fills the client area again, after its skin has changed.
  void RefreshFrame();
  // Puts the client area where the top control's frame lies.
  void RestoreFrame();

  // The window is to end with this result when the running event is over. kFailure without one.
  TFRESULT RequestEnd(std::int32_t result);
  // The user wants the window closed.
  void ProcessClose();
  // Delivers the keys that wait, then what waits in the queue; first: with the idle notification. True
  // when something remains.
  bool ProcessKeyQueue(bool first);
  bool IsActive() const { return mOSServices && mOSServices->IsActive(); }

  // Input: RootWindowInput.cpp.

  static constexpr std::uint32_t kPress = 0;
  static constexpr std::uint32_t kRelease = 1;
  static constexpr std::uint32_t kDoubleClickPress = 2;

  // Modifiers as in Modifier; source: which mouse it is, 0 for the one of the display.
  void ProcessMouseButton(std::uint32_t kind, std::uint32_t button, std::uint32_t modifiers,
                          const PointT<std::int32_t>& point, std::uint32_t source);
  void ProcessMouseMove(const PointT<std::int32_t>& point, std::uint32_t modifiers, std::uint32_t source);
  // direction as in LMouseWheelParam.
  void ProcessMouseWheel(const PointT<std::int32_t>& point, std::uint32_t modifiers, std::uint32_t direction);
  void ProcessKey(const RCPtr<LKeyParam>& param);
  void QueueKey(const RCPtr<LKeyParam>& param) { mKeyQueue.Enqueue(param); }
  void ProcessActivate();
  void ProcessFocusLost();
  void ProcessCaptureLost();
  void ProcessSize(const SizeT<std::int32_t>& size);
  void SetHoverControl(const RCPtr<LControl>& control);
  // The buttons that a source below 10 holds, a mask as in LMouseButtonParam.
  std::uint32_t GetButtonsOf(std::uint32_t source) const { return mButtonState.at(source); }

  // What controls ask for.
  void SetTitle(const String& title) override;
  void SetClientSize(const SizeT<std::int32_t>& size) override;
  bool GetLayoutDesktop(LayoutDesktop& desktop) override;
  std::uintptr_t SetCursor(std::uintptr_t cursor) override;
  void ShowNamedCursor(const String& name) override;
  void ForgetControl(LControl& control) override;
  void RepeatHitTest() override;
  void HitTest(RCPtr<LControl>& control, const PointT<std::int32_t>& point, PointT<std::int32_t>& localPoint,
               bool updateHover) override;
  RCPtr<LControl> GetHoverControl() override;
  bool GetMousePosition(PointT<std::int32_t>& point) override;
  std::uint32_t GetMouseButtons() override;
  RCPtr<LControl> GetFocusControl() override;
  void SetFocusControl(const RCPtr<LControl>& control) override;
  void ClearFocusControl() override;
  RCPtr<LControl> GetPreviousFocusControl() override;
  TFRESULT SetCaptureControl(const RCPtr<LControl>& control) override;
  void ClearCaptureControl() override;
  void ProcessUnhandledKey(const RCPtr<LKeyParam>& param) override;
  void ProcessTab(const RCPtr<LKeyParam>& param) override;

  // Painting: RootWindowPaint.cpp.

  void InvalidateRect(const RectT<std::int32_t>& rect) override;
  // The whole client area, as large as it is when it is painted.
  void InvalidateAll();
  // What must be painted, which is nothing then.
  void TakeDirtyRegion(Region& region);
  // Paints a part of the client area, in a frame of the renderer that has begun.
  void Paint(const Region& region);

 private:
  static constexpr std::uint32_t kKnownSources = 10;

  // Without destroying it.
  void ForgetTree();
  void TakeTree(const RCPtr<LControl>& control);
  RectT<std::int32_t> FindSkinFrame();
  void FocusTree();
  void HideToolTip();
  void ShowToolTipOf(const RCPtr<LControl>& owner);
  void PressButton(std::uint32_t kind, std::uint32_t button, std::uint32_t modifiers,
                   const PointT<std::int32_t>& point);
  void ReleaseButton(std::uint32_t button, std::uint32_t modifiers, const PointT<std::int32_t>& point);
  PointT<std::int32_t> LocalPoint(const LControl& control, const PointT<std::int32_t>& point) const;
  void FocusNextWindow(bool forward);
  void RenderControlTree(const RCPtr<LControl>& control, const Region& region, bool pass);
  void RenderFloating(const RCPtr<LControl>& control, const Region& region);

  const RCPtr<LRenderer> mRenderer;
  IWindowOSServices* mOSServices;
  mutable Mutex mRegionMutex;  // Guards the next three.
  RectT<std::int32_t> mBounds{0, 0, 1024, 768};
  Region mDirtyRegion;
  bool mInvalidateAll = false;
  RCPtr<LControl> mTopControl;
  RectT<std::int32_t> mSkinFrame;
  std::uint32_t mDoubleClickButtons = 0;  // Whose last press was a double click.
  RCPtr<LGlobalHotKeyManager> mHotKeys;
  HotKeyMap mTopHotKeys;  // Those that the top control has added.
  RCPtr<LControl> mFocusControl;
  RCPtr<LControl> mSavedFocusControl;
  RCPtr<LControl> mHoverControl;
  RCPtr<LControl> mToolTipControl;
  RCPtr<LControl> mCaptureControl;
  bool mEndRequested = false;
  std::int32_t mEndResult = 0;
  Mutex mKeyMutex;
  RCPtrQueue<LKeyParam, 256, Mutex> mKeyQueue{256, &mKeyMutex};
  std::array<std::uint32_t, kKnownSources> mButtonState{};
};

}  // namespace TF
