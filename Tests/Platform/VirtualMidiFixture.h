#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/VirtualMidiDriver.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/MidiRecorder.h"
#include "Tests/Support/MidiSockets.h"
#include "Tests/Support/TemporaryFolder.h"

// A virtual driver on an empty folder; a test plugs its devices in there.
class VirtualMidiFixture : public testing::Test {
 protected:
  VirtualMidiFixture() {
    Platform::SetMidiRecordSink([this](std::string_view text) {
      const std::lock_guard lock(mRecordMutex);
      mRecords.emplace_back(text);
    });
  }

  // Before the members of a test go, which its ports still use.
  void TearDown() override {
    driver.reset();
    EXPECT_TRUE(Platform::WaitForMidiThreads(20000)) << "a port has left a thread behind";
    Platform::SetMidiRecordSink(nullptr);
  }

  std::string SocketPath(std::string_view name) const { return folder.Entry(name).string(); }

  Platform::MidiHandle OpenFirstInput(const std::shared_ptr<Platform::MidiListener>& listener) {
    Platform::MidiHandle port = nullptr;
    driver->InputCount();
    EXPECT_EQ(driver->OpenInput(0, listener, port), Platform::kMidiOk);
    return port;
  }

  Platform::MidiHandle OpenFirstOutput(const std::shared_ptr<Platform::MidiListener>& listener) {
    Platform::MidiHandle port = nullptr;
    driver->OutputCount();
    EXPECT_EQ(driver->OpenOutput(0, listener, port), Platform::kMidiOk);
    return port;
  }

  std::vector<std::string> Records() {
    const std::lock_guard lock(mRecordMutex);
    return mRecords;
  }

  TestSupport::TemporaryFolder folder;
  std::unique_ptr<Platform::VirtualMidiDriver> driver =
      std::make_unique<Platform::VirtualMidiDriver>(folder.Path().string());

 private:
  std::mutex mRecordMutex;
  std::vector<std::string> mRecords;
};
