#include "Tests/Support/Engine/VirtualMidiEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "Tests/Support/TemporaryFolder.h"

namespace EngineTest {

namespace {

std::unique_ptr<TestSupport::TemporaryFolder> gFolder;

class VirtualMidiEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    gFolder = std::make_unique<TestSupport::TemporaryFolder>();
    ASSERT_EQ(setenv("TESSEL_MIDI", ("virtual:" + gFolder->Path().string()).c_str(), 1), 0);
  }
  void TearDown() override { gFolder.reset(); }
};

[[maybe_unused]] const auto* const kEnvironment =
    testing::AddGlobalTestEnvironment(new VirtualMidiEnvironment);

}  // namespace

std::string MidiFolder() {
  return gFolder->Path().string();
}

}  // namespace EngineTest
