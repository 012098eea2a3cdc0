#include "Tests/EndToEnd/FaultModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <sstream>

#include "Tests/Support/Engine/TestBytes.h"

namespace EndToEnd {

using Simulator::MessageName;

namespace {

constexpr std::array kExchanges{MessageName::kOpen,   MessageName::kStart, MessageName::kSelect,
                                MessageName::kHeader, MessageName::kWrite, MessageName::kWriteAcked,
                                MessageName::kVerify, MessageName::kFinish};

// What a fault does to an exchange.
enum Effect : char {
  kNoCase = '.',         // There is nothing to spoil.
  kNone = 's',           // The answer is as good as a sound one, or nobody waits for it.
  kExtraAnswer = 'm',    // The same, or a failed pass when the surplus is taken for the next answer.
  kExtraVerified = 'd',  // The same, or the next region is refused by the surplus.
  kPassFails = 'r',      // The pass over the region fails.
  kNotVerified = 'v',    // One attempt to verify has no answer.
  kRefused = 'k',        // The device refuses the region, with an answer that is no selection.
  kOtherSelected = 'K',  // The device selects another region, or is other hardware.
  kFirstSelected = 'z',  // The device selects the first region, whatever was asked.
  kOpeningFails = 'o',   // The run ends before its transfer.
  kTransferFails = 'f',  // The run ends.
};

enum class Answer { kGiven, kNever, kLate };

// Arguments that depend on the exchange's limit.
constexpr std::string_view kInTime = "in time";
constexpr std::string_view kLate = "late";          // In the wait that follows the limit.
constexpr std::string_view kVeryLate = "too late";  // Behind that wait.

struct Row {
  std::string_view mEffects;  // On the exchanges in the order above.
  std::string_view mKind;
  std::string_view mArgument;
  Answer mAnswer = Answer::kGiven;
};

constexpr Row kTable[] = {
    {"o f f r s r v s", "lose-reply", "", Answer::kNever},
    {"o f f r r r v s", "ignore-message", "", Answer::kNever},
    {"s s s s s s s s", "late-reply", kInTime},
    {"o f f r s r v s", "late-reply", kLate, Answer::kLate},
    {"o f f r s r v s", "late-reply", kVeryLate, Answer::kLate},
    {"o f k s s r r s", "wrong-reply", ""},
    {"s f f r s r v s", "wrong-reply", "0x80", Answer::kNever},
    {"o f s r s r v s", "wrong-reply", "0x83", Answer::kNever},
    {"o s f r s r v s", "wrong-reply", "0x84", Answer::kNever},
    {"o f f r s r v s", "wrong-reply", "0x85", Answer::kNever},
    {"o f k s m r r s", "error-reply", ""},
    {". . . s . r r .", "wrong-crc", ""},
    {". . K . . . . .", "wrong-region", ""},
    {". . K . . . . .", "wrong-hardware", ""},
    {". . K . . . . .", "wrong-hardware", "0x55"},
    {"o s s s . r r .", "short-reply", ""},
    {"o f z s . r r .", "short-reply", "4"},
    {"o f f r . r v .", "short-reply", "9", Answer::kNever},
    {"o f f r . r v .", "half-reply", "", Answer::kNever},
    {"s s s s s s s s", "noise", ""},
    {"s s s s s s s s", "flood", "300000"},
    {"o f f f f f f s", "unplug", "100"},
    {"o f f f f f f s", "unplug", ""},
    {"o f f f f f f s", "silent", ""},
    {"s s s m . m d .", "duplicate-reply", ""},
};

std::string ArgumentAt(const Row& row, MessageName exchange) {
  const std::uint32_t limit = exchange == MessageName::kOpen ? kOpenLimitMs : kReplyLimitMs;
  if (row.mArgument == kInTime) return std::to_string(limit * 3 / 10);
  if (row.mArgument == kLate) return std::to_string(limit + kLateWaitMs / 2);
  if (row.mArgument == kVeryLate) return std::to_string(limit + kLateWaitMs + 200);
  return std::string(row.mArgument);
}

std::string FaultAt(const Row& row, MessageName exchange, std::uint32_t occurrence) {
  const std::string argument = ArgumentAt(row, exchange);
  return fmt::format("{}@{}#{}{}{}", row.mKind, NameOf(exchange), occurrence, argument.empty() ? "" : ":",
                     argument);
}

// A fault with its place in the table.
struct KnownFault {
  Simulator::Fault mFault;
  Effect mEffect = kNoCase;
  Answer mAnswer = Answer::kGiven;

