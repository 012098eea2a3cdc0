#include "Tests/Support/Engine/EngineRig.h"

#include <gtest/gtest.h>

#include "Tests/Support/Engine/VirtualMidiEnvironment.h"

namespace EngineTest {

using TF::kSuccess;
using TF::String;

namespace {

constexpr std::uint32_t kLongMs = 60000;

}  // namespace

ProbeLimits ShortProbes(std::uint32_t milliseconds) {
  ProbeLimits limits;
  limits.mVersionReplyMs = milliseconds;
  limits.mVersionAttempts = 2;
  limits.mBootloaderReplyMs = milliseconds * 10;
  limits.mOpenReplyMs = milliseconds * 10;
  return limits;
}

Simulator::ServerOptions DeviceAt(const std::string& portName, Simulator::DeviceMode mode,
                                  const std::vector<std::string>& faults) {
  Simulator::ServerOptions options;
  options.mDirectory = MidiFolder();
  options.mPortName = portName;
  options.mDevice.mMode = mode;
  options.mDevice.mRestartTime = std::chrono::milliseconds(50);
  options.mDevice.mUpdateVersion = Simulator::FirmwareVersion{1, 6, 0, 47};
  for (const std::string& fault : faults) options.mDevice.mFaults.push_back(Simulator::ParseFault(fault));
  return options;
}

EngineRig::EngineRig(const ProbeLimits& probe, const TransferLimits& transfer)
    : mEngine(TF::MakeRC<LUpdateEngine>()) {
  mEngine->SetLimits(probe, transfer);
  EXPECT_EQ(mEngine->Initialize(String()), kSuccess);
  LUpdateEngineInterface::DeviceDefinition definition;
  definition.mCapturePortName = definition.mRenderPortName = u"Tessel";
  definition.mUpdateCapturePortName = definition.mUpdateRenderPortName = u"Tessel";
  EXPECT_EQ(mEngine->SetDeviceDefinitions({definition}), kSuccess);
}

void EngineRig::SetImage(const Bytes& image) {
  mFolder.WriteFile("fw.vbin", std::string(image.begin(), image.end()));
  EXPECT_EQ(mEngine->SetFirmwareFile(String(mFolder.InnerEntry("fw.vbin"))), kSuccess);
}

bool EngineRig::RefreshUntil(std::int32_t state) {
  for (int i = 0; i < 50 && mEngine->GetDeviceState() != state; ++i) mEngine->RefreshDeviceState();
  return mEngine->GetDeviceState() == state;
}

void EngineRig::Update() {
  ASSERT_EQ(mEngine->StartUpdate(), kSuccess);
  ASSERT_EQ(mEngine->WaitForUpdateCompletion(kLongMs), kSuccess);
}

std::int32_t EngineRig::Reason() {
  std::int32_t reason = REASON_NONE;
  mEngine->GetDeviceStatus(0, reason);
  return reason;
}

}  // namespace EngineTest
