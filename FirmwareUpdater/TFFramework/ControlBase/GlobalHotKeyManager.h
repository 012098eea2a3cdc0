#pragma once

#include "TFFramework/ControlBase/HotKeys.h"
#include "TFFramework/Notification/NotificationQueue.h"
#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

// The keys that work wherever the focus is: each posts a notification of the application.
//
// Threads: main thread.
class LGlobalHotKeyManager : public virtual LRefCountedObject {
 public:
  // Where the notifications are posted.
  explicit LGlobalHotKeyManager(const RCPtr<LNotificationQueue>& owner) : mOwner(owner) {}

  // kNothingDone for a key that is bound to nothing. The payload is an LKeyParam of the key.
  TFRESULT ProcessKey(const KeyCode& key);

  // The key that sends the notification; false without one.
  bool FindKey(const String& notification, KeyCode& key) const {
    return FindKeyOf(mHotKeys, notification, key);
  }
  bool HasKey(const KeyCode& key) const { return FindHotKey(mHotKeys, key) != nullptr; }
  void Bind(const String& notification, const KeyCode& key) { mHotKeys[notification].push_back(key); }
  void Add(const HotKeyMap& hotKeys);
  // Takes out each key once that Add has put in.
  void Remove(const HotKeyMap& hotKeys);

 private:
  const RCPtr<LNotificationQueue> mOwner;
  HotKeyMap mHotKeys;
};

}  // namespace TF
