#include "TFFramework/Midi/MidiComm.h"

#include <barrier>
#include <thread>

#include "Tests/Support/LogCapture.h"
#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

using Call = FakeMidiDriver::Call;
using Names = std::vector<std::u16string>;

class MidiComm : public MidiCommFixture {
 protected:
  static const TF::LMidiPort& AsPort(const Port& port) { return dynamic_cast<const TF::LMidiPort&>(*port); }
};

TEST_F(MidiComm, ANameOpensTheDeviceThatItMeans) {
  const struct {
    Names devices;
    const char16_t* name;
    TFRESULT result;
    int device;
  } cases[] = {
      {{u"Tessel", u"Tessel"}, u"Tessel", TF::kInvalidArgument, -1},
      {{u"Tessel", u"Tessel"}, u"Tessel (2)", TF::kSuccess, 1},
      {{u"Tessel MIDI 1", u"Tessel MIDI 2"}, u"Tessel", TF::kInvalidArgument, -1},
      {{u"Other", u"Tessel Port"}, u"TES", TF::kSuccess, 1},
      {{u"Tessel 2", u"Tessel"}, u"tessel", TF::kSuccess, 1},
      {{u"Tessel", u"Tessel 2"}, u"Tessel", TF::kSuccess, 0},
      {{u"Tessel"}, u"Tessel (1)", TF::kSuccess, 0},
      {{u"Tessel"}, u"Tessel (2)", TF::kFailure, -1},
      {{u"Other"}, u"Tessel", TF::kFailure, -1},
      {{u"Other"}, u"", TF::kFailure, -1},
      {{}, u"Tessel", TF::kFailure, -1},
  };
  for (const auto& test : cases) {
    mDriver.SetInputs(test.devices);
    mDriver.SetOutputs(test.devices);
    const Port input = OpenInput(test.name, test.result);
    const Port output = OpenOutput(test.name, test.result);
    for (int device = 0; device < static_cast<int>(test.devices.size()); ++device) {
      const auto number = static_cast<std::uint32_t>(device);
      EXPECT_EQ(mDriver.InputOn(number) != nullptr, device == test.device) << TF::ToUtf8(test.name) << device;
      EXPECT_EQ(mDriver.OutputOn(number) != nullptr, device == test.device)
          << TF::ToUtf8(test.name) << device;
    }
  }
}

TEST_F(MidiComm, ADeviceThatTheDriverCannotNameEndsTheList) {
  mDriver.SetInputs({u"Tessel 1", u"Tessel 2"});
  mDriver.Fail(Call::kInputName, Platform::kMidiBadDevice, 1);
  OpenInput(u"Tessel", TF::kFailure);  // One name in the list, none at the second look.
  mDriver.Fail(Call::kInputName, Platform::kMidiOk);
  OpenInput(u"Tessel", TF::kInvalidArgument);
}

TEST_F(MidiComm, AskingAgainGivesTheSamePortAndOpensOnce) {
  mDriver.SetInputs({u"Tessel MIDI 1"});
  mDriver.SetOutputs({u"Tessel MIDI 1"});
  const Port input = OpenInput(u"Tessel");
  EXPECT_EQ(OpenInput(u"TESSEL"), input);
  const Port output = OpenOutput(u"Tessel");
  EXPECT_EQ(OpenOutput(u"Tessel"), output);
  EXPECT_EQ(OpenOutput(u"tessel midi 1"), output);
  EXPECT_EQ(mDriver.Opens(), 2);
  EXPECT_EQ(AsPort(input).GetName(), u"Tessel");
  EXPECT_EQ(AsPort(input).GetDeviceName(), u"Tessel MIDI 1");
  EXPECT_EQ(mComm->GetRawPointer(output), output.Get());
}

TEST_F(MidiComm, AWholeNameNeverGivesThePortOfAnotherDevice) {
  mDriver.SetInputs({u"Tessel MIDI 1"});
  const Port byPart = OpenInput(u"Tessel");
  mDriver.SetInputs({u"Tessel MIDI 1", u"Tessel"});
  const Port whole = OpenInput(u"Tessel");
  EXPECT_NE(whole, byPart);
  EXPECT_EQ(AsPort(whole).GetDeviceName(), u"Tessel");
  EXPECT_EQ(AsPort(byPart).GetDeviceName(), u"Tessel MIDI 1");
}

TEST_F(MidiComm, TheDeviceClosesWithTheLastHandle) {
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  Port input = OpenInput(u"Tessel");
  Port second = OpenInput(u"Tessel");
  Port output = OpenOutput(u"Tessel");
  input = nullptr;
  EXPECT_EQ(mDriver.OpenPorts(), 2);
  second = nullptr;
  output = nullptr;
  EXPECT_EQ(mDriver.OpenPorts(), 0);
  input = OpenInput(u"Tessel");
  EXPECT_EQ(mDriver.Opens(), 3);
}

TEST_F(MidiComm, AHandleKeepsItsServiceAlive) {
  mDriver.SetInputs({u"Tessel"});
  Port input = OpenInput(u"Tessel");
  mComm = nullptr;
  EXPECT_EQ(mDriver.OpenPorts(), 1);
  input = nullptr;
  EXPECT_EQ(mDriver.OpenPorts(), 0);
}

