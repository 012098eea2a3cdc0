#include <fmt/format.h>

#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"
#include "Platform/Clock.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

TFRESULT LVarnokMidiFirmwareUpdatePerformer::FindRegionHeader(unsigned hardwareId, unsigned regionIndex,
                                                              VarnokFileRegionHeader& out) const {
  if (regionIndex >= static_cast<unsigned>(mRegions.GetCount())) return TF::kFailure;
  const VarnokFileRegionHeader& header = *mRegions[static_cast<int>(regionIndex)].mHeader;
  if (header.mHardwareId != hardwareId) return TF::kFailure;
  out = header;
  return TF::kSuccess;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendRegion(unsigned regionIndex) {
  for (bool hasFailedBefore = false;; hasFailedBefore = true) {
    WaitForLateReply();
    Platform::SleepMilliseconds(mLimits.mRegionPauseMs);
    if (mCounts.mRetries > mLimits.mRetries) return Fail("too many failed passes");

    Pass pass = TryRegion(regionIndex);
    // Part of it may be in the device already, so it must not be left at that.
    if (pass.mOutcome == PassOutcome::kSkipped && hasFailedBefore) pass.mOutcome = PassOutcome::kRetry;
    if (pass.mOutcome == PassOutcome::kFailed)
      return Fail(fmt::format("region {}: {}", regionIndex, pass.mReason));
    if (pass.mOutcome == PassOutcome::kRetry) ++mCounts.mRetries;
    if (pass.mOutcome == PassOutcome::kDone) ++mCounts.mRegionsWritten;
    if (pass.mOutcome == PassOutcome::kSkipped) ++mCounts.mRegionsSkipped;
    RecordPass(regionIndex, pass);
    if (pass.mOutcome != PassOutcome::kRetry) return TF::kSuccess;
  }
}

// Red here means that the exchange before has timed out. Its reply, should it still come, must
// not be taken for the answer to what is sent next; it is then no longer owed.
void LVarnokMidiFirmwareUpdatePerformer::WaitForLateReply() {
  mReplyLight.Wait(mLimits.mLateReplyMs);
}

LVarnokMidiFirmwareUpdatePerformer::Pass LVarnokMidiFirmwareUpdatePerformer::TryRegion(unsigned regionIndex) {
  Pass pass = SelectRegion(regionIndex);
  if (pass.mOutcome == PassOutcome::kDone) pass = WriteRegion(regionIndex);
  if (pass.mOutcome == PassOutcome::kDone) pass = VerifyRegion(regionIndex);
  return pass;
}

LVarnokMidiFirmwareUpdatePerformer::Pass LVarnokMidiFirmwareUpdatePerformer::SelectRegion(
    unsigned regionIndex) {
  if (mHardwareId != kAnyHardware && TF::Failed(FindRegionHeader(mHardwareId, regionIndex, mHeader))) {
    return {PassOutcome::kSkipped, fmt::format("not for hardware {:#010x}", mHardwareId)};
  }
  SendSelectRegion(regionIndex);
  if (!WaitForReply()) return {PassOutcome::kFailed, NoReplyTo("its selection")};
  const Reply reply = TakeReply();
  if (!reply || reply->mReplyCode != BL_REPLY_REGION || reply->mValue.ToUInt32() != regionIndex) {
    return {PassOutcome::kSkipped, "the device did not select it"};
  }
  if (mHardwareId == kAnyHardware) mHardwareId = reply->mHardwareId;
  // Without an announcement nothing may be written.
  if (TF::Failed(FindRegionHeader(reply->mHardwareId, regionIndex, mHeader))) {
    return {PassOutcome::kSkipped, fmt::format("not for the device's hardware {:#010x}", reply->mHardwareId)};
  }
  return {};
}

LVarnokMidiFirmwareUpdatePerformer::Pass LVarnokMidiFirmwareUpdatePerformer::WriteRegion(
    unsigned regionIndex) {
  if (TF::Failed(SendRegionHeader(mHeader.mHardwareId, regionIndex))) {
    return {PassOutcome::kFailed, "its header was not sent"};
  }
  if (!WaitForReply()) return {PassOutcome::kRetry, NoReplyTo("its header")};
  const auto sectionCount =
      static_cast<unsigned>(mRegions[static_cast<int>(regionIndex)].mSections.GetCount());
  for (unsigned sectionIndex = 0; sectionIndex < sectionCount; ++sectionIndex) {
    if (TF::Failed(SendSection(mHardwareId, regionIndex, sectionIndex))) {
      return {PassOutcome::kRetry, fmt::format("section {}: {}", sectionIndex, mSectionFault)};
    }
  }
  return {};
}

LVarnokMidiFirmwareUpdatePerformer::Pass LVarnokMidiFirmwareUpdatePerformer::VerifyRegion(
    unsigned regionIndex) {
  for (std::uint32_t attempt = 0; attempt < mLimits.mVerifyAttempts; ++attempt) {
    if (RequestVerification(regionIndex)) break;
    Platform::SleepMilliseconds(mLimits.mVerifyPauseMs);
  }
  // A reply that came within the last pause counts as well.
  const Reply reply = TakeReply();
  if (!reply) return {PassOutcome::kRetry, NoReplyTo("its verification")};
  if (reply->mReplyCode != BL_REPLY_VALUE) {
    return {PassOutcome::kRetry, fmt::format("reply {:#04x} to its verification", reply->mReplyCode)};
  }
  if (reply->mValue.ToUInt32() != mHeader.mRegionCrc) {
    return {PassOutcome::kRetry, "the device holds other data than the image"};
  }
  return {};
}

bool LVarnokMidiFirmwareUpdatePerformer::RequestVerification(unsigned regionIndex) {
  BuildRegionCommand(BL_CMD_VERIFY_REGION, regionIndex, mCommand);
  SendRequest(kVerifying);
  return WaitForReply();
}

void LVarnokMidiFirmwareUpdatePerformer::RecordPass(unsigned regionIndex, const Pass& pass) const {
  if (pass.mOutcome == PassOutcome::kDone) {
    const TF::Array<VarnokFileSection>& sections = mRegions[static_cast<int>(regionIndex)].mSections;
    std::uint64_t size = 0;
    for (const VarnokFileSection& section : sections) size += section.mEntry->mSize;
    TF::LogRecord(fmt::format("Region {} written and verified (sections: {}, bytes: {}).", regionIndex,
                              sections.GetCount(), size));
  } else if (pass.mOutcome == PassOutcome::kSkipped) {
    TF::LogRecord(fmt::format("Region {} skipped: {}.", regionIndex, pass.mReason));
  } else {
    TF::LogRecord(fmt::format("Region {} failed: {} (failed passes in all: {}, allowed: {}).", regionIndex,
                              pass.mReason, mCounts.mRetries, mLimits.mRetries));
  }
}
