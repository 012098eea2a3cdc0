#include "UI/ScreenMap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace {

using Control = ScreenControl;

constexpr std::int32_t kDeviceStates = 9;
constexpr std::int32_t kFileStates = 4;
constexpr std::int32_t kMode = 3;  // What the MIDI engine answers.

constexpr const char* kNames[] = {"device", "file",   "process", "fileVersion", "deviceVersion", "cannot",
                                  "bar",    "UPDATE", "EXIT",    "RESTART",     "SCAN",          "READY",
                                  "NEXT",   "ABORT",  "moving",  "notFound"};
static_assert(std::size(kNames) == static_cast<std::size_t>(Control::kCount));

ScreenFacts Facts(bool newer, bool allowed) {
  ScreenFacts facts;
  facts.mFileIsNewer = newer;
  facts.mDowngradeIsAllowed = allowed && !newer;
  facts.mTransitionMode = kMode;
  facts.mHasInstallingText = true;
  return facts;
}

// The names of what is visible, in the order of the controls.
std::string Visible(const ScreenState& state, const ScreenFacts& facts) {
  const std::optional<ScreenVisibility> visibility = FindVisibility(state, facts);
  if (!visibility) return "as before";
  std::string names;
  for (std::size_t i = 0; i < visibility->size(); ++i)
    if ((*visibility)[i]) names += names.empty() ? kNames[i] : std::string(" ") + kNames[i];
  return names;
}

std::string Key(const char16_t* key) {
  return key ? TF::ToUtf8(TF::String(key)) : "as before";
}

// One line a device state, one character a file state; x where the control is visible.
std::string Matrix(Control control, std::int32_t result, const ScreenFacts& facts) {
  std::string matrix;
  for (std::int32_t device = 0; device < kDeviceStates; ++device) {
    if (device > 0) matrix += ' ';
    for (std::int32_t file = 0; file < kFileStates; ++file) {
      const std::optional<ScreenVisibility> visibility = FindVisibility({result, device, file}, facts);
      matrix += visibility.value()[static_cast<std::size_t>(control)] ? 'x' : '.';
    }
  }
  return matrix;
}

TEST(ScreenMapTest, BeforeAnUpdateDeviceAndFileDecide) {
  struct Case {
    Control mControl;
    bool mAllowed;
    const char* mWanted;
  };
  constexpr const char* kNothing = ".... .... .... .... .... .... .... .... ....";
  constexpr const char* kSwitching = ".... .... .... .... .... .... xxxx .... ....";
  constexpr const char* kGoodFile = "...x ...x ...x ...x ...x ...x ...x ...x ...x";
  constexpr const char* kBusy = ".... .... .... .... .... .... .... .... xxxx";
  const Case kCases[] = {
      {Control::kDeviceInformation, true, "...x ...x ...x ...x .... ...x xxxx xxxx xxxx"},
      {Control::kDeviceInformation, false, "...x ...x ...x ...x .... .... xxx. xxx. xxx."},
      {Control::kFirmwareFileInformation, true, "xxx. xxx. xxx. xxx. .... xxx. .... .... ...."},
      {Control::kFirmwareFileInformation, false, "xxx. xxx. xxx. xxx. .... xxx. .... .... ...."},
      {Control::kProcessInformation, true, ".... .... .... .... .... ...x xxxx ...x xxxx"},
      {Control::kProcessInformation, false, ".... .... .... .... .... .... xxxx .... xxxx"},
      {Control::kFileFirmwareVersion, false, kGoodFile},
      {Control::kCannotUpdateError, true, ".... .... .... .... xxxx .... .... .... ...."},
      {Control::kCannotUpdateError, false, ".... .... .... .... xxxx ...x ...x ...x ...x"},
      {Control::kProgressBar, true, kBusy},
      {Control::kUpdateFirmware, true, ".... .... .... .... .... ...x .... ...x ...."},
      {Control::kUpdateFirmware, false, kNothing},
      {Control::kExit, true, "xxxx xxxx xxxx xxxx xxxx xxxx .... xxxx xxxx"},
      {Control::kReinitialize, true, ".... .... .... .... ..xx .... .... .... ...."},
      {Control::kScanForDevice, false, ".... ...x .... ...x .... .... .... .... ...."},
      {Control::kManualReadyForUpdate, true, kSwitching},
      {Control::kManualHasUpdated, true, kNothing},
      {Control::kAbort, true, "xxxx xxxx xxxx xxxx xxxx xxxx xxxx xxxx xxxx"},
      {Control::kTransitioning, true, kSwitching},
      {Control::kDeviceNotFound, true, ".... ..xx .... .... .... .... .... .... ...."},
  };
  for (const auto& [control, allowed, wanted] : kCases) {
    SCOPED_TRACE(kNames[static_cast<std::size_t>(control)]);
    EXPECT_EQ(Matrix(control, 0, Facts(allowed, allowed)), wanted) << (allowed ? "newer" : "not allowed");
    // A file that is not newer but may be sent is as good as a newer one.
    if (!allowed) continue;
    EXPECT_EQ(Matrix(control, 0, Facts(false, true)), wanted) << "downgrade";
  }
}