  bool Strikes(MessageName name, std::uint32_t occurrence) const {
    return mFault.mMessage == name && occurrence >= mFault.mFirst && occurrence <= mFault.mLast;
  }
  bool IsLateInPass() const {
    return mAnswer == Answer::kLate && (mEffect == kPassFails || mEffect == kNotVerified);
  }
  bool IsSurplus() const { return mEffect == kExtraAnswer || mEffect == kExtraVerified; }
  bool CanRefuse() const {
    return mEffect == kRefused || mEffect == kOtherSelected || mEffect == kFirstSelected ||
           mEffect == kExtraVerified;
  }
  // One more pass, which such a fault may strike or not, changes no more than the count.
  bool IsIndifferent() const { return mEffect == kNone || mEffect == kPassFails || mEffect == kNotVerified; }
};

// The effect stays kNoCase for a fault that the table does not have.
KnownFault LookUp(const std::string& text) {
  KnownFault known{Simulator::ParseFault(text)};
  const std::string kind = text.substr(0, text.find('@'));
  const std::size_t colon = text.find(':');
  const std::string argument = colon == std::string::npos ? "" : text.substr(colon + 1);
  const auto exchange = std::find(kExchanges.begin(), kExchanges.end(), known.mFault.mMessage);
  if (exchange == kExchanges.end()) return known;
  for (const Row& row : kTable) {
    if (row.mKind != kind || ArgumentAt(row, *exchange) != argument) continue;
    const auto column = static_cast<std::size_t>(exchange - kExchanges.begin());
    known.mEffect = static_cast<Effect>(row.mEffects[2 * column]);
    known.mAnswer = row.mAnswer;
  }
  return known;
}

// Goes through a run as the exchanges follow each other.
class RunModel {
 public:
  RunModel(const std::vector<std::string>& faults, const Simulator::DeviceStatus& status) : mStatus(status) {
    for (const std::string& fault : faults) {
      const KnownFault known = LookUp(fault);
      if (status.CountOf(*known.mFault.mMessage) < known.mFault.mLast) mFaults.push_back(known);
    }
  }

  Expectation Run() {
    mExpected.mEnding = RunToItsEnd();
    mExpected.mFewestPasses = mExpected.mMostPasses = mPasses;
    if (mHasExtraAnswer || mHasLateAnswer) mExpected.mMostPasses = 2 + kRetries;
    // Late, it may stand in for an answer that is missing elsewhere.
    if (mHasLateAnswer && mFaults.size() > 1) mExpected.mFewestPasses = 2;
    if (IsUncertain()) MakeUncertain();
    return mExpected;
  }

 private:
  Ending RunToItsEnd() {
    if (Ask(MessageName::kOpen) != kNone) return Ending::kNotOpened;
    if (Ask(MessageName::kStart) != kNone) return Ending::kFailed;
    for (const std::uint32_t region : {kFirstRegion, kLastRegion}) {
      if (!Send(region)) return Ending::kFailed;
    }
    return Ending::kSent;
  }

  bool Send(std::uint32_t region) {
    for (bool hasFailed = false; mFailedPasses <= kRetries; hasFailed = true) {
      const Effect pass = Pass(region);
      if (pass == kTransferFails) return false;
      if (pass == kNone) return true;
      if (pass == kRefused && !hasFailed) {
        mExpected.mLeftOut.insert(region);
        return true;
      }
      ++mFailedPasses;
    }
    return false;
  }

  // kNone, kPassFails, kRefused or kTransferFails.
  Effect Pass(std::uint32_t region) {
    ++mPasses;
    mRegion = region;
    Effect select = Ask(MessageName::kSelect);
    if (select == kFirstSelected) select = region == kFirstRegion ? kNone : kOtherSelected;
    if (select == kOtherSelected) return kRefused;
    // Such an answer may be one that is still owed; the wait for a better one is in vain.
    if (select == kRefused && mOwedAnswers > 0) return kTransferFails;
    if (select != kNone) return select;
    const Effect header = Ask(MessageName::kHeader);
    if (header != kNone) return header;
    bool isDamaged = false;
    for (const int packets : region == kFirstRegion ? std::vector{9} : std::vector{2, 8}) {
      for (int packet = 1; packet <= packets; ++packet) {
        const bool isAcknowledged = packet == 8;
        const Effect write = Ask(isAcknowledged ? MessageName::kWriteAcked : MessageName::kWrite);
        if (write == kTransferFails || (isAcknowledged && write != kNone)) return write;
        isDamaged = isDamaged || write == kPassFails;
      }
    }
    return Verify(isDamaged);
  }

  Effect Verify(bool isDamaged) {
    for (int attempt = 0; attempt < 2; ++attempt) {
      const Effect effect = Ask(MessageName::kVerify);
      if (effect == kNone) return isDamaged ? kPassFails : kNone;
      if (effect != kNotVerified) return effect;
    }
    return kPassFails;
  }

  Effect Ask(MessageName name) {
    const std::uint32_t occurrence = mStatus.CountOf(name) + ++mAsked[static_cast<std::size_t>(name)];
    const KnownFault* striking = nullptr;
    for (const KnownFault& fault : mFaults) {
      if (!fault.Strikes(name, occurrence)) continue;
      if (striking) mIsUnknown = true;  // Two at once are in no table.
      striking = &fault;
    }
    if (!striking) return kNone;
    if (striking->mEffect == kNoCase) mIsUnknown = true;
    const bool hasNoAnswer = striking->mEffect == kPassFails || striking->mEffect == kNotVerified;
    if (hasNoAnswer && striking->mAnswer != Answer::kGiven && name != MessageName::kWrite) ++mOwedAnswers;
    mHasLateAnswer = mHasLateAnswer || striking->IsLateInPass();
    if (!striking->IsSurplus()) return striking->mEffect;
    mHasExtraAnswer = true;
    if (striking->mEffect == kExtraVerified && mRegion == kFirstRegion)
      mExpected.mMayBeLeftOut.insert(kLastRegion);
    return kNone;
  }

  // A late or surplus answer may cost a pass more, in which the other fault strikes elsewhere.
  bool IsUncertain() const {
    if (mIsUnknown) return true;
    if (!mHasLateAnswer && !mHasExtraAnswer) return false;
    return mFaults.size() > 1 && !std::all_of(mFaults.begin(), mFaults.end(), [](const KnownFault& fault) {
             return fault.IsIndifferent() || (fault.IsSurplus() && fault.mEffect != kExtraVerified);
           });
  }

  void MakeUncertain() {
    mExpected.mIsCertain = false;
    mExpected.mLeftOut.clear();
    mExpected.mFewestPasses = 0;
    mExpected.mMostPasses = 2 + kRetries;
    if (std::any_of(mFaults.begin(), mFaults.end(),
                    [](const KnownFault& fault) { return fault.CanRefuse(); }))
      mExpected.mMayBeLeftOut = {kFirstRegion, kLastRegion};
  }

