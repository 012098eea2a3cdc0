#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
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

// What is no finite number is 0.
double ParseDecimal(const String& text) {
  const std::string number = ToUtf8(text);
  double value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}

RCPtr<LControlFactory> FindFactory() {
  const LFrameworkApp* application = LFrameworkApp::GetInstance();
  return application ? application->GetControlFactory() : nullptr;
}

void MakeChild(const RCPtr<LControl>& parent, const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControlFactory> factory = FindFactory();
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
  if (mRootWindow) mLayout->mAxes = before->mAxes;
  TakeFont();
  TakeLooks();
  String label;
  if (mStringSection && mStringSection->GetString(u"LABEL", label)) ChangeText(label, false);
  SetActiveLook(0, true);
  Relayout();
  ReplaceChildren(descriptor);
  Relayout();
  UpdateConditions();
  const TFRESULT result = Initialize();
  return Failed(result) ? result : OnDescriptorApplied();
}

void LControl::ReplaceChildren(const RCPtr<LControlDescriptor>& descriptor) {
  std::map<String, RCPtr<LControl>> left;
  RCPtrArray<LControl> gone;
  while (GetChildCount() > 0) {
    const RCPtr<LControl> child = GetChild(GetChildCount() - 1);
    mChildren.RemoveChild(child);
    if (child->mIsDoomed || !left.try_emplace(child->GetName(), child).second) gone.Add(child);
  }
  for (const RCPtr<LControlDescriptor>& part : descriptor->mSubControls) {
    const auto found = left.find(part->mName);
    const bool stays = found != left.end() && found->second->GetDescriptor() &&
                       found->second->GetDescriptor()->mClass == part->mClass;
    if (stays) {
      const RCPtr<LControl> child = found->second;
      left.erase(found);
      AdoptChild(child, part);
    } else if (!IsSet(*part, u"DEFER_CREATE")) {
      MakeChild(RCPtr<LControl>(this), part);
    }
  }
  for (const auto& [name, child] : left) child->Destroy();
  for (const RCPtr<LControl>& child : gone) child->Destroy();
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
  if (mStringSection) mStringSection->GetString(u"TOOLTIP", mToolTipText);
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

void LControl::TakeFont() {
  static const FontAttributes none;
  const FontAttributes& font = mDescriptor && mDescriptor->mSkin ? *mDescriptor->mSkin : none;
  mFontInherits = font.mFontInherits;
  mFontSizeRelative = font.mFontSizeRelative;
  ChangeFontTo(font.mFontName, font.mFontSize, font.mFontStyle, font.mFontSizeRelative);
}

}  // namespace TF