TEST(ScreenMapTest, ASkinWithATransitionControlLeavesItsPlaceFree) {
  ScreenFacts facts = Facts(false, false);
  facts.mHasTransitionControl = true;
  EXPECT_EQ(Matrix(Control::kDeviceInformation, 0, facts), "...x ...x ...x ...x .... .... .... xxx. xxx.");
  EXPECT_EQ(Matrix(Control::kCannotUpdateError, 0, facts), ".... .... .... .... xxxx ...x .... ...x ...x");
}

TEST(ScreenMapTest, AScreenThatScansByItselfHasNoButtonForIt) {
  ScreenFacts facts = Facts(true, true);
  facts.mScansInBackground = true;
  EXPECT_EQ(Matrix(Control::kScanForDevice, 0, facts), ".... .... .... .... .... .... .... .... ....");
}

TEST(ScreenMapTest, TheDevicesVersionShowsInEveryResultAlike) {
  struct Case {
    DeviceVersion mVersion;
    std::int32_t mMode;
    const char* mWanted;
  };
  const Case kCases[] = {
      {DeviceVersion::kUnknown, kMode, ".... .... .... .... .... .... .... .... ...."},
      {DeviceVersion::kUnknown, 0, ".... .... .... .... .... .... .... .... ...."},
      {DeviceVersion::kEmpty, kMode, ".... .... .... .... .... .... .... .... ...."},
      {DeviceVersion::kEmpty, 0, ".... .... .... .... .... .... ...x .... ...."},
      {DeviceVersion::kKnown, kMode, ".... .... .... .... .... ...x .... .... ...."},
      {DeviceVersion::kKnown, 0, ".... .... .... .... .... ...x ...x .... ...."},
  };
  for (const auto& [version, mode, wanted] : kCases) {
    for (std::int32_t result = 0; result <= 4; ++result) {
      ScreenFacts facts = Facts(false, true);
      facts.mDeviceVersion = version;
      facts.mTransitionMode = mode;
      EXPECT_EQ(Matrix(Control::kDeviceFirmwareVersion, result, facts), wanted)
          << result << " in mode " << mode;
    }
  }
}

// Beside the ordinary road.
TEST(ScreenMapTest, WhileAndAfterAnUpdateTheResultDecides) {
  struct Case {
    ScreenState mState;
    bool mNewer;
    bool mSent;
    const char* mWanted;
  };
  const Case kCases[] = {
      {{1, 1, 0}, false, false, "process fileVersion bar ABORT"},
      {{2, 8, 3}, true, true, "file fileVersion cannot EXIT RESTART"},
      {{2, 5, 1}, false, false, "file fileVersion cannot EXIT RESTART"},
      {{3, 6, 3}, true, true, "process fileVersion EXIT RESTART"},
      {{4, 4, 3}, false, false, "process fileVersion EXIT RESTART NEXT"},
      {{4, 5, 3}, false, true, "process fileVersion EXIT"},
      {{4, 5, 3}, true, true, "process fileVersion EXIT"},
      {{5, 5, 3}, true, false, "as before"},
      {{-1, 5, 3}, true, false, "as before"},
  };
  for (const auto& [state, newer, sent, wanted] : kCases) {
    ScreenFacts facts = Facts(newer, true);
    facts.mUpdateSent = sent;
    EXPECT_EQ(Visible(state, facts), wanted) << state.mUpdateResult << ", " << state.mDeviceState;
  }
}

