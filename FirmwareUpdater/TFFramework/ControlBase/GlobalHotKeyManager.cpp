#include "TFFramework/ControlBase/GlobalHotKeyManager.h"

#include <algorithm>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Notification/Notification.h"

namespace TF {

TFRESULT LGlobalHotKeyManager::ProcessKey(const KeyCode& key) {
  const String* const notification = FindHotKey(mHotKeys, key);
  if (!notification) return kNothingDone;
  if (mOwner) mOwner->Post(LNotification::Create(notification->GetText(), MakeRC<LKeyParam>(key)));
  return kSuccess;
}

void LGlobalHotKeyManager::Add(const HotKeyMap& hotKeys) {
  for (const auto& [notification, keys] : hotKeys) {
    std::vector<KeyCode>& bound = mHotKeys[notification];
    bound.insert(bound.end(), keys.begin(), keys.end());
  }
}

void LGlobalHotKeyManager::Remove(const HotKeyMap& hotKeys) {
  for (const auto& [notification, keys] : hotKeys) {
    const auto found = mHotKeys.find(notification);
    if (found == mHotKeys.end()) continue;
    std::vector<KeyCode>& bound = found->second;
    for (const KeyCode& key : keys) {
      // The last one: what was bound before it stays.
      const auto last = std::find_if(bound.rbegin(), bound.rend(),
                                     [&key](const KeyCode& other) { return other.code == key.code; });
      if (last != bound.rend()) bound.erase(std::next(last).base());
    }
    if (bound.empty()) mHotKeys.erase(found);
  }
}

}  // namespace TF
