#pragma once

#include <string>

#include "TFFramework/Controls/ComboMenu.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {

// Menus for skins that stand in a test: popups of 100 pixels with rows of 20.

class TestPopup : public Touchable<LPopupMenu> {
 public:
  using LPopupMenu::mIdleRefCount;
  using LPopupMenu::mRows;
  using LPopupMenu::SwapItems;
  using Touchable::Touchable;
};

using TestCombo = Touchable<LComboMenu>;

constexpr int kTestRow = 20;

constexpr std::uint32_t kUp = 0x26, kDown = 0x28, kLeftKey = 0x25, kRightKey = 0x27, kEnter = 0x0D,
                        kEscape = 0x1B;

inline std::string TestPopupPart(const std::string& name, const std::string& place) {
  return Part("Popup", name,
              place + " ClipToParent='False' Z_Order='1000' TabStop='0' XSizeAbs='100' YSizeAbs='20'",
              Part("Item", "templateItem", FillAxis('X') + SizeOnAxis('Y', kTestRow)));
}

// A face with a popup below it.
inline std::string TestMenu(const std::string& name, const std::string& place) {
  return Part("Combo", name, place + "TabStop='0'",
              TestPopupPart("popupMenu", "YPositionToControl='Parent' YPositionRel='1'"));
}

class MenuFixture : public BarFixture {
 protected:
  static constexpr int kRow = kTestRow;

  void RegisterMore() override {
    mFactory->RegisterControlCreateFunction(u"Popup", MakeControl<TestPopup>);
    mFactory->RegisterControlCreateFunction(u"Combo", MakeControl<TestCombo>);
    mFactory->RegisterControlCreateFunction(u"Item", MakeControl<LMenuListBoxItem>);
  }
  // Items by their letters: a capital leads on to "x" and "y", '-' is a separator, '!' disables the next one.
  static RCPtr<LMenuDescriptor> MakeMenu(const std::string& letters) {
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
  void Key(std::uint32_t virtualKey) { mWindow->Key(0x20000000 | virtualKey << 16); }
  // A quarter of a second and a moment passes.
  void PassDelay() {
    Wait(0.251);
    mWindow->Idle();
  }
  // The texts of the rows and the caret: "abc 1".
  static std::string Show(const RCPtr<TestPopup>& popup) {
    if (!popup || !popup->IsShown(false)) return "closed";
    std::string text;
    for (const auto& row : popup->mRows) text += ToUtf8(row->GetText());
    return text + " " + std::to_string(popup->GetCaret());
  }
};

}  // namespace TF
