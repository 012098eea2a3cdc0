#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Tools/Vbin/Image.h"

namespace Vbin {

// The address space of a device's flash: 32-bit addresses, of which only those written hold
// anything. Not synchronised; equal when the same addresses hold the same bytes.
class FlashMemory {
 public:
  // False, and nothing is written, when the bytes would pass the last address.
  bool Write(std::uint32_t address, std::span<const std::uint8_t> bytes);

  // Empty for an address that was never written.
  std::optional<std::uint8_t> At(std::uint32_t address) const;

  // size bytes from address on; what was never written reads as 0xFF.
  std::vector<std::uint8_t> Read(std::uint32_t address, std::uint32_t size) const;

  std::uint64_t WrittenBytes() const;
  bool operator==(const FlashMemory& other) const = default;

  // The content as Intel HEX with 32-bit addresses: one data record for each run of written
  // bytes inside 16 aligned addresses, ascending. Equal contents give equal texts.
  std::string ToIntelHex() const;

 private:
  static constexpr std::uint32_t kPageSize = 4096;  // Bytes.
  struct Page {
    std::array<std::uint8_t, kPageSize> mBytes{};  // 0 where nothing was written.
    std::bitset<kPageSize> mWritten;
    bool operator==(const Page& other) const = default;
  };
  std::map<std::uint32_t, Page> mPages;  // By page number.
};

// What the flash of a device holds after it took the regions for hardwareId, or all regions
// without one, in file order. Sections that pass the last address are left out.
FlashMemory FlashOf(const std::vector<Region>& regions, std::optional<std::uint32_t> hardwareId = {});

}  // namespace Vbin
