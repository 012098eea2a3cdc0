#include <algorithm>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

void LControl::SetLookCount(std::int32_t count) {
  mLooks.SetCount(count);
  const auto weights = static_cast<std::size_t>(mLooks.GetCount());
  if (mLookAlpha.size() < weights) mLookAlpha.resize(weights, 0.0F);
}

TFRESULT LControl::SetLook(const RCPtr<LLook>& look, std::int32_t slot) {
  if (slot < 0 || slot >= mLooks.GetCount()) return kInvalidArgument;
  if (look) {
    look->SetFont(mFont);
    look->SetText(mText);
    look->SetSize({RoundToInt32(mBounds.mWidth), RoundToInt32(mBounds.mHeight)});
    look->SetWrap(mLayout->Axis(LayoutAxis::kX).mTextOverflow == TextOverflow::kWrap);
  }
  mLooks[slot] = look;
  if (mLookAlpha[static_cast<std::size_t>(slot)] > 0) InvalidateFrame();
  return kSuccess;
}

TFRESULT LControl::SetLookAlpha(std::int32_t slot, float alpha, bool exclusive) {
  if (slot < 0 || static_cast<std::size_t>(slot) >= mLookAlpha.size()) return kInvalidArgument;
  const std::vector<float> before = mLookAlpha;
  if (exclusive) {
    const float own = mLookAlpha[static_cast<std::size_t>(slot)];
    std::fill(mLookAlpha.begin(), mLookAlpha.end(), 0.0F);
    mLookAlpha[static_cast<std::size_t>(slot)] = own;
  }
  if (alpha >= 0 && alpha <= 1) mLookAlpha[static_cast<std::size_t>(slot)] = alpha;
  if (mLookAlpha != before) InvalidateFrame();
  return kSuccess;
}

TFRESULT LControl::SetActiveLook(std::int32_t slot, bool exclusive) {
  return SetLookAlpha(slot, 1.0F, exclusive);
}

RCPtr<LLook> LControl::GetLook(std::int32_t slot) const {
  if (slot >= 0 && slot < mLooks.GetCount()) return mLooks[slot];
  RCPtr<LLook> first;
  for (std::int32_t index = 0; index < mLooks.GetCount(); ++index) {
    if (!mLooks[index]) continue;
    if (mLookAlpha[static_cast<std::size_t>(index)] > 0) return mLooks[index];
    if (!first) first = mLooks[index];
  }
  return first;
}

RectT<double> LControl::GetClientRect(std::int32_t slot) const {
  const RCPtr<LLook> look = GetLook(slot);
  if (!look) return {0, 0, mBounds.mWidth, mBounds.mHeight};
  const RectT<std::int32_t>& client = look->GetClientRect();
  return {double(client.mX), double(client.mY), double(client.mWidth), double(client.mHeight)};
}

RectT<double> LControl::GetClientView() {
  const RectT<double> client = GetClientRect();
  return {mScrollOffset.mX, mScrollOffset.mY, client.mWidth, client.mHeight};
}

void LControl::SetOpacity(float opacity) {
  if (opacity == mOpacity) return;
  mOpacity = opacity;
  InvalidateFrame();
}

}  // namespace TF
