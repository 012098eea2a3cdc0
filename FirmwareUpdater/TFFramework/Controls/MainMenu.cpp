#include "TFFramework/Controls/MainMenu.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/MenuBuilder.h"

namespace TF {

namespace {

constexpr const char16_t* kTemplateMenu = u"templateMenu";
constexpr const char16_t* kShownChange = u"NID_VISIBLITY_CONDITION_CHANGE";

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
  const RCPtr<LControl> held(this);
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  MakeHandler();
  SetNotFocusable(true);
  TakeMenusOfSkin();
  if (mMadeMenus.empty()) AddMenusOfTexts();
  return result;
}

void LMainMenu::TakeMenusOfSkin() {
  const std::vector<RCPtr<LComboMenu>> menus = ListMenus();
  mFixedMenuCount = 0;
  for (auto menu = menus.rbegin(); menu != menus.rend(); ++menu) {
    const String& name = (*menu)->GetName();
    if (name == kTemplateMenu) {
      AdoptChild(nullptr, (*menu)->GetDescriptor());
      (*menu)->Destroy();
    } else if (!IsMade(name)) {
      ++mFixedMenuCount;
      HookMenu(**menu);
      if (!mTemplateDescriptor) mTemplateDescriptor = (*menu)->GetDescriptor();
    }
  }
}

// One menu for each label, or none.
void LMainMenu::AddMenusOfTexts() {
  const RCPtr<LStringTable> section = GetStringSection();
  std::vector<RCPtr<LMenuDescriptor>> menus;
  if (!section || GetContextMenus(menus) != kSuccess) return;
  const std::vector<String> labels = ReadMenuLabels(*section);
  if (labels.size() != menus.size()) return;
  for (std::size_t number = 0; number < menus.size() && !mDestroyed; ++number)
    AddMenu(GetMenuCount(), FromUtf8(fmt::format("menu{}", number)), labels[number], menus[number]);
}

TFRESULT LMainMenu::AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) {
  if (!child && descriptor && descriptor->mName == kTemplateMenu) {
    mTemplateDescriptor = descriptor;
    mTemplateSeen = true;
    return kSuccess;
  }
  const TFRESULT result = LControl::AdoptChild(child, descriptor);
  if (!Failed(result) && !mTemplateDescriptor && RCPtr<LComboMenu>(child)) mTemplateDescriptor = descriptor;
  return result;
}

void LMainMenu::ProcessRootWindowAquired() {
  const RCPtr<LControl> held(this);
  for (const RCPtr<LComboMenu>& menu : ListMenus()) HookMenu(*menu);
  LControl::ProcessRootWindowAquired();
}

void LMainMenu::Destroy() {
  const RCPtr<LControl> held(this);
  ForgetFocus();
  LControl::Destroy();
}

// Menus.

std::vector<RCPtr<LComboMenu>> LMainMenu::ListMenus() const {
  std::vector<RCPtr<LComboMenu>> menus;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LComboMenu> menu(GetChild(index));
    if (menu && !menu->IsDoomed() && !IsMade(menu->GetName())) menus.push_back(menu);
  }
  for (const String& name : mMadeMenus) {
    if (const RCPtr<LComboMenu> menu = GetMenu(name)) menus.push_back(menu);
  }
  return menus;
}

std::int32_t LMainMenu::FindMenu(const String& name) const {
  const std::vector<RCPtr<LComboMenu>> menus = ListMenus();
  const auto found =
      std::find_if(menus.begin(), menus.end(), [&](const auto& menu) { return menu->GetName() == name; });
  return found == menus.end() ? -1 : static_cast<std::int32_t>(found - menus.begin());
}

String LMainMenu::GetMenuLabel(std::int32_t index) const {
  const std::vector<RCPtr<LComboMenu>> menus = ListMenus();
  const bool isThere = index >= 0 && index < static_cast<std::int32_t>(menus.size());
  return isThere ? menus[static_cast<std::size_t>(index)]->GetText() : String();
}

bool LMainMenu::IsMade(const String& name) const {
  return std::find(mMadeMenus.begin(), mMadeMenus.end(), name) != mMadeMenus.end();
}

