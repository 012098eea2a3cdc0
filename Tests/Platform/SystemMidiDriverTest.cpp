#include "Platform/MidiDriver.h"
#include "Tests/Support/MidiSockets.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

// The driver is chosen once a process, so every choice has a process of its own.
std::string DevicesWith(const char* choice) {
  const TestSupport::ScopedEnvironment environment("TESSEL_MIDI", choice);
  const auto child = TestSupport::RunInChild([] {
    Platform::SetMidiRecordSink(
        [](std::string_view text) { std::printf("%.*s\n", static_cast<int>(text.size()), text.data()); });
    Platform::MidiDriver& driver = Platform::SystemMidiDriver();
    const std::uint32_t count = driver.InputCount();
    for (std::uint32_t device = 0; device < count; ++device) {
      std::u16string name;
      if (driver.InputName(device, name) != Platform::kMidiOk) std::puts("error");
      std::puts(std::string(name.begin(), name.end()).c_str());
    }
  });
  EXPECT_EQ(child.exitStatus, 0);
  return child.output;
}

TEST(SystemMidiDriverTest, TheEnvironmentChoosesTheDriver) {
  const TestSupport::TemporaryFolder folder;
  const TestSupport::MidiSocket device(folder.Entry("Only virtual.in"));
  EXPECT_EQ(DevicesWith(("virtual:" + folder.Path().string()).c_str()), "Only virtual\n");
  EXPECT_EQ(DevicesWith("virtual:"), "");
  const std::string system = DevicesWith(nullptr);
  EXPECT_EQ(system.find("Only virtual"), std::string::npos);
  EXPECT_EQ(DevicesWith("vrtual:x"), "TESSEL_MIDI=vrtual:x is not known; ALSA is taken\n" + system);
}

}  // namespace
