#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <map>
#include <vector>

#include "TFFramework/ControlBase/ChildControlList.h"
#include "TFFramework/ControlBase/ControlCondition.h"
#include "TFFramework/ControlBase/ControlDescriptor.h"
#include "TFFramework/ControlBase/ControlDrag.h"
#include "TFFramework/ControlBase/ControlParams.h"
#include "TFFramework/ControlBase/HotKeys.h"
#include "TFFramework/ControlBase/LayoutArithmetic.h"
#include "TFFramework/ControlBase/LayoutDesktop.h"
#include "TFFramework/ControlBase/Look.h"
#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ControlBase/MenuItemUpdater.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/ControlBase/UITarget.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/Notification/NotificationHandler.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/Region.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

class LRenderer;

// Base of everything on the screen: a node of a tree of controls, with a name, a layout, looks that
// draw it, a value, a text, conditions and children. It tells by notifications what happens to it;
// classes change what it does by its virtual operations.
//
// Coordinates are pixels. A control's own begin at the corner of its frame; its children stand in its
// client area, which its active look gives and its scroll offset moves.
//
// A tree holds itself together: who takes a control out of use calls Destroy.
//
// Threads: main thread.
class LControl : public virtual LNotificationClient,
                 public virtual LNotificationDistributor,
                 public virtual LTaggableObject,
                 public virtual UITarget {
 public:
  using ChildControlList = TF::ChildControlList;
  using CursorHandle = std::uintptr_t;

  // Coordinates beyond it are as good as infinite.
  static constexpr double kInfinite = kLayoutInfinite;
  // The effective Z order of a control that no floating control lends its own.
  static constexpr std::int32_t kNoZ = INT32_MIN;

  static constexpr std::int32_t kLinearScale = 0;
  static constexpr std::int32_t kLogarithmicScale = 1;

  // The parent may be null. A new control is empty, and not among the parent's children, until Create.
  LControl(const RCPtr<LControl>& parent, const String& name);
  ~LControl() override;

  // Life: Control.cpp.

  // Puts the control below its parent and builds it and everything below it from its descriptor, once,
  // by the operations of the next section in their order. The first one that fails ends it with its
  // result, kFailure for a name that the parent has already; the control is destroyed then, as it is
  // when one throws.
  TFRESULT Create(const RCPtr<LControlDescriptor>& descriptor);
  // Takes the control out of use: it ends what runs in it, destroys what is below it and leaves its
  // parent or window. It goes with its last pointer.
  virtual void Destroy();
  // Moves the control below another parent, or below none. kNothingDone for the present one, kFailure
  // when that has the name already: the control has no parent then.
  TFRESULT SetParent(const RCPtr<LControl>& parent);
  // For the top control of a window: kFailure for a control that has a parent.
  TFRESULT SetRootWindow(const RCPtr<LRootWindow>& window);
  // The control has come to a window.
  virtual void ProcessRootWindowAquired();
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override;
  TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) override;

  const String& GetName() const { return mName; }
  const RCPtr<LControl>& GetParent() const { return mParent; }
  const RCPtr<LControlDescriptor>& GetDescriptor() const { return mDescriptor; }
  const RCPtr<LLayoutDescriptor>& GetLayout() const { return mLayout; }
  bool IsCreated() const { return mCreated; }
  // The window of the topmost control above this one; null when there is none.
  RCPtr<LRootWindow> GetRootWindow() const;
  virtual RCPtr<LStringTable> GetStringSection() { return mStringSection; }

  // Descriptor: ControlDescription.cpp.

  // Takes over what a skin says: layout, looks, font and text. On a control that was created already
  // its children take theirs over, too; those of the same name stay. kInvalidArgument for null.
  virtual TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor);
  // Makes the controls below this one anew, but for those that something else creates later.
  virtual TFRESULT CreateChildren(const RCPtr<LControlDescriptor>& descriptor);
  // The children exist; the parent's further children do not. Runs again when the skin has changed.
  virtual TFRESULT Initialize();
  virtual void ApplyCreateParameters();
  // Makes an existing control a child of this one. kFailure for null arguments.
  virtual TFRESULT AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor);
  virtual TFRESULT OnDescriptorApplied() { return kSuccess; }
  // 1: a change of the skin puts the window to the frame of this, its top control.
  virtual std::int32_t RestoresWindowFrame() { return 0; }

  // Children: Control.cpp.

  std::int32_t GetChildCount() const { return mChildren.GetCount(); }
  const RCPtr<LControl>& GetChild(std::int32_t index, ChildOrder order = ChildOrder::kLayout) const {
    return mChildren.GetAt(index, order);
  }
  // Null when no child has the name.
  RCPtr<LControl> FindChild(const String& name) const { return mChildren.Find(name); }
  ChildControlList& GetChildren() { return mChildren; }
  const ChildControlList& GetChildren() const { return mChildren; }
  virtual void OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index);
  // Hides a child and destroys it at the next idle pass. kInvalidArgument for what is no child.
  TFRESULT DestroyChildLater(const RCPtr<LControl>& child);
  // Destroys the children that wait for it.
  void DestroyDoomedChildren();
  bool IsDoomed() const { return mIsDoomed; }

  // kNothingDone when nothing changes.
  virtual TFRESULT SetClipToParent(bool clip);
  bool GetClipToParent() const { return mLayout->ClipToParent; }
  // The highest Z order that this control or one above it has as a floating one; kNoZ without.
  std::int32_t GetEffectiveZ() const;
  // How many controls below this one float.
  std::int32_t GetUnclippedCount() const { return mUnclippedCount; }

  // Values and texts: ControlValue.cpp.

  // Returns the value that is held now, from 0 to 1.
  virtual double SetValue(double normalized);
  virtual void OnValueChange() {}
  // kInvalidArgument for a scale that is not known or does not fit the range.
  virtual TFRESULT SetValueRange(double min, double max, std::int32_t scale);
  double GetValue() const { return mValue; }
  double GetScaledValue() const { return ScaledValueOf(mValue); }
  double SetScaledValue(double value);

  // kNothingDone for the present text.
  virtual TFRESULT SetText(const String& text);
  const String& GetText() const { return mText; }
  // True when the text changed.
  bool ChangeText(const String& text, bool relayout);
  void SetToolTipText(const String& text) { mToolTipText = text; }
  virtual String GetToolTipText() { return mToolTipText; }
  // The control whose tip shows over this one when it has none; null for none.
  RCPtr<LControl> GetToolTipParent() const { return mUseParentToolTip ? mParent : RCPtr<LControl>(); }
  void SetUseParentToolTip(bool use) { mUseParentToolTip = use; }

  // What is empty, 0 or -1 comes from the parent or the application. size in points, or a factor.
  TFRESULT SetFont(const String& name, float size, std::int32_t style, bool relative);
  const RCPtr<LFont>& GetFont() const { return mFont; }
  virtual void OnFontChange() {}
  virtual void OnParentFontChange();

  virtual bool IsEditTarget() { return false; }
  virtual RCPtr<LControl> FindEditTarget();
  virtual bool CanPerformEdit(std::int32_t operation);
  virtual TFRESULT PerformEdit(std::int32_t operation);

  // Looks: ControlLooks.cpp.

  virtual void SetLookCount(std::int32_t count);
  std::int32_t GetLookCount() const { return mLooks.GetCount(); }
  // kInvalidArgument for a slot that is not there.
  TFRESULT SetLook(const RCPtr<LLook>& look, std::int32_t slot);
  TFRESULT SetLookAlpha(std::int32_t slot, float alpha, bool exclusive);
  // Shows this look; exclusive: it alone.
  virtual TFRESULT SetActiveLook(std::int32_t slot, bool exclusive = true);
  // The look of a slot, else the first that is shown, else the first; null without any.
  RCPtr<LLook> GetLook(std::int32_t slot) const;
  float GetLookAlpha(std::int32_t slot) const { return mLookAlpha[static_cast<std::size_t>(slot)]; }
  // From the corner of the frame.
  RectT<double> GetClientRect(std::int32_t slot = kActiveLook) const;
  virtual RectT<double> GetClientView();
  void SetOpacity(float opacity);
  float GetOpacity() const { return mOpacity; }

  // A slot that no control has: the look that is shown.
  static constexpr std::int32_t kActiveLook = -1;

  // Conditions: ControlConditions.cpp.

  virtual void SetVisible(bool visible);
  virtual void SetEnabled(bool enabled);
  // Recursive: with everything above it.
  bool IsShown(bool recursive) const;
  bool IsEnabled(bool recursive) const;
  void UpdateConditions();
  const RCPtr<LConditionsParam>& GetConditions() const { return mConditions; }
  virtual void OnConditionChange(const RCPtr<LConditionsParam>& conditions);
  void SetCursor(CursorHandle cursor);

  // Layout: ControlLayout.cpp, ControlBounds.cpp.

  // Computes the frame anew. kSuccess when it changed, kNothingDone when it did not, kFailure when
  // there is nothing to refer to.
  TFRESULT Relayout();
  // Each stores what it is given and returns what Relayout does.
  TFRESULT SetLayout(const LayoutPosition& xPosition, const LayoutSize& xSize,
                     const LayoutPosition& yPosition, const LayoutSize& ySize);
  TFRESULT SetAxisLayout(LayoutAxis axis, const LayoutPosition& position, const LayoutSize& size);
  TFRESULT GetAxisLayout(LayoutAxis axis, LayoutPosition& position, LayoutSize& size) const;
  // The size stays.
  TFRESULT SetAxisPosition(LayoutAxis axis, const LayoutPosition& position);
  LayoutPosition GetAxisPosition(LayoutAxis axis) const;
  TFRESULT SetAxisLimits(LayoutAxis axis, const LayoutLimit& minimum, const LayoutLimit& maximum);
  TFRESULT GetAxisLimits(LayoutAxis axis, LayoutLimit& minimum, LayoutLimit& maximum) const;
  // A sibling was renamed. kNothingDone when the layout does not name it.
  TFRESULT RenameReferences(const String& oldName, const String& newName);
  // The size that the minimum alone gives.
  virtual SizeT<double> GetAutoSize();
  // What the maxima give that are no references; 0 for none.
  virtual SizeT<double> GetFixedMaxSize();
  // The frame that the layout gives on a desktop, for a control without a parent.
  RectT<double> ComputeTopFrame(const LayoutDesktop& desktop);
  // What a proposed size becomes by the minima and maxima, with limits that refer to the work area.
  SizeT<double> ConstrainSize(const SizeT<double>& proposed);

  // In the scrolled client coordinates of the parent.
  const RectT<double>& GetBounds() const { return mBounds; }
  // The corner of the frame in the coordinates of the parent's frame.
  PointT<double> GetPositionInParent() const;
  // The corner of the frame in the client coordinates of the window.
  PointT<double> GetWindowPosition() const;
  const PointT<double>& GetScrollOffset() const { return mScrollOffset; }
  bool IsDocked(LayoutAxis axis) const { return mLayout->Axis(axis).mPosition.mIsDocked; }
  bool IsDockedOnBothAxes() const { return IsDocked(LayoutAxis::kX) && IsDocked(LayoutAxis::kY); }

  virtual void BeginBoundsChange();
  virtual void EndBoundsChange();
  virtual void OnChildBoundsChange(const RCPtr<LControl>& child);
  virtual void OnChildMoved(const RCPtr<LControl>& child);
  virtual void OnParentScroll(const PointT<double>& from, const PointT<double>& to);

 protected:
  // What a control without a parent refers to; false without a window. By default the control's own
  // window, or, while it is being created, the application's in front.
  virtual bool FindDesktop(LayoutDesktop& desktop);

 public:
  // Drawing: ControlRender.cpp, ControlInvalidate.cpp.

  // Draws the control and what is below it, as far as it lies in dirty, a region of the renderer's
  // target. Floating controls below it are added to deferred. pass: the control is itself a floating
  // one whose turn has come; kInvalidArgument when that does not fit it.
  virtual TFRESULT Render(const RCPtr<LRenderer>& renderer, const Region& dirty,
                          RCPtrArray<LControl>& deferred, bool pass);
  virtual TFRESULT OnRenderBackground(const RCPtr<LRenderer>& renderer);
  virtual TFRESULT OnRenderForeground(const RCPtr<LRenderer>& renderer);
  // Has a part of the frame drawn anew; clip: no more of it than the controls above show.
  virtual void Invalidate(const RectT<double>& rect, bool clip);
  // The same, for what a control below shows: rect from the corner of this control's frame. clip: no more
  // of it than clipRect, from the same corner.
  virtual void InvalidateUp(const RectT<double>& rect, bool clip, const RectT<double>& clipRect);
  void InvalidateFrame();
  // The frames of all floating controls below this one.
  void InvalidateUnclipped();
  virtual void OnScrollOffsetChange(const PointT<double>& from, const PointT<double>& to);

  // Hit testing: ControlHitTest.cpp.

  // The control at a point of the parent's client content. Without testSelf only floating controls count.
  // bestZ: the best effective Z so far.
  virtual void HitTest(RCPtr<LControl>& result, const PointT<double>& point, bool testSelf,
                       PointT<double>& localPoint, std::int32_t& bestZ);
  // Both count from the corner of the frame.
  virtual bool IsTransparentAt(const PointT<double>& point);
  virtual std::uint32_t GetColorAtPoint(const PointT<double>& point, std::int32_t slot);
  // The point counts in the coordinates of GetBounds.
  virtual bool ContainsPoint(const PointT<double>& point);
  void SetHitExcluded(bool excluded) { mHitExcluded = excluded; }
  bool IsHitExcluded() const { return mHitExcluded; }

  // Focus: ControlFocus.cpp.

  // kFailure when no control can have it.
  virtual TFRESULT SetFocus(bool forward);
  virtual void SetNotFocusable(bool notFocusable);
  virtual bool HasFocusableChild();
  bool CanTakeFocus();
  bool HasFocus() const { return mHasFocus; }
  bool ContainsFocus() const { return mContainsFocus; }
  bool IsNotFocusable() const { return mNotFocusable; }
  // Takes the focus whether or not what is above it may.
  void SetFocusRoot(bool focusRoot) { mFocusRoot = focusRoot; }
  bool CanLoseFocus() override;
  void LoseFocus() override;
  // Null when child is no child, or when there is none.
  virtual RCPtr<LControl> GetNextInTabOrder(const RCPtr<LControl>& child, bool backward);

  // Mouse: ControlInput.cpp, ControlClicks.cpp, ControlWheel.cpp.

  void MouseEnter() override;
  TFRESULT MouseMove(const RCPtr<LPointWithModifiersParam>& param) override;
  TFRESULT MouseDown(const RCPtr<LMouseButtonParam>& param) override;
  TFRESULT MouseUp(const RCPtr<LMouseButtonParam>& param) override;
  void MouseLeave() override;
  TFRESULT CaptureMouse(std::uint32_t button, std::int32_t x, std::int32_t y) override;
  TFRESULT ReleaseMouse() override;
  TFRESULT MouseWheel(const RCPtr<LMouseWheelParam>& param) override;
  void ParentResized(const SizeT<double>& size) override;
  bool HasCapture() const { return mHasCapture; }
  virtual void OnChildMouseDown(const RCPtr<LControl>& child);
  virtual void OnLeftMouseDown(const RCPtr<LMouseButtonParam>& param);
  virtual void OnLeftMouseUp(const RCPtr<LMouseButtonParam>& param);
  virtual void OnMiddleMouseDown(const RCPtr<LMouseButtonParam>& param);
  virtual void OnMiddleMouseUp(const RCPtr<LMouseButtonParam>& param);
  virtual void OnRightMouseDown(const RCPtr<LMouseButtonParam>& param);
  virtual void OnRightMouseUp(const RCPtr<LMouseButtonParam>& param);
  virtual void OnMouseMove(const RCPtr<LPointWithModifiersParam>& param);
  virtual TFRESULT OnVerticalWheel(const RCPtr<LMouseWheelParam>& param);
  virtual TFRESULT OnHorizontalWheel(const RCPtr<LMouseWheelParam>& param);
  virtual void OnClick(const RCPtr<LMouseButtonParam>& param);
  virtual void OnLeftClick(const RCPtr<LMouseButtonParam>& param);
  virtual void OnMiddleClick(const RCPtr<LMouseButtonParam>& param);
  virtual void OnRightClick(const RCPtr<LMouseButtonParam>& param);
  virtual void OnLeftClicked(const RCPtr<LMouseButtonParam>& param);
  virtual void OnMiddleClicked(const RCPtr<LMouseButtonParam>& param);
  virtual void OnRightClicked(const RCPtr<LMouseButtonParam>& param);
  virtual void ShowToolTip(bool show);
  virtual RCPtr<LMenuDescriptor> GetContextMenu() { return mContextMenu; }
  // All that its texts give, by their numbers; null for a number without one. kNothingDone without any.
  TFRESULT GetContextMenus(std::vector<RCPtr<LMenuDescriptor>>& menus);
  // Asks this control how items of menus are to be shown.
  const RCPtr<LMenuItemUpdater>& GetMenuItemUpdater();
  virtual void OnContextMenuOpening(const RCPtr<LControl>& popup);
  virtual TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index,
                                  const String& identifier, LMenuItemState& state);

  // Keys: ControlKeys.cpp.

  void KeyDown(const RCPtr<LKeyParam>& param) override;
  virtual TFRESULT OnKeyDown(const RCPtr<LKeyParam>& param);
  virtual TFRESULT OnSiblingKey(const RCPtr<LKeyParam>& param);
  // Those that work while the focus is on this control or a sibling.
  const HotKeyMap& GetHotKeys() const { return mHotKeys; }
  virtual void OnChildKeyDown(const RCPtr<LKeyParam>& param);
  virtual void OnChildTabKey(const RCPtr<LKeyParam>& param);
  virtual void CollectKeyClients(const RCPtr<LKeyParam>& param, RCPtrArray<LNotificationReceiver>& clients,
                                 std::vector<std::int32_t>& indices);

  // Dragging, scrolling, idle motion: ControlDrag.cpp, ControlCarry.cpp, ControlMotion.cpp.

  virtual TFRESULT SetDragMode(DragMode mode, std::uint32_t edges);
  // Pixels that the mouse moves with a button down before it drags; 0 drags at once.
  void SetDragThreshold(std::int32_t pixels) { mDragThreshold = pixels; }
  virtual void OnDragBegin();
  virtual void OnDragRebase();
  virtual void OnDragMove(const RCPtr<LPointWithModifiersParam>& param);
  virtual void OnDragMoved(const RCPtr<LPointWithModifiersParam>& param);
  virtual void OnDragEnd();
  // From this control upward the first one that takes the other; point in the window's client area.
  virtual void FindDropTarget(RCPtr<LControl>& result, const RCPtr<LControl>& control,
                              const PointT<double>& point);
  virtual bool IsDropTarget(const RCPtr<LControl>& control);
  virtual std::uint32_t GetAutoScrollEdges(const RCPtr<LControl>& control);
  virtual void GetDragLimits(RectT<double>& result, const RCPtr<LControl>& control);
  virtual void GetScrollViewRect(RectT<double>& result);
  virtual void AdjustDragRect(RectT<double>& rect);
  virtual void OnDropEnter(const RCPtr<LControl>& control);
  virtual void OnDropOver(const RCPtr<LControl>& control, const PointT<double>& point);
  virtual void OnDropLeave(const RCPtr<LControl>& control);
  virtual TFRESULT PerformDrop(const RCPtr<LControl>& control);
  virtual TFRESULT SetScrollOffset(const PointT<double>& offset);
  // Moves the scroll offset by speed, in pixels per second, as long as nobody stops it. client: a control
  // that is being dragged and follows.
  TFRESULT StartScroll(LayoutAxis axis, double speed, double max, double min, const RCPtr<LControl>& client);
  // kNothingDone when the axis was not being scrolled.
  TFRESULT StopScroll(LayoutAxis axis);
  void AddIdleUser();
  void RemoveIdleUser();
  virtual void OnIdle();

 protected:
  // Handles a notification of the window: runs what moves by itself.
  TFRESULT HandleIdle(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification);
  TFRESULT HandleSiblingKey(const RCPtr<LNotificationDistributor>& sender,
                            const RCPtr<LNotification>& notification);
  // Whether a create parameter is "true", whatever its case. False when there is none; value stays then.
  bool GetCreateFlag(const char16_t* key, bool& value) const;
  // Whether a child gets the press on from this control, which has taken it for the child, once the button
  // has been held for a while.
  virtual bool RepeatsPressOn(const RCPtr<LControl>& child);

  RCPtr<LNotificationHandler<LControl>> mHandler;
  String mName;
  RCPtr<LControlDescriptor> mDescriptor;
  RCPtr<LLayoutDescriptor> mLayout;  // Of this control alone; never null.
  RectT<double> mBounds;
  PointT<double> mScrollOffset;  // Whole numbers.
  std::int32_t mUnclippedCount = 0;
  const RCPtr<LConditionsParam> mConditions;

  bool mHasFocus = false;
  bool mContainsFocus = false;
  bool mHover = false;
  bool mHasCapture = false;
  bool mLeftDown = false;
  bool mMiddleDown = false;
  bool mRightDown = false;
  bool mLeftDrag = false;
  bool mMiddleDrag = false;
  bool mRightDrag = false;
  bool mChildHover = false;
  bool mHitExcluded = false;     // No hit test finds this control.
  bool mRouteChildHits = false;  // Takes the hits of its children for itself.
  bool mWantsTab = false;
  bool mNotFocusable = true;
  bool mFocusRoot = false;
  bool mLookShowsScroll = false;
  bool mFontInherits = false;
  bool mFontNameInherits = false;
  bool mFontSizeInherits = false;
  bool mFontStyleInherits = false;
  bool mFontSizeRelative = false;
  bool mUseParentToolTip = false;
  bool mCreated = false;
  bool mInLayout = false;
  bool mBackingStore = false;        // Client content is tracked in mBackingDirty.
  std::int32_t mBoundsChanging = 0;  // Above 0: between BeginBoundsChange and EndBoundsChange.
  bool mScrolling = false;           // SetScrollOffset runs.
  bool mIsDoomed = false;            // Waits in the parent's mDoomedChildren.
  bool mDestroyed = false;

  RCPtr<LControl> mRoutedChild;
  PointT<std::int32_t> mRoutedPoint;
  std::int32_t mRoutedZ = 0;
  RCPtr<LMouseButtonParam> mLastLeftDown;

  DragMode mDragMode = DragMode::kNone;
  std::uint32_t mDragEdges = 0;
  std::int32_t mDragThreshold = 1;  // Pixels.
  PointT<double> mGrabPoint;
  PointT<double> mDragStartScroll;
  SizeT<double> mDragStartSize;
  PointT<double> mDragStartPosAbs;
  PointT<double> mDragStartSizeAbs;
  PointT<double> mDragDelta;
  bool mDragHasBegun = false;  // OnDragBegin ran, OnDragEnd is still to come.
  bool mDragWasFloating = false;
  std::array<bool, kAxisCount> mDragKeptDocked{};
  RCPtr<LControl> mDropTarget;
  bool mInDragMove = false;
  std::uint32_t mLastMoveTick = 0;  // Milliseconds, as the following ones.
  std::uint32_t mPrevMoveTick = 0;
  std::uint32_t mPressTick = 0;
  std::uint32_t mReleaseTick = 0;
  PointT<double> mVelocity;  // Pixels per second.
  std::array<bool, kAxisCount> mScrollRunning{};
  std::array<double, kAxisCount> mScrollSpeed{};     // Pixels per second.
  std::array<double, kAxisCount> mScrollLastTime{};  // Seconds.
  std::array<double, kAxisCount> mScrollMin{};
  std::array<double, kAxisCount> mScrollMax{};
  std::array<RCPtr<LControl>, kAxisCount> mScrollClient;
  std::array<bool, kAxisCount> mInertia{};
  double mDeceleration = 1000.0;  // Pixels per second per second.
  std::int32_t mIdleRefCount = 0;

  double mValue = 0;
  double mValueMin = 0;
  double mValueMax = 0;
  std::int32_t mValueScale = kLinearScale;

  RCPtrArray<LLook> mLooks;
  std::vector<float> mLookAlpha;
  float mOpacity = 1.0F;
  RCPtr<LControl> mParent;
  RCPtr<LRootWindow> mRootWindow;  // Of the top control alone.
  RCPtr<LStringTable> mStringSection;
  HotKeyMap mHotKeys;
  RCPtr<LFont> mFont;
  String mText;
  RCPtr<LMenuDescriptor> mContextMenu;
  RCPtr<LMenuItemUpdater> mMenuItemUpdater;  // Made when it is first asked for.
  String mToolTipText;
  CursorHandle mCursor = 0;  // 0: the arrow.
  CursorHandle mSavedCursor = 0;
  RCPtrArray<LControl> mDoomedChildren;
  Region mBackingDirty;  // In scrolled client coordinates.
  RectT<double> mClientBeforeChange;
  ChildControlList mChildren{*this};

 private:
  friend class TF::ChildControlList;

  // Life.
  TFRESULT Build(const RCPtr<LControlDescriptor>& descriptor);
  TFRESULT JoinParent(const RCPtr<LControl>& parent);
  void LeaveParent();
  // failure takes the first exception; all children are destroyed in any case.
  void DestroyChildren(std::exception_ptr& failure);
  void EndIdleUse();
  void ForgetOthers();
  void CountUnclipped(std::int32_t change);

  // Descriptor.
  void TakeLayout(const RCPtr<LControlDescriptor>& descriptor);
  TFRESULT ReplaceDescriptor(const RCPtr<LControlDescriptor>& descriptor);
  void ReplaceChildren(const RCPtr<LControlDescriptor>& descriptor);
  void TakeLooks();
  // The looks that were shown may be beyond those of the new skin.
  void ShowSomeLook();
  void TakeFont();
  void TakeHotKeys();

  // Values.
  double ScaledValueOf(double normalized) const;
  bool TextActsOnFrame() const;
  RCPtr<LFont> ResolveFont(const String& name, float size, std::int32_t style, bool relative) const;
  bool ChangeFontTo(const String& name, float size, std::int32_t style, bool relative);

  // Conditions.
  std::uint32_t ComputeConditions() const;
  void UpdateConditionsBelow();
  void SendConditionNotifications(std::uint32_t changed);
  void ShowCursorFor(std::uint32_t previous, std::uint32_t current);
  void HandFocusOver(bool isUsable);

  // Layout.
  TFRESULT StoreAxis(LayoutAxis axis, const LayoutPosition& position, const LayoutSize& size);
  double MeasureAuto(LayoutAxis axis);
  TFRESULT SetBounds(const RectT<double>& frame);
  void SizeLooks();
  void LayOutChildren();
  void RelayoutBehind();
  void RebuildBackingStore();

  // Drawing.
  void ForEachLook(const RCPtr<LRenderer>& renderer, const std::function<void(LLook&)>& draw);
  void DrawLooks(const RCPtr<LRenderer>& renderer, const Region& dirty);
  void DrawContent(const RCPtr<LRenderer>& renderer, const Region& dirty, RCPtrArray<LControl>& deferred);
  // What of a region of the renderer's target lies in the client area; the origin is at the frame's corner.
  Region PartInClient(LRenderer& renderer, const Region& dirty) const;
  void DrawTexts(const RCPtr<LRenderer>& renderer, const Region& dirty);
  void DrawChildren(const RCPtr<LRenderer>& renderer, const Region& dirty, RCPtrArray<LControl>& deferred);
  // Draws children in Z order as long as they are docked on no more axes; returns the next place.
  std::int32_t DrawRun(std::int32_t first, int dockedAxes, const RCPtr<LRenderer>& renderer,
                       const Region& dirty, RCPtrArray<LControl>& deferred);
  std::int32_t SkipRun(std::int32_t first, int dockedAxes, RCPtrArray<LControl>& deferred);
  bool IsInRun(const LControl& child, int dockedAxes) const;
  // Those that nothing clips on the way from here.
  void DeferFloating(RCPtrArray<LControl>& deferred);
  void AddBackingDirt(const RectT<double>& rect);

  // Hit testing.
  void HitTestChildren(RCPtr<LControl>& result, const PointT<double>& point, bool mayHit,
                       PointT<double>& localPoint, std::int32_t& bestZ);
  void HitTestLayer(RCPtr<LControl>& result, const PointT<double>& point, const RectT<double>& client,
                    bool mayHit, PointT<double>& localPoint, std::int32_t& bestZ);
  bool IsClippedAt(const PointT<double>& point) const;

  // Focus.
  bool IsUsable() const { return IsShown(true) && IsEnabled(true); }
  bool IsFocusRefused() const;
  // Without a look at what is above.
  bool HoldsFocusable() const;
  bool CanReceiveFocus();
  // The child on the way to the focus.
  RCPtr<LControl> FindFocusHolder(const LControl* except = nullptr) const;
  RCPtr<LControl> FindFocusableChild(bool forward);
  bool AllowsFocusChange() const;
  TFRESULT TakeFocus();
  // Marks the way up to the control; returns the top of the way on which the focus was before.
  RCPtr<LControl> MarkFocusPath();
  // Neither focus nor mouse stay with a control that leaves its tree.
  void GiveUpInput();
  // The same for it and all that is below it, which leaves with it.
  void GiveUpInputOfTree();
  void MarkChildHover(bool hover);

  // Mouse.
  void PressButton(const RCPtr<LMouseButtonParam>& param);
  void FocusByMouse();
  void ReleaseButton(const RCPtr<LMouseButtonParam>& param);
  bool IsClick(std::uint32_t button) const;
  void MarkPress(std::uint32_t button);
  // Turns what is down into what is dragged.
  void BeginDragging();
  bool IsButtonDown() const { return mLeftDown || mMiddleDown || mRightDown; }
  bool PassesDragThreshold(const LPointWithModifiersParam& param) const;
  void ShowContextMenu();

  // Keys.
  void PassKeyUp(const RCPtr<LKeyParam>& param);
  void PassTabUp(const RCPtr<LKeyParam>& param);
  bool HasWrapped(const LControl& child, const LControl& next, bool backward) const;

  // Dragging.
  bool IsDragging() const { return mLeftDrag && mDragMode != DragMode::kNone; }
  void TakeDragSnapshot();
  void FloatForDrag();
  void DragInView(PointT<double> movement, PointT<double>& scrolling);
  void MoveFrame(const PointT<double>& movement);
  void ResizeFrame(const PointT<double>& movement);
  void FlickContent(const PointT<double>& movement);
  void CarryTo(const PointT<double>& movement, PointT<double>& scrolling);
  void ChangeDropTarget(const RCPtr<LControl>& target);
  void ShowDropCursor();
  void ScrollForDrag(const RCPtr<LControl>& scroller, const PointT<double>& scrolling);
  void StopScrollFor(const LControl& client);
  void LandDrag();
  double PlaceOfDrag(LayoutAxis axis, double movement) const;
  void StartFlick();

  // Motion.
  void MoveAxis(LayoutAxis axis, double time);
  void SlowDown(LayoutAxis axis, double seconds);
  void RepeatPress();
  void MoveClient(const RCPtr<LControl>& client);

  // The window above: ControlWindow.cpp. Each does nothing without one.
  void ShowWindowTitle(const String& title);
  void SizeWindow();
  // Returns the cursor that was shown before.
  CursorHandle ShowCursor(CursorHandle cursor);
  void RepeatHitTest();
  void LeaveWindow();

  // Idle users: ControlMotion.cpp. Listens to the window that the control is in.
  void HookIdle();
  void UnhookIdle(const RCPtr<LNotificationDistributor>& window);

  bool mRepeatsPress = false;              // Uses the idle notification while it is held down.
  float mGivenFontSize = 0;                // Points, or a factor.
  std::int32_t mLayoutIndex = -1;          // In the parent's list, which keeps it.
  const LControl* mWalkedChild = nullptr;  // A walk over the children is laying it out.
};

// The create function of the control class T. Null when the control could not be built.
template <class T>
RCPtr<LControl> MakeControl(const RCPtr<LControl>& parent, const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControl> control = MakeRC<T>(parent, descriptor->mName);
  return Failed(control->Create(descriptor)) ? nullptr : control;
}

}  // namespace TF
