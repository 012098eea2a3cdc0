#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/MenuBuilder.h"
#include "TFFramework/ControlBase/PopupControls.h"

namespace TF {

namespace {

constexpr const char16_t* kToolTipName = u"toolTip";
constexpr const char16_t* kContextMenuName = u"contextMenu";

// Null when the skin has no such control, or it could not be built.
RCPtr<LControl> MakePopup(const RCPtr<LControl>& parent, const String& name) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory) return nullptr;
  return factory->CreateSubControl(parent, factory->FindControlDescriptor(name));
}

}  // namespace

void LControl::OnClick(const RCPtr<LMouseButtonParam>& param) {
  switch (param->mButton) {
    case LMouseButtonParam::kLeft:
      return OnLeftClick(param);
    case LMouseButtonParam::kMiddle:
      return OnMiddleClick(param);
    default:
      return OnRightClick(param);
  }
}

void LControl::OnLeftClick(const RCPtr<LMouseButtonParam>& param) {
  const RCPtr<LControl> held(this);
  OnLeftClicked(param);
  if (!mDestroyed) Send(LNotification::Create(u"NID_LEFT_CLICK", param));
}

void LControl::OnMiddleClick(const RCPtr<LMouseButtonParam>& param) {
  const RCPtr<LControl> held(this);
  OnMiddleClicked(param);
  if (!mDestroyed) Send(LNotification::Create(u"NID_MIDDLE_CLICK", param));
}

void LControl::OnRightClick(const RCPtr<LMouseButtonParam>& param) {
  const RCPtr<LControl> held(this);
  OnRightClicked(param);
  if (!mDestroyed) Send(LNotification::Create(u"NID_RIGHT_CLICK", param));
  if (!mDestroyed) ShowContextMenu();
}

void LControl::OnLeftClicked(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleClicked(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightClicked(const RCPtr<LMouseButtonParam>&) {}

// A menu that was opened before and not taken away is filled anew.
void LControl::ShowContextMenu() {
  const RCPtr<LMenuDescriptor> menu = GetContextMenu();
  if (!menu) return;
  RCPtr<LControl> popup = FindChild(kContextMenuName);
  if (!popup) popup = MakePopup(RCPtr<LControl>(this), kContextMenuName);
  if (!popup) return;
  popup->SetVisible(false);
  IContextMenuPopup* const opener = dynamic_cast<IContextMenuPopup*>(popup.Get());
  if (opener) opener->SetMenu(menu);
  OnContextMenuOpening(popup);
  if (opener && !mDestroyed) opener->ShowAtPointer();
}

TFRESULT LControl::GetContextMenus(std::vector<RCPtr<LMenuDescriptor>>& menus) {
  const RCPtr<LStringTable> section = GetStringSection();
  menus = section ? ReadContextMenus(*section) : std::vector<RCPtr<LMenuDescriptor>>();
  return menus.empty() ? kNothingDone : kSuccess;
}

const RCPtr<LMenuItemUpdater>& LControl::GetMenuItemUpdater() {
  if (!mMenuItemUpdater) mMenuItemUpdater = MakeRC<LMenuItemUpdater>(*this);
  return mMenuItemUpdater;
}

void LControl::OnContextMenuOpening(const RCPtr<LControl>&) {}

TFRESULT LControl::OnMenuItemText(const RCPtr<LMenuDescriptor>&, std::int32_t, const String&,
                                  LMenuItemState&) {
  return kNothingDone;
}

void LControl::ShowToolTip(bool show) {
  const RCPtr<LControl> held(this);
  RCPtr<LControl> tip = FindChild(kToolTipName);
  if (!show) {
    if (IToolTip* const shown = dynamic_cast<IToolTip*>(tip.Get())) return shown->Hide();
    if (tip) tip->SetVisible(false);
    return;
  }
  const String text = GetToolTipText();
  if (text.IsEmpty()) return;
  if (!tip) tip = MakePopup(held, kToolTipName);
  if (!tip) return;
  tip->SetText(text);
  if (IToolTip* const shown = dynamic_cast<IToolTip*>(tip.Get())) return shown->Show();
  tip->SetVisible(true);
}

}  // namespace TF
