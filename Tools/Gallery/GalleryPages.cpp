#include "Tools/Gallery/GalleryPages.h"

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Clipboard.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/Controls/CheckedListBox.h"
#include "TFFramework/Controls/PopupMenu.h"

using namespace TF;

namespace {

constexpr int kRows = 2000;
constexpr int kRowHeight = 20;  // Pixels.
constexpr int kRowWidth = 700;  // Pixels.
constexpr int kRecords = 100000;
constexpr int kCheckedRecords = 40;
constexpr int kSeveralRecords = 1000;
constexpr double kProgressStep = 0.1;

}  // namespace

TFRESULT LGalleryPage::Initialize() {
  const TFRESULT result = HandlingControl::Initialize();
  if (Failed(result) || mHandler) return result;
  MakeHandler();
  HearButtons(*this);
  if (const RCPtr<LControl> disabled = FindChild(u"disabled")) disabled->SetEnabled(false);
  return result;
}

void LGalleryPage::HearButtons(LControl& parent) {
  for (std::int32_t index = 0; index < parent.GetChildCount(); ++index) {
    const RCPtr<LControl> child = parent.GetChild(index);
    if (const RCPtr<LButton> button(child); button)
      mHandler->AddHandler(&LGalleryPage::HandleClick, RCPtr<LNotificationDistributor>(button),
                           u"NID_LEFT_CLICK");
    else
      HearButtons(*child);
  }
}

TFRESULT LGalleryPage::HandleClick(const RCPtr<LNotificationDistributor>& sender,
                                   const RCPtr<LNotification>&) {
  const RCPtr<LButton> button(sender);
  OnButton(button);
  TellGallery(*this, button->GetName() + (button->IsChecked() ? u": on" : u": click"));
  return kSuccess;
}

TFRESULT LGalleryCounter::Initialize() {
  const TFRESULT result = HandlingControl::Initialize();
  if (Failed(result)) return result;
  MakeHandler();
  mAutoRepeat = true;
  return mHandler->AddHandler(&LGalleryCounter::HandleRepeat, RCPtr<LNotificationDistributor>(this),
                              u"NID_BUTTON_AUTOREPEAT");
}

TFRESULT LGalleryCounter::HandleRepeat(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  SetText(String::Format(u"%d", ++mCount));
  TellGallery(*this, GetName() + u": " + GetText());
  return kSuccess;
}

// Made here and not in the skin, since no document should be that long.
TFRESULT LGalleryRows::OnDescriptorApplied() {
  const TFRESULT result = LPanel::OnDescriptorApplied();
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  const RCPtr<LControlDescriptor> row = FindPart(*this, u"row");
  if (Failed(result) || !factory || !row || FindChild(u"row1")) return result;
  {
    const LayoutGuard bulk(mInLayout);
    for (int number = 1; number <= kRows; ++number) {
      const auto layout = MakeRC<LLayoutDescriptor>(*row->mLayout);
      layout->Axis(LayoutAxis::kY).mPosition.mAbs = (number - 1) * kRowHeight;
      const RCPtr<LControl> made = factory->CreateSubControl(
          RCPtr<LControl>(this), factory->CopyDescriptor(row, layout, String::Format(u"row%d", number)));
      if (!made) return kFailure;
      made->SetText(
          String::Format(u"Row %d of %d, and a text that goes on behind the edge of the view, where the "
                         u"bar below takes the eye",
                         number, kRows));
    }
  }
  Relayout();
  SetClientExtent({kRowWidth, kRows * kRowHeight});
  UpdateBars();
  return result;
}

TFRESULT LGalleryLists::Initialize() {
  const TFRESULT result = HandlingControl::Initialize();
  if (Failed(result) || mHandler) return result;
  MakeHandler();
  const auto fill = [this](const char16_t* name, int count, const char16_t* text) -> RCPtr<LListBox> {
    const RCPtr<LListBox> list = FindChild(name);
    if (!list) return list;
    list->SetItemCount(count);
    for (int index = 0; index < count; ++index)
      list->SetItemText(index, String::Format(u"%s %d", text, index + 1));
    mHandler->AddHandler(&LGalleryLists::HandleSelection, RCPtr<LNotificationDistributor>(list),
                         u"NID_SELECTION_CHANGE");
    return list;
  };
  fill(u"list", kRecords, u"Record");
  if (const RCPtr<LCheckedListBox> checked(fill(u"checked", kCheckedRecords, u"Checked")); checked)
    for (int index = 0; index < kCheckedRecords; index += 3) checked->SetItemChecked(index, true);
  if (const RCPtr<LListBox> several = fill(u"several", kSeveralRecords, u"Several")) {
    several->SetMultiSelect(true);
    several->SetClickMode(LListBox::kModifierMode);
  }
  return result;
}

