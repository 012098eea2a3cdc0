#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Tools/Simulator/Protocol.h"
#include "Tools/Simulator/SimulatedDevice.h"
#include "Tools/Vbin/Image.h"

// The computer's side of the conversation with a device, for tests.
namespace ToolsTest {

using Simulator::Bytes;

Bytes VersionQuery();
Bytes SwitchMessage();

// A bootloader command with the device's default ids.
Bytes Command(std::uint8_t code, const Bytes& arguments = {},
              std::uint32_t hardwareId = Simulator::kDefaultHardwareId,
              std::uint32_t secondaryId = Simulator::kDefaultSecondaryId);
Bytes IndexCommand(std::uint8_t code, std::uint32_t index);
Bytes HeaderCommand(const Vbin::Region& region);
Bytes WriteCommand(std::uint8_t code, std::uint32_t address, std::span<const std::uint8_t> data);

// The messages of a whole update with an image, BL_CMD_START through BL_CMD_FINISH; every eighth
// write of a section is acknowledged.
std::vector<Bytes> UpdateMessages(std::span<const std::uint8_t> image);

// The data of a bootloader reply behind the two ids: code and arguments. Empty for any other message.
Bytes ReplyOf(const Bytes& message);
Bytes ReplyBytes(std::uint8_t code, std::initializer_list<std::uint32_t> words = {});

// An image of two regions for the default device, the second with two sections.
Vbin::ImageDescription TwoRegionImage();

Bytes Filled(std::size_t size, std::uint8_t first);

}  // namespace ToolsTest
