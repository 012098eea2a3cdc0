#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"

#include <fmt/format.h>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

class LVarnokMidiFirmwareUpdatePerformer::ServiceSession {
 public:
  explicit ServiceSession(LVarnokMidiFirmwareUpdatePerformer& performer) : mPerformer(performer) {}
  ServiceSession(const ServiceSession&) = delete;
  ServiceSession& operator=(const ServiceSession&) = delete;
  ~ServiceSession() { mPerformer.CloseService(); }

 private:
  LVarnokMidiFirmwareUpdatePerformer& mPerformer;
};

LVarnokMidiFirmwareUpdatePerformer::LVarnokMidiFirmwareUpdatePerformer(unsigned hardwareId,
                                                                       unsigned secondaryId)
    : mHardwareId(hardwareId), mSecondaryId(secondaryId) {}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::CreateNotificationHandler() {
  mNotificationHandler = TF::MakeRC<Handler>(this);
  return TF::kSuccess;
}

void LVarnokMidiFirmwareUpdatePerformer::ParseImage(const TF::Array<unsigned char>& image) {
  AppendImageRegions(image, mRegions);
}

TF::RCPtr<TF::LMidiCommInterface> LVarnokMidiFirmwareUpdatePerformer::CreateMidiService() {
  return TF::LMidiCommInterface::Create();
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::Perform(const TF::Array<unsigned char>& image,
                                                     const TF::String& capturePortName,
                                                     const TF::String& renderPortName) {
  mRegions.Clear();
  mCounts = {};
  if (image.GetCount() == 0) return Fail("the image is empty");
  if (!ValidateImageStructure(image)) return Fail(DescribeImageCheck(CheckImageStructure(image)));
  if (!ValidateImageChecksums(image)) return Fail(DescribeImageCheck(CheckImageChecksums(image)));
  ParseImage(image);

  const ServiceSession session(*this);
  const TFRESULT opened = OpenService(capturePortName, renderPortName);
  if (TF::Failed(opened)) {
    Fail("no MIDI service");
    return opened;
  }
  return SendImage();
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::OpenService(const TF::String& capturePortName,
                                                         const TF::String& renderPortName) {
  mMidiComm = CreateMidiService();
  if (!mMidiComm) return TF::kOutOfMemory;
  OpenPorts(capturePortName, renderPortName);
  if (!mNotificationHandler) return TF::kFailure;
  return mNotificationHandler->AddHandler(&LVarnokMidiFirmwareUpdatePerformer::OnMidiDataCaptured, mMidiComm,
                                          TF::kMidiDataCapturedName);
}

// A port that does not open needs no test here: without it the first request gets no reply.
void LVarnokMidiFirmwareUpdatePerformer::OpenPorts(const TF::String& capturePortName,
                                                   const TF::String& renderPortName) {
  TF::RCPtr<TF::LRefCountedObject> port;
  mMidiComm->OpenCapturePort(capturePortName, port);
  mCapturePort = port;
  mMidiComm->OpenRenderPort(renderPortName, port);
  mRenderPort = port;
  if (!mCapturePort)
    TF::LogRecord(fmt::format("MIDI input \"{}\" does not open.", TF::ToUtf8(capturePortName)));
  if (!mRenderPort)
    TF::LogRecord(fmt::format("MIDI output \"{}\" does not open.", TF::ToUtf8(renderPortName)));
}

// The service's thread holds this object while it hands over a reply. Were it the last to let
// go, the service would go on its own thread and wait for itself; so it ends here.
void LVarnokMidiFirmwareUpdatePerformer::CloseService() {
  if (!mMidiComm) return;
  const TF::NotificationId id = TF::GetNotificationID(TF::kMidiDataCapturedName);
  if (mNotificationHandler) mNotificationHandler->RemoveHandler(mMidiComm, id);
  Unregister(mMidiComm, id);
  mMidiComm->Shutdown();
  mCapturePort = nullptr;
  mRenderPort = nullptr;
  mMidiComm = nullptr;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::SendImage() {
  const TFRESULT started = StartDevice();
  if (TF::Failed(started)) return started;
  const auto regionCount = static_cast<unsigned>(mRegions.GetCount());
  for (unsigned regionIndex = 0; regionIndex < regionCount; ++regionIndex) {
    const TFRESULT sent = SendRegion(regionIndex);
    if (TF::Failed(sent)) return sent;
  }
  FinishDevice();
  RecordSuccess();
  return TF::kSuccess;
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::StartDevice() {
  BuildCommand(BL_CMD_START, mCommand);
  SendRequest(kStarting);
  if (!WaitForReply()) return Fail(NoReplyTo("the start of the transfer"));
  const Reply reply = TakeReply();
  if (!reply) {
    Fail("no memory for the reply to the start of the transfer");
    return TF::kOutOfMemory;
  }
  if (reply->mReplyCode == BL_REPLY_READY) return TF::kSuccess;
  return Fail(fmt::format("reply {:#04x} instead of ready to the start of the transfer", reply->mReplyCode));
}

void LVarnokMidiFirmwareUpdatePerformer::FinishDevice() {
  BuildCommand(BL_CMD_FINISH, mCommand);
  if (TF::Failed(SendCommand())) TF::LogRecord("The device did not take the end of the transfer.");
}

TFRESULT LVarnokMidiFirmwareUpdatePerformer::Fail(std::string_view reason) {
  TF::LogRecord(fmt::format("Firmware transfer failed: {} (messages sent: {}, bytes: {}).", reason,
                            mCounts.mMessages, mCounts.mMessageBytes));
  return TF::kFailure;
}

void LVarnokMidiFirmwareUpdatePerformer::RecordSuccess() const {
  TF::LogRecord(
      fmt::format("Firmware transfer ended (regions written: {}, skipped: {}, retries: {}, messages sent: "
                  "{}, bytes: {}).",
                  mCounts.mRegionsWritten, mCounts.mRegionsSkipped, mCounts.mRetries, mCounts.mMessages,
                  mCounts.mMessageBytes));
}
