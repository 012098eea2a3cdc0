#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Tests/EndToEnd/ProgramRun.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tools/Simulator/SimulatorServer.h"

namespace EndToEnd {

using Arguments = std::vector<std::string>;

// Waits until the device is there in this mode; false when it never is.
bool InMode(const Simulator::SimulatorServer& device, Simulator::DeviceMode mode);

// A folder with a firmware image and the ports of simulated devices, and the updater run there.
class DeviceRig {
 public:
  DeviceRig();

  // The options of a device whose update gives the firmware version of every file.
  Simulator::ServerOptions Options(Simulator::DeviceMode mode, const Arguments& faults = {}) const;
  Simulator::SimulatorServer& AddDevice(const Simulator::ServerOptions& options);
  Simulator::SimulatorServer& AddDevice(Simulator::DeviceMode mode, const Arguments& faults = {});

  const TestSupport::TemporaryFolder& Folder() const { return mFolder; }
  std::string Image() const { return mFolder.Entry("fw.vbin").string(); }
  const std::vector<std::uint8_t>& ImageBytes() const { return mImage; }

  // The updater in this rig's environment; with the option for its image unless one is given.
  ProgramOptions Updater(Arguments arguments) const;
  int Run(const Arguments& arguments) const;
  int Status() const { return Run({"-RETURN_UPDATE_MODE_STATUS"}); }

  // Whether the flash of the device holds the image.
  bool Holds(const Simulator::SimulatorServer& device) const;

 private:
  TestSupport::TemporaryFolder mFolder;
  std::vector<std::uint8_t> mImage;
  std::vector<std::unique_ptr<Simulator::SimulatorServer>> mDevices;
};

}  // namespace EndToEnd
