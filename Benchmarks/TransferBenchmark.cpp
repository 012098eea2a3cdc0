#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"
#include "Platform/Clock.h"
#include "Tools/Simulator/SimulatorServer.h"
#include "Tools/Vbin/Image.h"

// A 256 KiB image into the simulated device, beside the floor that the fixed waits set.

namespace {

constexpr std::size_t kImageBytes = 256 * 1024;

Simulator::ServerOptions DeviceOptions(const std::string& folder) {
  Simulator::ServerOptions options;
  options.mDirectory = folder;
  options.mDevice.mMode = Simulator::DeviceMode::kBootloader;
  return options;
}

TF::Array<unsigned char> MakeImage() {
  Vbin::RegionDescription region;
  region.mHardwareId = Simulator::kDefaultHardwareId;
  region.mSections = {{0x08004000, std::vector<std::uint8_t>(kImageBytes, 0x5A)}};
  const std::vector<std::uint8_t> bytes = Vbin::BuildImage({{region}});
  TF::Array<unsigned char> image;
  image.SetCount(static_cast<std::int32_t>(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), image.GetBuffer());
  return image;
}

// The pauses after the writes that are not acknowledged, and the one at the head of the region.
double FloorSeconds() {
  const TransferLimits limits;
  const std::size_t writes = (kImageBytes + kMaxWriteBytes - 1) / kMaxWriteBytes;
  const std::size_t unacknowledged = writes - writes / limits.mWritesPerAcknowledgement;
  return (static_cast<double>(unacknowledged) * limits.mWritePauseMs + limits.mRegionPauseMs) / 1000.0;
}

void Transfer256KiB(benchmark::State& state) {
  const std::string folder =
      (std::filesystem::temp_directory_path() / ("tessel-benchmark-" + std::to_string(std::rand()))).string();
  setenv("TESSEL_MIDI", ("virtual:" + folder).c_str(), 1);
  Platform::SetTimerResolution(true);
  const TF::Array<unsigned char> image = MakeImage();
  for (auto _ : state) {
    state.PauseTiming();
    Simulator::SimulatorServer device(DeviceOptions(folder));
    device.Start();
    const auto performer = TF::MakeRC<LVarnokMidiFirmwareUpdatePerformer>(Simulator::kDefaultHardwareId,
                                                                          Simulator::kDefaultSecondaryId);
    performer->CreateNotificationHandler();
    state.ResumeTiming();
    if (TF::Failed(performer->Perform(image, u"Tessel", u"Tessel")))
      throw std::runtime_error("transfer failed");
    state.PauseTiming();
    device.Stop();
    state.ResumeTiming();
  }
  std::filesystem::remove_all(folder);
  state.counters["floor_s"] = FloorSeconds();
  // Inverted rate: seconds of one transfer as a multiple of the floor.
  state.counters["times_floor"] = benchmark::Counter(
      FloorSeconds(), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Transfer256KiB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace
