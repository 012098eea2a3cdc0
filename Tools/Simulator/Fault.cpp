#include "Tools/Simulator/Fault.h"

#include <fmt/format.h>

#include <stdexcept>

#include "Tools/Support/Number.h"

namespace Simulator {
namespace {

constexpr std::array<std::string_view, kMessageNameCount> kMessageNames{
    "version", "switch",      "open",  "finish", "start", "select",
    "header",  "write-acked", "write", "verify", "other"};

enum class ArgumentRule : std::uint8_t { kNone, kOptional, kRequired };

struct KindRule {
  std::string_view mName;
  FaultKind mKind;
  ArgumentRule mArgument;
  std::uint32_t mLimit;  // Of the argument.
};

constexpr std::uint32_t kAnyNumber = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kMaxDelay = 24 * 60 * 60 * 1000;  // Milliseconds.
constexpr std::uint32_t kMaxFlood = 16 * 1024 * 1024;     // Bytes.

constexpr std::array<KindRule, 15> kKinds{{
    {"lose-reply", FaultKind::kLoseReply, ArgumentRule::kNone, 0},
    {"late-reply", FaultKind::kLateReply, ArgumentRule::kRequired, kMaxDelay},
    {"wrong-reply", FaultKind::kWrongReply, ArgumentRule::kOptional, 0xFF},
    {"error-reply", FaultKind::kErrorReply, ArgumentRule::kOptional, kAnyNumber},
    {"wrong-crc", FaultKind::kWrongCrc, ArgumentRule::kNone, 0},
    {"wrong-region", FaultKind::kWrongRegion, ArgumentRule::kNone, 0},
    {"wrong-hardware", FaultKind::kWrongHardware, ArgumentRule::kOptional, kAnyNumber},
    {"short-reply", FaultKind::kShortReply, ArgumentRule::kOptional, kAnyNumber},
    {"half-reply", FaultKind::kHalfReply, ArgumentRule::kNone, 0},
    {"noise", FaultKind::kNoise, ArgumentRule::kNone, 0},
    {"flood", FaultKind::kFlood, ArgumentRule::kOptional, kMaxFlood},
    {"unplug", FaultKind::kUnplug, ArgumentRule::kOptional, kMaxDelay},
    {"silent", FaultKind::kSilent, ArgumentRule::kNone, 0},
    {"ignore-message", FaultKind::kIgnoreMessage, ArgumentRule::kNone, 0},
    {"duplicate-reply", FaultKind::kDuplicateReply, ArgumentRule::kNone, 0},
}};

const KindRule& FindKind(std::string_view name) {
  for (const KindRule& rule : kKinds) {
    if (rule.mName == name) return rule;
  }
  throw std::invalid_argument(fmt::format("\"{}\" is no kind of fault", name));
}

MessageName FindMessage(std::string_view name) {
  for (std::size_t index = 0; index < kMessageNames.size(); ++index) {
    if (kMessageNames[index] == name) return static_cast<MessageName>(index);
  }
  throw std::invalid_argument(fmt::format("\"{}\" is no name of a message", name));
}

// N, N-M or *.
void ParseOccurrence(std::string_view text, Fault& fault) {
  if (text == "*") {
    fault.mFirst = 1;
    fault.mLast = kEveryOccurrence;
    return;
  }
  const std::size_t dash = text.find('-');
  fault.mFirst = Tools::ParseNumber(text.substr(0, dash), "occurrence");
  fault.mLast =
      dash == std::string_view::npos ? fault.mFirst : Tools::ParseNumber(text.substr(dash + 1), "occurrence");
  if (fault.mFirst == 0 || fault.mLast < fault.mFirst)
    throw std::invalid_argument(fmt::format("\"{}\" is no range of occurrences, which count from 1", text));
}

void ParseWhere(std::string_view text, Fault& fault) {
  const bool named = !text.empty() && text.front() >= 'a' && text.front() <= 'z';
  if (!named) return ParseOccurrence(text, fault);
  const std::size_t hash = text.find('#');
  fault.mMessage = FindMessage(text.substr(0, hash));
  if (hash != std::string_view::npos) ParseOccurrence(text.substr(hash + 1), fault);
}

Fault ParseParts(std::string_view text) {
  const std::size_t at = text.find('@');
  if (at == std::string_view::npos) throw std::invalid_argument("it is not KIND@WHERE[:ARGUMENT]");
  const KindRule& rule = FindKind(text.substr(0, at));
  const std::string_view rest = text.substr(at + 1);
  const std::size_t colon = rest.find(':');
  Fault fault;
  fault.mKind = rule.mKind;
  ParseWhere(rest.substr(0, colon), fault);
  if (colon == std::string_view::npos) {
    if (rule.mArgument == ArgumentRule::kRequired)
      throw std::invalid_argument(fmt::format("{} needs an argument", rule.mName));
  } else {
    if (rule.mArgument == ArgumentRule::kNone)
      throw std::invalid_argument(fmt::format("{} takes no argument", rule.mName));
    fault.mArgument = Tools::ParseNumber(rest.substr(colon + 1), rule.mName, rule.mLimit);
  }
  return fault;
}

}  // namespace

std::string_view NameOf(MessageName name) {
  return kMessageNames[static_cast<std::size_t>(name)];
}

Fault ParseFault(std::string_view text) {
  try {
    return ParseParts(text);
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(fmt::format("fault \"{}\": {}", text, error.what()));
  }
}

FaultPlan::FaultPlan(std::vector<Fault> faults) : mFaults(std::move(faults)) {}

std::vector<Fault> FaultPlan::Next(MessageName name, bool inUpdateMode) {
  const std::uint32_t occurrence = ++mOccurrences[static_cast<std::size_t>(name)];
  if (inUpdateMode) ++mUpdateModeMessages;
  std::vector<Fault> striking;
  for (const Fault& fault : mFaults) {
    if (fault.mMessage ? *fault.mMessage != name : !inUpdateMode) continue;
    const std::uint32_t count = fault.mMessage ? occurrence : mUpdateModeMessages;
    if (count >= fault.mFirst && count <= fault.mLast) striking.push_back(fault);
  }
  return striking;
}

}  // namespace Simulator
