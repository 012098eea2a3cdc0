#include "TFFramework/ControlBase/Dialog.h"

#include "TFFramework/ControlBase/CancelArgs.h"
#include "TFFramework/Notification/Notification.h"

namespace TF {

void LDialog::Close(std::int32_t result) {
  const RCPtr<LDialog> held(this);
  mResult = result;
  const auto args = MakeRC<LCancelArgs>();
  Send(LNotification::Create(u"NID_DIALOG_CLOSING", args));
  if (args->mCancel) return;
  if (const RCPtr<LRootWindow> window = GetRootWindow()) window->RequestEnd(result);
  Send(LNotification::Create(u"NID_DIALOG_CLOSED", nullptr));
  OnClosed();
}

}  // namespace TF
