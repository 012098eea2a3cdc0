#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "TFFramework/Midi/MidiCaptureNotificationData.h"
#include "TFFramework/Midi/MidiPort.h"

namespace TF {

// An input port: keeps the driver supplied with buffers and puts whole messages together
// from what comes back.
//
// Threads: the On... operations come with the service's ports mutex held, and on the driver's
// thread, so they copy and pass on, and never wait.
class LMidiCapturePort final : public LMidiPort {
 public:
  static constexpr MidiDirection kDirection = MidiDirection::kInput;
  static constexpr int kBufferCount = 3;
  static constexpr std::uint32_t kBufferBytes = 256;
  // A message that grows beyond this is dropped, so that a device that never ends one takes
  // no memory without bound.
  static constexpr std::int32_t kMaxMessageBytes = 256 * 1024;

  // Null for an empty name or without a service.
  static RCPtr<LMidiCapturePort> Create(const String& name, const RCPtr<LMidiComm>& comm);
  ~LMidiCapturePort() override;

  // True when a request for requested, which is the unique name entry, asks for this port.
  bool Answers(const String& requested, const String& entry) const;

  Platform::MidiStatus Start() override;
  void CloseDevice() override;

  // timestamp in milliseconds since the start of the port.
  void OnShortMessage(std::uint32_t packed, std::uint32_t timestamp);
  void OnLongData(Platform::MidiBuffer& header);
  void OnLongError(Platform::MidiBuffer& header);

 protected:
  Platform::MidiStatus OpenHandle(std::uint32_t device) override;

 private:
  struct CaptureBuffer {
    Platform::MidiBuffer mHeader;
    std::array<char, kBufferBytes> mData{};
    Platform::MidiHandle mPreparedFor = nullptr;  // Null when not prepared.
  };

  LMidiCapturePort(const String& name, const RCPtr<LMidiComm>& comm);

  Platform::MidiStatus QueueBuffer(CaptureBuffer& buffer);
  Platform::MidiStatus QueueAllBuffers();
  void UnprepareBuffers();
  void RequeueBuffer(Platform::MidiBuffer& header);
  void TakePiece(const char* bytes, std::int32_t count, bool complete);

  std::array<CaptureBuffer, kBufferCount> mBuffers;
  std::atomic<std::uint32_t> mClosing{1};        // Non-zero: buffers that come back are not queued again.
  RCPtr<LMidiCaptureNotificationData> mPending;  // A message that has begun and not ended.
};

}  // namespace TF
