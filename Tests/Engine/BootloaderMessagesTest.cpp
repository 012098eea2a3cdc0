#include "Engine/BootloaderMessages.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "Engine/SevenBitPacking.h"
#include "Tests/Support/Engine/TestBytes.h"

namespace {

using namespace EngineTest;

using CharArray = TF::Array<char>;
using ByteArray = TF::Array<unsigned char>;

constexpr BootloaderAddress kAddress = {0x01020304, 0x05060708};

// A message of a type around packed data.
Bytes Framed(unsigned char type, const Bytes& data) {
  ByteArray packed;
  PackSevenBit(ToArray(data), packed);
  Bytes message = {0xF0, 0x00, 0x00, 0x17, type};
  const Bytes packedBytes = FromArray(packed);
  message.insert(message.end(), packedBytes.begin(), packedBytes.end());
  message.push_back(0xF7);
  return message;
}

Bytes VersionReplyData() {
  Bytes data = MakeData(48, 9);
  PutWord(data, 0, 0xA1B2C3D4);
  PutWord(data, 12, 0x01050009);  // 1.5.0.9, most significant last.
  PutWord(data, 16, 0x8899AABB);
  return data;
}

Bytes VersionReply(const Bytes& data = VersionReplyData()) {
  return Framed(0x71, data);
}

Bytes Reply(const Bytes& codeAndArguments) {
  Bytes data = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
  data.insert(data.end(), codeAndArguments.begin(), codeAndArguments.end());
  return Framed(0x73, data);
}

TEST(BootloaderMessages, FixedMessagesHaveTheirBytes) {
  const struct {
    std::function<TFRESULT(CharArray&)> build;
    const char* bytes;
  } cases[] = {
      {BuildVersionQuery, "F0 00 00 17 70 F7"},
      {BuildEnterUpdateMode, "F0 00 00 17 72 F7"},
      {BuildIdentityRequest, "F0 7E 7F 06 01 F7"},
      {[](CharArray& out) { return BuildFramedMessage(ToArray(FromHex("01 02 03")), out); },
       "F0 01 02 03 F7"},
      {[](CharArray& out) { return BuildOpenMessage(out, 0x01020304, 0x05060708); },
       "F0 00 00 17 73 00 04 03 02 01 08 07 06 02 05 40 F7"},
      {[](CharArray& out) { return BuildOpenMessage(out, 0xFFFFFFFF, 0x80); },
       "F0 00 00 17 73 1F 7F 7F 7F 7F 00 00 00 02 00 40 F7"},
  };
  for (const auto& test : cases) {
    CharArray out = ToArray<char>(MakeData(40));
    EXPECT_EQ(test.build(out), TF::kSuccess);
    EXPECT_EQ(ToHex(FromArray(out)), test.bytes);
  }
}

TEST(BootloaderMessages, CommandsHaveTheirBytes) {
  const auto image =
      ToArray(MakeImage({MakeRegion(0xA1B2C3D4, {{0, FromHex("31 32 33 34 35 36 37 38 39")}})}));
  const auto& header = *reinterpret_cast<const VarnokFileRegionHeader*>(image.GetBuffer());
  const Bytes data = FromHex("DE AD BE");
  const struct {
    std::function<void(ByteArray&)> build;
    const char* bytes;
  } cases[] = {
      {[](ByteArray& out) { BuildCommand(BL_CMD_START, out); }, "C2"},
      {[](ByteArray& out) { BuildCommand(BL_CMD_FINISH, out); }, "C1"},
      {[](ByteArray& out) { BuildRegionCommand(BL_CMD_SELECT_REGION, 0x0A0B0C0D, out); }, "C4 0D 0C 0B 0A"},
      {[](ByteArray& out) { BuildRegionCommand(BL_CMD_VERIFY_REGION, 2, out); }, "C8 02 00 00 00"},
      {[&](ByteArray& out) { BuildRegionHeaderCommand(header, out); },
       "C5 D4 C3 B2 A1 00 00 00 00 A1 A2 A3 A4 80 70 60 50 09 00 00 00 26 39 F4 CB"},
      {[&](ByteArray& out) { BuildWriteCommand(BL_CMD_WRITE, 0x08004000, data.data(), data.size(), out); },
       "C7 00 40 00 08 03 DE AD BE"},
      {[&](ByteArray& out) { BuildWriteCommand(BL_CMD_WRITE_ACKED, 0xFFFFFFFE, data.data(), 1, out); },
       "C6 FE FF FF FF 01 DE"},
  };
  for (const auto& test : cases) {
    ByteArray out = ToArray(MakeData(60));
    test.build(out);
    EXPECT_EQ(ToHex(FromArray(out)), test.bytes);
  }
}

TEST(BootloaderMessages, EnvelopePutsTheIdsAheadOfTheCommand) {
  CharArray out;
  BuildEnvelope(kAddress, ToArray({BL_CMD_START}), out);
  EXPECT_EQ(ToHex(FromArray(out)), "F0 00 00 17 73 00 04 03 02 01 08 07 06 02 05 42 F7");
}

TEST(BootloaderMessages, LargestWriteIs297BytesAndNoneIsLarger) {
  const Bytes data = MakeData(241);
  ByteArray command;
  BuildWriteCommand(BL_CMD_WRITE, 0, data.data(), kMaxWriteBytes, command);
  CharArray message;
  BuildEnvelope(kAddress, command, message);
  EXPECT_EQ(message.GetCount(), 297);

  EXPECT_THROW(BuildWriteCommand(BL_CMD_WRITE, 0, data.data(), 241, command), std::invalid_argument);
  command.Add(0);
  EXPECT_THROW(BuildEnvelope(kAddress, command, message), std::invalid_argument);
}

TEST(BootloaderMessages, UnpackedDataLiesBehindFiveBytesAndAheadOfTheLast) {
  const struct {
    const char* message;
    const char* data;
  } cases[] = {
      {"", ""},
      {"F0 00 00 17 73", ""},
      {"F0 00 00 17 73 F7", ""},
      {"F0 00 00 17 73 01 F7", ""},
      {"F0 00 00 17 73 01 02 F7", "82"},
      {"00 00 00 00 00 01 02 00", "82"},
      {"F0 00 00 17 73 43 01 7F 03 04 05 06 07 02 08 42 F7", "81 FF 03 04 05 06 87 08 C2"},
  };
  for (const auto& test : cases) {
    ByteArray out = ToArray(MakeData(20));
    UnpackMessageData(ToArray<char>(FromHex(test.message)), out);
    EXPECT_EQ(ToHex(FromArray(out)), test.data) << test.message;
  }
}

TEST(BootloaderMessages, VendorMessageNeedsItsFirstFourBytes) {
  const struct {
    const char* message;
    bool isVendors;
  } cases[] = {{"", false},
               {"F0 00 00", false},
               {"F0 00 00 17", true},
               {"F0 00 00 17 73 F7", true},
               {"F0 00 00 16 73 F7", false},
               {"F0 00 01 17 73 F7", false},
               {"F1 00 00 17 73 F7", false}};
  for (const auto& test : cases) {
    EXPECT_EQ(IsVendorMessage(ToArray<char>(FromHex(test.message))), test.isVendors) << test.message;
  }
}

TEST(BootloaderMessages, VersionReplyGivesVersionAndIds) {
  const auto message = ToArray<char>(VersionReply());
  ASSERT_EQ(message.GetCount(), 61);
  FirmwareVersionInfo version;
  ASSERT_EQ(ParseVersionReply(message, version), TF::kSuccess);
  EXPECT_EQ(version.mMajor, 1u);
  EXPECT_EQ(version.mMinor, 5u);
  EXPECT_EQ(version.mPatch, 0u);
  EXPECT_EQ(version.mBuild, 9u);
  EXPECT_EQ(TF::ToUtf8(version.mText), "1.5.0.9");

  unsigned secondaryId = 0;
  unsigned hardwareId = 0;
  ASSERT_EQ(ParseDeviceIds(message, secondaryId, hardwareId), TF::kSuccess);
  EXPECT_EQ(hardwareId, 0xA1B2C3D4u);
  EXPECT_EQ(secondaryId, 0x8899AABBu);
}

TEST(BootloaderMessages, VersionReplyTellsTheTwoFirmwaresApart) {
  const struct {
    std::uint32_t version;
    bool isFirmware;
  } cases[] = {{0, false}, {0x00000001, true}, {0x01000000, true}, {0xFFFFFFFF, true}, {0x00800000, true}};
  for (const auto& test : cases) {
    Bytes data = VersionReplyData();
    PutWord(data, 12, test.version);
    const auto message = ToArray<char>(VersionReply(data));
    EXPECT_EQ(IsFirmwareVersionReply(message), test.isFirmware) << test.version;
    EXPECT_EQ(IsBootloaderVersionReply(message), !test.isFirmware) << test.version;
  }
}

TEST(BootloaderMessages, WhatIsNoVersionReplyChangesNothing) {
  std::vector<Bytes> messages = {VersionReply(MakeData(47)), VersionReply(MakeData(49)),
                                 Framed(0x70, VersionReplyData()), Framed(0x73, VersionReplyData())};
  const Bytes good = VersionReply();
  for (std::size_t cut = 0; cut < good.size(); ++cut) messages.emplace_back(good.begin(), good.begin() + cut);
  for (std::size_t position = 0; position < 5; ++position) {
    messages.push_back(good);
    messages.back()[position] ^= 0x04;
  }
  for (const Bytes& bytes : messages) {
    const auto message = ToArray<char>(bytes);
    FirmwareVersionInfo version;
    version.mMajor = 77;
    unsigned secondaryId = 1;
    unsigned hardwareId = 2;
    EXPECT_EQ(ParseVersionReply(message, version), TF::kFailure) << ToHex(bytes);
    EXPECT_EQ(ParseDeviceIds(message, secondaryId, hardwareId), TF::kFailure);
    EXPECT_FALSE(IsFirmwareVersionReply(message) || IsBootloaderVersionReply(message));
    EXPECT_EQ(version.mMajor + secondaryId + hardwareId, 80u);
  }
}

TEST(BootloaderMessages, AcknowledgementIsNineBytesOfAnyType) {
  const Bytes acknowledged = FromHex("01 02 03 04 05 06 07 08 80");
  const struct {
    Bytes message;
    bool isAck;
  } cases[] = {
      {Framed(0x73, acknowledged), true},
      {Framed(0x11, acknowledged), true},
      {Framed(0x73, FromHex("01 02 03 04 05 06 07 08 81")), false},
      {Framed(0x73, FromHex("01 02 03 04 05 06 07 80")), false},
      {Framed(0x73, FromHex("01 02 03 04 05 06 07 08 80 00")), false},
      {{}, false},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(IsAckMessage(ToArray<char>(test.message)), test.isAck) << ToHex(test.message);
  }
}

TEST(BootloaderMessages, RepliesGiveTheirArguments) {
  const struct {
    const char* codeAndArguments;
    std::uint32_t code;
    std::uint32_t value;
    std::uint32_t hardwareId;
  } cases[] = {
      {"80", 0x80, 0, 0},
      {"80 01 02 03 04", 0x80, 0, 0},
      {"81 78 56 34 12", 0x81, 0x12345678, 0},
      {"81 FF FF FF FF FF FF FF FF", 0x81, 0xFFFFFFFF, 0},
      {"82 05 00 00 00", 0x82, 5, 0},
      {"83 04 03 02 01 0D 0C 0B 0A", 0x83, 0x0A0B0C0D, 0x01020304},
      {"84 FE 02", 0x84, 0xFE, 0},
      {"81", 0x81, 0, 0},
      {"81 78 56", 0x81, 0x5678, 0},
      {"83", 0x83, 0, 0},
      {"83 04 03 02", 0x83, 0, 0x00020304},
      {"83 04 03 02 01", 0x83, 0, 0x01020304},
      {"83 04 03 02 01 0D 0C 0B", 0x83, 0x000B0C0D, 0x01020304},
      {"84", 0x84, 0, 0},
  };
  for (const auto& test : cases) {
    BootloaderReply reply;
    ASSERT_EQ(ParseBootloaderReply(ToArray<char>(Reply(FromHex(test.codeAndArguments))), reply),
              TF::kSuccess);
    EXPECT_EQ(reply.mCode, test.code) << test.codeAndArguments;
    EXPECT_EQ(reply.mValue, test.value) << test.codeAndArguments;
    EXPECT_EQ(reply.mHardwareId, test.hardwareId) << test.codeAndArguments;
  }
}

TEST(BootloaderMessages, WhatIsNoReplyIsRefused) {
  std::vector<Bytes> messages = {Reply(FromHex("7F")),
                                 Reply(FromHex("85 00 00 00 00")),
                                 Reply({}),
                                 Framed(0x71, MakeData(17)),
                                 Framed(0x73, MakeData(8)),
                                 FromHex("F0 00 00 17"),
                                 FromHex("F8"),
                                 FromHex("F0 7E 00 06 02 F7")};
  const Bytes good = Reply(FromHex("81 01 02 03 04"));
  for (std::size_t cut = 0; cut < 17; ++cut) messages.emplace_back(good.begin(), good.begin() + cut);
  for (const Bytes& message : messages) {
    BootloaderReply reply{1, 2, 3};
    EXPECT_EQ(ParseBootloaderReply(ToArray<char>(message), reply), TF::kFailure) << ToHex(message);
    EXPECT_EQ(reply.mCode + reply.mValue + reply.mHardwareId, 6u);
  }
}

}  // namespace
