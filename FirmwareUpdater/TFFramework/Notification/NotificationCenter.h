#pragma once

#include "TFFramework/Notification/NotificationQueue.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A named distributor with a queue of its own: what is posted to it, it sends itself when its
// owner processes it. When its last outside holder goes, it closes: every client hears
// OnDistributorClosing once for each registration, and what is still stored is discarded.
class LNotificationCenter : public LNotificationDistributor, public LNotificationQueue {
 public:
  explicit LNotificationCenter(const char16_t* name);

  const String& GetName() const { return mName; }

  String ToString() const override { return mName; }
  TFRESULT ReleaseInternalReferences() override;

 private:
  const String mName;
};

}  // namespace TF
