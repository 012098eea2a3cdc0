#include "Engine/FirmwareUpdateNotifications.h"

#include "TFFramework/Notification/NotificationCenterManager.h"

namespace {

void PostToApplication(const char16_t* name, const TF::RCPtr<TF::LRefCountedObject>& payload) {
  const auto center = TF::LNotificationCenterManager::GetInstance()->GetCenter(TF::kApplicationCenterName);
  center->Post(TF::LNotification::Create(name, payload));
}

}  // namespace

void PostDeviceStateChange(std::int32_t newState, std::int32_t oldState) {
  PostToApplication(kDeviceStateChangeName,
                    TF::MakeRC<LDeviceStateChangeNotificationData>(newState, oldState));
}

void PostFoundDeviceListChange() {
  PostToApplication(kFoundDeviceListChangeName, nullptr);
}

void PostFirmwareFileStateChange(std::int32_t newState, std::int32_t oldState) {
  PostToApplication(kFirmwareFileStateChangeName,
                    TF::MakeRC<LFirmwareFileStateChangeNotificationData>(newState, oldState));
}

void PostFirmwareUpdateProgress(const FirmwareUpdateProgress& progress) {
  PostToApplication(kFirmwareUpdateProgressName,
                    TF::MakeRC<LFirmwareUpdateProgressNotificationData>(progress));
}

void PostFirmwareUpdateCompleted(bool success) {
  PostToApplication(kFirmwareUpdateCompletedName,
                    TF::MakeRC<LFirmwareUpdateCompletedNotificationData>(success));
}
