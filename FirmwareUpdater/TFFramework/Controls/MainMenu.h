#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Controls/ComboMenu.h"
#include "TFFramework/Controls/MenuBar.h"

namespace TF {

// A menu bar: its children are combo menus. Those of the skin stay as they are, but for "templateMenu", from
// which the others are made: one for each "MENU_LABEL." of the bar's texts, when there are as many context
// menus as labels, and those that the program adds. Items report to the queue of the window.
//
// index counts the menus from the left.
//
// Threads: main thread.
class LMainMenu : public LControl, public IMenuBar {
 public:
  using LControl::LControl;

  TFRESULT Initialize() override;
  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override;
  TFRESULT AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) override;
  void OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) override;
  void Destroy() override;
  void ProcessRootWindowAquired() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  // The control that had the focus before the bar, when edits act on it.
  RCPtr<LControl> FindEditTarget() override;
  TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index, const String& identifier,
                          LMenuItemState& state) override;
  void GiveFocusBack() override;

  // Who answers for the items; null for nobody.
  void SetItemUpdater(const RCPtr<LMenuItemUpdater>& updater) { mItemUpdater = updater; }
  std::int32_t GetMenuCount() const { return static_cast<std::int32_t>(mMenus.size()); }
  // -1 for a name that no menu has.
  std::int32_t FindMenu(const String& name) const;
  // Empty for a menu that is not there.
  String GetMenuLabel(std::int32_t index) const;
  // Puts a menu with copies of these items before the one at index, or behind all others. A menu that has
  // the name already takes over label and items where it stands. kFailure without a template, or when the
  // menu could not be made; kInvalidArgument for a null menu.
  TFRESULT AddMenu(std::int32_t index, const String& name, const String& label,
                   const RCPtr<LMenuDescriptor>& menu);

 private:
  const RCPtr<LComboMenu>& GetMenu(std::int32_t index) const {
    return mMenus[static_cast<std::size_t>(index)];
  }
  void TakeMenusOfSkin();
  void AddMenusOfTexts();
  void SetUp(LComboMenu& menu);
  void TakeReceiver(const LComboMenu& menu) const;
  RCPtr<LComboMenu> MakeMenu(std::int32_t index, const String& name);

  std::vector<RCPtr<LComboMenu>> mMenus;  // From the left.
  RCPtr<LControl> mLastFocus;             // Had the focus when the bar took it.
  RCPtr<LControlDescriptor> mTemplateDescriptor;
  RCPtr<LMenuItemUpdater> mItemUpdater;
};

}  // namespace TF
