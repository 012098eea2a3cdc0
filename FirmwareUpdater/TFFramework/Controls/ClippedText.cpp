#include "TFFramework/Controls/ClippedText.h"

#include "TFFramework/ControlBase/Control.h"

namespace TF {

bool IsTextClipped(const LControl& control) {
  const RCPtr<LLook> look = control.GetLook(LControl::kActiveLook);
  if (!look) return false;
  const RCPtr<LFontText>& text = look->GetFontText();
  if (!text || !text->GetFont()) return !control.GetText().IsEmpty();
  const RectT<double>& frame = control.GetBounds();
  const RectT<std::int32_t> room = look->GetTextRect(RoundToInt32(frame.mWidth), RoundToInt32(frame.mHeight));
  return text->GetNaturalWidth() > room.mWidth;
}

}  // namespace TF
