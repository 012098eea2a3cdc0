#include "TFFramework/ControlBase/Control.h"

namespace TF {

bool LControl::FindDesktop(LayoutDesktop&) {
  return false;
}

void LControl::ShowWindowTitle(const String&) {}
void LControl::SizeWindow() {}

LControl::CursorHandle LControl::ShowCursor(CursorHandle) {
  return 0;
}

void LControl::RepeatHitTest() {}

}  // namespace TF
