#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Engine/UpdateEngine.h"
#include "Tests/Support/Engine/TransferRig.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tools/Simulator/SimulatorServer.h"

namespace EngineTest {

// Waits that no reply runs into; tests of silence take them shorter.
ProbeLimits ShortProbes(std::uint32_t milliseconds = 300);

// The options of a device at a port of this process's folder, with faults in the notation of
// the simulator. Its update gives the firmware version of every file.
Simulator::ServerOptions DeviceAt(const std::string& portName, Simulator::DeviceMode mode,
                                  const std::vector<std::string>& faults = {});

// An initialized engine that knows of one device, the one at a port "Tessel".
class EngineRig {
 public:
  explicit EngineRig(const ProbeLimits& probe = ShortProbes(),
                     const TransferLimits& transfer = ShortLimits());
  EngineRig(const EngineRig&) = delete;
  EngineRig& operator=(const EngineRig&) = delete;
  ~EngineRig() { mEngine->Shutdown(); }

  void SetImage(const Bytes& image);
  // Probes until the device answers in this state.
  bool RefreshUntil(std::int32_t state);
  // A whole transfer; the test fails when it cannot start or does not end.
  void Update();
  std::int32_t Reason();
  LUpdateEngine* operator->() { return mEngine.Get(); }

 private:
  TestSupport::TemporaryFolder mFolder;
  TF::RCPtr<LUpdateEngine> mEngine;
};

}  // namespace EngineTest
