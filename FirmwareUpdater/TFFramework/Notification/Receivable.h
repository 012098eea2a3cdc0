#pragma once

#include "TFFramework/Notification/NotificationId.h"

namespace TF {

class LNotificationDistributor;

// What a handler is for: the notifications of one id from one distributor. Ordered by the
// address of the distributor, then by that of the id.
class Receivable {
 public:
  // Without a distributor: what an object dispatches to itself.
  Receivable(const LNotificationDistributor* distributor, NotificationId id)
      : mDistributor(distributor), mId(id) {}
  Receivable(const Receivable&) = default;
  Receivable& operator=(const Receivable&) = default;
  virtual ~Receivable() = default;

  bool operator<(const Receivable& other) const;

 private:
  // Only compared.
  const LNotificationDistributor* mDistributor;
  NotificationId mId;
};

}  // namespace TF
