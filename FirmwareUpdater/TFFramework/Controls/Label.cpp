#include "TFFramework/Controls/Label.h"

#include "TFFramework/Controls/ClippedText.h"

namespace TF {

TFRESULT LLabel::OnDescriptorApplied() {
  SetNotFocusable(true);
  return LControl::OnDescriptorApplied();
}

String LLabel::GetToolTipText() {
  return IsTextClipped(*this) ? mText : LControl::GetToolTipText();
}

}  // namespace TF
