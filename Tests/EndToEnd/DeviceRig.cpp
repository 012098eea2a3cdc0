#include "Tests/EndToEnd/DeviceRig.h"

#include <algorithm>

#include "Tools/Vbin/Image.h"

namespace EndToEnd {

namespace {

std::vector<std::uint8_t> MakeImage() {
  std::vector<std::uint8_t> data(9000);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  Vbin::RegionDescription first;
  first.mHardwareId = Simulator::kDefaultHardwareId;
  first.mSections = {{0x08004000, data}, {0x08010000, {data.begin(), data.begin() + 1921}}};
  Vbin::RegionDescription second = first;
  second.mSections = {{0x08020000, {data.rbegin(), data.rend()}}};
  return Vbin::BuildImage({{first, second}});
}

}  // namespace

bool InMode(const Simulator::SimulatorServer& device, Simulator::DeviceMode mode) {
  return device.WaitFor([mode](const Simulator::DeviceStatus& status) { return status.mMode == mode; }) &&
         device.WaitForPlug(true);
}

DeviceRig::DeviceRig() : mImage(MakeImage()) {
  mFolder.WriteFile("fw.vbin", std::string(mImage.begin(), mImage.end()));
}

Simulator::ServerOptions DeviceRig::Options(Simulator::DeviceMode mode, const Arguments& faults) const {
  Simulator::ServerOptions options;
  options.mDirectory = mFolder.Entry("midi").string();
  options.mDevice.mMode = mode;
  options.mDevice.mUpdateVersion = Simulator::FirmwareVersion{1, 6, 0, 47};
  options.mDevice.mRestartTime = std::chrono::milliseconds(100);
  for (const std::string& fault : faults) options.mDevice.mFaults.push_back(Simulator::ParseFault(fault));
  return options;
}

Simulator::SimulatorServer& DeviceRig::AddDevice(const Simulator::ServerOptions& options) {
  mDevices.push_back(std::make_unique<Simulator::SimulatorServer>(options));
  mDevices.back()->Start();
  return *mDevices.back();
}

Simulator::SimulatorServer& DeviceRig::AddDevice(Simulator::DeviceMode mode, const Arguments& faults) {
  return AddDevice(Options(mode, faults));
}

ProgramOptions DeviceRig::Updater(Arguments arguments) const {
  const auto namesFile = [](const std::string& argument) { return argument.find('=') != std::string::npos; };
  if (std::none_of(arguments.begin(), arguments.end(), namesFile)) {
    arguments.push_back("-ABSOLUTE_FIRMWARE_FILE_PATH=" + Image());
  }
  ProgramOptions options;
  options.mArguments = std::move(arguments);
  options.mEnvironment = {{"TESSEL_MIDI", "virtual:" + mFolder.Entry("midi").string()},
                          {"XDG_RUNTIME_DIR", mFolder.Path().string()},
                          {"DISPLAY", ""},
                          {"WAYLAND_DISPLAY", ""}};
  return options;
}

int DeviceRig::Run(const Arguments& arguments) const {
  ProgramRun run(Updater(arguments));
  return run.Wait();
}

bool DeviceRig::Holds(const Simulator::SimulatorServer& device) const {
  return device.Flash() == Vbin::FlashOf(Vbin::ReadImage(mImage));
}

}  // namespace EndToEnd
