#pragma once

#include <string>
#include <vector>

#include "TFFramework/Notification/NotificationClient.h"

namespace EngineTest {

// Writes down what the application's center delivers of the engine's notifications, such as
// "device 5<3", "file 1<0", "completed 1" and "progress 0.250".
class NotificationRecorder {
 public:
  // Drops what the center holds from before.
  NotificationRecorder();
  ~NotificationRecorder();
  NotificationRecorder(const NotificationRecorder&) = delete;
  NotificationRecorder& operator=(const NotificationRecorder&) = delete;

  // Delivers on the calling thread what was posted, and gives all there has been.
  const std::vector<std::string>& Deliver();

 private:
  class LClient;
  TF::RCPtr<LClient> mClient;
};

}  // namespace EngineTest
