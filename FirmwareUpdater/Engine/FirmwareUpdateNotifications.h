#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

// What the update engine tells the screen: the names of the notifications, their payloads, and
// the posting of each to the application's center, which delivers on the main thread. Any
// thread may post.

inline constexpr const char16_t* kDeviceStateChangeName = u"NID_DEVICE_STATE_CHANGE";
inline constexpr const char16_t* kFoundDeviceListChangeName = u"NID_FOUND_DEVICE_LIST_CHANGE";
inline constexpr const char16_t* kFirmwareFileStateChangeName = u"NID_FIRMWARE_FILE_STATE_CHANGE";
inline constexpr const char16_t* kFirmwareUpdateProgressName = u"NID_FIRMWARE_UPDATE_PROGRESS";
inline constexpr const char16_t* kFirmwareUpdateCompletedName = u"NID_FIRMWARE_UPDATE_COMPLETED";

class LDeviceStateChangeNotificationData : public virtual TF::LRefCountedObject {
 public:
  LDeviceStateChangeNotificationData(std::int32_t newState, std::int32_t oldState)
      : mNewState(newState), mOldState(oldState) {}

  const std::int32_t mNewState;
  const std::int32_t mOldState;
};

class LFirmwareFileStateChangeNotificationData : public virtual TF::LRefCountedObject {
 public:
  LFirmwareFileStateChangeNotificationData(std::int32_t newState, std::int32_t oldState)
      : mNewState(newState), mOldState(oldState) {}

  const std::int32_t mNewState;
  const std::int32_t mOldState;
};

class LFirmwareUpdateCompletedNotificationData : public virtual TF::LRefCountedObject {
 public:
  explicit LFirmwareUpdateCompletedNotificationData(bool success) : mSuccess(success) {}

  const bool mSuccess;
};

// How far an update has come.
struct FirmwareUpdateProgress {
  static constexpr std::int32_t kSecondsUnknown = -1;

  std::uint32_t mStage = 0;
  double mProgress = 0.0;  // 0.0 to 1.0
  std::int32_t mSecondsRemaining = kSecondsUnknown;
  // The receiver estimates the remaining time itself and ignores mSecondsRemaining.
  bool mEstimateTimeLocally = false;
  bool mReservedFlag = false;
  TF::String mStatusText;
};

class LFirmwareUpdateProgressNotificationData : public virtual TF::LRefCountedObject,
                                                public FirmwareUpdateProgress {
 public:
  explicit LFirmwareUpdateProgressNotificationData(const FirmwareUpdateProgress& progress)
      : FirmwareUpdateProgress(progress) {}
};

void PostDeviceStateChange(std::int32_t newState, std::int32_t oldState);
void PostFoundDeviceListChange();
void PostFirmwareFileStateChange(std::int32_t newState, std::int32_t oldState);
void PostFirmwareUpdateProgress(const FirmwareUpdateProgress& progress);
void PostFirmwareUpdateCompleted(bool success);