// What a person meets; the device tells its version in its normal mode alone.
TEST(ScreenMapTest, OrdinaryRoad) {
  struct Case {
    const char* mName;
    ScreenState mState;
    bool mNewer;
    bool mAllowed;
    bool mSent;
    const char* mWanted;
  };
  const Case kCases[] = {
      {"no device", {0, 1, 3}, false, true, false, "device fileVersion EXIT SCAN ABORT notFound"},
      {"nothing", {0, 1, 0}, false, true, false, "file EXIT ABORT"},
      {"newer", {0, 5, 3}, true, true, false, "device process fileVersion deviceVersion UPDATE EXIT ABORT"},
      {"older", {0, 5, 3}, false, true, false, "device process fileVersion deviceVersion UPDATE EXIT ABORT"},
      {"not needed", {0, 5, 3}, false, false, false, "fileVersion deviceVersion cannot EXIT ABORT"},
      {"switching", {0, 6, 3}, true, true, false, "device process fileVersion READY ABORT moving"},
      {"in update mode", {0, 7, 3}, true, true, false, "device process fileVersion UPDATE EXIT ABORT"},
      {"transfer", {1, 8, 3}, true, true, true, "process fileVersion bar ABORT"},
      {"failed", {2, 7, 3}, true, true, false, "file fileVersion cannot EXIT RESTART"},
      {"aborted", {3, 7, 3}, true, true, false, "process fileVersion EXIT RESTART"},
      {"installing", {4, 8, 3}, true, true, true, "process fileVersion EXIT NEXT"},
      {"not responding", {4, 8, 3}, true, true, false, "process fileVersion EXIT RESTART NEXT"},
      {"updated", {4, 5, 3}, false, true, false, "process fileVersion deviceVersion EXIT"},
      {"as old as before", {4, 5, 3}, true, true, false, "process fileVersion deviceVersion EXIT RESTART"},
  };
  for (const Case& each : kCases) {
    ScreenFacts facts = Facts(each.mNewer, each.mAllowed);
    facts.mUpdateSent = each.mSent;
    if (each.mState.mDeviceState == 5) facts.mDeviceVersion = DeviceVersion::kKnown;
    EXPECT_EQ(Visible(each.mState, facts), each.mWanted) << each.mName;
  }
}

TEST(ScreenMapTest, TheProcessIsToldByResultAndDevice) {
  struct Case {
    std::int32_t mResult;
    bool mNewer;
    bool mSent;
    bool mHasInstallingText;
    const char* mWanted[kDeviceStates];
  };
  constexpr const char* kStays = "as before";
  constexpr const char* kReady = "LABEL_READY_FOR_UPDATE";
  constexpr const char* kDown = "LABEL_READY_FOR_DOWNGRADE_UPDATE";
  constexpr const char* kSwitch = "LABEL_UPDATE_TRANSITIONING_TO_UPDATE_MODE";
  constexpr const char* kRuns = "LABEL_UPDATE_IN_PROGRESS";
  constexpr const char* kAborted = "LABEL_UPDATE_ABORTED";
  constexpr const char* kInstalls = "LABEL_UPDATE_TRANSITIONING_AFTER_UPDATE";
  constexpr const char* kLost = "LABEL_UPDATE_SUCESS_UNKNOWN";
  constexpr const char* kDone = "LABEL_UPDATE_SUCCEEDED";
  constexpr const char* kOld = "LABEL_UPDATE_SENT_BUT_NOT_SUCCESSFUL";
  const Case kCases[] = {
      {0, true, false, true, {kReady, kReady, kReady, kReady, kReady, kReady, kSwitch, kStays, kReady}},
      {0, false, false, true, {kDown, kDown, kDown, kDown, kDown, kDown, kSwitch, kStays, kDown}},
      {1, false, true, true, {kRuns, kRuns, kRuns, kRuns, kRuns, kRuns, kRuns, kRuns, kRuns}},
      {2, true, true, true, {kStays, kStays, kStays, kStays, kStays, kStays, kStays, kStays, kStays}},
      {3,
       true,
       false,
       true,
       {kAborted, kAborted, kAborted, kAborted, kAborted, kAborted, kAborted, kAborted, kAborted}},
      {4,
       false,
       true,
       true,
       {kInstalls, kInstalls, kInstalls, kInstalls, kInstalls, kDone, kInstalls, kInstalls, kInstalls}},
      {4, true, true, false, {kRuns, kRuns, kRuns, kRuns, kRuns, kOld, kRuns, kRuns, kRuns}},
      {4, true, false, true, {kLost, kLost, kLost, kLost, kLost, kOld, kLost, kLost, kLost}},
      {5, true, true, true, {kStays, kStays, kStays, kStays, kStays, kStays, kStays, kStays, kStays}},
  };
  for (const Case& each : kCases) {
    // Whether a lower version may be sent changes nothing here.
    for (const bool downgrade : {false, true}) {
      ScreenFacts facts = Facts(each.mNewer, downgrade);
      facts.mDowngradeIsAllowed = downgrade;
      facts.mUpdateSent = each.mSent;
      facts.mHasInstallingText = each.mHasInstallingText;
      for (std::int32_t device = 0; device < kDeviceStates; ++device) {
        EXPECT_EQ(Key(FindProcessInformationKey({each.mResult, device, 3}, facts)), each.mWanted[device])
            << each.mResult << ", " << device;
      }
    }
  }
}

