#pragma once

#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/System/FileDialog.h"

// The gallery's top control: shows one page at a time, and tells of what the menu bar reports. Main thread.
class LGalleryMain : public TF::HandlingControl<LGalleryMain, TF::LControl> {
 public:
  using HandlingControl::HandlingControl;
  TFRESULT OnDescriptorApplied() override;
  void ProcessRootWindowAquired() override;

  // By its tab's text.
  void ShowPage(const TF::String& name);
  // Shows a line in the foot of the window.
  void Tell(const TF::String& text);

 private:
  // Makes it when it is first asked for.
  TF::RCPtr<TF::LControl> GetPage(const TF::String& name, bool makes);
  TFRESULT HandleMenu(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification);
  TFRESULT HandleOpen(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification);
  // What the application's center hears.
  TFRESULT HandOn(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                  const TF::RCPtr<TF::LNotification>& notification);

  TF::RCPtr<TF::LFileDialog> mFileDialog;
  TF::String mPage;  // The one that is shown.
};
