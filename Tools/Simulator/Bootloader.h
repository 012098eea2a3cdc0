#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "Tools/Simulator/Protocol.h"
#include "Tools/Vbin/FlashMemory.h"

namespace Simulator {

// Values of BL_REPLY_ERROR.
inline constexpr std::uint32_t kErrorNotStarted = 1;     // BL_CMD_START is missing.
inline constexpr std::uint32_t kErrorWrongRegion = 2;    // Another region, or none, was selected.
inline constexpr std::uint32_t kErrorNoHeader = 3;       // The region's header is missing.
inline constexpr std::uint32_t kErrorMalformed = 4;      // Arguments of the wrong size.
inline constexpr std::uint32_t kErrorAddress = 5;        // Data beyond the address space.
inline constexpr std::uint32_t kErrorWrongHardware = 6;  // A header for other hardware.
inline constexpr std::uint32_t kErrorUnknownCommand = 7;

enum class UpdateOutcome {
  kNothingWritten,  // No region was begun.
  kComplete,        // All regions begun were verified.
  kIncomplete,      // A region was begun and not verified.
};

// The update mode of the device: obeys bootloader commands and writes the flash. It judges the
// computer strictly and keeps a list of what was against the protocol.
class Bootloader {
 public:
  Bootloader(std::uint32_t hardwareId, std::uint32_t secondaryId);

  // The reply to a sound request, or none where the protocol has none.
  std::optional<Reply> Execute(const Request& request);

  // Whether BL_CMD_FINISH was obeyed since the last call; Finish is due then.
  bool TakeFinish();

  // What the session achieved; a complete update is forgotten with it.
  UpdateOutcome Finish();

  // Ends the session; what was written, and which regions are unverified, stays.
  void Reset();

  const Vbin::FlashMemory& Flash() const { return mFlash; }
  // Regions that were verified since the last start, and not touched since.
  const std::set<std::uint32_t>& Verified() const { return mVerified; }
  // Hands over what was against the protocol since the last call.
  std::vector<std::string> TakeViolations();

 private:
  Reply Answer(std::uint8_t code, std::span<const std::uint8_t> arguments = {}) const;
  Reply Value(std::uint32_t value) const;
  Reply Refuse(std::uint32_t error, std::string violation);
  Reply Start();
  std::optional<Reply> RequestFinish(const Request& request);
  Reply SelectRegion(const Request& request);
  Reply TakeHeader(const Request& request);
  void BeginRegion();
  std::optional<Reply> Write(const Request& request);
  Reply VerifyRegion(const Request& request);

  std::uint32_t mHardwareId;
  std::uint32_t mSecondaryId;
  Vbin::FlashMemory mFlash;
  bool mStarted = false;
  bool mFinishing = false;
  std::optional<std::uint32_t> mSelected;  // Region index.
  bool mHeaderTaken = false;               // Of the selected region.
  std::uint32_t mExpectedCrc = 0;          // mRegionCrc of that header.
  std::uint32_t mCrc = 0;                  // Of the region's bytes as they came.
  std::set<std::uint32_t> mUnverified;     // Regions begun and not verified.
  std::set<std::uint32_t> mVerified;       // Since the last start, and not begun again.
  bool mVerifiedAny = false;               // Since the last complete update.
  std::vector<std::string> mViolations;
};

}  // namespace Simulator
