#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "Tools/Simulator/Bootloader.h"
#include "Tools/Simulator/Fault.h"
#include "Tools/Simulator/MessageStream.h"
#include "Tools/Simulator/Protocol.h"
#include "Tools/Simulator/ReplyFaults.h"
#include "Tools/Vbin/FlashMemory.h"

namespace Simulator {

enum class DeviceMode : std::uint8_t {
  kNormal,      // The firmware runs: answers version queries, obeys the switch message.
  kBootloader,  // Update mode: answers version queries with 0.0.0.0, obeys the bootloader commands.
};

struct DeviceOptions {
  FirmwareVersion mFirmware{1, 5, 0, 9};
  // What runs after a finished update whose regions were all verified; empty keeps mFirmware.
  std::optional<FirmwareVersion> mUpdateVersion;
  DeviceMode mMode = DeviceMode::kNormal;
  std::uint32_t mHardwareId = kDefaultHardwareId;
  std::uint32_t mSecondaryId = kDefaultSecondaryId;
  std::chrono::milliseconds mRestartTime{500};
  bool mAnswerNothing = false;
  std::vector<Fault> mFaults;
};

// What the device does about some input.
struct Reaction {
  std::vector<std::vector<std::uint8_t>> mReceived;  // Whole messages that the input completed.
  std::vector<Transmission> mTransmissions;          // In order of decision, not of delay.
  bool mPortLeaves =
      false;  // Restart or unplugging; the rest of the input is lost, the owner drops what is unsent.
  std::optional<std::chrono::milliseconds> mPortReturnsAfter;  // Empty with mPortLeaves: it stays away.
  bool mFlashSettled = false;  // BL_CMD_FINISH was obeyed: the flash content is final.
};

// What a test may want to know of a device.
struct DeviceStatus {
  DeviceMode mMode = DeviceMode::kNormal;
  FirmwareVersion mFirmware;              // Of the firmware in the flash, also while the bootloader runs.
  std::uint32_t mMessages = 0;            // System-exclusive messages received in all.
  std::uint32_t mUpdateModeMessages = 0;  // Those of them that arrived in update mode.
  std::array<std::uint32_t, kMessageNameCount> mMessagesByName{};
  std::uint32_t mRestarts = 0;         // By the switch message and BL_CMD_FINISH.
  std::uint32_t mFinishedUpdates = 0;  // Restarts into newly written firmware.
  // Regions verified since the last BL_CMD_START, and not written since; they outlive BL_CMD_FINISH.
  std::set<std::uint32_t> mVerifiedRegions;
  // What the computer did against the protocol: a sentence each, the first 100.
  std::vector<std::string> mViolations;

  std::uint32_t CountOf(MessageName name) const { return mMessagesByName[static_cast<std::size_t>(name)]; }
};

// A software Tessel as a pure state machine: bytes in, bytes and events out. It knows no
// ports, threads or clocks; one thread at a time.
//
// The value of a verified region is the CRC-32 over all data bytes written since its header, in
// order of arrival. Bootloader commands are obeyed with the device's own two ids or 0xFFFFFFFF in
// place of either, and ignored with any others.
// After BL_CMD_FINISH the device restarts into the new firmware when each region that was
// begun since the last update was verified, and at least one was; with none begun it starts
// the old firmware; with one unverified it comes back in update mode.
// An unplugged device comes back in the mode that it had, and answers again if it had fallen
// silent; its flash outlives everything.
class SimulatedDevice {
 public:
  explicit SimulatedDevice(DeviceOptions options);

  // Takes bytes as they come, cut anywhere.
  Reaction Receive(std::span<const std::uint8_t> bytes);

  // The port has returned after it left: forgets half-received messages and the session.
  void PowerUp();

  const DeviceStatus& Status() const { return mStatus; }
  const Vbin::FlashMemory& Flash() const { return mBootloader.Flash(); }

 private:
  void HandleMessage(const std::vector<std::uint8_t>& message, Reaction& reaction);
  std::optional<Reply> Execute(const Request& request, Reaction& reaction);
  std::optional<Reply> ExecuteInBootloader(const Request& request, Reaction& reaction);
  void Restart(DeviceMode mode, Reaction& reaction);
  void Finish(Reaction& reaction);
  Reply VersionReply() const;
  Reply ErrorReply() const;
  void Note(std::string violation);

  DeviceOptions mOptions;
  FaultPlan mFaults;
  MessageStream mStream;
  Bootloader mBootloader;
  DeviceStatus mStatus;
  bool mDead = false;
};

}  // namespace Simulator
