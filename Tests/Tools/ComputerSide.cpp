#include "Tests/Tools/ComputerSide.h"

#include <algorithm>

namespace ToolsTest {

using namespace Simulator;

Bytes VersionQuery() {
  return {0xF0, 0x00, 0x00, 0x17, 0x70, 0xF7};
}

Bytes SwitchMessage() {
  return {0xF0, 0x00, 0x00, 0x17, 0x72, 0xF7};
}

Bytes Command(std::uint8_t code, const Bytes& arguments, std::uint32_t hardwareId,
              std::uint32_t secondaryId) {
  Bytes data;
  AppendLittleEndian(data, hardwareId);
  AppendLittleEndian(data, secondaryId);
  data.push_back(code);
  data.insert(data.end(), arguments.begin(), arguments.end());
  return FrameMessage(kTypeBootloader, data);
}

Bytes IndexCommand(std::uint8_t code, std::uint32_t index) {
  Bytes arguments;
  AppendLittleEndian(arguments, index);
  return Command(code, arguments);
}

Bytes HeaderCommand(const Vbin::Region& region) {
  Bytes arguments;
  AppendLittleEndian(arguments, region.mHardwareId);
  AppendLittleEndian(arguments, region.mRegionIndex);
  arguments.insert(arguments.end(), region.mAttributes.begin(), region.mAttributes.end());
  AppendLittleEndian(arguments, region.mParameter);
  AppendLittleEndian(arguments, region.mDataSize);
  AppendLittleEndian(arguments, region.mRegionCrc);
  return Command(kCommandRegionHeader, arguments);
}

Bytes WriteCommand(std::uint8_t code, std::uint32_t address, std::span<const std::uint8_t> data) {
  Bytes arguments;
  AppendLittleEndian(arguments, address);
  arguments.push_back(static_cast<std::uint8_t>(data.size()));
  arguments.insert(arguments.end(), data.begin(), data.end());
  return Command(code, arguments);
}

std::vector<Bytes> UpdateMessages(std::span<const std::uint8_t> image) {
  constexpr std::uint32_t kWritesPerAck = 8;
  std::vector<Bytes> messages{Command(kCommandStart)};
  for (const Vbin::Region& region : Vbin::ReadImage(image)) {
    messages.push_back(IndexCommand(kCommandSelectRegion, region.mRegionIndex));
    messages.push_back(HeaderCommand(region));
    for (const Vbin::Section& section : region.mSections) {
      std::uint32_t packets = 0;
      for (std::size_t sent = 0; sent < section.mData.size(); sent += kMaxWriteSize) {
        const std::uint8_t code = ++packets % kWritesPerAck == 0 ? kCommandWriteAcked : kCommandWrite;
        messages.push_back(
            WriteCommand(code, section.mAddress + static_cast<std::uint32_t>(sent),
                         section.mData.subspan(sent, std::min(kMaxWriteSize, section.mData.size() - sent))));
      }
    }
    messages.push_back(IndexCommand(kCommandVerifyRegion, region.mRegionIndex));
  }
  messages.push_back(Command(kCommandFinish));
  return messages;
}

Bytes ReplyOf(const Bytes& message) {
  constexpr std::size_t kPackedStart = 5;
  constexpr std::size_t kIdBytes = 8;
  if (message.size() <= kPackedStart + 1 || message[kPackedStart - 1] != kTypeBootloader) return {};
  const auto data =
      UnpackSevenBit(std::span(message).subspan(kPackedStart, message.size() - kPackedStart - 1));
  if (!data || data->size() <= kIdBytes) return {};
  return Bytes(data->begin() + kIdBytes, data->end());
}

Bytes ReplyBytes(std::uint8_t code, std::initializer_list<std::uint32_t> words) {
  Bytes reply{code};
  for (const std::uint32_t word : words) AppendLittleEndian(reply, word);
  return reply;
}

Vbin::ImageDescription TwoRegionImage() {
  Vbin::RegionDescription first;
  first.mHardwareId = kDefaultHardwareId;
  first.mAttributes = {1, 2, 3, 0xF4};
  first.mParameter = 0x89ABCDEF;
  first.mSections = {{0x08000000, Filled(1921, 3)}};
  Vbin::RegionDescription second;
  second.mHardwareId = kDefaultHardwareId;
  second.mSections = {{0x08010000, Filled(240, 90)}, {0x08010100, Filled(4000, 200)}};
  return {{first, second}};
}

Bytes Filled(std::size_t size, std::uint8_t first) {
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), [&] { return first += 7; });
  return bytes;
}

}  // namespace ToolsTest
