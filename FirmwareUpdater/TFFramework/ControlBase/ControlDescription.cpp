#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/MenuBuilder.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

RCPtr<LLayoutDescriptor> CopyLayout(const LControlDescriptor& descriptor) {
  return descriptor.mLayout ? MakeRC<LLayoutDescriptor>(*descriptor.mLayout) : MakeRC<LLayoutDescriptor>();
}

// False when the descriptor has no such parameter.
bool GetCreateParameter(const LControlDescriptor& descriptor, const char16_t* key, String& value) {
  return descriptor.mCreateParams && descriptor.mCreateParams->GetString(key, value);
}

bool IsSet(const LControlDescriptor& descriptor, const char16_t* key) {
  String value;
  return GetCreateParameter(descriptor, key, value) && value == u"true";
}

using PartMap = std::map<String, RCPtr<LControlDescriptor>>;

// By their names, the first of each.
PartMap MapParts(const LControlDescriptor& descriptor) {
  PartMap parts;
  for (const RCPtr<LControlDescriptor>& part : descriptor.mSubControls) parts.try_emplace(part->mName, part);
  return parts;
}

// What a child goes on under in another skin; null for none.
RCPtr<LControlDescriptor> FindPartOf(const LControl& child, const PartMap& parts) {
  const auto found = parts.find(child.GetName());
  const bool goesOn = found != parts.end() && !child.IsDoomed() && child.GetDescriptor() &&
                      child.GetDescriptor()->mClass == found->second->mClass;
  return goesOn ? found->second : nullptr;
}

// What is no finite number is 0.
double ParseDecimal(const String& text) {
  const std::string number = ToUtf8(text);
  double value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}

void MakeChild(const RCPtr<LControl>& parent, const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (factory && factory->CreateSubControl(parent, descriptor)) return;
  LogRecord(fmt::format("skin: \"{}\" could not be made below \"{}\"", ToUtf8(descriptor->mName),
                        ToUtf8(parent->GetName())));
}

}  // namespace

TFRESULT LControl::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  if (!descriptor) return kInvalidArgument;
  if (mCreated) return ReplaceDescriptor(descriptor);
  TakeLayout(descriptor);
  TakeFont();
  TakeLooks();
  String label;
  if (mStringSection && mStringSection->GetString(u"LABEL", label)) ChangeText(label, false);
  SetActiveLook(0, true);
  mConditions->mCurrent = ComputeConditions();
  return kSuccess;
}

void LControl::TakeLayout(const RCPtr<LControlDescriptor>& descriptor) {
  SetClipToParent(true);
  mDescriptor = descriptor;
  mLayout = CopyLayout(*descriptor);
  const bool clip = mLayout->ClipToParent;
  mLayout->ClipToParent = true;
  SetClipToParent(clip);
  if (mParent) mParent->mChildren.Touch();
}

TFRESULT LControl::ReplaceDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControl> held(this);
  const RCPtr<LLayoutDescriptor> before = mLayout;
  InvalidateFrame();
  TakeLayout(descriptor);
  mLayout->IsVisible = before->IsVisible;
  mLayout->IsEnabled = before->IsEnabled;
  for (std::size_t axis = 0; mRootWindow && axis < mLayout->mAxes.size(); ++axis) {
    mLayout->mAxes[axis].mPosition = before->mAxes[axis].mPosition;
    mLayout->mAxes[axis].mSize = before->mAxes[axis].mSize;
  }
  TakeFont();
  TakeLooks();
  String label;
  if (mStringSection && mStringSection->GetString(u"LABEL", label)) ChangeText(label, false);
  ShowSomeLook();
  Relayout();
  ReplaceChildren(descriptor);
  Relayout();
  UpdateConditions();
  const TFRESULT result = Initialize();
  return Failed(result) ? result : OnDescriptorApplied();
}

