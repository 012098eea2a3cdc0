#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Platform/AlsaMidiDriver.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/MidiRecorder.h"
#include "Tests/Support/ProcessFootprint.h"
#include "Tools/Simulator/GadgetPort.h"

// ALSA's ports on a real USB-MIDI device, which is the kernel's gadget of the same machine. The
// gadget has been made, and is not plugged in, before these tests run.

namespace {

using Clock = std::chrono::steady_clock;
using Platform::MidiBuffer;
using Platform::MidiHandle;
using Platform::MidiMessage;
using TestSupport::Eventually;
using TestSupport::Exclusive;
using TestSupport::MeasureFootprint;
using TestSupport::MidiBufferSet;
using TestSupport::MidiRecorder;

constexpr const char* kGadget = "/sys/kernel/config/usb_gadget/tessel";
constexpr std::u16string_view kPortName = u"Tessel MIDI 1";
constexpr std::size_t kMegabyte = 1 << 20;
// How long the kernel waits for a device that takes no more.
constexpr std::chrono::seconds kKernelPatience{10};

class AlsaPorts : public testing::Test {
 protected:
  AlsaPorts() {
    Platform::SetMidiRecordSink([this](std::string_view text) {
      const std::lock_guard lock(mRecordMutex);
      mRecords.append(text).append("\n");
    });
    PlugIn();
  }
  ~AlsaPorts() override {
    mDevice.Close();
    EXPECT_TRUE(Platform::WaitForMidiThreads(20000)) << "a port has left a thread behind";
    Platform::SetMidiRecordSink(nullptr);
  }

  // The number of the device's port, once the computer has it in both directions.
  std::optional<std::uint32_t> FindPort() {
    std::u16string name;
    const std::uint32_t outputs = mDriver.OutputCount();
    for (std::uint32_t index = 0; index < outputs; ++index) {
      if (mDriver.OutputName(index, name) != Platform::kMidiOk || name != kPortName) continue;
      mOutput = index;
      const std::uint32_t inputs = mDriver.InputCount();
      for (index = 0; index < inputs; ++index) {
        if (mDriver.InputName(index, name) == Platform::kMidiOk && name == kPortName) return index;
      }
    }
    return std::nullopt;
  }

  void PlugIn() {
    mDevice.Open();
    ASSERT_TRUE(Eventually([this] {
      const auto found = FindPort();
      if (found) mInput = *found;
      return found.has_value();
    }));
  }
  // Notes the time from which the longest wait for an end is taken.
  void PlugOut() {
    mDevice.Close();
    mPluggedOut = Clock::now();
  }
  void TakeEndTime() {
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - mPluggedOut);
    std::printf("== %s: ended %lld ms after unplugging\n",
                testing::UnitTest::GetInstance()->current_test_info()->name(),
                static_cast<long long>(passed.count()));
  }

