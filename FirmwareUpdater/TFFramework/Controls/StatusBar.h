#pragma once

#include "TFFramework/ControlBase/StatusDisplay.h"
#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/Label.h"
#include "TFFramework/Notification/NotificationQueue.h"

namespace TF {

// One line of text, in its child "label1". Of the texts that are posted between two idle passes the last one
// shows.
//
// Threads: main thread, but for PostText.
class LStatusBar : public HandlingControl<LStatusBar, LControl>,
                   public LNotificationQueue,
                   public IStatusDisplay {
 public:
  using HandlingControl::HandlingControl;

  // kFailure without a "label1".
  TFRESULT Initialize() override;
  void ApplyCreateParameters() override;
  void OnIdle() override;
  TFRESULT ReleaseInternalReferences() override;

  String GetDefaultText() const override { return mDefaultText; }
  void SetTextNow(const String& text) override;
  void PostText(const String& text) override;

 private:
  TFRESULT HandleSetText(const RCPtr<LNotificationDistributor>& sender,
                         const RCPtr<LNotification>& notification);

  RCPtr<LLabel> mLabel;
  String mDefaultText;  // "LABEL" of the bar's own texts.
};

}  // namespace TF
