#pragma once

#include <cstdint>

#include "TFFramework/Midi/MidiPort.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Threads/TrafficLight.h"

namespace TF {

// An output port: sends one message at a time and waits until its bytes have left.
class LMidiRenderPort final : public LMidiPort {
 public:
  static constexpr MidiDirection kDirection = MidiDirection::kOutput;

  // Null for an empty name or without a service.
  static RCPtr<LMidiRenderPort> Create(const String& name, const RCPtr<LMidiComm>& comm);
  ~LMidiRenderPort() override;

  // True when a request for requested, which is the unique name entry, asks for this port.
  bool Answers(const String& requested, const String& entry) const;

  // Gives the number of bytes sent, or kFailure. A short message that is cut off goes out
  // with zeros in the missing places. Any thread; sends of several threads take turns.
  TFRESULT Send(const char* bytes, std::int32_t length);

  void CloseDevice() override;

  // With the service's ports mutex held, on the driver's thread.
  void OnLongDone();

 protected:
  Platform::MidiStatus OpenHandle(std::uint32_t device) override;

 private:
  LMidiRenderPort(const String& name, const RCPtr<LMidiComm>& comm);

  TFRESULT SendShort(const char* bytes, std::int32_t length);
  TFRESULT SendLong(const char* bytes, std::int32_t length);

  Mutex mSendMutex;
  TrafficLight mSendLight;  // Green while the driver holds no long message.
};

}  // namespace TF
