#include "TFFramework/ControlBase/Clipboard.h"

#include <stdexcept>
#include <utility>

#include "Platform/WindowSystem.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

// Null while the program shows nothing.
Platform::Clipboard* FindDesktopClipboard() {
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  Platform::WindowSystem* const windowSystem = application ? application->GetWindowSystem() : nullptr;
  return windowSystem ? &windowSystem->GetClipboard() : nullptr;
}

// False for an object that has only the name of its type to tell.
bool TakeText(const LTaggableObject& object, String& text) {
  text = object.ToString();
  return !(text == object.LRefCountedObject::ToString());
}

}  // namespace

String StringToString(const String& text) {
  return text;
}

TFRESULT LClipboard::Initialize() {
  try {
    AddHandlers();
  } catch (const std::runtime_error& error) {
    LogRecord(error.what());
    return kFailure;
  }
  mInitialized = true;
  return kSuccess;
}

void LClipboard::AddHandlers() {
  using Function = LNotificationHandler<LClipboard>::Function;
  static constexpr std::pair<const char16_t*, Function> kHandlers[] = {
      {u"NID_EDIT_CUT_REQ", &LClipboard::HandleCut},
      {u"NID_EDIT_COPY_REQ", &LClipboard::HandleCopy},
      {u"NID_EDIT_PASTE_REQ", &LClipboard::HandlePaste},
      {u"NID_EDIT_DELETE_REQ", &LClipboard::HandleDelete},
  };
  mHandlers = MakeRC<LNotificationHandler<LClipboard>>(this);
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LNotificationDistributor> center(application ? application->GetApplicationCenter() : nullptr);
  for (const auto& [name, function] : kHandlers)
    ThrowIfFailed(mHandlers->AddHandler(function, center, name), "TF::LClipboard::Initialize");
}

void LClipboard::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                                const RCPtr<LNotification>& notification) {
  const RCPtr<LNotificationHandler<LClipboard>> handlers = mHandlers;
  if (handlers) handlers->Dispatch(sender, notification);
}

TFRESULT LClipboard::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) {
  if (mHandlers) mHandlers->RemoveHandler(sender, id);
  return LNotificationClient::OnDistributorClosing(sender, id);
}

TFRESULT LClipboard::HandleCut(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  OnEditRequest(EditOperation::kCut);
  return kNothingDone;
}

TFRESULT LClipboard::HandleCopy(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  OnEditRequest(EditOperation::kCopy);
  return kNothingDone;
}

TFRESULT LClipboard::HandlePaste(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  OnEditRequest(EditOperation::kPaste);
  return kNothingDone;
}

TFRESULT LClipboard::HandleDelete(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  OnEditRequest(EditOperation::kDelete);
  return kNothingDone;
}

void LClipboard::OnEditRequest(std::int32_t operation) {
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LRootWindow> window = application ? application->GetActiveRootWindow() : nullptr;
  if (!window) return;
  const RCPtr<LControl> focus = window->GetFocusControl();
  const RCPtr<LControl> target = focus ? focus->FindEditTarget() : nullptr;
  if (target && target->IsEditTarget() && target->CanPerformEdit(operation)) target->PerformEdit(operation);
}

TFRESULT LClipboard::SetContents(const RCPtr<LTaggableObject>& object) {
  if (mSetting) return kNothingDone;
  const LayoutGuard setting(mSetting);
  mContents = object;
  return object ? HandOver(object) : kSuccess;
}

TFRESULT LClipboard::HandOver(const RCPtr<LTaggableObject>& object) {
  Platform::Clipboard* const clipboard = FindDesktopClipboard();
  if (!clipboard) return kFailure;
  String text;
  const bool taken = TakeText(*object, text) ? clipboard->SetText(ToUtf8(text)) : clipboard->SetPrivate();
  mLastSequence = clipboard->GetSequenceNumber();
  return taken ? kSuccess : kFailure;
}

// The desktop has one text, in UTF-8: there is no second form to choose from.
RCPtr<LTaggableObject> LClipboard::GetContents() {
  Platform::Clipboard* const clipboard = FindDesktopClipboard();
  if (!clipboard) return mContents;
  clipboard->Look();
  const std::uint32_t sequence = clipboard->GetSequenceNumber();
  if (sequence == mLastSequence || clipboard->HasPrivate()) return mContents;
  if (!clipboard->HasText()) {
    mContents = nullptr;
    return nullptr;
  }
  mContents = MakeRC<LTextObject>(FromUtf8(clipboard->GetText()));
  mLastSequence = sequence;
  return mContents;
}

}  // namespace TF
