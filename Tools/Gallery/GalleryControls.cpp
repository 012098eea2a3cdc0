#include "Tools/Gallery/GalleryControls.h"

#include <stdexcept>

#include "TFFramework/ControlBase/ControlCondition.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/KeyCode.h"
#include "Tools/Gallery/GalleryMain.h"

using namespace TF;

namespace {

constexpr std::uint32_t kReturn = 0x0D;
constexpr std::uint32_t kSpace = 0x20;

bool IsPressOf(const KeyCode& key, std::uint32_t virtualKey) {
  return (key.code & KeyCode::kPressed) != 0 &&
         (key.code & KeyCode::kVirtualKeyMask) == virtualKey << KeyCode::kVirtualKeyShift;
}

RCPtr<LGalleryMain> FindMain(const LControl& control) {
  RCPtr<LControl> top = control.GetParent();
  while (top && top->GetParent()) top = top->GetParent();
  return top;
}

String Place(const RectT<double>& bounds) {
  return String::Format(u"%d, %d, %d by %d", static_cast<int>(bounds.mX), static_cast<int>(bounds.mY),
                        static_cast<int>(bounds.mWidth), static_cast<int>(bounds.mHeight));
}

}  // namespace

TFRESULT LGalleryPanel::Initialize() {
  const TFRESULT result = LControl::Initialize();
  mDragThreshold = 3;
  return result;
}

TFRESULT LGalleryBox::Initialize() {
  const TFRESULT result = LGalleryPanel::Initialize();
  if (GetText().IsEmpty()) SetText(GetName());
  return result;
}

void LGalleryBox::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  SetActiveLook(SlotFor(conditions->mCurrent));
}

LGalleryBox::Slot LGalleryBox::SlotFor(std::uint32_t conditions) const {
  if ((conditions & (ControlCondition::kLeftDown | ControlCondition::kLeftDrag)) != 0) return kPressed;
  if ((conditions & ControlCondition::kHover) != 0) return kHover;
  return (conditions & ControlCondition::kHasFocus) != 0 ? kFocus : kNormal;
}

void LGalleryBox::Tell(const String& what) {
  TellGallery(*this, GetName() + u": " + what);
}

void LGalleryTile::OnLeftClick(const RCPtr<LMouseButtonParam>& param) {
  Tell(param->mIsDoubleClick ? u"double click" : u"click");
}

TFRESULT LGalleryTile::OnKeyDown(const RCPtr<LKeyParam>& param) {
  Tell(u"key " + KeyCodeToDisplayText(param->mKey));
  return LGalleryBox::OnKeyDown(param);
}

TFRESULT LGalleryTile::OnVerticalWheel(const RCPtr<LMouseWheelParam>& param) {
  Tell(param->mDirection == LMouseWheelParam::kUp ? u"wheel up" : u"wheel down");
  return kSuccess;
}

void LGalleryTab::OnLeftClick(const RCPtr<LMouseButtonParam>&) {
  if (const RCPtr<LGalleryMain> main = FindMain(*this)) main->ShowPage(GetName().Mid(3));
}

TFRESULT LGalleryTab::OnKeyDown(const RCPtr<LKeyParam>& param) {
  if (!IsPressOf(param->mKey, kReturn) && !IsPressOf(param->mKey, kSpace))
    return LGalleryTile::OnKeyDown(param);
  OnLeftClick(nullptr);
  return kSuccess;
}

void LGalleryTab::ShowChosen(bool chosen) {
  mIsChosen = chosen;
  SetActiveLook(SlotFor(GetConditions()->mCurrent));
}

LGalleryBox::Slot LGalleryTab::SlotFor(std::uint32_t conditions) const {
  const Slot slot = LGalleryTile::SlotFor(conditions);
  return mIsChosen && slot == kNormal ? kChosen : slot;
}

void LGalleryDrag::ApplyCreateParameters() {
  LGalleryBox::ApplyCreateParameters();
  String number;
  if (GetDescriptor()->mCreateParams && GetDescriptor()->mCreateParams->GetString(u"DRAG", number) &&
      number.Length() == 1)
    mMode = static_cast<DragMode>(number[0] - u'0');
}

void LGalleryDrag::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  if (mMode != DragMode::kFlick) LGalleryBox::OnConditionChange(conditions);
  if ((conditions->mCurrent & ControlCondition::kLeftDown) == 0) return;
  const bool resizes = mMode == DragMode::kResize || mMode == DragMode::kResizeScrolling;
  SetDragMode(mMode, resizes ? DragEdges::kRight | DragEdges::kBottom : DragEdges::kX | DragEdges::kY);
}

void LGalleryDrag::OnDragMoved(const RCPtr<LPointWithModifiersParam>& param) {
  LGalleryBox::OnDragMoved(param);
  if (mMode == DragMode::kFlick)
    Tell(Place({GetScrollOffset().mX, GetScrollOffset().mY, 0, 0}));
  else
    Tell(Place(GetBounds()));
}

void LGalleryDrag::GetDragLimits(RectT<double>& result, const RCPtr<LControl>& control) {
  LGalleryBox::GetDragLimits(result, control);
  if (mMode == DragMode::kFlick) result = {0, 0, 200, 200};
}

bool LGalleryDrop::IsDropTarget(const RCPtr<LControl>& control) {
  return dynamic_cast<LGalleryDrag*>(control.Get()) != nullptr;
}

TFRESULT LGalleryDrop::PerformDrop(const RCPtr<LControl>& control) {
  TellGallery(*this, control->GetName() + u": dropped on " + GetName());
  return kSuccess;
}

void LGalleryDrop::GetDragLimits(RectT<double>& result, const RCPtr<LControl>&) {
  const RectT<double> client = GetClientRect();
  result = {0, 0, client.mWidth, client.mHeight};
}

void LGalleryDoomed::OnLeftClick(const RCPtr<LMouseButtonParam>& param) {
  LGalleryTile::OnLeftClick(param);
  Destroy();
}

void LGalleryThrower::OnLeftClick(const RCPtr<LMouseButtonParam>& param) {
  LGalleryTile::OnLeftClick(param);
  throw std::runtime_error("A control of the gallery throws when it is clicked.");
}

RCPtr<LControlDescriptor> FindPart(const LControl& control, const String& name) {
  for (const RCPtr<LControlDescriptor>& part : control.GetDescriptor()->mSubControls)
    if (part->mName == name) return part;
  return nullptr;
}

void TellGallery(const LControl& control, const String& text) {
  if (const RCPtr<LGalleryMain> main = FindMain(control)) main->Tell(text);
}

void RegisterGalleryControls(LControlFactory& factory) {
  factory.RegisterControlCreateFunction(u"Gallery.Panel", MakeControl<LGalleryPanel>);
  factory.RegisterControlCreateFunction(u"Gallery.Box", MakeControl<LGalleryBox>);
  factory.RegisterControlCreateFunction(u"Gallery.Tile", MakeControl<LGalleryTile>);
  factory.RegisterControlCreateFunction(u"Gallery.Tab", MakeControl<LGalleryTab>);
  factory.RegisterControlCreateFunction(u"Gallery.Drag", MakeControl<LGalleryDrag>);
  factory.RegisterControlCreateFunction(u"Gallery.Drop", MakeControl<LGalleryDrop>);
  factory.RegisterControlCreateFunction(u"Gallery.Doomed", MakeControl<LGalleryDoomed>);
  factory.RegisterControlCreateFunction(u"Gallery.Thrower", MakeControl<LGalleryThrower>);
}
