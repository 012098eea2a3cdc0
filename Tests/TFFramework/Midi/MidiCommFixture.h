#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "TFFramework/Midi/MidiComm.h"
#include "Tests/TFFramework/Midi/CaptureClient.h"
#include "Tests/TFFramework/Midi/FakeMidiDriver.h"

// A service over a fake driver. At the end of each test the driver must have been used by its
// rules, every port must be closed and every object gone.
class MidiCommFixture : public testing::Test {
 protected:
  using Port = TF::RCPtr<TF::LRefCountedObject>;

  static constexpr std::uint32_t kShortTimeoutMs = 50;

  void TearDown() override {
    CloseService();
    EXPECT_EQ(mDriver.OpenPorts(), 0);
    EXPECT_EQ(mDriver.Misuse(), std::vector<std::string>());
    EXPECT_TRUE(WaitForObjectsToGo())
        << TF::LRefCountedObject::GetLiveCount() - mObjectsBefore << " objects left";
  }

  // Until every object of the test has gone; a thread may still be on its way out.
  bool WaitForObjectsToGo() const {
    const auto deadline = std::chrono::steady_clock::now() + CaptureClient::kPatience;
    while (TF::LRefCountedObject::GetLiveCount() != mObjectsBefore) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::yield();
    }
    return true;
  }

  void CloseService() {
    if (!mComm) return;
    mComm->Shutdown();
    mComm = nullptr;
  }

  void UseTimeout(std::uint32_t milliseconds) {
    CloseService();
    mComm = TF::MakeRC<TF::LMidiComm>(mDriver, milliseconds);
  }

  Port OpenInput(const char16_t* name, TFRESULT expected = TF::kSuccess) {
    Port port;
    EXPECT_EQ(mComm->OpenCapturePort(name, port), expected);
    EXPECT_EQ(static_cast<bool>(port), expected == TF::kSuccess);
    return port;
  }

  Port OpenOutput(const char16_t* name, TFRESULT expected = TF::kSuccess) {
    Port port;
    EXPECT_EQ(mComm->OpenRenderPort(name, port), expected);
    EXPECT_EQ(static_cast<bool>(port), expected == TF::kSuccess);
    return port;
  }

  TF::RCPtr<CaptureClient> Listen(std::function<void()> handler = nullptr) {
    auto client = TF::MakeRC<CaptureClient>(std::move(handler));
    EXPECT_NE(client->Register(mComm, TF::kMidiDataCapturedName), nullptr);
    return client;
  }

  static TF::ArrayBuffer<char> Bytes(std::string_view text) {
    TF::ArrayBuffer<char> bytes;
    bytes.SetCount(static_cast<std::int32_t>(text.size()));
    std::copy(text.begin(), text.end(), bytes.begin());
    return bytes;
  }

  FakeMidiDriver mDriver;

 private:
  static std::int64_t CountObjects() {
    // What the process makes once and keeps is not this test's.
    TF::GetNotificationID(TF::kMidiDataCapturedName);
    const TF::String empty;
    return TF::LRefCountedObject::GetLiveCount();
  }

  const std::int64_t mObjectsBefore = CountObjects();

 protected:
  TF::RCPtr<TF::LMidiComm> mComm = TF::MakeRC<TF::LMidiComm>(mDriver);
};
