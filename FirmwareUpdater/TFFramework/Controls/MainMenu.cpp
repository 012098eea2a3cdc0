#include "TFFramework/Controls/MainMenu.h"

#include <algorithm>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/MenuBuilder.h"

namespace TF {

namespace {

constexpr const char16_t* kTemplate = u"templateMenu";

// Right behind another one.
LayoutPosition PositionBehind(const LControl& menu, const LayoutPosition& position) {
  LayoutPosition result = position;
  result.mReference = PositionReference::kNamed;
  result.mName = menu.GetName();
  result.mRel = 1;
  result.mAbs = 0;
  return result;
}

}  // namespace

TFRESULT LMainMenu::Initialize() {
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  SetNotFocusable(true);
  TakeMenusOfSkin();
  if (mStringSection) AddMenusOfTexts();
  return result;
}

void LMainMenu::TakeMenusOfSkin() {
  mTemplateDescriptor = nullptr;
  mMenus.clear();
  for (std::int32_t index = GetChildCount() - 1; index >= 0; --index) {
    const RCPtr<LComboMenu> menu(GetChild(index));
    if (!menu) continue;
    const bool isTemplate = menu->GetName() == kTemplate;
    if (isTemplate || !mTemplateDescriptor) mTemplateDescriptor = menu->GetDescriptor();
    if (isTemplate) {
      menu->Destroy();
    } else {
      mMenus.insert(mMenus.begin(), menu);
      SetUp(*menu);
    }
  }
}

void LMainMenu::AddMenusOfTexts() {
  const std::vector<String> labels = ReadMenuLabels(*mStringSection);
  const std::vector<RCPtr<LMenuDescriptor>> menus = GetContextMenus();
  if (menus.size() != labels.size()) return;
  const std::int32_t fixed = GetMenuCount();
  std::int32_t added = 0;
  for (std::size_t index = 0; index < menus.size(); ++index) {
    const String name = String::Format(u"menu%d", static_cast<int>(index));
    if (!Failed(AddMenu(fixed + added, name, labels[index], menus[index]))) ++added;
  }
}

// The bar cannot have the focus, but its menus can.
void LMainMenu::SetUp(LComboMenu& menu) {
  menu.SetFocusRoot(true);
  if (menu.GetPopup()) menu.GetPopup()->SetItemUpdater(GetMenuItemUpdater());
  TakeReceiver(menu);
}

void LMainMenu::TakeReceiver(const LComboMenu& menu) const {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (window && menu.GetPopup()) menu.GetPopup()->SetReceiver(window->GetPostingReceiver());
}

void LMainMenu::ProcessRootWindowAquired() {
  for (const RCPtr<LComboMenu>& menu : mMenus) TakeReceiver(*menu);
  LControl::ProcessRootWindowAquired();
}

// What is not of the skin is made anew from the new one, with the texts and items that it has.
TFRESULT LMainMenu::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  struct Kept {
    String mName, mLabel;
    RCPtr<LMenuDescriptor> mMenu;
  };
  std::vector<Kept> kept;
  for (const RCPtr<LComboMenu>& menu : mMenus) {
    if (menu->GetPopup() && menu->GetPopup()->GetMenu())
      kept.push_back({menu->GetName(), menu->GetText(), menu->GetPopup()->GetMenu()});
  }
  const RCPtr<LControl> held(this);
  const TFRESULT result = LControl::ApplyDescriptor(descriptor);
  for (const Kept& each : kept) {
    if (!Failed(result) && !mDestroyed) AddMenu(GetMenuCount(), each.mName, each.mLabel, each.mMenu);
  }
  return result;
}

TFRESULT LMainMenu::AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) {
  if (!child && descriptor && descriptor->mName == kTemplate) {
    mTemplateDescriptor = descriptor;
    return kSuccess;
  }
  const TFRESULT result = LControl::AdoptChild(child, descriptor);
  if (!Failed(result) && !mTemplateDescriptor && RCPtr<LComboMenu>(child)) mTemplateDescriptor = descriptor;
  return result;
}

