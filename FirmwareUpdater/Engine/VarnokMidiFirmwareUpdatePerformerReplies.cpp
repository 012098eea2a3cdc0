#include <fmt/format.h>

#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"

void LVarnokMidiFirmwareUpdatePerformer::OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                                                        const TF::RCPtr<TF::LNotification>& notification) {
  if (mNotificationHandler && mHandlerEnabled) mNotificationHandler->Dispatch(sender, notification);
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::OnDistributorClosing(
    const TF::RCPtr<TF::LNotificationDistributor>& sender, TF::NotificationId id) {
  if (mNotificationHandler) mNotificationHandler->RemoveHandler(sender, id);
  return LNotificationClient::OnDistributorClosing(sender, id);
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::OnMidiDataCaptured(
    const TF::RCPtr<TF::LNotificationDistributor>& sender, const TF::RCPtr<TF::LNotification>& notification) {
  const TF::RCPtr<TF::LMidiCaptureNotificationData> captured = notification->GetData();
  BootloaderReply reply;
  if (!(sender == mMidiComm) || !captured || TF::Failed(ParseBootloaderReply(captured->mData, reply))) {
    return TF::kNothingDone;
  }
  TakeIn(reply);
  return TF::kSuccess;
}

void LVarnokMidiFirmwareUpdatePerformer::TakeIn(const BootloaderReply& reply) {
  const auto payload = TF::MakeRC<LProtoBootloaderMidiMessagePayloadData>(reply);
  const TF::MutexLock lock(mReplyMutex);
  if (!IsExpected(reply)) return;
  mReplyLight.SetData(payload);
  mReplyLight.SetGreen();
}

// With mReplyMutex held. Only a late reply to a request that timed out, or to one of two
// requests to verify, is a value or an error while a region is selected and replies are owed:
// taken for the answer, it would leave the region out.
bool LVarnokMidiFirmwareUpdatePerformer::IsExpected(const BootloaderReply& reply) {
  if (reply.mCode == BL_REPLY_ACK) return false;
  if (reply.mCode == BL_REPLY_REGION) {
    if (mPhase != kSelecting) return false;
    mAwaitsReply = false;
    return true;
  }
  if (reply.mCode == BL_REPLY_READY && mPhase != kStarting) return false;
  if (mOwedReplies > 0) {
    --mOwedReplies;
    return mPhase != kSelecting;
  }
  mAwaitsReply = false;
  return true;
}

void LVarnokMidiFirmwareUpdatePerformer::PrepareForReply(Phase phase) {
  const TF::MutexLock lock(mReplyMutex);
  if (mAwaitsReply) ++mOwedReplies;
  mAwaitsReply = true;
  mPhase = phase;
  // Only a verification asks for the payload after its waits have run out.
  if (phase == kVerifying) mReplyLight.SetData(nullptr);
  mReplyLight.SetRed();
}

// For a request that did not leave.
void LVarnokMidiFirmwareUpdatePerformer::ExpectNoReply() {
  const TF::MutexLock lock(mReplyMutex);
  mAwaitsReply = false;
}

// A request that did not leave gets no reply.
bool LVarnokMidiFirmwareUpdatePerformer::WaitForReply() {
  return !mLastSendFailed && mReplyLight.Wait(mLimits.mReplyMs) == TF::kWaitSignalled;
}

LVarnokMidiFirmwareUpdatePerformer::Reply LVarnokMidiFirmwareUpdatePerformer::TakeReply() {
  const TF::MutexLock lock(mReplyMutex);
  return mReplyLight.GetData();
}

std::string LVarnokMidiFirmwareUpdatePerformer::NoReplyTo(std::string_view request) const {
  if (mLastSendFailed) return fmt::format("the message for {} could not be sent", request);
  return fmt::format("no reply to {} within {} ms", request, mLimits.mReplyMs);
}
