#pragma once

#include <map>

#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/Receivable.h"

namespace TF {

// Takes the notifications of its owner, an LNotificationClient, to the owner's member
// functions. The owner holds the handler, forwards its OnNotification to Dispatch and removes
// the entry in its OnDistributorClosing.
//
// All operations may run on any thread; no lock is held while a member function runs, which
// may add and remove handlers and drop this object.
template <class T>
class LNotificationHandler : public virtual LRefCountedObject {
 public:
  using Function = TFRESULT (T::*)(const RCPtr<LNotificationDistributor>& sender,
                                   const RCPtr<LNotification>& notification);

  explicit LNotificationHandler(T* owner) : mOwner(owner) {}

  T* GetOwner() const { return mOwner; }

  // Registers the owner and takes the function for this distributor and name, in place of the
  // one it had. kInvalidArgument for a null distributor, kFailure when the owner could not be
  // registered.
  TFRESULT AddHandler(Function function, const RCPtr<LNotificationDistributor>& distributor,
                      const char16_t* name, std::uint32_t flags = 0) {
    if (!distributor) return kInvalidArgument;
    const NotificationId id = mOwner->Register(distributor, name, flags);
    if (id == nullptr) return kFailure;
    Store(Receivable(distributor.Get(), id), {function, flags});
    return kSuccess;
  }

  // For notifications that the owner dispatches to itself with a null sender; registers
  // nothing. kFailure for an empty name.
  TFRESULT AddLocalHandler(Function function, const char16_t* name) {
    const NotificationId id = GetNotificationID(name);
    if (id == nullptr) return kFailure;
    Store(Receivable(nullptr, id), {function, 0});
    return kSuccess;
  }

  // Takes the function out and leaves the owner's registration as it is. False when there was
  // none.
  bool RemoveHandler(const RCPtr<LNotificationDistributor>& distributor, NotificationId id) {
    const MutexLock lock(mMutex);
    return mHandlers.erase(Receivable(distributor.Get(), id)) > 0;
  }

  // kFailure when there is none; the arguments stay as they are then.
  TFRESULT GetHandler(const RCPtr<LNotificationDistributor>& distributor, const char16_t* name,
                      Function& function, std::uint32_t& flags) const {
    Entry entry;
    if (!Find(Receivable(distributor.Get(), GetNotificationID(name)), entry)) return kFailure;
    function = entry.mFunction;
    flags = entry.mFlags;
    return kSuccess;
  }

  // Calls the function for this sender and id and gives its result; kSuccess when there is
  // none, kInvalidArgument for a null notification.
  TFRESULT Dispatch(const RCPtr<LNotificationDistributor>& sender, const RCPtr<LNotification>& notification) {
    if (!notification) return kInvalidArgument;
    Entry entry;
    if (!Find(Receivable(sender.Get(), notification->GetId()), entry)) return kSuccess;
    return (mOwner->*entry.mFunction)(sender, notification);
  }

 private:
  struct Entry {
    Function mFunction = nullptr;
    std::uint32_t mFlags = 0;
  };

  void Store(const Receivable& key, const Entry& entry) {
    const MutexLock lock(mMutex);
    mHandlers.insert_or_assign(key, entry);
  }

  bool Find(const Receivable& key, Entry& entry) const {
    const MutexLock lock(mMutex);
    const auto found = mHandlers.find(key);
    if (found == mHandlers.end()) return false;
    entry = found->second;
    return true;
  }

  T* const mOwner;
  // Guards mHandlers: one thread delivers while another removes.
  mutable Mutex mMutex;
  std::map<Receivable, Entry> mHandlers;
};

}  // namespace TF
