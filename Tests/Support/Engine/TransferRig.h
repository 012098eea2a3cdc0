#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"
#include "Tests/Support/Engine/TestBytes.h"
#include "Tools/Simulator/SimulatorServer.h"

namespace EngineTest {

// Waits cut to what a test can bear, pauses to nothing. The limit for replies stays far above
// the time of any reply that comes at all, so that only lost ones run into it.
TransferLimits ShortLimits();

// Two regions for the simulated device, the second with two sections of more than eight
// packets together.
std::vector<Vbin::RegionDescription> TwoRegions();
// One region of one section.
std::vector<Vbin::RegionDescription> OneRegion(std::size_t size);

// A simulated device in update mode, and transfers into it over real ports.
class TransferRig {
 public:
  // Faults in the notation of the simulator.
  explicit TransferRig(const std::vector<std::string>& faults = {});

  Simulator::SimulatorServer& Device() { return *mDevice; }
  TransferLimits& Limits() { return mLimits; }

  TFRESULT Transfer(const Bytes& image, unsigned hardwareId = Simulator::kDefaultHardwareId);
  TFRESULT Transfer(const std::vector<Vbin::RegionDescription>& regions,
                    unsigned hardwareId = Simulator::kDefaultHardwareId);

  // What the device received, a word or two for each message: "start", "select 0", "header 0",
  // "write 1000+240", "write-acked ...", "verify 0", "finish".
  std::vector<std::string> Messages();
  // The same without writes.
  std::vector<std::string> Exchanges();
  std::uint32_t CountOf(Simulator::MessageName name) { return mDevice->Status().CountOf(name); }
  bool WaitForCount(Simulator::MessageName name, std::uint32_t count);
  // The device has the finish message, which nobody waits for.
  bool WaitForFinish() { return WaitForCount(Simulator::MessageName::kFinish, 1); }

  // The device sends a bootloader reply now.
  void Reply(unsigned char code, const Bytes& arguments);
  void ReplyValue(std::uint32_t value);
  void ReplyRegion(std::uint32_t index, std::uint32_t hardwareId = Simulator::kDefaultHardwareId);

  // Whether the flash holds the regions for the device's hardware, and nothing else.
  bool FlashHolds(const std::vector<Vbin::RegionDescription>& regions);

 private:
  std::unique_ptr<Simulator::SimulatorServer> mDevice;
  TransferLimits mLimits = ShortLimits();
};

}  // namespace EngineTest
