#include <algorithm>

#include "Engine/Crc32.h"
#include "Engine/FirmwareUpdateNotifications.h"
#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"
#include "Platform/Clock.h"

void LVarnokMidiFirmwareUpdatePerformer::BuildBootloaderMessage(const TF::Array<unsigned char>& command,
                                                                TF::Array<char>& out) {
  BuildEnvelope({mHardwareId, mSecondaryId}, command, out);
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendCommand() {
  BuildBootloaderMessage(mCommand, mMessage);
  const TFRESULT result = mMidiComm->Send(mRenderPort, mMessage);
  mLastSendFailed = TF::Failed(result);
  if (mLastSendFailed) return result;
  ++mCounts.mMessages;
  mCounts.mMessageBytes += static_cast<std::uint64_t>(result);
  return result;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendRequest(Phase phase) {
  PrepareForReply(phase);
  const TFRESULT result = SendCommand();
  if (TF::Failed(result)) ExpectNoReply();
  return result;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendSelectRegion(unsigned regionIndex) {
  BuildRegionCommand(BL_CMD_SELECT_REGION, regionIndex, mCommand);
  return SendRequest(kSelecting);
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendRegionHeader(unsigned hardwareId, unsigned regionIndex) {
  VarnokFileRegionHeader header;
  if (TF::Failed(FindRegionHeader(hardwareId, regionIndex, header))) return TF::kSuccess;
  BuildRegionHeaderCommand(header, mCommand);
  SendRequest(kWriting);
  return TF::kSuccess;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendSection(unsigned, unsigned regionIndex,
                                                         unsigned sectionIndex) {
  if (regionIndex >= static_cast<unsigned>(mRegions.GetCount())) return TF::kFailure;
  const TF::Array<VarnokFileSection>& sections = mRegions[static_cast<int>(regionIndex)].mSections;
  if (sectionIndex >= static_cast<unsigned>(sections.GetCount())) return TF::kFailure;
  const VarnokFileSection& section = sections[static_cast<int>(sectionIndex)];

  const std::uint32_t sectionSize = section.mEntry->mSize;
  std::uint32_t packetCount = 0;
  for (std::uint32_t sent = 0; sent < sectionSize;) {
    const auto size = std::min<std::uint32_t>(sectionSize - sent, kMaxWriteBytes);
    const bool isAcknowledged = ++packetCount % mLimits.mWritesPerAcknowledgement == 0;
    const TFRESULT result =
        isAcknowledged ? SendAcknowledgedPacket(section, sent, size) : SendPacket(section, sent, size);
    if (TF::Failed(result)) return result;
    if (isAcknowledged) PostProgress(regionIndex, sectionIndex, sent);
    sent += size;
  }
  return TF::kSuccess;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendPacket(const VarnokFileSection& section, std::uint32_t sent,
                                                        std::uint32_t size) {
  BuildWriteCommand(BL_CMD_WRITE, section.mEntry->mAddress + sent, section.mData + sent, size, mCommand);
  if (TF::Failed(SendCommand())) {
    mSectionFault = "a write message could not be sent";
    return TF::kFailure;
  }
  Platform::SleepMilliseconds(mLimits.mWritePauseMs);
  return TF::kSuccess;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendAcknowledgedPacket(const VarnokFileSection& section,
                                                                    std::uint32_t sent, std::uint32_t size) {
  const unsigned char* data = section.mData + sent;
  BuildWriteCommand(BL_CMD_WRITE_ACKED, section.mEntry->mAddress + sent, data, size, mCommand);
  const std::uint32_t crc = Crc32(data, size);
  SendRequest(kWriting);
  if (!WaitForReply()) {
    mSectionFault = NoReplyTo("an acknowledged write");
    return TF::kFailure;
  }
  const Reply reply = TakeReply();
  if (!reply) {
    mSectionFault = "no memory for the reply to an acknowledged write";
    return TF::kOutOfMemory;
  }
  if (reply->mReplyCode == BL_REPLY_VALUE && reply->mValue.ToUInt32() == crc) return TF::kSuccess;
  mSectionFault = "an acknowledged write arrived damaged";
  return TF::kFailure;
}

// Bytes of the packet in hand do not count yet. A total of 0 tells nothing of the way to go,
// so the progress stays at 0 then.
void LVarnokMidiFirmwareUpdatePerformer::PostProgress(unsigned regionIndex, unsigned sectionIndex,
                                                      std::uint32_t sent) const {
  std::uint64_t done = sent;
  std::uint64_t total = 0;
  for (int region = 0; region < mRegions.GetCount(); ++region) {
    const std::uint64_t dataSize = mRegions[region].mHeader->mDataSize;
    if (region < static_cast<int>(regionIndex)) done += dataSize;
    total += dataSize;
  }
  const TF::Array<VarnokFileSection>& sections = mRegions[static_cast<int>(regionIndex)].mSections;
  for (int section = 0; section < static_cast<int>(sectionIndex); ++section)
    done += sections[section].mEntry->mSize;

  FirmwareUpdateProgress progress;
  if (total > 0) progress.mProgress = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
  progress.mEstimateTimeLocally = true;
  PostFirmwareUpdateProgress(progress);
}
