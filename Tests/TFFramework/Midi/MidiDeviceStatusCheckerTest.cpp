#include "TFFramework/Midi/MidiDeviceStatusChecker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TFFramework/Midi/MidiDeviceConnectionStatusChangedNotification.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

// Writes down the changes as "in+Name" and "out-Name".
class ChangeClient : public TF::LNotificationClient {
 public:
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>&,
                      const TF::RCPtr<TF::LNotification>& notification) override {
    const TF::RCPtr<TF::LMidiDeviceConnectionStatusChangedNotification> change = notification->GetData();
    const bool input = notification->GetId() == TF::GetNotificationID(TF::kMidiInputConnectionChangedName);
    ASSERT_TRUE(change);
    mChanges.push_back((input ? "in" : "out") + std::string(change->mDisconnected == 0 ? "+" : "-") +
                       TF::ToUtf8(change->mDeviceName));
  }

  std::vector<std::string> mChanges;
};

using Changes = std::vector<std::string>;

class MidiDeviceStatusChecker : public testing::Test {
 protected:
  void SetUp() override {
    mCenter = TF::LNotificationCenterManager::GetInstance()->GetCenter(TF::kApplicationCenterName);
    mClient->Register(mCenter, TF::kMidiInputConnectionChangedName);
    mClient->Register(mCenter, TF::kMidiOutputConnectionChangedName);
  }

  void TearDown() override {
    mClient->UnregisterAll();
    mComm->Shutdown();
    EXPECT_EQ(mDriver.OpenPorts(), 0);
    EXPECT_EQ(mDriver.Misuse(), std::vector<std::string>());
  }

  static TF::StringArray Names(std::initializer_list<TF::String> names) {
    TF::StringArray array;
    for (const TF::String& name : names) array.Add(name);
    return array;
  }

  // What has been posted since the last call.
  Changes TakeChanges() {
    mCenter->Process(false);
    return std::exchange(mClient->mChanges, {});
  }

  FakeMidiDriver mDriver;
  TF::RCPtr<TF::LMidiComm> mComm = TF::MakeRC<TF::LMidiComm>(mDriver);
  TF::RCPtr<TF::LNotificationCenter> mCenter;
  TF::RCPtr<ChangeClient> mClient = TF::MakeRC<ChangeClient>();
};

TEST_F(MidiDeviceStatusChecker, ReportsEachChangeOnce) {
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  const auto checker = TF::LMidiDeviceStatusChecker::Create(mComm);
  checker->AddInputDevices(Names({u"Tessel"}));
  checker->AddOutputDevices(Names({u"Tessel"}));
  EXPECT_TRUE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), Changes());
  EXPECT_EQ(mDriver.OpenPorts(), 0);

  mDriver.SetInputs({});
  mDriver.SetOutputs({});
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), Changes{"in-Tessel"});  // The output waits for the inputs.

  mDriver.SetInputs({u"Tessel"});
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), (Changes{"in+Tessel", "out-Tessel"}));
  mDriver.SetOutputs({u"Tessel"});
  EXPECT_TRUE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), Changes{"out+Tessel"});
}

TEST_F(MidiDeviceStatusChecker, LooksAtEveryEntryOfAList) {
  mDriver.SetInputs({u"One", u"Two"});
  const auto checker = TF::LMidiDeviceStatusChecker::Create(mComm);
  checker->AddInputDevices(Names({u"One", u"Two", u"Two"}));
  EXPECT_TRUE(checker->CheckDevices());
  mDriver.SetInputs({});
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), (Changes{"in-One", "in-Two", "in-Two"}));
  mDriver.SetInputs({u"Two"});
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), (Changes{"in+Two", "in+Two"}));
}

TEST_F(MidiDeviceStatusChecker, APortThatIsOpenIsNotOpenedAgain) {
  mDriver.SetInputs({u"Tessel MIDI 1"});
  mDriver.SetOutputs({u"Tessel MIDI 1"});
  TF::RCPtr<TF::LRefCountedObject> input;
  TF::RCPtr<TF::LRefCountedObject> output;
  ASSERT_EQ(mComm->OpenCapturePort(u"Tessel", input), TF::kSuccess);
  ASSERT_EQ(mComm->OpenRenderPort(u"Tessel", output), TF::kSuccess);
  const auto checker = TF::LMidiDeviceStatusChecker::Create(mComm);
  checker->AddInputDevices(Names({u"Tessel"}));
  checker->AddOutputDevices(Names({u"Tessel"}));
  EXPECT_TRUE(checker->CheckDevices());
  EXPECT_EQ(mDriver.Opens(), 2);
  EXPECT_EQ(mDriver.OpenPorts(), 2);
}

TEST_F(MidiDeviceStatusChecker, AnAmbiguousNameIsNotConnected) {
  mDriver.SetInputs({u"Tessel", u"Tessel"});
  const auto checker = TF::LMidiDeviceStatusChecker::Create(mComm);
  checker->AddInputDevices(Names({u"Tessel"}));
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), Changes());
}

TEST_F(MidiDeviceStatusChecker, WithoutAServiceNothingIsConnected) {
  const auto checker = TF::LMidiDeviceStatusChecker::Create(nullptr);
  EXPECT_TRUE(checker->CheckDevices());  // Nothing asked for.
  checker->AddInputDevices(Names({u"Tessel"}));
  EXPECT_FALSE(checker->CheckDevices());
  EXPECT_EQ(TakeChanges(), Changes());
}

}  // namespace
