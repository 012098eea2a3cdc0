#pragma once

#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/ScrollView.h"

namespace TF {

// A part of a screen that holds a group of controls together: Tab leaves it at its end, and the hot keys of
// what is in it work while a sibling has the focus. Its content scrolls when the skin gives it bars.
//
// Threads: main thread.
class LPanel : public HandlingControl<LPanel, LScrollView> {
 public:
  LPanel(const RCPtr<LControl>& parent, const String& name);
  ~LPanel() override;

  // Throws FailedResultException when it cannot hear the keys of its parent.
  TFRESULT Initialize() override;
  // Null at the end as well, when something is above the panel to go on with.
  RCPtr<LControl> GetNextInTabOrder(const RCPtr<LControl>& child, bool backward) override;

 private:
  TFRESULT HandleParentKey(const RCPtr<LNotificationDistributor>& sender,
                           const RCPtr<LNotification>& notification);
};

}  // namespace TF
