#include "Tools/Simulator/Fault.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Simulator;

TEST(SimulatorFaultTest, ReadsEveryFormOfPlaceAndArgument) {
  const struct {
    const char* mText;
    FaultKind mKind;
    std::optional<MessageName> mMessage;
    std::uint32_t mFirst;
    std::uint32_t mLast;
    std::optional<std::uint32_t> mArgument;
  } cases[] = {
      {"lose-reply@7", FaultKind::kLoseReply, {}, 7, 7, {}},
      {"late-reply@2-5:250", FaultKind::kLateReply, {}, 2, 5, 250},
      {"silent@*", FaultKind::kSilent, {}, 1, kEveryOccurrence, {}},
      {"wrong-crc@verify", FaultKind::kWrongCrc, MessageName::kVerify, 1, 1, {}},
      {"wrong-crc@write-acked#3", FaultKind::kWrongCrc, MessageName::kWriteAcked, 3, 3, {}},
      {"ignore-message@write#2-4", FaultKind::kIgnoreMessage, MessageName::kWrite, 2, 4, {}},
      {"noise@version#*", FaultKind::kNoise, MessageName::kVersion, 1, kEveryOccurrence, {}},
      {"wrong-reply@start:0x83", FaultKind::kWrongReply, MessageName::kStart, 1, 1, 0x83},
      {"error-reply@open", FaultKind::kErrorReply, MessageName::kOpen, 1, 1, {}},
      {"wrong-region@select", FaultKind::kWrongRegion, MessageName::kSelect, 1, 1, {}},
      {"wrong-hardware@select:0xFFFFFFFF", FaultKind::kWrongHardware, MessageName::kSelect, 1, 1, 0xFFFFFFFF},
      {"short-reply@header:2", FaultKind::kShortReply, MessageName::kHeader, 1, 1, 2},
      {"half-reply@1", FaultKind::kHalfReply, {}, 1, 1, {}},
      {"flood@1:1000", FaultKind::kFlood, {}, 1, 1, 1000},
      {"unplug@finish", FaultKind::kUnplug, MessageName::kFinish, 1, 1, {}},
      {"unplug@switch:40", FaultKind::kUnplug, MessageName::kSwitch, 1, 1, 40},
      {"duplicate-reply@other", FaultKind::kDuplicateReply, MessageName::kOther, 1, 1, {}},
  };
  for (const auto& item : cases) {
    const Fault fault = ParseFault(item.mText);
    EXPECT_EQ(fault.mKind, item.mKind) << item.mText;
    EXPECT_EQ(fault.mMessage, item.mMessage) << item.mText;
    EXPECT_EQ(fault.mFirst, item.mFirst) << item.mText;
    EXPECT_EQ(fault.mLast, item.mLast) << item.mText;
    EXPECT_EQ(fault.mArgument, item.mArgument) << item.mText;
  }
}

TEST(SimulatorFaultTest, RefusesTheRestAndQuotesIt) {
  for (const char* text :
       {"", "lose-reply", "lose-reply@", "lose@1", "lose-reply@0", "lose-reply@5-4", "lose-reply@1x",
        "lose-reply@foo", "lose-reply@verify#", "lose-reply@verify#0", "lose-reply@1:5", "late-reply@1",
        "late-reply@1:", "late-reply@1:x", "wrong-reply@1:0x100", "late-reply@1:99999999999", "lose-reply@-1",
        "lose-reply@1-"}) {
    try {
      ParseFault(text);
      ADD_FAILURE() << text << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_NE(std::string(error.what()).find(std::string("\"") + text + "\""), std::string::npos)
          << error.what();
    }
  }
}

TEST(SimulatorFaultTest, CountsNumbersInUpdateModeAndNamesInBoth) {
  FaultPlan plan({ParseFault("lose-reply@2"), ParseFault("noise@version#2-3"), ParseFault("wrong-crc@*")});
  using enum FaultKind;
  const auto kinds = [&](MessageName name, bool inUpdateMode) {
    std::vector<FaultKind> found;
    for (const Fault& fault : plan.Next(name, inUpdateMode)) found.push_back(fault.mKind);
    return found;
  };
  EXPECT_EQ(kinds(MessageName::kVersion, false), (std::vector<FaultKind>{}));
  EXPECT_EQ(kinds(MessageName::kVersion, false), (std::vector<FaultKind>{kNoise}));
  EXPECT_EQ(kinds(MessageName::kVersion, true), (std::vector<FaultKind>{kNoise, kWrongCrc}));
  EXPECT_EQ(kinds(MessageName::kOpen, true), (std::vector<FaultKind>{kLoseReply, kWrongCrc}));
  EXPECT_EQ(kinds(MessageName::kVersion, true), (std::vector<FaultKind>{kWrongCrc}));
}
