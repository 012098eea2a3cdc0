#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Engine/BootloaderMessages.h"
#include "Engine/FirmwareImage.h"
#include "Engine/ProtoBootloaderMidiMessagePayloadData.h"
#include "Engine/TransferLimits.h"
#include "TFFramework/Midi/MidiCapturePort.h"
#include "TFFramework/Midi/MidiCommInterface.h"
#include "TFFramework/Midi/MidiRenderPort.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationHandler.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Threads/TrafficLight.h"

// Carries one firmware image into a device that is in update mode: region by region, each
// selected, announced, written and verified, with retries for what the device did not take.
// Made for one transfer; its creator calls CreateNotificationHandler right after construction.
//
// Threads: Perform and all that it calls run on one thread, from start to end in one call. The
// replies of the device come on a thread of the performer's own MIDI service.
class LVarnokMidiFirmwareUpdatePerformer : public TF::LNotificationClient {
 public:
  // A device of any hardware: the first region's reply tells which.
  static constexpr unsigned kAnyHardware = 0xFFFFFFFF;

  LVarnokMidiFirmwareUpdatePerformer(unsigned hardwareId, unsigned secondaryId);

  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification) override;
  TFRESULT OnDistributorClosing(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                                TF::NotificationId id) override;

  // kSuccess when every region for this device was written and verified, or was refused by
  // the device; kOutOfMemory without a MIDI service; kFailure for anything else. Not one byte
  // is sent of an invalid image. image must stay as it is meanwhile. At the end the service is
  // shut down and nothing but the caller holds this object.
  virtual TFRESULT Perform(const TF::Array<unsigned char>& image, const TF::String& capturePortName,
                           const TF::String& renderPortName);

  virtual TFRESULT CreateNotificationHandler();

  virtual void BuildBootloaderMessage(const TF::Array<unsigned char>& command, TF::Array<char>& out);

  // The result of sending: the number of bytes, or a failure.
  virtual TFRESULT SendSelectRegion(unsigned regionIndex);
  // Sends nothing when the image has no such region.
  virtual TFRESULT SendRegionHeader(unsigned hardwareId, unsigned regionIndex);
  // kSuccess when the whole section went out and each acknowledged write was confirmed;
  // kFailure for a section that is not there. hardwareId is not used.
  virtual TFRESULT SendSection(unsigned hardwareId, unsigned regionIndex, unsigned sectionIndex);

  // Adds the regions of a valid image.
  virtual void ParseImage(const TF::Array<unsigned char>& image);

  // A copy of the header of the region at this place, if it is for this hardware; kFailure
  // otherwise.
  TFRESULT FindRegionHeader(unsigned hardwareId, unsigned regionIndex, VarnokFileRegionHeader& out) const;

  void SetLimits(const TransferLimits& limits) { mLimits = limits; }

 protected:
  virtual TF::RCPtr<TF::LMidiCommInterface> CreateMidiService();

 private:
  using Handler = TF::LNotificationHandler<LVarnokMidiFirmwareUpdatePerformer>;
  using Reply = TF::RCPtr<LProtoBootloaderMidiMessagePayloadData>;

  // Which replies are awaited.
  enum Phase : std::int32_t {
    kNoPhase = 0,
    kStarting = 2,   // BL_REPLY_READY is accepted.
    kSelecting = 3,  // BL_REPLY_REGION is accepted.
    kWriting = 4,
    kVerifying = 6,
  };

  enum class PassOutcome { kDone, kSkipped, kRetry, kFailed };

  // What came of a pass over a region, or of a step of it, and why if it is not done.
  struct Pass {
    PassOutcome mOutcome = PassOutcome::kDone;
    std::string mReason;
  };

  struct Counts {
    std::uint32_t mMessages = 0;
    std::uint64_t mMessageBytes = 0;
    std::uint32_t mRegionsWritten = 0;
    std::uint32_t mRegionsSkipped = 0;
    std::uint32_t mRetries = 0;
  };

  // Leaves the service whatever way the transfer ends.
  class ServiceSession;

  // The transfer.
  TFRESULT OpenService(const TF::String& capturePortName, const TF::String& renderPortName);
  void OpenPorts(const TF::String& capturePortName, const TF::String& renderPortName);
  void CloseService();
  TFRESULT SendImage();
  TFRESULT StartDevice();
  void FinishDevice();
  TFRESULT Fail(std::string_view reason);
  void RecordSuccess() const;

  // Regions.
  TFRESULT SendRegion(unsigned regionIndex);
  void WaitForLateReply();
  Pass TryRegion(unsigned regionIndex);
  Pass SelectRegion(unsigned regionIndex);
  Pass WriteRegion(unsigned regionIndex);
  Pass VerifyRegion(unsigned regionIndex);
  bool RequestVerification(unsigned regionIndex);
  void RecordPass(unsigned regionIndex, const Pass& pass) const;

  // Messages and sections.
  TFRESULT SendCommand();
  TFRESULT SendRequest(Phase phase);
  TFRESULT SendPacket(const VarnokFileSection& section, std::uint32_t sent, std::uint32_t size);
  TFRESULT SendAcknowledgedPacket(const VarnokFileSection& section, std::uint32_t sent, std::uint32_t size);
  void PostProgress(unsigned regionIndex, unsigned sectionIndex, std::uint32_t sent) const;

  // Replies.
  TFRESULT OnMidiDataCaptured(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                              const TF::RCPtr<TF::LNotification>& notification);
  void TakeIn(const BootloaderReply& reply);
  bool IsExpected(const BootloaderReply& reply);
  void PrepareForReply(Phase phase);
  void ExpectNoReply();
  bool WaitForReply();
  Reply TakeReply();
  std::string NoReplyTo(std::string_view request) const;

  TF::RCPtr<Handler> mNotificationHandler;
  bool mHandlerEnabled = true;
  TF::RCPtr<TF::LMidiCommInterface> mMidiComm;
  TF::RCPtr<TF::LMidiCapturePort> mCapturePort;
  TF::RCPtr<TF::LMidiRenderPort> mRenderPort;
  unsigned mHardwareId;
  unsigned mSecondaryId;
  TF::Array<VarnokFileRegion> mRegions;
  TransferLimits mLimits;
  Counts mCounts;
  bool mLastSendFailed = false;
  std::string mSectionFault;          // Why the last SendSection failed.
  VarnokFileRegionHeader mHeader{};   // Of the region that is being written.
  TF::Array<unsigned char> mCommand;  // These two keep their memory from message to message.
  TF::Array<char> mMessage;

  // Guards what follows, which the two threads share.
  TF::Mutex mReplyMutex;
  TF::TrafficLightWithData mReplyLight;
  Phase mPhase = kNoPhase;
  // The reply to the last request has not come.
  bool mAwaitsReply = false;
  // Replies to requests before the last one that have not come. The device answers in order,
  // so whatever comes pays these first.
  std::uint32_t mOwedReplies = 0;
};
