#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ControlBase/MenuItemUpdater.h"
#include "TFFramework/Controls/ComboMenu.h"
#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/MenuBar.h"

namespace TF {

// A bar of menus, which are LComboMenu: those that stand in the skin, behind them those that its texts or
// the program give. The latter are made after the child "templateMenu", else after one of the skin's, and
// keep their labels and items when the skin changes.
//
// It cannot have the focus, but its menus can. Their items report through the queue of the window, and act on
// what had the focus before.
//
// Threads: main thread.
class LMainMenu : public HandlingControl<LMainMenu, LControl>, public IMenuBar {
 public:
  using HandlingControl::HandlingControl;

  TFRESULT Initialize() override;
  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override;
  // Without a child, takes what is named "templateMenu" for the template.
  TFRESULT AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) override;
  void ProcessRootWindowAquired() override;
  void Destroy() override;

  // Who says how items are to be shown; null for nobody.
  void SetItemUpdater(const RCPtr<LMenuItemUpdater>& updater) { mItemUpdater = updater; }
  std::int32_t GetMenuCount() const { return static_cast<std::int32_t>(ListMenus().size()); }
  // -1 when there is none of this name.
  std::int32_t FindMenu(const String& name) const;
  // Gives the menu of this name the label and copies of the items; makes it when there is none, before the
  // menu at index, which may be beyond the last. kFailure without a template, or when the name is that of
  // something else; kInvalidArgument for a null menu.
  TFRESULT AddMenu(std::int32_t index, const String& name, const String& label,
                   const RCPtr<LMenuDescriptor>& menu);
  // Empty for one that is not there.
  String GetMenuLabel(std::int32_t index) const;

  RCPtr<LControl> FindEditTarget() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index, const String& identifier,
                          LMenuItemState& state) override;
  void GiveFocusBack() override;

 protected:
  RCPtr<LControl> mLastFocus;  // Had the focus when a menu took it; null when it has gone or is hidden.
  RCPtr<LControlDescriptor> mTemplateDescriptor;
  RCPtr<LMenuItemUpdater> mItemUpdater;
  std::int32_t mFixedMenuCount = 0;  // Those that stand in the skin.
  bool mTemplateSeen = false;        // The skin has "templateMenu".

 private:
  // What a menu keeps while the skin changes.
  struct KeptMenu {
    String mName;
    String mLabel;
    RCPtr<LMenuDescriptor> mItems;
  };

  // Those of the skin, and behind them those that were made.
  std::vector<RCPtr<LComboMenu>> ListMenus() const;
  RCPtr<LComboMenu> GetMenu(const String& name) const { return RCPtr<LComboMenu>(FindChild(name)); }
  bool IsMade(const String& name) const;
  void TakeMenusOfSkin();
  void AddMenusOfTexts();
  RCPtr<LControlDescriptor> DescribeMenu(const String& name, std::int32_t index) const;
  RCPtr<LComboMenu> MakeMenu(const String& name, std::int32_t index);
  void HookMenu(LComboMenu& menu);
  void PlaceBehind(LayoutPosition& position, std::int32_t index) const;

  // A change of the skin.
  std::vector<KeptMenu> KeepMenus() const;
  RCPtr<LControlDescriptor> WithMadeMenus(const RCPtr<LControlDescriptor>& descriptor);
  void TakeTemplate(const LControlDescriptor& descriptor);
  void RestoreMenus(const std::vector<KeptMenu>& kept);

  // Null when it has left its window.
  RCPtr<LControl> GetLastFocus() const;
  void RememberFocus(const RCPtr<LControl>& control);
  void ForgetFocus();
  TFRESULT HandleLastFocusShown(const RCPtr<LNotificationDistributor>& sender,
                                const RCPtr<LNotification>& notification);

  std::vector<String> mMadeMenus;  // The names of those that the skin does not have, from the left.
};

}  // namespace TF