  MidiHandle OpenInput() {
    MidiHandle port = nullptr;
    EXPECT_EQ(mDriver.OpenInput(mInput, mListener, port), Platform::kMidiOk) << Records();
    return port;
  }
  MidiHandle OpenOutput() {
    MidiHandle port = nullptr;
    EXPECT_EQ(mDriver.OpenOutput(mOutput, mListener, port), Platform::kMidiOk) << Records();
    return port;
  }
  void Start(MidiHandle port) {
    mBuffers.AddTo(mDriver, port);
    EXPECT_EQ(mDriver.StartInput(port), Platform::kMidiOk);
  }
  // The driver's number for a whole send.
  Platform::MidiStatus Send(MidiHandle port, std::string message, const std::function<void()>& meanwhile) {
    MidiBuffer buffer{message.data(), static_cast<std::uint32_t>(message.size()),
                      static_cast<std::uint32_t>(message.size())};
    EXPECT_EQ(mDriver.PrepareOutputBuffer(port, buffer), Platform::kMidiOk);
    const std::size_t before = mListener->Events().size();
    Platform::MidiStatus status = mDriver.SendLong(port, buffer);
    meanwhile();
    if (status == Platform::kMidiOk) {
      mListener->WaitForEvents(before + 1);
      status = mDriver.UnprepareOutputBuffer(port, buffer);
    } else {
      mDriver.UnprepareOutputBuffer(port, buffer);
    }
    return status;
  }
  std::string ReceiveAtDevice(std::size_t count) {
    std::string bytes;
    EXPECT_TRUE(Eventually([&] {
      const auto more = mDevice.Receive();
      bytes.append(more.begin(), more.end());
      return bytes.size() >= count;
    })) << bytes.size();
    return bytes;
  }
  void SendFromDevice(const std::string& bytes) {
    mDevice.Send({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    EXPECT_TRUE(Eventually([&] {
      mDevice.Receive();  // Sends what had to wait.
      std::vector<pollfd> awaited;
      mDevice.AppendTo(awaited);
      return (awaited.at(0).events & POLLOUT) == 0;
    }));
  }
  std::string Records() {
    const std::lock_guard lock(mRecordMutex);
    return mRecords;
  }

  std::mutex mRecordMutex;
  std::string mRecords;
  Simulator::GadgetPort mDevice{kGadget};
  Platform::AlsaMidiDriver mDriver;
  const std::shared_ptr<MidiRecorder> mListener = std::make_shared<MidiRecorder>(&mDriver);
  MidiBufferSet mBuffers{3, 1024};
  std::uint32_t mInput = 0;
  std::uint32_t mOutput = 0;
  Clock::time_point mPluggedOut;
};

TEST_F(AlsaPorts, CarryMessagesWholeInBothDirections) {
  const MidiHandle input = OpenInput(), output = OpenOutput();
  Start(input);
  for (const std::size_t size : {6u, 297u, 20000u}) {
    const std::string message = Exclusive(size);
    EXPECT_EQ(Send(output, message, [] {}), Platform::kMidiOk) << Records();
    EXPECT_TRUE(ReceiveAtDevice(size) == message) << size;
  }
  EXPECT_EQ(mDriver.SendShort(output, 0x403C90), Platform::kMidiOk);
  EXPECT_EQ(ReceiveAtDevice(3), "\x90\x3C\x40");
  EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);

  const std::size_t before = mListener->WaitForBytes(0).size();
  std::string sent;
  for (const std::size_t size : {6u, 297u, 20000u}) {
    SendFromDevice(Exclusive(size));
    sent += Exclusive(size);
    EXPECT_TRUE(mListener->WaitForBytes(before + sent.size()).substr(before) == sent) << size;
  }
  EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
  EXPECT_EQ(ReceiveAtDevice(0), "") << "closing sends nothing of its own";
}

TEST_F(AlsaPorts, LeaveNothingBehindInTwoHundredRounds) {
  const auto round = [this] {
    const MidiHandle input = OpenInput(), output = OpenOutput();
    Start(input);
    EXPECT_EQ(Send(output, Exclusive(10), [] {}), Platform::kMidiOk);
    mDriver.ResetInput(input);
    for (std::size_t i = 0; i < mBuffers.Count(); ++i) mDriver.UnprepareInputBuffer(input, mBuffers[i]);
    EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
    EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
    EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  };
  round();
  const auto before = MeasureFootprint(getpid());
  for (int i = 0; i < 200; ++i) round();
  // The kernel takes a thread that has ended out of its list a little later.
  EXPECT_TRUE(Eventually([&] { return MeasureFootprint(getpid()).mThreads == before.mThreads; }));
  EXPECT_EQ(MeasureFootprint(getpid()).mDescriptors, before.mDescriptors);
  std::printf("== 200 rounds of opening and closing: %zu descriptors, %zu threads, as before\n",
              before.mDescriptors, before.mThreads);
}

// However late the reader is.
TEST_F(AlsaPorts, AnAnswerThatComesAtOnceIsNotLost) {
  for (int i = 1; i <= 50; ++i) {
    const MidiHandle input = OpenInput();
    Start(input);
    SendFromDevice(Exclusive(20));
    EXPECT_EQ(mListener->WaitForBytes(20u * i).size(), 20u * i);
    EXPECT_EQ(mDriver.ResetInput(input), Platform::kMidiOk);
    EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
  }
}

TEST_F(AlsaPorts, UnpluggingEndsAWaitingReader) {
  const MidiHandle input = OpenInput(), output = OpenOutput();
  Start(input);
  PlugOut();
  std::u16string name;
  EXPECT_TRUE(Eventually([&] { return mDriver.InputName(input, name) == Platform::kMidiBadDevice; }));
  EXPECT_TRUE(Eventually([&] { return mDriver.OutputName(output, name) == Platform::kMidiBadDevice; }));
  EXPECT_TRUE(Eventually([&] { return Records().find("the device has gone") != std::string::npos; }));
  TakeEndTime();
  EXPECT_NE(Send(output, Exclusive(10), [] {}), Platform::kMidiOk);
  EXPECT_NE(mDriver.SendShort(output, 0xF8), Platform::kMidiOk);
  mDriver.ResetInput(input);
  EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
  EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
}

TEST_F(AlsaPorts, UnpluggingEndsAWriteWithAnError) {
  const MidiHandle output = OpenOutput();
  const auto status = Send(output, Exclusive(kMegabyte), [this] {
    ReceiveAtDevice(1);
    PlugOut();
  });
  TakeEndTime();
  EXPECT_EQ(status, Platform::kMidiBadDevice);
  EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
}

// The cable comes out before, while and after the bytes leave.
TEST_F(AlsaPorts, UnpluggingDuringADrainEndsIt) {
  using std::chrono::microseconds;
  int whole = 0, torn = 0;
  Clock::duration longest{};
  for (auto lead = microseconds(-3000); lead <= microseconds(6000); lead += microseconds(500)) {
    const MidiHandle output = OpenOutput();
    auto pulled = std::async(std::launch::async, [&] {
      std::this_thread::sleep_for(lead);
      PlugOut();
    });
    std::this_thread::sleep_for(-lead);
    const auto status = Send(output, Exclusive(4000), [] {});
    EXPECT_TRUE(status == Platform::kMidiOk || status == Platform::kMidiBadDevice) << status;
    (status == Platform::kMidiOk ? whole : torn) += 1;
    pulled.get();
    EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
    longest = std::max(longest, Clock::now() - mPluggedOut);
    PlugIn();
  }
  EXPECT_LT(longest, kKernelPatience) << "somebody has waited for the kernel";
  std::printf("== unplugged around a message of 4000 bytes: %d whole, %d torn\n", whole, torn);
}

// A device that restarts as soon as it has a message has got that message.
TEST_F(AlsaPorts, ADeviceThatGoesAtTheEndOfAMessageHasGotIt) {
  for (int i = 0; i < 5; ++i) {
    const MidiHandle output = OpenOutput();
    const auto status = Send(output, Exclusive(6), [this] {
      ReceiveAtDevice(6);
      PlugOut();
    });
    EXPECT_EQ(status, Platform::kMidiOk) << Records();
    EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
    PlugIn();
  }
}

TEST_F(AlsaPorts, UnpluggingDuringOpeningAndClosingEndsInErrors) {
  std::atomic<bool> stop{false};
  const auto openAndClose = [&] {
    int opened = 0;
    while (!stop) {
      MidiHandle input = nullptr, output = nullptr;
      // The device comes behind the card of the gadget itself.
      const std::uint32_t inputs = mDriver.InputCount(), outputs = mDriver.OutputCount();
      if (mDriver.OpenInput(inputs - 1, mListener, input) == Platform::kMidiOk) ++opened;
      if (mDriver.OpenOutput(outputs - 1, mListener, output) == Platform::kMidiOk)
        mDriver.CloseOutput(output);
      mDriver.CloseInput(input);
    }
    return opened;
  };
  auto busy = std::async(std::launch::async, openAndClose);
  for (int i = 0; i < 15; ++i) {
    PlugOut();
    PlugIn();
  }
  stop = true;
  EXPECT_GT(busy.get(), 0);
  const MidiHandle input = OpenInput();
  EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
}

TEST_F(AlsaPorts, AreFoundAgainAfterReplugging) {
  const MidiHandle before = OpenInput();
  PlugOut();
  PlugIn();
  std::u16string name;
  EXPECT_EQ(mDriver.InputName(before, name), Platform::kMidiBadDevice)
      << "an old handle stays with its device";
  const MidiHandle input = OpenInput();
  Start(input);
  SendFromDevice(Exclusive(100));
  EXPECT_TRUE(mListener->WaitForBytes(100) == Exclusive(100));
  EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
  EXPECT_EQ(mDriver.CloseInput(before), Platform::kMidiOk);
}

TEST_F(AlsaPorts, ASecondOpenIsRefusedWithARecord) {
  const MidiHandle input = OpenInput(), output = OpenOutput();
  MidiHandle second = nullptr;
  EXPECT_EQ(mDriver.OpenInput(mInput, mListener, second), Platform::kMidiAllocated);
  EXPECT_EQ(mDriver.OpenOutput(mOutput, mListener, second), Platform::kMidiAllocated);
  EXPECT_EQ(second, nullptr);
  EXPECT_NE(Records().find("MIDI input \"Tessel MIDI 1\" cannot be opened"), std::string::npos) << Records();
  EXPECT_NE(Records().find("another program holds the port"), std::string::npos) << Records();
  EXPECT_EQ(mDriver.CloseInput(input), Platform::kMidiOk);
  EXPECT_EQ(mDriver.CloseOutput(output), Platform::kMidiOk);
}

}  // namespace
