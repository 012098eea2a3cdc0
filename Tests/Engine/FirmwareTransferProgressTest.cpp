#include <gtest/gtest.h>

#include <cmath>

#include "Engine/FirmwareUpdateNotifications.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "Tests/Support/Engine/TransferRig.h"

// What a transfer tells the screen of its progress.

namespace {

using namespace EngineTest;
using Simulator::kDefaultHardwareId;

class ProgressRecorder : public TF::LNotificationClient {
 public:
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>&,
                      const TF::RCPtr<TF::LNotification>& notification) override {
    const TF::RCPtr<LFirmwareUpdateProgressNotificationData> data = notification->GetData();
    ASSERT_TRUE(data);
    EXPECT_EQ(data->mStage, 0u);
    EXPECT_EQ(data->mSecondsRemaining, FirmwareUpdateProgress::kSecondsUnknown);
    EXPECT_TRUE(data->mEstimateTimeLocally);
    EXPECT_FALSE(data->mReservedFlag);
    EXPECT_TRUE(data->mStatusText.IsEmpty());
    mValues.push_back(data->mProgress);
  }

  std::vector<double> mValues;
};

// What was posted during a transfer of these regions.
std::vector<double> ProgressOf(const std::vector<Vbin::RegionDescription>& regions) {
  const auto recorder = TF::MakeRC<ProgressRecorder>();
  const auto center = TF::LNotificationCenterManager::GetInstance()->GetCenter(TF::kApplicationCenterName);
  center->Process(false);  // What earlier transfers have left.
  recorder->Register(center, kFirmwareUpdateProgressName);
  TransferRig rig;
  EXPECT_EQ(rig.Transfer(regions), TF::kSuccess);
  EXPECT_TRUE(recorder->mValues.empty());
  center->Process(false);
  recorder->UnregisterAll();
  return recorder->mValues;
}

Vbin::RegionDescription RegionWithDataSize(std::uint32_t dataSize,
                                           const std::vector<std::size_t>& sectionSizes) {
  Vbin::RegionDescription region = MakeRegion(kDefaultHardwareId, {});
  for (const std::size_t size : sectionSizes) region.mSections.push_back({0x1000, MakeData(size)});
  region.mDataSize = dataSize;
  return region;
}

TEST(FirmwareTransferProgress, CountsWhatIsDoneAheadOfEachAcknowledgedWrite) {
  const double eighth = 7 * 240;
  const struct {
    const char* name;
    std::vector<Vbin::RegionDescription> regions;
    std::vector<double> values;
  } cases[] = {
      {"no acknowledged write", {RegionWithDataSize(240, {240})}, {}},
      {"one", {RegionWithDataSize(1920, {1920})}, {eighth / 1920}},
      {"two regions",
       {RegionWithDataSize(4000, {100, 3840, 60}), RegionWithDataSize(2000, {2000})},
       {(100 + eighth) / 6000, (100 + eighth + 1920) / 6000, (4000 + eighth) / 6000}},
      {"no total", {RegionWithDataSize(0, {1920}), RegionWithDataSize(0, {1920})}, {0.0, 0.0}},
      {"less counts than there is", {RegionWithDataSize(1000, {3840})}, {1.0, 1.0}},
      {"totals beyond 32 bits",
       {RegionWithDataSize(0xFFFFFFFF, {1920}), RegionWithDataSize(0xFFFFFFFF, {1920})},
       {eighth / (2.0 * 0xFFFFFFFF), (0xFFFFFFFF + eighth) / (2.0 * 0xFFFFFFFF)}},
  };
  for (const auto& test : cases) EXPECT_EQ(ProgressOf(test.regions), test.values) << test.name;
}

}  // namespace