TEST_F(MidiComm, AFailureAtAnyDriverCallLeavesNothingOpen) {
  struct Case {
    Call call;
    int passes;
  };
  const Case inputs[] = {{Call::kOpenInput, 0},    {Call::kPrepareInput, 0}, {Call::kPrepareInput, 1},
                         {Call::kPrepareInput, 2}, {Call::kAddInput, 0},     {Call::kAddInput, 1},
                         {Call::kAddInput, 2},     {Call::kStartInput, 0}};
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  for (const Case& test : inputs) {
    mDriver.Fail(test.call, Platform::kMidiError, test.passes);
    OpenInput(u"Tessel", TF::kFailure);
    EXPECT_EQ(mDriver.OpenPorts(), 0) << static_cast<int>(test.call) << ' ' << test.passes;
    mDriver.Fail(test.call, Platform::kMidiOk);
    OpenInput(u"Tessel");
  }
  mDriver.Fail(Call::kOpenOutput, Platform::kMidiAllocated);
  OpenOutput(u"Tessel", TF::kFailure);
  EXPECT_EQ(mDriver.OpenPorts(), 0);
  mDriver.Fail(Call::kOpenOutput, Platform::kMidiOk);
  OpenOutput(u"Tessel");
}

TEST_F(MidiComm, ARecordTellsWhyAPortDoesNotOpen) {
  TestSupport::LogCapture log;
  mDriver.SetInputs({});
  OpenInput(u"Tessel", TF::kFailure);  // The usual case of a poll.
  EXPECT_EQ(log.Text(), "");
  mDriver.SetInputs({u"Tessel MIDI 1", u"Other", u"Tessel MIDI 2"});
  OpenInput(u"Tessel", TF::kInvalidArgument);
  EXPECT_TRUE(log.Contains("\"Tessel MIDI 1\", \"Tessel MIDI 2\""));
  EXPECT_FALSE(log.Contains("Other"));
  const struct {
    Platform::MidiStatus status;
    const char* reason;
  } cases[] = {{Platform::kMidiAllocated, "another program holds the device"},
               {Platform::kMidiAccessDenied, "this user may not open the device"}};
  mDriver.SetOutputs({u"Tessel Port"});
  for (const auto& test : cases) {
    mDriver.Fail(Call::kOpenOutput, test.status);
    OpenOutput(u"tess", TF::kFailure);
    EXPECT_TRUE(log.Contains(test.reason));
    EXPECT_TRUE(log.Contains("output port \"Tessel Port\" for \"tess\""));
  }
}

TEST_F(MidiComm, AReplugIsFoundAtTheNextOpen) {
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  const Port input = OpenInput(u"Tessel");
  const Port output = OpenOutput(u"Tessel");
  mDriver.SetInputs({});
  mDriver.SetOutputs({});
  OpenInput(u"Tessel", TF::kFailure);
  OpenOutput(u"Tessel", TF::kFailure);
  EXPECT_EQ(mComm->Send(output, Bytes("\xF0\x01\xF7")), TF::kFailure);
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  EXPECT_EQ(OpenInput(u"Tessel"), input);
  EXPECT_EQ(OpenOutput(u"Tessel"), output);
  EXPECT_EQ(mComm->Send(output, Bytes("\xF0\x01\xF7")), 3);
  const auto client = Listen();
  EXPECT_TRUE(mDriver.ReceiveLong(mDriver.InputOn(0), "\xF0\x02\xF7"));
  EXPECT_TRUE(client->WaitFor(1));
  client->UnregisterAll();
}

TEST_F(MidiComm, APortThatCannotBeReopenedStaysClosedUntilItCan) {
  mDriver.SetInputs({u"Tessel"});
  const Port input = OpenInput(u"Tessel");
  const Call calls[] = {Call::kOpenInput, Call::kAddInput, Call::kStartInput};
  for (const Call call : calls) {
    mDriver.SetInputs({});
    mDriver.SetInputs({u"Tessel"});
    mDriver.Fail(call, Platform::kMidiError);
    OpenInput(u"Tessel", TF::kFailure);
    EXPECT_EQ(mDriver.OpenPorts(), 0);
    mDriver.Fail(call, Platform::kMidiOk);
    const Port again = OpenInput(u"Tessel");
    EXPECT_EQ(mDriver.OpenPorts(), 1);
  }
}

TEST_F(MidiComm, APortThatTwoThreadsLetGoAtOnceCloses) {
  mDriver.SetInputs({u"Tessel"});
  constexpr int kRounds = 500;
  std::barrier meeting(2);
  std::thread other([&] {
    for (int i = 0; i < kRounds; ++i) {
      meeting.arrive_and_wait();
      {
        // The device of a port that is just closing may still be taken.
        Port again;
        mComm->OpenCapturePort(u"Tessel", again);
      }
      meeting.arrive_and_wait();
    }
  });
  for (int i = 0; i < kRounds; ++i) {
    Port port = OpenInput(u"Tessel");
    meeting.arrive_and_wait();
    port = nullptr;
    meeting.arrive_and_wait();
    EXPECT_EQ(mDriver.OpenPorts(), 0);
  }
  other.join();
}

TEST_F(MidiComm, AfterShutdownNothingOpensAndOldHandlesAreDead) {
  mDriver.SetInputs({u"Tessel"});
  mDriver.SetOutputs({u"Tessel"});
  const Port input = OpenInput(u"Tessel");
  const Port output = OpenOutput(u"Tessel");
  mComm->Shutdown();
  EXPECT_EQ(mDriver.OpenPorts(), 0);
  OpenInput(u"Tessel", TF::kFailure);
  OpenOutput(u"Tessel", TF::kFailure);
  EXPECT_EQ(mComm->Send(output, Bytes("\xF0\x01\xF7")), TF::kFailure);
  EXPECT_EQ(mComm->Send(output, Bytes("\xF8")), TF::kFailure);
  mComm->Shutdown();
}

}  // namespace