TFRESULT LMainMenu::AddMenu(std::int32_t index, const String& name, const String& label,
                            const RCPtr<LMenuDescriptor>& menu) {
  if (!mTemplateDescriptor) return kFailure;
  if (!menu) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  const RCPtr<LComboMenu> entry = FindChild(name) ? GetMenu(name) : MakeMenu(name, index);
  const RCPtr<LPopupMenu> popup = entry ? entry->GetPopup() : RCPtr<LPopupMenu>();
  if (!popup) return kFailure;
  entry->SetText(label);
  const auto items = MakeRC<LMenuDescriptor>();
  items->CopyFrom(*menu);
  popup->SetMenu(items);
  HookMenu(*entry);
  return kSuccess;
}

RCPtr<LComboMenu> LMainMenu::MakeMenu(const String& name, std::int32_t index) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory || mDestroyed) return nullptr;
  const std::vector<RCPtr<LComboMenu>> others = ListMenus();
  const RCPtr<LControl> control = factory->CreateSubControl(RCPtr<LControl>(this), DescribeMenu(name, index));
  const RCPtr<LComboMenu> menu(control);
  if (control && !menu) control->Destroy();
  if (!menu) return menu;
  std::erase(mMadeMenus, name);
  const auto made = static_cast<std::int32_t>(mMadeMenus.size());
  const std::int32_t before = index < 0 ? made : index - static_cast<std::int32_t>(others.size()) + made;
  mMadeMenus.insert(mMadeMenus.begin() + std::clamp(before, 0, made), name);
  if (index >= 0 && index < static_cast<std::int32_t>(others.size())) {
    LComboMenu& next = *others[static_cast<std::size_t>(index)];
    next.SetAxisPosition(LayoutAxis::kX, PositionBehind(*menu, next.GetAxisPosition(LayoutAxis::kX)));
  }
  return menu;
}

// As the template, but behind the menu before the index.
RCPtr<LControlDescriptor> LMainMenu::DescribeMenu(const String& name, std::int32_t index) const {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory || !mTemplateDescriptor || !mTemplateDescriptor->mLayout) return nullptr;
  const auto layout = MakeRC<LLayoutDescriptor>(*mTemplateDescriptor->mLayout);
  PlaceBehind(layout->Axis(LayoutAxis::kX).mPosition, index);
  return factory->CopyDescriptor(mTemplateDescriptor, layout, name);
}

// The first one stands where the template does.
void LMainMenu::PlaceBehind(LayoutPosition& position, std::int32_t index) const {
  const std::vector<RCPtr<LComboMenu>> menus = ListMenus();
  const auto count = static_cast<std::int32_t>(menus.size());
  const std::int32_t place = index < 0 || index > count ? count : index;
  if (place == 0) return;
  position = PositionBehind(*menus[static_cast<std::size_t>(place) - 1], position);
}

void LMainMenu::HookMenu(LComboMenu& menu) {
  menu.SetFocusRoot(true);
  const RCPtr<LPopupMenu> popup = menu.GetPopup();
  if (!popup) return;
  popup->SetItemUpdater(GetMenuItemUpdater());
  if (const RCPtr<LRootWindow> window = GetRootWindow()) popup->SetReceiver(window->GetPostingReceiver());
}

// A change of the skin.

TFRESULT LMainMenu::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  if (!mCreated || !descriptor) return LControl::ApplyDescriptor(descriptor);
  const RCPtr<LControl> held(this);
  const std::vector<KeptMenu> kept = KeepMenus();
  const TFRESULT result = LControl::ApplyDescriptor(WithMadeMenus(descriptor));
  RestoreMenus(kept);
  return result;
}

std::vector<LMainMenu::KeptMenu> LMainMenu::KeepMenus() const {
  std::vector<KeptMenu> kept;
  for (const String& name : mMadeMenus) {
    const RCPtr<LComboMenu> menu = GetMenu(name);
    if (menu && menu->GetPopup()) kept.push_back({name, menu->GetText(), menu->GetPopup()->GetMenu()});
  }
  return kept;
}

