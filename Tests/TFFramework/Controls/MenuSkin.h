#pragma once

#include <string>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Controls/ComboMenu.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {

// Menus for skins that stand in a test: 100 pixels wide, with rows of 20, and faces of 50 by 24.

constexpr int kTestRow = 20;

class TestPopup : public Touchable<LPopupMenu> {
 public:
  using LPopupMenu::mIdleRefCount;
  using LPopupMenu::mRows;
  using LPopupMenu::SwapItems;
  using Touchable::Touchable;
};

using TestCombo = Touchable<LComboMenu>;

// Hears what menus report.
class Owner : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;

  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const RCPtr<LMenuActivationParam> chosen(notification->GetData());
    if (chosen) Tell(ToUtf8(notification->GetId()) + " " + std::to_string(chosen->mIndex));
    ProbeControl::OnNotification(sender, notification);
  }
};

inline std::string TestPopupPart(const std::string& name, const std::string& place) {
  return Part("Popup", name,
              place + " ClipToParent='False' Z_Order='1000' TabStop='0' XSizeAbs='100' YSizeAbs='20'",
              Part("Item", "templateItem", FillAxis('X') + SizeOnAxis('Y', kTestRow)));
}

inline std::string TestComboPart(const std::string& name, int x) {
  return Part("Combo", name,
              "XPositionAbs='" + std::to_string(x) + "' XSizeAbs='50' YSizeAbs='24' TabStop='0'",
              TestPopupPart("popupMenu", "YPositionToControl='Parent' YPositionRel='1'"));
}

inline void RegisterMenuControls(LControlFactory& factory) {
  factory.RegisterControlCreateFunction(u"Owner", MakeControl<Owner>);
  factory.RegisterControlCreateFunction(u"Popup", MakeControl<TestPopup>);
  factory.RegisterControlCreateFunction(u"Combo", MakeControl<TestCombo>);
  factory.RegisterControlCreateFunction(u"Item", MakeControl<LMenuListBoxItem>);
}

// Items by their letters: a capital leads on to "x" and "y", '-' is a separator, '!' disables the next one.
inline RCPtr<LMenuDescriptor> MakeTestMenu(const std::string& letters) {
  auto menu = MakeRC<LMenuDescriptor>();
  bool enabled = true;
  for (const char letter : letters) {
    if (letter == '!') {
      enabled = false;
      continue;
    }
    auto item = MakeRC<LMenuItemDescriptor>();
    item->mText = FromUtf8(std::string(1, letter));
    item->mIdentifier = FromUtf8(std::string("NID_") + letter);
    item->mEnabled = enabled;
    item->mSeparator = letter == '-';
    if (letter >= 'A' && letter <= 'Z') {
      for (const char* const sub : {"x", "y"}) {
        auto below = MakeRC<LMenuItemDescriptor>();
        below->mText = FromUtf8(sub);
        below->mIdentifier = FromUtf8(std::string("NID_") + letter + sub);
        item->AddItem(-1, below);
      }
    }
    menu->AddItem(-1, item);
    enabled = true;
  }
  return menu;
}

}  // namespace TF
