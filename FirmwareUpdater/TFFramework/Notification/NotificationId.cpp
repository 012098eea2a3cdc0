#include "TFFramework/Notification/NotificationId.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Storage/StringArray.h"

namespace TF {

namespace {

// An id is the address of the characters of an entry of mNames. Entries move when the array
// grows, their characters do not.
class IdTable {
 public:
  NotificationId Find(const char16_t* name) {
    if (mIds.contains(name)) return name;
    const auto found = mIdsByText.find(name);
    return found != mIdsByText.end() ? found->second : Add(name);
  }

 private:
  NotificationId Add(const char16_t* name) {
    mNames.Add(String(name));
    const NotificationId id = mNames.GetAt(mNames.GetCount() - 1).GetText();
    mIdsByText.emplace(id, id);
    mIds.insert(id);
    return id;
  }

  StringArray mNames;
  std::unordered_map<std::u16string_view, NotificationId> mIdsByText;
  std::unordered_set<NotificationId> mIds;
};

}  // namespace

// Never destroyed: notifications may live until the very end of the process.
Mutex& GetNotificationMutex() {
  static Mutex& mutex = *new Mutex;
  return mutex;
}

NotificationId GetNotificationID(const char16_t* name) {
  if (name == nullptr || *name == u'\0') return nullptr;
  static IdTable& table = *new IdTable;
  const MutexLock lock(GetNotificationMutex());
  return table.Find(name);
}

}  // namespace TF
