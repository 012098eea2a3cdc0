#include "Tools/Simulator/SimulatedDevice.h"

#include <fmt/format.h>

#include <utility>

namespace Simulator {
namespace {

constexpr std::size_t kMaxViolations = 100;  // Kept in the status.
constexpr std::size_t kUnreadIdBytes = 8;    // Between the hardware id and the version.

}  // namespace

SimulatedDevice::SimulatedDevice(DeviceOptions options)
    : mOptions(std::move(options)),
      mFaults(mOptions.mFaults),
      mBootloader(mOptions.mHardwareId, mOptions.mSecondaryId),
      mDead(mOptions.mAnswerNothing) {
  mStatus.mMode = mOptions.mMode;
  mStatus.mFirmware = mOptions.mFirmware;
}

Reaction SimulatedDevice::Receive(std::span<const std::uint8_t> bytes) {
  Reaction reaction;
  for (const Bytes& message : mStream.Feed(bytes)) {
    HandleMessage(message, reaction);
    if (reaction.mPortLeaves) break;
  }
  return reaction;
}

void SimulatedDevice::PowerUp() {
  mStream.Reset();
  mBootloader.Reset();
  mDead = mOptions.mAnswerNothing;
}

void SimulatedDevice::HandleMessage(const Bytes& message, Reaction& reaction) {
  reaction.mReceived.push_back(message);
  ++mStatus.mMessages;
  const std::optional<Request> request = ParseRequest(message);
  if (!request) return;
  const bool inUpdateMode = mStatus.mMode == DeviceMode::kBootloader;
  ++mStatus.mMessagesByName[static_cast<std::size_t>(request->mName)];
  if (inUpdateMode) ++mStatus.mUpdateModeMessages;
  const std::vector<Fault> faults = mFaults.Next(request->mName, inUpdateMode);
  if (const Fault* unplug = FindFault(faults, FaultKind::kUnplug)) {
    reaction.mPortLeaves = true;
    if (unplug->mArgument) reaction.mPortReturnsAfter = std::chrono::milliseconds(*unplug->mArgument);
    return;
  }
  if (FindFault(faults, FaultKind::kSilent) != nullptr) mDead = true;
  if (mDead || FindFault(faults, FaultKind::kIgnoreMessage) != nullptr) return;
  const std::optional<Reply> reply = Execute(*request, reaction);
  if (reaction.mPortLeaves) return;
  for (Transmission& transmission : Transmit(reply, faults, ErrorReply())) {
    reaction.mTransmissions.push_back(std::move(transmission));
  }
}

std::optional<Reply> SimulatedDevice::Execute(const Request& request, Reaction& reaction) {
  if (!request.mFault.empty()) {
    Note(request.mFault);
    return {};
  }
  if (request.mName == MessageName::kVersion) return VersionReply();
  if (mStatus.mMode == DeviceMode::kBootloader) return ExecuteInBootloader(request, reaction);
  if (request.mName == MessageName::kSwitch) {
    Restart(DeviceMode::kBootloader, reaction);
  } else {
    Note(fmt::format("{} while the normal firmware runs", NameOf(request.mName)));
  }
  return {};
}

std::optional<Reply> SimulatedDevice::ExecuteInBootloader(const Request& request, Reaction& reaction) {
  // A computer that waits for update mode may ask for it again.
  if (request.mName == MessageName::kSwitch) return {};
  std::optional<Reply> reply = mBootloader.Execute(request);
  for (std::string& violation : mBootloader.TakeViolations()) Note(std::move(violation));
  mStatus.mVerifiedRegions = mBootloader.Verified();
  if (mBootloader.TakeFinish()) Finish(reaction);
  return reply;
}

void SimulatedDevice::Finish(Reaction& reaction) {
  reaction.mFlashSettled = true;
  const UpdateOutcome outcome = mBootloader.Finish();
  if (outcome == UpdateOutcome::kComplete) {
    mStatus.mFirmware = mOptions.mUpdateVersion.value_or(mStatus.mFirmware);
    ++mStatus.mFinishedUpdates;
  }
  const bool broken = outcome == UpdateOutcome::kIncomplete;
  if (broken) Note("finish with a region unverified");
  Restart(broken ? DeviceMode::kBootloader : DeviceMode::kNormal, reaction);
}

void SimulatedDevice::Restart(DeviceMode mode, Reaction& reaction) {
  mStatus.mMode = mode;
  ++mStatus.mRestarts;
  reaction.mPortLeaves = true;
  reaction.mPortReturnsAfter = mOptions.mRestartTime;
}

Reply SimulatedDevice::VersionReply() const {
  const bool running = mStatus.mMode == DeviceMode::kNormal;
  const FirmwareVersion version = running ? mStatus.mFirmware : FirmwareVersion();
  Reply reply;
  reply.mType = kTypeVersionReply;
  AppendLittleEndian(reply.mData, mOptions.mHardwareId);
  reply.mData.resize(reply.mData.size() + kUnreadIdBytes);
  reply.mData.insert(reply.mData.end(), {version.mBuild, version.mPatch, version.mMinor, version.mMajor});
  AppendLittleEndian(reply.mData, mOptions.mSecondaryId);
  reply.mData.resize(kVersionReplySize);
  return reply;
}

Reply SimulatedDevice::ErrorReply() const {
  constexpr std::array<std::uint8_t, sizeof(std::uint32_t)> kNoError{};
  return MakeReply(mOptions.mHardwareId, mOptions.mSecondaryId, kReplyError, kNoError);
}

void SimulatedDevice::Note(std::string violation) {
  if (mStatus.mViolations.size() < kMaxViolations) mStatus.mViolations.push_back(std::move(violation));
}

}  // namespace Simulator
