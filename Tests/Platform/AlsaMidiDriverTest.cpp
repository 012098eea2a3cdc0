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

// Runs only where a card with MIDI ports is plugged in; every one of them must open, or say why.
TEST(AlsaMidiDriverTest, EveryPresentPortOpensOrTellsWhyNot) {
  AlsaMidiDriver driver;
  const std::uint32_t inputs = driver.InputCount(), outputs = driver.OutputCount();
  if (inputs + outputs == 0) GTEST_SKIP() << "this machine has no MIDI port";
  std::string records;
  Platform::SetMidiRecordSink([&](std::string_view text) { records += text; });
  const auto listener = std::make_shared<TestSupport::MidiRecorder>(nullptr);
  const auto check = [&](auto open, auto name, auto close) {
    MidiHandle port = nullptr;
    std::u16string text;
    const bool opened = open(port) == Platform::kMidiOk;
    EXPECT_EQ(opened, port != nullptr);
    EXPECT_TRUE(opened || !records.empty());
    if (!opened) return;
    EXPECT_EQ(name(port, text), Platform::kMidiOk);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(close(port), Platform::kMidiOk);
  };
  for (std::uint32_t i = 0; i < inputs; ++i) {
    check([&](MidiHandle& port) { return driver.OpenInput(i, listener, port); },
          [&](MidiHandle port, std::u16string& text) { return driver.InputName(port, text); },
          [&](MidiHandle port) { return driver.CloseInput(port); });
  }
  for (std::uint32_t i = 0; i < outputs; ++i) {
    check([&](MidiHandle& port) { return driver.OpenOutput(i, listener, port); },
          [&](MidiHandle port, std::u16string& text) { return driver.OutputName(port, text); },
          [&](MidiHandle port) { return driver.CloseOutput(port); });
  }
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  Platform::SetMidiRecordSink(nullptr);
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

}  // namespace
