#pragma once

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Notification/NotificationHandler.h"

namespace TF {

// A control of class T that hears notifications by functions of its own, beside those that Base hears.
//
// Threads: main thread.
template <class T, class Base>
class HandlingControl : public Base {
 public:
  using Base::Base;

  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const RCPtr<LControl> held(this);
    Base::OnNotification(sender, notification);
    const RCPtr<LNotificationHandler<T>> handler = mHandler;
    if (handler && !this->mDestroyed) handler->Dispatch(sender, notification);
  }
  TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) override {
    if (mHandler) mHandler->RemoveHandler(sender, id);
    return Base::OnDistributorClosing(sender, id);
  }

 protected:
  // For Initialize, which runs again with each skin.
  void MakeHandler() {
    if (!mHandler) mHandler = MakeRC<LNotificationHandler<T>>(static_cast<T*>(this));
  }

  RCPtr<LNotificationHandler<T>> mHandler;
};

}  // namespace TF