// What the skin says, as if it had those menus, too, so that they go on. With nothing there that they could
// be made after, they stay as they are.
RCPtr<LControlDescriptor> LMainMenu::WithMadeMenus(const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory) return descriptor;
  TakeTemplate(*descriptor);
  const RCPtr<LControlDescriptor> whole =
      factory->CopyDescriptor(descriptor, descriptor->mLayout, descriptor->mName);
  whole->mSubControls.SetCount(0);
  for (const RCPtr<LControlDescriptor>& part : descriptor->mSubControls) {
    if (part->mName != kTemplateMenu) whole->mSubControls.Add(part);
    std::erase(mMadeMenus, part->mName);
  }
  std::erase_if(mMadeMenus, [this](const String& name) { return !GetMenu(name); });
  for (const String& name : mMadeMenus) {
    if (const RCPtr<LControlDescriptor> part = DescribeMenu(name, 0)) whole->mSubControls.Add(part);
  }
  return whole;
}

void LMainMenu::TakeTemplate(const LControlDescriptor& descriptor) {
  RCPtr<LControlDescriptor> menu;
  mTemplateSeen = false;
  for (const RCPtr<LControlDescriptor>& part : descriptor.mSubControls) {
    if (part->mName == kTemplateMenu) AdoptChild(nullptr, part);
    const bool isMenu = mTemplateDescriptor && part->mClass == mTemplateDescriptor->mClass;
    if (isMenu && !menu) menu = part;
  }
  if (menu && !mTemplateSeen) mTemplateDescriptor = menu;
}

// The menus before them may be others now.
void LMainMenu::RestoreMenus(const std::vector<KeptMenu>& kept) {
  for (const auto& [name, label, items] : kept) {
    if (mDestroyed) return;
    AddMenu(GetMenuCount(), name, label, items);
    const RCPtr<LComboMenu> menu = IsMade(name) ? GetMenu(name) : RCPtr<LComboMenu>();
    if (!menu) continue;
    LayoutPosition position = menu->GetAxisPosition(LayoutAxis::kX);
    PlaceBehind(position, FindMenu(name));
    menu->SetAxisPosition(LayoutAxis::kX, position);
  }
}

// Items.

TFRESULT LMainMenu::OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index,
                                   const String& identifier, LMenuItemState& state) {
  const RCPtr<LMenuItemUpdater> updater = mItemUpdater;
  return updater ? updater->Update(menu, index, identifier, state) : kNothingDone;
}

// Focus.

RCPtr<LControl> LMainMenu::GetLastFocus() const {
  return mLastFocus && mLastFocus->GetRootWindow() ? mLastFocus : RCPtr<LControl>();
}

RCPtr<LControl> LMainMenu::FindEditTarget() {
  const RCPtr<LControl> last = GetLastFocus();
  if (last && last->IsEditTarget()) return last;
  return mParent ? mParent->FindEditTarget() : nullptr;
}

void LMainMenu::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LControl::OnConditionChange(conditions);
  if (mDestroyed || !conditions->Rose(ControlCondition::kContainsFocus)) return;
  const RCPtr<LRootWindow> window = GetRootWindow();
  const RCPtr<LControl> before = window ? window->GetPreviousFocusControl() : RCPtr<LControl>();
  // None when a window comes to the front again, with a menu that had the focus.
  if (before) RememberFocus(before);
}

// Whoever goes is hidden before.
void LMainMenu::RememberFocus(const RCPtr<LControl>& control) {
  if (control == mLastFocus) return;
  ForgetFocus();
  mLastFocus = control;
  mHandler->AddHandler(&LMainMenu::HandleLastFocusShown, RCPtr<LNotificationDistributor>(control),
                       kShownChange);
}

void LMainMenu::ForgetFocus() {
  const RCPtr<LNotificationDistributor> last(std::exchange(mLastFocus, nullptr));
  if (!last) return;
  const NotificationId id = GetNotificationID(kShownChange);
  mHandler->RemoveHandler(last, id);
  Unregister(last, id);
}

TFRESULT LMainMenu::HandleLastFocusShown(const RCPtr<LNotificationDistributor>& sender,
                                         const RCPtr<LNotification>&) {
  const RCPtr<LControl> control(sender);
  if (control == mLastFocus && !control->IsShown(true)) ForgetFocus();
  return kNothingDone;
}

void LMainMenu::GiveFocusBack() {
  if (const RCPtr<LControl> last = GetLastFocus()) last->SetFocus(true);
}

}  // namespace TF
