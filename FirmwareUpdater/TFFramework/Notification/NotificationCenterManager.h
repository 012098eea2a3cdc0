#pragma once

#include "TFFramework/Notification/NotificationCenter.h"

namespace TF {

// Name of the center that the main thread processes: whoever reports to the screen posts there.
inline constexpr const char16_t* kApplicationCenterName = u"application";

// Finds the centers of the process by name. From any thread, except that ProcessAll belongs to
// the main thread.
class LNotificationCenterManager : public virtual LRefCountedObject {
 public:
  // Made at the first call.
  static RCPtr<LNotificationCenterManager> GetInstance();

  // Lets go of the manager and with it of all centers, for the end of the process. A later
  // GetInstance makes a new one.
  static void ReleaseInstance();

  // Made at the first call with this name; null for a null or empty name.
  RCPtr<LNotificationCenter> GetCenter(const char16_t* name);

  // Processes every center, the latest first. True when notifications remain in any.
  bool ProcessAll(bool sendIdle);

 private:
  RCPtr<LNotificationCenter> FindCenter(std::int32_t index) const;

  // Guards mCenters.
  mutable Mutex mMutex;
  RCPtrArray<LNotificationCenter, 1, 0> mCenters;
};

}  // namespace TF
