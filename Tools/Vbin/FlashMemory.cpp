#include "Tools/Vbin/FlashMemory.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace Vbin {
namespace {

constexpr std::uint8_t kErased = 0xFF;
constexpr std::uint32_t kRowSize = 16;  // Bytes of a data record at most.
constexpr std::uint8_t kDataRecord = 0x00;
constexpr std::uint8_t kEndRecord = 0x01;
constexpr std::uint8_t kUpperAddressRecord = 0x04;

// Length, address, type, data and the byte that makes the sum of the record 0.
void AppendRecord(std::string& text, std::uint8_t type, std::uint16_t address,
                  std::span<const std::uint8_t> data) {
  auto out = std::back_inserter(text);
  fmt::format_to(out, ":{:02X}{:04X}{:02X}", data.size(), address, type);
  unsigned sum = static_cast<unsigned>(data.size()) + (address >> 8) + (address & 0xFF) + type;
  for (const std::uint8_t byte : data) {
    fmt::format_to(out, "{:02X}", byte);
    sum += byte;
  }
  fmt::format_to(out, "{:02X}\n", (0x100 - (sum & 0xFF)) & 0xFF);
}

void AppendUpperAddress(std::string& text, std::uint32_t upper) {
  const std::array<std::uint8_t, 2> data{static_cast<std::uint8_t>(upper >> 8),
                                         static_cast<std::uint8_t>(upper)};
  AppendRecord(text, kUpperAddressRecord, 0, data);
}

}  // namespace

bool FlashMemory::Write(std::uint32_t address, std::span<const std::uint8_t> bytes) {
  if (address + std::uint64_t{bytes.size()} > kAddressSpace) return false;
  while (!bytes.empty()) {
    Page& page = mPages[address / kPageSize];
    const std::uint32_t offset = address % kPageSize;
    const std::size_t count = std::min<std::size_t>(bytes.size(), kPageSize - offset);
    std::copy_n(bytes.begin(), count, page.mBytes.begin() + offset);
    for (std::size_t index = 0; index < count; ++index) page.mWritten.set(offset + index);
    bytes = bytes.subspan(count);
    address += static_cast<std::uint32_t>(count);  // Wraps to 0 behind the last address, with nothing left.
  }
  return true;
}

std::optional<std::uint8_t> FlashMemory::At(std::uint32_t address) const {
  const auto found = mPages.find(address / kPageSize);
  if (found == mPages.end() || !found->second.mWritten.test(address % kPageSize)) return {};
  return found->second.mBytes[address % kPageSize];
}

std::vector<std::uint8_t> FlashMemory::Read(std::uint32_t address, std::uint32_t size) const {
  std::vector<std::uint8_t> bytes(size);
  for (std::uint32_t index = 0; index < size; ++index) bytes[index] = At(address + index).value_or(kErased);
  return bytes;
}

std::uint64_t FlashMemory::WrittenBytes() const {
  std::uint64_t count = 0;
  for (const auto& [number, page] : mPages) count += page.mWritten.count();
  return count;
}

std::string FlashMemory::ToIntelHex() const {
  std::string text;
  std::optional<std::uint32_t> upper;
  for (const auto& [number, page] : mPages) {
    const std::uint32_t start = number * kPageSize;
    if (upper != start >> 16) {
      upper = start >> 16;
      AppendUpperAddress(text, *upper);
    }
    for (std::uint32_t at = 0; at < kPageSize;) {
      std::uint32_t end = at;
      while (end < kPageSize && end / kRowSize == at / kRowSize && page.mWritten.test(end)) ++end;
      const std::uint16_t lower = static_cast<std::uint16_t>(start + at);
      if (end > at) AppendRecord(text, kDataRecord, lower, std::span(page.mBytes).subspan(at, end - at));
      at = std::max(end, at + 1);
    }
  }
  AppendRecord(text, kEndRecord, 0, {});
  return text;
}

FlashMemory FlashOf(const std::vector<Region>& regions, std::optional<std::uint32_t> hardwareId) {
  FlashMemory flash;
  for (const Region& region : regions) {
    if (hardwareId && region.mHardwareId != *hardwareId) continue;
    for (const Section& section : region.mSections) flash.Write(section.mAddress, section.mData);
  }
  return flash;
}

}  // namespace Vbin