  const Simulator::DeviceStatus& mStatus;
  std::vector<KnownFault> mFaults;  // That can still strike.
  std::array<std::uint32_t, Simulator::kMessageNameCount> mAsked{};
  Expectation mExpected;
  std::uint32_t mRegion = kFirstRegion;
  unsigned mPasses = 0;
  unsigned mFailedPasses = 0;
  unsigned mOwedAnswers = 0;
  bool mHasLateAnswer = false;
  bool mHasExtraAnswer = false;
  bool mIsUnknown = false;
};

constexpr std::string_view kNewEngines = "new-engines";

Expectation Sent(unsigned passes, std::set<std::uint32_t> leftOut = {}) {
  return {Ending::kSent, true, std::move(leftOut), {}, passes, passes};
}

Expectation SentAfterAll(unsigned fewestPasses) {
  return {Ending::kSent, true, {}, {}, fewestPasses, 2 + kRetries};
}

Expectation Failed() {
  return {Ending::kFailed, true, {}, {}, 0, 0};
}

// What the table says of a fault that is alone, without its running through the model.
Expectation ExpectAlone(const Row& row, Effect effect, std::uint32_t region) {
  const bool isOther = effect == kOtherSelected || (effect == kFirstSelected && region != kFirstRegion);
  if (effect == kOpeningFails) return {Ending::kNotOpened, true, {}, {}, 0, 0};
  if (effect == kTransferFails) return Failed();
  if (effect == kRefused || isOther) return Sent(2, {region});
  if (effect == kExtraAnswer) return SentAfterAll(2);
  if (effect == kExtraVerified) {
    Expectation sent = SentAfterAll(2);
    if (region == kFirstRegion) sent.mMayBeLeftOut.insert(kLastRegion);
    return sent;
  }
  const unsigned passes = effect == kPassFails ? 3 : 2;
  const bool isLate = row.mAnswer == Answer::kLate && effect != kNone;
  return isLate ? SentAfterAll(passes) : Sent(passes);
}

}  // namespace

std::vector<Vbin::RegionDescription> MatrixImage() {
  constexpr std::uint32_t kOtherHardware = 0x31534C55;
  return {EngineTest::MakeRegion(Simulator::kDefaultHardwareId, {{0x1000, EngineTest::MakeData(2000, 1)}}),
          EngineTest::MakeRegion(kOtherHardware, {{0x4000, EngineTest::MakeData(500, 2)}}),
          EngineTest::MakeRegion(Simulator::kDefaultHardwareId, {{0x8000, EngineTest::MakeData(300, 3)},
                                                                 {0x9000, EngineTest::MakeData(1920, 4)}})};
}

std::string Describe(const FaultCase& faultCase) {
  return fmt::format("{}{}{}", fmt::join(faultCase.mFaults, " "), faultCase.mHasNewEngines ? " " : "",
                     faultCase.mHasNewEngines ? kNewEngines : "");
}

FaultCase ParseFaultCase(const std::string& text) {
  FaultCase faultCase;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (word == kNewEngines) {
      faultCase.mHasNewEngines = true;
    } else {
      faultCase.mFaults.push_back(word);
    }
  }
  return faultCase;
}

Expectation ExpectRun(const FaultCase& faultCase, const Simulator::DeviceStatus& status) {
  return RunModel(faultCase.mFaults, status).Run();
}

bool AreUsedUp(const FaultCase& faultCase, const Simulator::DeviceStatus& status) {
  return std::all_of(faultCase.mFaults.begin(), faultCase.mFaults.end(), [&](const std::string& text) {
    const Simulator::Fault fault = Simulator::ParseFault(text);
    return status.CountOf(fault.mMessage.value()) >= fault.mLast;
  });
}

std::vector<FaultCase> SingleFaults() {
  // In the first region and in the last; the twelfth write is in the last one's second section.
  constexpr std::array<std::array<std::uint32_t, 2>, kExchanges.size()> kOccurrences{
      {{1}, {1}, {1, 2}, {1, 2}, {3, 12}, {1, 2}, {1, 2}, {1}}};
  std::vector<FaultCase> cases;
  for (const Row& row : kTable) {
    for (std::size_t column = 0; column < kExchanges.size(); ++column) {
      const auto effect = static_cast<Effect>(row.mEffects[2 * column]);
      std::uint32_t region = kFirstRegion;
      for (const std::uint32_t occurrence : kOccurrences[column]) {
        if (effect == kNoCase || occurrence == 0) continue;
        cases.push_back({{FaultAt(row, kExchanges[column], occurrence)},
                         region != kFirstRegion,
                         ExpectAlone(row, effect, region)});
        region = kLastRegion;
      }
    }
  }
  return cases;
}

