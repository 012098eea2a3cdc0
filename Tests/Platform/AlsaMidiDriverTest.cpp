#include "Platform/AlsaKernelPort.h"
#include "Platform/AlsaMidiDriver.h"

#include "Tests/Support/MidiRecorder.h"
#include "Tests/Support/ProcessState.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace {

using Platform::AlsaMidiDriver;
using Platform::MidiHandle;

bool SoundSystemExists() {
  return std::filesystem::exists("/proc/asound/cards");
}

TEST(AlsaMidiDriverTest, WithoutASoundSystemThereAreNoDevicesAndNoComplaints) {
  if (SoundSystemExists()) GTEST_SKIP() << "this machine has a sound system";
  const auto child = TestSupport::RunInChild([] {
    AlsaMidiDriver driver;
    const auto listener = std::make_shared<TestSupport::MidiRecorder>(nullptr);
    MidiHandle input = nullptr, output = nullptr;
    std::u16string name;
    const bool right = driver.InputCount() == 0 && driver.OutputCount() == 0 &&
                       driver.InputName(0u, name) == Platform::kMidiBadDevice &&
                       driver.OutputName(0u, name) == Platform::kMidiBadDevice &&
                       driver.OpenInput(0, listener, input) == Platform::kMidiBadDevice &&
                       driver.OpenOutput(0, listener, output) == Platform::kMidiBadDevice &&
                       input == nullptr && output == nullptr;
    if (!right) std::puts("a device is there");
  });
  EXPECT_EQ(child.exitStatus, 0);
  EXPECT_EQ(child.output, "");
}

TEST(AlsaMidiDriverTest, ARefusalTellsWhatToDo) {
  const struct {
    int error;
    Platform::MidiStatus status;
    std::vector<const char*> parts;
  } cases[] = {
      {EBUSY, Platform::kMidiAllocated, {"another program holds the port"}},
      {EAGAIN, Platform::kMidiAllocated, {"another program holds the port"}},
      {EACCES, Platform::kMidiAccessDenied, {"Permission denied", "group \"audio\"", "udev rule", "uaccess"}},
      {EPERM, Platform::kMidiAccessDenied, {"group \"audio\""}},
      {ENODEV, Platform::kMidiBadDevice, {"has gone"}},
      {ENOENT, Platform::kMidiBadDevice, {"has gone"}},
      {EIO, Platform::kMidiError, {"Input/output error"}},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(Platform::MidiStatusOfErrno(one.error), one.status) << one.error;
    for (const char* part : one.parts) {
      EXPECT_NE(Platform::AlsaRefusal(one.error).find(part), std::string::npos) << one.error;
    }
  }
}

TEST(AlsaKernelPortTest, AnAddressIsThreeNumbersAndNothingElse) {
  Platform::KernelPortAddress address;
  ASSERT_TRUE(Platform::ParseKernelPortAddress("hw:12,0,3", address));
  EXPECT_EQ(address.mCard, 12);
  EXPECT_EQ(address.mDevice, 0);
  EXPECT_EQ(address.mSubdevice, 3);
  for (const char* text : {"", "hw:", "hw:1", "hw:1,0", "hw:1,0,", "hw:1,0,0,", "hw:1,0,0x", "hw:-1,0,0",
                           "hw:1 ,0,0", "hw:1,,0", "1,0,0", "hw:99999999999,0,0"}) {
    EXPECT_FALSE(Platform::ParseKernelPortAddress(text, address)) << text;
  }
  Platform::OwnedDescriptor port;
  EXPECT_EQ(Platform::OpenKernelPort({31, 7, 0}, Platform::KernelPortDirection::kInput, port), ENOENT);
  EXPECT_FALSE(port);
}

}  // namespace
