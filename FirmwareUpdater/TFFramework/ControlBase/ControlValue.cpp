#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

constexpr std::int32_t kInheritedStyle = FontAttributes::kNoFontStyle;

void SendFrom(LControl& control, const char16_t* name, const RCPtr<LRefCountedObject>& data) {
  control.Send(LNotification::Create(name, data));
}

}  // namespace

double LControl::ScaledValueOf(double normalized) const {
  if (mValueScale == kLogarithmicScale) return mValueMin * std::pow(mValueMax / mValueMin, normalized);
  return (mValueMax - mValueMin) * normalized + mValueMin;
}

double LControl::SetValue(double normalized) {
  if (std::isnan(normalized)) return mValue;
  const double value = std::clamp(normalized, 0.0, 1.0);
  if (value == mValue) return mValue;
  const RCPtr<LControl> held(this);
  mValue = value;
  OnValueChange();
  SendFrom(*this, u"NID_VALUE_CHANGE", MakeRC<LValueParam>(mValue, GetScaledValue()));
  return mValue;
}

TFRESULT LControl::SetValueRange(double min, double max, std::int32_t scale) {
  const bool isLogarithmic = scale == kLogarithmicScale && min > 0 && max > 0;
  if (scale != kLinearScale && !isLogarithmic) return kInvalidArgument;
  mValueMin = min;
  mValueMax = max;
  mValueScale = scale;
  return kSuccess;
}

double LControl::SetScaledValue(double value) {
  if (mValueMin == mValueMax) return SetValue(0);
  const double scaled = std::clamp(value, std::min(mValueMin, mValueMax), std::max(mValueMin, mValueMax));
  if (mValueScale == kLogarithmicScale) {
    return SetValue(std::log(scaled / mValueMin) / std::log(mValueMax / mValueMin));
  }
  return SetValue((scaled - mValueMin) / (mValueMax - mValueMin));
}

TFRESULT LControl::SetText(const String& text) {
  return ChangeText(text, true) ? kSuccess : kNothingDone;
}

bool LControl::TextActsOnFrame() const {
  return std::any_of(mLayout->mAxes.begin(), mLayout->mAxes.end(), [](const AxisLayout& axis) {
    return axis.mTextOverflow != TextOverflow::kClip && !axis.mMinimum.mIsNamed;
  });
}

bool LControl::ChangeText(const String& text, bool relayout) {
  if (text == mText) return false;
  ShowWindowTitle(text);
  mText = text;
  for (const RCPtr<LLook>& look : mLooks) {
    if (look) look->SetText(text);
  }
  if (relayout && TextActsOnFrame()) Relayout();
  InvalidateFrame();
  return true;
}

RCPtr<LFont> LControl::ResolveFont(const String& name, float size, std::int32_t style, bool relative) const {
  const LFrameworkApp* application = LFrameworkApp::GetInstance();
  const RCPtr<LFont> standard = application ? application->GetDefaultFont() : RCPtr<LFont>();
  const RCPtr<LFont> base = mFontInherits && mParent ? mParent->mFont : standard;
  if (!base && (name.IsEmpty() || !(size > 0) || mFontSizeRelative || relative)) return nullptr;
  float points = size;
  if (!(size > 0) || mFontSizeRelative) {
    points = base->GetSize() * (size > 0 && relative ? size : 1.0F);
  }
  const std::int32_t ownStyle = base ? base->GetStyle() : LFont::kRegular;
  return LFont::Get(name.IsEmpty() ? base->GetName() : name, points,
                    style == kInheritedStyle ? ownStyle : style);
}

bool LControl::ChangeFontTo(const String& name, float size, std::int32_t style, bool relative) {
  mFontNameInherits = mFontInherits && name.IsEmpty();
  mFontSizeInherits = mFontInherits && (!(size > 0) || relative);
  mFontStyleInherits = mFontInherits && style == kInheritedStyle;
  mGivenFontSize = size;
  const RCPtr<LFont> font = ResolveFont(name, size, style, relative);
  if (font == mFont) return false;
  mFont = font;
  for (std::int32_t slot = mLooks.GetCount() - 1; slot >= 0; --slot) {
    if (mLooks[slot]) mLooks[slot]->SetFont(mFont);
  }
  return true;
}

TFRESULT LControl::SetFont(const String& name, float size, std::int32_t style, bool relative) {
  if (!ChangeFontTo(name, size, style, relative)) return kNothingDone;
  const RCPtr<LControl> held(this);
  OnFontChange();
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    child->OnParentFontChange();
  }
  Relayout();
  InvalidateFrame();
  return kSuccess;
}

void LControl::OnParentFontChange() {
  if (!mFontInherits) return;
  const bool isOwn = static_cast<bool>(mFont);
  SetFont(mFontNameInherits || !isOwn ? String() : mFont->GetName(),
          mFontSizeInherits || !isOwn ? mGivenFontSize : mFont->GetSize(),
          mFontStyleInherits || !isOwn ? kInheritedStyle : mFont->GetStyle(), mFontSizeRelative);
}

RCPtr<LControl> LControl::FindEditTarget() {
  if (IsEditTarget()) return RCPtr<LControl>(this);
  return mParent ? mParent->FindEditTarget() : nullptr;
}

bool LControl::CanPerformEdit(std::int32_t) {
  return false;
}

TFRESULT LControl::PerformEdit(std::int32_t) {
  Throw<std::logic_error>("LControl::PerformEdit must be overridden", "TF::LControl::PerformEdit");
}

}  // namespace TF
