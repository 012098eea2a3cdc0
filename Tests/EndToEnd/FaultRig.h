#pragma once

#include <memory>
#include <string>

#include "Tests/EndToEnd/FaultModel.h"
#include "Tests/Support/Engine/EngineRig.h"
#include "Tests/Support/Engine/NotificationRecorder.h"
#include "Tools/Simulator/SimulatorServer.h"

namespace EndToEnd {

// Updates a faulty device again and again until its faults are used up; then one more update
// must succeed. Every rule that is broken on the way fails the test.
class FaultRun {
 public:
  explicit FaultRun(const FaultCase& faultCase);
  void Run();

 private:
  void MakeEngine();
  bool EnterUpdateMode();
  // False when the update does not come to an end.
  bool Update(const Expectation& expected);
  void CheckEngine(Ending ending, EngineTest::NotificationRecorder& recorder);
  void CheckDevice(Ending ending, const Expectation& expected, const Simulator::DeviceStatus& before);
  bool Recover();
  void CheckLastUpdate();

  const FaultCase mCase;
  const EngineTest::Bytes mImage;
  Simulator::SimulatorServer mDevice;
  std::unique_ptr<EngineTest::EngineRig> mRig;
  unsigned mUpdatesSent = 0;
};

}  // namespace EndToEnd
