#pragma once

#include "TFFramework/Notification/NotificationDistributor.h"

namespace TF {

// One window, at whose top a tree of controls hangs.
//
// Threads: main thread.
class LRootWindow : public LNotificationDistributor {};

}  // namespace TF