void LMainMenu::OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) {
  std::erase_if(mMenus, [&child](const RCPtr<LComboMenu>& menu) { return menu == child; });
  LControl::OnChildRemoved(child, index);
}

void LMainMenu::Destroy() {
  const RCPtr<LControl> held(this);
  LControl::Destroy();
  mLastFocus = nullptr;
  mItemUpdater = nullptr;
}

// Focus and edits.

void LMainMenu::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (window && conditions->Rose(ControlCondition::kContainsFocus))
    mLastFocus = window->GetSavedFocusControl();
  LControl::OnConditionChange(conditions);
}

RCPtr<LControl> LMainMenu::FindEditTarget() {
  const RCPtr<LControl> last = mLastFocus;
  if (last && last->GetRootWindow() && last->IsEditTarget()) return last;
  return mParent ? mParent->FindEditTarget() : nullptr;
}

void LMainMenu::GiveFocusBack() {
  const RCPtr<LControl> last = mLastFocus;
  if (last && last->GetRootWindow()) last->SetFocus(true);
}

TFRESULT LMainMenu::OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index,
                                   const String& identifier, LMenuItemState& state) {
  const RCPtr<LMenuItemUpdater> updater = mItemUpdater;
  return updater ? updater->Update(menu, index, identifier, state) : kNothingDone;
}

// Menus.

std::int32_t LMainMenu::FindMenu(const String& name) const {
  std::int32_t index = GetMenuCount() - 1;
  while (index >= 0 && GetMenu(index)->GetName() != name) --index;
  return index;
}

String LMainMenu::GetMenuLabel(std::int32_t index) const {
  return index >= 0 && index < GetMenuCount() ? GetMenu(index)->GetText() : String();
}

TFRESULT LMainMenu::AddMenu(std::int32_t index, const String& name, const String& label,
                            const RCPtr<LMenuDescriptor>& menu) {
  if (!mTemplateDescriptor) return kFailure;
  if (!menu) return kInvalidArgument;
  const RCPtr<LControl> taken = FindChild(name);
  const RCPtr<LComboMenu> entry = taken ? RCPtr<LComboMenu>(taken) : MakeMenu(index, name);
  if (!entry || !entry->GetPopup()) return kFailure;
  entry->SetText(label);
  const auto items = MakeRC<LMenuDescriptor>();
  items->CopyFrom(*menu);
  return entry->GetPopup()->SetMenu(items);
}

RCPtr<LComboMenu> LMainMenu::MakeMenu(std::int32_t index, const String& name) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory) return nullptr;
  const std::int32_t count = GetMenuCount();
  const std::int32_t place = index < 0 ? count : std::min(index, count);
  const auto layout = MakeRC<LLayoutDescriptor>(*mTemplateDescriptor->mLayout);
  const RCPtr<LComboMenu> before = place > 0 ? GetMenu(place - 1) : RCPtr<LComboMenu>();
  const RCPtr<LComboMenu> behind = place < count ? GetMenu(place) : RCPtr<LComboMenu>();
  if (before) {
    LayoutPosition& x = layout->Axis(LayoutAxis::kX).mPosition;
    x = PositionBehind(*before, x);
  }
  const RCPtr<LComboMenu> made(factory->CreateSubControl(
      RCPtr<LControl>(this), factory->CopyDescriptor(mTemplateDescriptor, layout, name)));
  if (!made) return made;
  mMenus.insert(mMenus.begin() + place, made);
  SetUp(*made);
  if (behind) {
    LayoutPosition position;
    LayoutSize size;
    behind->GetAxisLayout(LayoutAxis::kX, position, size);
    behind->SetAxisLayout(LayoutAxis::kX, PositionBehind(*made, position), size);
  }
  return made;
}

}  // namespace TF
