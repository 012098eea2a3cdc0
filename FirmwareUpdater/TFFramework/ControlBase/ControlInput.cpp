#include "TFFramework/ControlBase/Control.h"

namespace TF {

void LControl::MouseEnter() {
  mHover = true;
  UpdateConditions();
}

void LControl::MouseLeave() {
  mHover = false;
  UpdateConditions();
}

TFRESULT LControl::MouseMove(const RCPtr<LPointWithModifiersParam>&) {
  return kNothingDone;
}

TFRESULT LControl::MouseDown(const RCPtr<LMouseButtonParam>&) {
  return kNothingDone;
}

TFRESULT LControl::MouseUp(const RCPtr<LMouseButtonParam>&) {
  return kNothingDone;
}

TFRESULT LControl::CaptureMouse(std::uint32_t, std::int32_t, std::int32_t) {
  return kNothingDone;
}

TFRESULT LControl::ReleaseMouse() {
  return kNothingDone;
}

TFRESULT LControl::MouseWheel(const RCPtr<LMouseWheelParam>&) {
  return kNothingDone;
}

void LControl::OnChildMouseDown(const RCPtr<LControl>&) {}
void LControl::OnLeftMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnLeftMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMouseMove(const RCPtr<LPointWithModifiersParam>&) {}

TFRESULT LControl::OnVerticalWheel(const RCPtr<LMouseWheelParam>&) {
  return kNothingDone;
}

TFRESULT LControl::OnHorizontalWheel(const RCPtr<LMouseWheelParam>&) {
  return kNothingDone;
}

void LControl::OnClick(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnLeftClick(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleClick(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightClick(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnLeftClicked(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleClicked(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightClicked(const RCPtr<LMouseButtonParam>&) {}
void LControl::ShowToolTip(bool) {}
void LControl::OnContextMenuOpening(const RCPtr<LControl>&) {}

TFRESULT LControl::OnMenuItemText(const RCPtr<LMenuDescriptor>&, std::int32_t, const String&,
                                  LMenuItemState&) {
  return kNothingDone;
}

}  // namespace TF
