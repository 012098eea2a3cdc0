#pragma once

namespace TF {

class Mutex;

// Names one kind of notification: the address of its interned name, so that ids compare by
// pointer. A null id stands for no notification.
using NotificationId = const char16_t*;

// The id of a name, case-sensitive; null for a null or empty name. An id is a name too and
// gives itself. A name stays interned until the process ends. From any thread.
NotificationId GetNotificationID(const char16_t* name);

// The one lock of the id table and of the notification cache. A leaf: whoever holds it takes
// no other lock and releases no object.
Mutex& GetNotificationMutex();

}  // namespace TF
