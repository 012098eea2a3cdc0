#include "TFFramework/Controls/StatusBar.h"

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

namespace {

constexpr const char16_t* kSetText = u"NID_SET_STATUS_TEXT";

}  // namespace

TFRESULT LStatusBar::Initialize() {
  const TFRESULT result = HandlingControl::Initialize();
  mLabel = FindChild(u"label1");
  if (Failed(result) || !mLabel) return kFailure;
  if (mStringSection) mStringSection->GetString(u"LABEL", mDefaultText);
  if (mHandler) return result;
  MakeHandler();
  const RCPtr<LNotificationDistributor> self(this);
  ThrowIfFailed(mHandler->AddHandler(&LStatusBar::HandleSetText, self, kSetText, kNotifyLatestPostedOnly),
                "TF::LStatusBar::Initialize");
  // The queue's reference to the bar it belongs to must not keep the bar.
  if (!Failed(SetDistributor(self))) AddInternalReferences();
  AddIdleUser();
  return result;
}

TFRESULT LStatusBar::ReleaseInternalReferences() {
  if (Shutdown()) DropInternalReferences();
  return HandlingControl::ReleaseInternalReferences();
}

void LStatusBar::ApplyCreateParameters() {
  HandlingControl::ApplyCreateParameters();
  SetNotFocusable(true);
}

void LStatusBar::OnIdle() {
  const RCPtr<LControl> held(this);
  HandlingControl::OnIdle();
  if (!mDestroyed) Process(false);
}

TFRESULT LStatusBar::HandleSetText(const RCPtr<LNotificationDistributor>&,
                                   const RCPtr<LNotification>& notification) {
  const RCPtr<LHolder<String>> text(notification->GetData());
  if (!text || !mLabel) return kNothingDone;
  mLabel->SetText(text->GetValue());
  return kSuccess;
}

void LStatusBar::SetTextNow(const String& text) {
  if (!mLabel || mDestroyed) return;
  const RCPtr<LControl> held(this);
  Process(false);
  mLabel->SetText(text);
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (window && window->GetServices()) window->GetServices()->RedrawNow();
}

void LStatusBar::PostText(const String& text) {
  Post(LNotification::Create(kSetText, MakeRC<LHolder<String>>(text)));
}

}  // namespace TF