TFRESULT LGalleryLists::HandleSelection(const RCPtr<LNotificationDistributor>& sender,
                                        const RCPtr<LNotification>&) {
  const RCPtr<LListBox> list(sender);
  TellGallery(*this, list->GetName() + String::Format(u": %d selected, at %d", list->GetSelectedCount(),
                                                      list->GetCaret() + 1));
  return kSuccess;
}

TFRESULT LGalleryMenus::OnMenuItemText(const RCPtr<LMenuDescriptor>&, std::int32_t, const String& identifier,
                                       LMenuItemState& state) {
  if (identifier == u"NID_GALLERY_CHECK") state.mChecked = mIsChecked;
  if (identifier == u"NID_GALLERY_NEVER") state.mEnabled = false;
  return kSuccess;
}

RCPtr<LMenuDescriptor> LGalleryMenuTile::GetContextMenu() {
  return mParent ? mParent->GetContextMenu() : nullptr;
}

void LGalleryMenuTile::OnContextMenuOpening(const RCPtr<LControl>& popup) {
  if (const RCPtr<LPopupMenu> menu(popup); menu && mParent)
    menu->SetItemUpdater(mParent->GetMenuItemUpdater());
}

// What its menu reports.
void LGalleryMenuTile::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                                      const RCPtr<LNotification>& notification) {
  LGalleryTile::OnNotification(sender, notification);
  if (!RCPtr<LMenuActivationParam>(notification->GetData())) return;
  const String identifier(notification->GetId());
  const RCPtr<LGalleryMenus> page(mParent);
  if (page && identifier == u"NID_GALLERY_CHECK") page->ToggleCheck();
  Tell(identifier);
}

bool LGalleryClip::CanPerformEdit(std::int32_t operation) {
  return operation == EditOperation::kPaste || !GetText().IsEmpty();
}

TFRESULT LGalleryClip::PerformEdit(std::int32_t operation) {
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LClipboard> clipboard = application ? application->GetClipboard() : RCPtr<LClipboard>();
  if (!clipboard) return kFailure;
  TFRESULT result = kSuccess;
  if (operation == EditOperation::kPaste) {
    const RCPtr<LTaggableObject> contents = clipboard->GetContents();
    if (!contents) return kNothingDone;
    SetText(contents->ToString());
  }
  if (operation == EditOperation::kCopy || operation == EditOperation::kCut)
    result = clipboard->SetContents(MakeRC<LTextObject>(GetText()));
  if (operation == EditOperation::kDelete || operation == EditOperation::kCut) SetText(String());
  Tell(GetText());
  return result;
}

void LGalleryStatus::OnButton(const RCPtr<LButton>& button) {
  const RCPtr<LProgressBar> bar = FindChild(u"progressBar");
  if (!bar) return;
  const String& name = button->GetName();
  if (name == u"less") bar->SetValue(bar->GetValue() - kProgressStep);
  if (name == u"more") bar->SetValue(bar->GetValue() + kProgressStep);
  if (name == u"estimate") bar->SetEstimateTime(true);
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (name != u"texts" || !application) return;
  for (const char16_t* const text : {u"first text", u"second text", u"third text"})
    application->SetStatusText(text, false);
}

void RegisterGalleryPages(LControlFactory& factory) {
  factory.RegisterControlCreateFunction(u"Gallery.Page", MakeControl<LGalleryPage>);
  factory.RegisterControlCreateFunction(u"Gallery.Counter", MakeControl<LGalleryCounter>);
  factory.RegisterControlCreateFunction(u"Gallery.Rows", MakeControl<LGalleryRows>);
  factory.RegisterControlCreateFunction(u"Gallery.Lists", MakeControl<LGalleryLists>);
  factory.RegisterControlCreateFunction(u"Gallery.Menus", MakeControl<LGalleryMenus>);
  factory.RegisterControlCreateFunction(u"Gallery.MenuTile", MakeControl<LGalleryMenuTile>);
  factory.RegisterControlCreateFunction(u"Gallery.Clip", MakeControl<LGalleryClip>);
  factory.RegisterControlCreateFunction(u"Gallery.Status", MakeControl<LGalleryStatus>);
}