std::vector<FaultCase> HardFaults() {
  const auto behindTheLateWait = [](std::uint32_t milliseconds) {
    return std::to_string(kReplyLimitMs + kLateWaitMs + milliseconds);
  };
  return {
      // Five failed passes are made up for, over all regions together; a sixth is not.
      {{"wrong-crc@verify#1-5"}, false, Sent(7)},
      {{"wrong-crc@verify#1-6"}, true, Failed()},
      {{"wrong-crc@verify#1-3", "wrong-crc@verify#5-6"}, true, Sent(7)},
      {{"wrong-crc@verify#1-3", "wrong-crc@verify#5-7"}, false, Failed()},
      {{"error-reply@write-acked#1-5"}, true, Sent(7)},
      {{"wrong-crc@write-acked#1-6"}, false, Failed()},
      {{"lose-reply@write-acked#2-6"}, false, Sent(7)},
      {{"half-reply@write-acked#1-6"}, true, Failed()},
      {{"lose-reply@header#1-5"}, true, Sent(7)},
      {{"ignore-message@header#1-6"}, false, Failed()},
      {{"lose-reply@verify#1-2"}, false, Sent(3)},
      {{"lose-reply@verify#1-10"}, true, Sent(7)},
      {{"ignore-message@verify#1-12"}, false, Failed()},
      {{"ignore-message@write#1-9", "lose-reply@header#2"}, false, Sent(5)},
      // What the device refuses is left out, but never what it has begun to take.
      {{"error-reply@select#1-2"}, false, Sent(2, {kFirstRegion, kLastRegion})},
      {{"wrong-region@select#1-2"}, true, Sent(2, {kFirstRegion, kLastRegion})},
      {{"wrong-crc@verify#1", "wrong-region@select#2-5"}, false, Sent(7)},
      {{"wrong-crc@verify#1", "error-reply@select#2-6"}, true, Failed()},
      {{"wrong-crc@verify#2", "wrong-hardware@select#3"}, true, Sent(4)},
      // While a reply is owed, nobody can tell a refusal from it.
      {{"lose-reply@header#1", "error-reply@select#3"}, false, Failed()},
      {{"lose-reply@verify#1", "wrong-reply@select#2"}, true, Failed()},
      // The second verification is answered by the late reply to the first one; its own reply
      // comes while the next region is being selected.
      {{"late-reply@verify#1:" + behindTheLateWait(300), "late-reply@verify#2:600",
        "late-reply@select#2:600"},
       false,
       SentAfterAll(2)},
      {{"lose-reply@verify#1", "duplicate-reply@verify#2"}, true, SentAfterAll(2)},
      // The late reply to a header, or to a write, comes while its region is selected again.
      {{"late-reply@header#1:" + behindTheLateWait(200), "late-reply@select#2:600"}, false, SentAfterAll(2)},
      {{"late-reply@write-acked#2:" + behindTheLateWait(200), "late-reply@select#3:600"},
       true,
       SentAfterAll(2)},
      // Or a wait later.
      {{"late-reply@write-acked#1:" + behindTheLateWait(200), "late-reply@header#2:600"},
       false,
       SentAfterAll(2)},
      // Everything at once that must not matter.
      {{"noise@open#1", "noise@start#1", "noise@select#1-2", "noise@header#1-2", "noise@write#1-17",
        "noise@write-acked#1-2", "noise@verify#1-2", "noise@finish#1", "flood@select#2:300000",
        "late-reply@header#2:400"},
       false,
       Sent(2)},
  };
}

FaultCase RandomPair(std::mt19937& random) {
  // About as often as two runs come to the exchange.
  constexpr std::array<std::uint32_t, kExchanges.size()> kMostOccurrences{2, 2, 4, 4, 34, 4, 5, 2};
  const auto choose = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  FaultCase faultCase;
  while (faultCase.mFaults.size() < 2) {
    const Row& row = kTable[choose(std::size(kTable))];
    const std::size_t column = choose(kExchanges.size());
    if (row.mEffects[2 * column] == kNoCase) continue;
    const auto occurrence = static_cast<std::uint32_t>(choose(kMostOccurrences[column])) + 1;
    faultCase.mFaults.push_back(FaultAt(row, kExchanges[column], occurrence));
  }
  faultCase.mHasNewEngines = choose(2) == 1;
  return faultCase;
}

}  // namespace EndToEnd
