#pragma once

#include <cstdint>
#include <memory>

#include "Platform/MidiDriver.h"
#include "TFFramework/Midi/MidiCallbackGate.h"
#include "TFFramework/Midi/MidiCapturePort.h"
#include "TFFramework/Midi/MidiCommInterface.h"
#include "TFFramework/Midi/MidiRenderPort.h"
#include "TFFramework/Threads/ThreadPool.h"
#include "TFFramework/Threads/ThreadWorker.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// The MIDI service over a driver: lists of the open ports, and a pool of one thread that runs
// the handlers of captured messages.
class LMidiComm : public LMidiCommInterface, public LThreadWorker {
 public:
  // How long a send waits for its bytes to leave.
  static constexpr std::uint32_t kSendTimeoutMs = 10000;

  explicit LMidiComm(Platform::MidiDriver& driver = Platform::SystemMidiDriver(),
                     std::uint32_t sendTimeoutMs = kSendTimeoutMs);
  ~LMidiComm() override;

  String ToString() const override { return mText; }

  TFRESULT OpenCapturePort(const String& name, RCPtr<LRefCountedObject>& port) override;
  TFRESULT OpenRenderPort(const String& name, RCPtr<LRefCountedObject>& port) override;
  TFRESULT Send(const RCPtr<LRefCountedObject>& port, const RCPtr<LIBuffer>& data) override;
  TFRESULT Send(const RCPtr<LRefCountedObject>& port, const IArray<char>& data) override;
  void Shutdown() override;

  // On the pool's thread: hands one captured message to whoever wants it.
  TFRESULT Work(const RCPtr<LRefCountedObject>& data) override;

  // For the ports of this service.
  Platform::MidiDriver& GetDriver() const { return mDriver; }
  const std::shared_ptr<MidiCallbackGate>& GetGate() const { return mGate; }
  Mutex& GetPortsMutex() const { return mGate->GetPortsMutex(); }
  std::uint32_t GetSendTimeout() const { return mSendTimeoutMs; }
  // Takes the port and its internal reference off the list; kFailure when it is not there.
  TFRESULT RemovePort(const RCPtr<LMidiPort>& port);
  // Removes the ports that only the lists hold.
  void RemoveAbandonedPorts();
  // With the ports mutex held. Drops data after Shutdown.
  void EnqueueCaptured(const RCPtr<LMidiCaptureNotificationData>& data);

  // For the gate, with the ports mutex held, on the driver's thread.
  void OnMidiMessage(Platform::MidiHandle handle, Platform::MidiMessage message, std::uintptr_t first,
                     std::uintptr_t second);

 private:
  template <class Port>
  using PortList = RCPtrArray<Port, 1, 0>;

  template <class Port>
  TFRESULT OpenPort(PortList<Port>& ports, const String& name, RCPtr<LRefCountedObject>& port);
  template <class Port>
  RCPtr<Port> OpenNewPort(PortList<Port>& ports, const String& name, const MidiPortRequest& request);
  template <class Port>
  bool Connect(Port& port, const MidiPortRequest& request);

  Platform::MidiDriver& mDriver;
  const std::uint32_t mSendTimeoutMs;
  const String mText = u"LMidiComm";  // Stored, since the pool asks for it at every message.
  const std::shared_ptr<MidiCallbackGate> mGate;
  PortList<LMidiCapturePort> mCapturePorts;  // This and the next two under the ports mutex.
  PortList<LMidiRenderPort> mRenderPorts;
  bool mShutDown = false;
  const RCPtr<LThreadPool> mThreadPool;
};

}  // namespace TF