void LControl::ReplaceChildren(const RCPtr<LControlDescriptor>& descriptor) {
  const PartMap parts = MapParts(*descriptor);
  RCPtrArray<LControl> gone;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    if (!FindPartOf(*GetChild(index), parts)) gone.Add(GetChild(index));
  }
  // As long as they are in the window, which must forget them.
  for (const RCPtr<LControl>& child : gone) child->Destroy();
  RCPtrArray<LControl> detached;
  std::map<const LControlDescriptor*, RCPtr<LControl>> staying;
  while (GetChildCount() > 0) {
    const RCPtr<LControl> child = GetChild(GetChildCount() - 1);
    mChildren.RemoveChild(child);
    detached.Add(child);
    staying[FindPartOf(*child, parts).Get()] = child;
  }
  const auto dropTheRest = [&detached] {
    for (const RCPtr<LControl>& child : detached) {
      if (!child->mParent) child->Destroy();
    }
  };
  try {
    for (const RCPtr<LControlDescriptor>& part : descriptor->mSubControls) {
      const auto found = staying.find(part.Get());
      if (found != staying.end()) {
        AdoptChild(found->second, part);
      } else if (!IsSet(*part, u"DEFER_CREATE")) {
        MakeChild(RCPtr<LControl>(this), part);
      }
    }
  } catch (...) {
    dropTheRest();
    throw;
  }
  dropTheRest();
}

TFRESULT LControl::AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) {
  if (!child || !descriptor) return kFailure;
  const TFRESULT result = child->SetParent(RCPtr<LControl>(this));
  return Failed(result) ? result : child->ApplyDescriptor(descriptor);
}

TFRESULT LControl::CreateChildren(const RCPtr<LControlDescriptor>& descriptor) {
  if (!descriptor) return kInvalidArgument;
  std::exception_ptr failure;
  DestroyChildren(failure);
  if (failure) std::rethrow_exception(failure);
  {
    // One layout when all are there, instead of one for each.
    const LayoutGuard guard(mInLayout);
    for (const RCPtr<LControlDescriptor>& part : descriptor->mSubControls) {
      if (!IsSet(*part, u"DEFER_CREATE")) MakeChild(RCPtr<LControl>(this), part);
    }
  }
  Relayout();
  return kSuccess;
}

TFRESULT LControl::Initialize() {
  if (!mHandler) mHandler = MakeRC<LNotificationHandler<LControl>>(this);
  ApplyCreateParameters();
  if (mStringSection) {
    mStringSection->GetString(u"TOOLTIP", mToolTipText);
    if (!mContextMenu) mContextMenu = ReadContextMenu(*mStringSection);
  }
  TakeHotKeys();
  if (!mHotKeys.empty() && mParent) {
    mHandler->AddHandler(&LControl::HandleSiblingKey, RCPtr<LNotificationDistributor>(mParent),
                         u"NID_SIBLING_KEY");
  }
  return kSuccess;
}

void LControl::ApplyCreateParameters() {
  if (!mDescriptor) return;
  String value;
  if (!mCreated && GetCreateParameter(*mDescriptor, u"INITIAL_VALUE", value)) SetValue(ParseDecimal(value));
  const bool isGiven = GetCreateParameter(*mDescriptor, u"NOT_FOCUSABLE", value);
  SetNotFocusable(isGiven ? value == u"true" : mLayout->TabStop < 0);
  mUseParentToolTip = IsSet(*mDescriptor, u"USE_PARENT_TOOLTIP");
  mWantsTab = IsSet(*mDescriptor, u"WANTS_TAB");
}

bool LControl::GetCreateFlag(const char16_t* key, bool& value) const {
  String text;
  if (!mDescriptor || !GetCreateParameter(*mDescriptor, key, text)) return false;
  value = text.ToLower() == u"true";
  return true;
}

void LControl::TakeLooks() {
  const RCPtr<LLookList> list =
      mDescriptor && mDescriptor->mSkin ? mDescriptor->mSkin->mLookList : RCPtr<LLookList>();
  const std::int32_t count = list ? list->GetCount() : 0;
  SetLookCount(count);
  for (std::int32_t slot = 0; slot < count; ++slot) {
    const RCPtr<LLookDescriptor>& look = (*list)[slot];
    SetLook(look ? MakeRC<LLook>(look, mFont) : RCPtr<LLook>(), slot);
  }
}

void LControl::ShowSomeLook() {
  for (std::int32_t slot = 0; slot < mLooks.GetCount(); ++slot) {
    if (GetLookAlpha(slot) > 0) return;
  }
  SetActiveLook(0, true);
}

void LControl::TakeFont() {
  static const FontAttributes none;
  const FontAttributes& font = mDescriptor && mDescriptor->mSkin ? *mDescriptor->mSkin : none;
  mFontInherits = font.mFontInherits;
  mFontSizeRelative = font.mFontSizeRelative;
  ChangeFontTo(font.mFontName, font.mFontSize, font.mFontStyle, font.mFontSizeRelative);
}

}  // namespace TF
