#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ControlBase/MenuItemUpdater.h"
#include "TFFramework/ControlBase/PopupControls.h"
#include "TFFramework/Controls/CheckedListBox.h"
#include "TFFramework/Controls/HandlingControl.h"

namespace TF {

// A menu: a list whose selection follows the mouse, whose submenus open after a moment, and that reports
// the item that is chosen. It floats over everything; as a context menu or a submenu it ends itself when it
// is done, as the popup of a combo menu it is only hidden.
//
// Notifications: "NID_ITEM_ACTIVATED", and to its receiver one named as the item, with an
// LMenuActivationParam.
//
// Threads: main thread.
class LPopupMenu : public HandlingControl<LPopupMenu, LCheckedListBox>, public IContextMenuPopup {
 public:
  using HandlingControl::HandlingControl;

  TFRESULT Initialize() override;
  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override;
  TFRESULT OnDescriptorApplied() override;
  void Destroy() override;

  // kInvalidArgument for null.
  TFRESULT SetMenu(const RCPtr<LMenuDescriptor>& menu) override;
  const RCPtr<LMenuDescriptor>& GetMenu() const { return mMenu; }
  // Where items report; once only: kFailure when there is one. kInvalidArgument for null.
  TFRESULT SetReceiver(const RCPtr<LNotificationReceiver>& receiver);
  void SetItemUpdater(const RCPtr<LMenuItemUpdater>& updater) { mItemUpdater = updater; }
  // Without it, somebody else hides the popup and keeps it.
  void SetSelfClosing(bool selfClosing) { mSelfClosing = selfClosing; }

  // At the mouse, as far as the window leaves room.
  void ShowAtPointer() override;
  // kInvalidArgument for an item that leads nowhere.
  TFRESULT OpenSubmenu(std::int32_t index);
  void CloseSubmenu();
  // Keeps a popup without a limit of its own as low as the window.
  void LimitToWindow();
  // Ends the whole chain of popups that this one belongs to.
  void CloseAll();
  void Choose(const RCPtr<LMenuItemDescriptor>& item);
  const RCPtr<LPopupMenu>& GetSubmenu() const { return mSubmenu; }

  TFRESULT SetFocus(bool forward) override;
  TFRESULT MouseDown(const RCPtr<LMouseButtonParam>& param) override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  void OnMouseMove(const RCPtr<LPointWithModifiersParam>& param) override;
  TFRESULT OnKeyDown(const RCPtr<LKeyParam>& param) override;
  void OnIdle() override;

  RCPtr<LListBoxItem> AddRow() override;
  TFRESULT UpdateRow(std::int32_t index, std::int32_t& row) override;
  std::int32_t GetContentHeight() override;
  // Pixels of text and key text with what is around them.
  virtual std::int32_t GetPopupItemWidth(std::int32_t index);

 protected:
  void OnSelectionChange() override;
  void OnItemActivated() override;
  bool LeadsOn(std::int32_t index) override;
  bool IsItemSelectable(std::int32_t index) override;
  TFRESULT SwapItems(std::int32_t first, std::int32_t second) override;
  bool RepeatsPressOn(const RCPtr<LControl>& child) override;

 private:
  RCPtr<LMenuItemDescriptor> GetItem(std::int32_t index) const;
  RCPtr<LPopupMenu> GetParentPopup() const { return RCPtr<LPopupMenu>(mParent); }
  bool ClosesItself() const { return mSelfClosing && !mClosing && mCreated; }
  bool IsRow(const RCPtr<LControl>& control) const;

  // Items: PopupMenuItems.cpp.
  TFRESULT TakeMenuOfTexts();
  TFRESULT SetSubMenuOf(std::int32_t index);
  void SizeToItems();
  TFRESULT RebuildItems();
  void MeasureParts(LMenuListBoxItem& row);
  void TakeItem(std::int32_t index, const LMenuItemDescriptor& item);
  RCPtr<LNotificationReceiver> GetTarget() const;
  TFRESULT FillHotKeyTexts(const RCPtr<LMenuDescriptor>& menu);
  String FindHotKeyText(const String& identifier) const;
  void RefreshItemStates();

  // Mouse: PopupMenu.cpp.
  void HoverRow(const RCPtr<LListBoxItem>& row);
  void HandCaptureOn(const PointT<double>& windowPoint);
  void Arm();
  void Disarm();
  void PlaceSubmenu(LPopupMenu& submenu, const LControl& row);
  void SelectOpenItem();
  void SelectFirst();
  TFRESULT HandleRowTip(const RCPtr<LNotificationDistributor>& sender,
                        const RCPtr<LNotification>& notification);

  RCPtr<LMenuDescriptor> mMenu;
  RCPtr<LPopupMenu> mSubmenu;
  RCPtr<LMenuItemDescriptor> mSubmenuItem;
  RCPtr<LNotificationReceiver> mReceiver;
  bool mShowsStatus = false;  // The text of an item stands in the status bar.
  RCPtr<LMenuItemUpdater> mItemUpdater;
  RCPtr<LListBoxItem> mHoveredRow;
  bool mDelayActive = false;
  std::uint32_t mDelayTick = 0;  // Milliseconds.
  bool mSubmenuClosed = false;
  bool mSelfClosing = true;
  bool mClosing = false;
  bool mInMouseDown = false;
  std::int32_t mSeparatorHeight = 0;  // Pixels.
  std::int32_t mSeparatorCount = 0;
};

}  // namespace TF