TEST(ScreenMapTest, TheReasonIsToldUnlessNothingIsToBeDone) {
  constexpr const char* kOldDriver = "LABEL_DRIVER_IS_TOO_OLD";
  constexpr const char* kNotNeeded = "LABEL_UPDATE_NOT_NEEDED";
  const std::vector<std::string> kWanted = {
      "LABEL_DEVICE_CANNOT_BE_UPDATED_NO_REASON", kOldDriver,
      "LABEL_CANNOT_UPDATE_SYSTEM_FAILURE",       "LABEL_CANNOT_UPDATE_FILE_ACCESS_FAILURE",
      "LABEL_DEVICE_DEVICE_ACCESS_FAILURE",       "as before"};
  for (std::int32_t reason = 0; reason < static_cast<std::int32_t>(kWanted.size()); ++reason) {
    ScreenFacts facts = Facts(true, true);
    facts.mCannotUpdateReason = reason;
    EXPECT_EQ(Key(FindCannotUpdateKey(facts)), kWanted[static_cast<std::size_t>(reason)]);
    facts = Facts(false, true);
    facts.mCannotUpdateReason = reason;
    EXPECT_EQ(Key(FindCannotUpdateKey(facts)), kWanted[static_cast<std::size_t>(reason)]);
    facts = Facts(false, false);
    facts.mCannotUpdateReason = reason;
    EXPECT_EQ(Key(FindCannotUpdateKey(facts)), reason == 1 ? kOldDriver : kNotNeeded);
  }
}

TEST(ScreenMapTest, DeviceAndFileHaveTheirTexts) {
  const char* const kDevice[] = {"LABEL_NO_DEVICE_DEFINED",
                                 "LABEL_NO_DEVICE_FOUND",
                                 "LABEL_SCANNING_FOR_DEVICE",
                                 "LABEL_DEVICES_AVAILABLE_NONE_SELECTED",
                                 "as before",
                                 "LABEL_DEVICE_NOT_IN_UPDATE_MODE",
                                 "as before",
                                 "LABEL_DEVICE_IN_UPDATE_MODE",
                                 "as before",
                                 "as before"};
  for (std::int32_t device = 0; device <= kDeviceStates; ++device)
    EXPECT_EQ(Key(FindDeviceInformationKey(device)), kDevice[device]);
  const char* const kFile[] = {"LABEL_NO_FILE_DEFINED", "LABEL_FIRMARE_FILE_INVALID",
                               "LABEL_FIRMARE_FILE_INVALID", "LABEL_FIRMARE_FILE_FOUND_VERSION_KNOWN",
                               "as before"};
  for (std::int32_t file = 0; file <= kFileStates; ++file) {
    EXPECT_EQ(Key(FindFirmwareFileInformationKey(file)), kFile[file]);
    EXPECT_EQ(IsFileButtonVisible(file), file != 3);
  }
}

}  // namespace
