#include "TFFramework/Notification/Receivable.h"

#include <functional>

namespace TF {

bool Receivable::operator<(const Receivable& other) const {
  if (mDistributor != other.mDistributor) {
    return std::less<const LNotificationDistributor*>()(mDistributor, other.mDistributor);
  }
  return std::less<NotificationId>()(mId, other.mId);
}

}  // namespace TF
