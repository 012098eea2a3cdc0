#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/Simulator/SimulatedDevice.h"
#include "Tools/Vbin/Image.h"

// What an update must come to when its device misbehaves: a table made by hand of what each
// fault does to each exchange, and how such effects add up over a run. Nothing here comes from
// the engine.
namespace EndToEnd {

// How much longer than usual everything takes under a sanitizer.
#if defined(__SANITIZE_THREAD__)
inline constexpr std::uint32_t kSlowness = 3;
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr std::uint32_t kSlowness = 2;
#else
inline constexpr std::uint32_t kSlowness = 1;
#endif

// The waits that the engine is given, in the product's proportions where a fault plays with
// them. A reply that comes at all takes a small part of its limit.
inline constexpr std::uint32_t kReplyLimitMs = 1500 * kSlowness;
inline constexpr std::uint32_t kOpenLimitMs = 2 * kReplyLimitMs;
inline constexpr std::uint32_t kLateWaitMs = kReplyLimitMs / 10;
inline constexpr unsigned kRetries = 5;

// Two regions for the simulated device with one for other hardware between them. The first has
// 9 packets; the last has sections of 2 and of 8.
std::vector<Vbin::RegionDescription> MatrixImage();
inline constexpr std::uint32_t kFirstRegion = 0;
inline constexpr std::uint32_t kLastRegion = 2;

enum class Ending {
  kSent,       // Update result 4.
  kNotOpened,  // Failed before the transfer: result 2, without a reason.
  kFailed,     // Failed in the transfer: result 2, the device cannot be reached.
};

struct Expectation {
  Ending mEnding = Ending::kSent;
  bool mIsCertain = true;  // False: the run may also end in another way, by chance.
  // Regions that the device itself refused, and those that it may have refused.
  std::set<std::uint32_t> mLeftOut;
  std::set<std::uint32_t> mMayBeLeftOut;
  // How often the device is told to select a region, in a run that is sent.
  unsigned mFewestPasses = 2;
  unsigned mMostPasses = 2;
};

// A device with its faults, and whether each run is another engine's.
struct FaultCase {
  std::vector<std::string> mFaults;  // In the notation of the simulator.
  bool mHasNewEngines = false;
  std::optional<Expectation> mFirstRun;  // What was found out by hand for this very case.
};

// A case as one text, and back again without mFirstRun.
std::string Describe(const FaultCase& faultCase);
FaultCase ParseFaultCase(const std::string& text);

// A run that meets the device in this state, with the faults that are left then.
Expectation ExpectRun(const FaultCase& faultCase, const Simulator::DeviceStatus& status);

// Whether no fault can strike any more.
bool AreUsedUp(const FaultCase& faultCase, const Simulator::DeviceStatus& status);

// Every fault of the table at every exchange, alone.
std::vector<FaultCase> SingleFaults();
// Faults repeated up to the limits of retries, and combinations that are known to be hard.
std::vector<FaultCase> HardFaults();
FaultCase RandomPair(std::mt19937& random);

}  // namespace EndToEnd
