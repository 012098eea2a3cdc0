#include "Tests/Support/Engine/NotificationRecorder.h"

#include <fmt/format.h>

#include "Engine/FirmwareUpdateNotifications.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Notification/NotificationCenterManager.h"

namespace EngineTest {

using namespace TF;

namespace {

RCPtr<LNotificationCenter> Center() {
  return LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName);
}

std::string Describe(const LNotification& notification) {
  const RCPtr<LRefCountedObject> data = notification.GetData();
  if (const RCPtr<LDeviceStateChangeNotificationData> device = data) {
    return fmt::format("device {}<{}", device->mNewState, device->mOldState);
  }
  if (const RCPtr<LFirmwareFileStateChangeNotificationData> file = data) {
    return fmt::format("file {}<{}", file->mNewState, file->mOldState);
  }
  if (const RCPtr<LFirmwareUpdateCompletedNotificationData> completed = data) {
    return fmt::format("completed {:d}", completed->mSuccess);
  }
  if (const RCPtr<LFirmwareUpdateProgressNotificationData> progress = data) {
    return fmt::format("progress {:.3f}", progress->mProgress);
  }
  return ToUtf8(notification.GetId());
}

}  // namespace

class NotificationRecorder::LClient : public LNotificationClient {
 public:
  void OnNotification(const RCPtr<LNotificationDistributor>&,
                      const RCPtr<LNotification>& notification) override {
    mTexts.push_back(Describe(*notification));
  }
  std::vector<std::string> mTexts;
};

NotificationRecorder::NotificationRecorder() : mClient(MakeRC<LClient>()) {
  Center()->Discard();
  for (const char16_t* name :
       {kDeviceStateChangeName, kFoundDeviceListChangeName, kFirmwareFileStateChangeName,
        kFirmwareUpdateProgressName, kFirmwareUpdateCompletedName}) {
    mClient->Register(Center(), name, 0);
  }
}

NotificationRecorder::~NotificationRecorder() {
  mClient->UnregisterAll();
}

const std::vector<std::string>& NotificationRecorder::Deliver() {
  Center()->Process(false);
  return mClient->mTexts;
}

}  // namespace EngineTest
