#pragma once

#include <cstddef>
#include <cstdint>

#include "Engine/FirmwareImage.h"
#include "Engine/FirmwareVersionInfo.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Storage/Array.h"

// The system-exclusive messages between the program and the device, each a whole one from
// 0xF0 through 0xF7. Builders replace the contents of their output and keep its memory.
// Parsers take any bytes, allocate nothing, and answer "no" to what does not fit. Any thread.

inline constexpr unsigned char kMessageStart = 0xF0;
inline constexpr unsigned char kMessageEnd = 0xF7;

enum class MessageType : unsigned char {
  kVersionQuery = 0x70,
  kVersionReply = 0x71,
  kEnterUpdateMode = 0x72,
  kBootloader = 0x73,
};

enum BootloaderCommand : unsigned char {
  BL_CMD_OPEN = 0xC0,
  BL_CMD_FINISH = 0xC1,
  BL_CMD_START = 0xC2,
  BL_CMD_SELECT_REGION = 0xC4,
  BL_CMD_REGION_HEADER = 0xC5,
  BL_CMD_WRITE_ACKED = 0xC6,
  BL_CMD_WRITE = 0xC7,
  BL_CMD_VERIFY_REGION = 0xC8,
};

enum BootloaderReplyCode : unsigned char {
  BL_REPLY_ACK = 0x80,
  BL_REPLY_VALUE = 0x81,
  BL_REPLY_ERROR = 0x82,
  BL_REPLY_REGION = 0x83,
  BL_REPLY_READY = 0x84,
};

// Data bytes in one write command, at most.
inline constexpr std::size_t kMaxWriteBytes = 240;

// Target of every envelope.
struct BootloaderAddress {
  std::uint32_t mHardwareId = 0;
  std::uint32_t mSecondaryId = 0;
};

// Argument bytes that are missing in the message count as 0.
struct BootloaderReply {
  std::uint32_t mCode = 0;
  std::uint32_t mValue = 0;       // The region index, the ready byte, or the value.
  std::uint32_t mHardwareId = 0;  // BL_REPLY_REGION only, else 0.
};

TFRESULT BuildVersionQuery(TF::Array<char>& out);
TFRESULT BuildEnterUpdateMode(TF::Array<char>& out);
TFRESULT BuildOpenMessage(TF::Array<char>& out, unsigned hardwareId, unsigned secondaryId);
// The universal identity request, for devices of any maker.
TFRESULT BuildIdentityRequest(TF::Array<char>& out);
// data between 0xF0 and 0xF7.
TFRESULT BuildFramedMessage(const TF::IArray<unsigned char>& data, TF::Array<char>& out);

// Command code and arguments, as they go into an envelope.
void BuildCommand(BootloaderCommand code, TF::Array<unsigned char>& out);
void BuildRegionCommand(BootloaderCommand code, std::uint32_t regionIndex, TF::Array<unsigned char>& out);
void BuildRegionHeaderCommand(const VarnokFileRegionHeader& header, TF::Array<unsigned char>& out);
// size from 1 to kMaxWriteBytes; throws invalid_argument above.
void BuildWriteCommand(BootloaderCommand code, std::uint32_t address, const unsigned char* data,
                       std::size_t size, TF::Array<unsigned char>& out);

// The message that carries a command. Throws invalid_argument for a command longer than the
// largest write command.
void BuildEnvelope(const BootloaderAddress& address, const TF::Array<unsigned char>& command,
                   TF::Array<char>& out);

// The unpacked data of a message without its first five bytes and its last; empty when the
// message is no longer than five bytes. The header is not looked at.
void UnpackMessageData(const TF::IArray<char>& message, TF::Array<unsigned char>& out);

bool IsVendorMessage(const TF::IArray<char>& message);
bool IsFirmwareVersionReply(const TF::IArray<char>& message);
bool IsBootloaderVersionReply(const TF::IArray<char>& message);
// Data of exactly nine bytes with the acknowledge code; header and type do not count.
bool IsAckMessage(const TF::IArray<char>& message);

// kFailure when the message is no version reply; the outputs then stay as they are.
TFRESULT ParseVersionReply(const TF::IArray<char>& message, FirmwareVersionInfo& out);
TFRESULT ParseDeviceIds(const TF::IArray<char>& message, unsigned& secondaryId, unsigned& hardwareId);
// The reply in an envelope with one of the codes 0x80 to 0x84; kFailure for anything else.
TFRESULT ParseBootloaderReply(const TF::IArray<char>& message, BootloaderReply& out);
