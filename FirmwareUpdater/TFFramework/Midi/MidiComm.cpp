#include "TFFramework/Midi/MidiComm.h"

#include <algorithm>

#include "TFFramework/Utilities/Storage/CaseTable.h"

namespace TF {

namespace {

// One thread, so that handlers run one at a time and in the order of arrival.
constexpr std::int32_t kHandlerThreads = 1;
constexpr std::int32_t kQueuePriority = 2;
constexpr std::int32_t kMessagePriority = 0;

// From the end of the list, and by plain address: a counted pointer taken on the driver's
// thread could become the last one and close the device from inside its own callback.
template <class Ports>
auto* FindByHandle(Ports& ports, Platform::MidiHandle handle) {
  for (std::int32_t i = ports.GetCount() - 1; i >= 0; --i) {
    auto* port = ports.GetAt(i).Get();
    if (port->GetHandle() == handle) return port;
  }
  return decltype(ports.GetAt(0).Get()){nullptr};
}

template <class Port, class Ports>
RCPtr<Port> FindOpenPort(const Ports& ports, const String& requested, const String& entry) {
  for (std::int32_t i = 0; i < ports.GetCount(); ++i) {
    const RCPtr<Port>& port = ports.GetAt(i);
    if (port->Answers(requested, entry)) return port;
  }
  return nullptr;
}

// False for a port that was opened by a part of its device's name, when a whole name asks for
// another device.
bool IsMeant(const LMidiPort& port, const MidiPortRequest& request) {
  String base;
  std::int32_t ordinal = 0;
  ParsePortName(request.mName, base, ordinal);
  const String& device = port.GetDeviceName();
  return !request.mWholeName || EqualsIgnoreCase(device, request.mName) || EqualsIgnoreCase(device, base);
}

template <class Ports>
void RemoveAt(Ports& ports, std::int32_t index) {
  ports.GetAt(index)->DropInternalReferences();
  ports.RemoveItems(index, 1);
}

template <class Ports>
bool RemoveFrom(Ports& ports, const LMidiPort* port) {
  for (std::int32_t i = ports.GetCount() - 1; i >= 0; --i) {
    if (ports.GetAt(i).Get() != port) continue;
    RemoveAt(ports, i);
    return true;
  }
  return false;
}

// Moves the ports that fit out of the list, so that they can close without the lock.
template <class Ports, class Fits>
Ports TakeOut(Ports& ports, const Fits& fits) {
  Ports taken;
  for (std::int32_t i = ports.GetCount() - 1; i >= 0; --i) {
    if (!fits(*ports.GetAt(i).Get())) continue;
    taken.Add(ports.GetAt(i));
    RemoveAt(ports, i);
    i = std::min(i, ports.GetCount());  // A port that goes may take others along.
  }
  return taken;
}

bool IsAny(const LMidiPort&) {
  return true;
}

bool IsAbandoned(const LMidiPort& port) {
  return port.GetRefCount() == port.GetInternalRefCount();
}

template <class Ports>
void CloseAll(Ports& ports) {
  for (std::int32_t i = 0; i < ports.GetCount(); ++i) ports.GetAt(i)->CloseDevice();
}

}  // namespace

LMidiComm::LMidiComm(Platform::MidiDriver& driver, std::uint32_t sendTimeoutMs)
    : mDriver(driver),
      mSendTimeoutMs(sendTimeoutMs),
      mGate(std::make_shared<MidiCallbackGate>(*this)),
      mThreadPool(MakeRC<LThreadPool>(kHandlerThreads, kQueuePriority)) {}

LMidiComm::~LMidiComm() {
  mGate->Detach();
  LMidiComm::Shutdown();
}

void LMidiComm::Shutdown() {
  {
    const MutexLock lock(GetPortsMutex());
    mShutDown = true;
  }
  // Without the lock, since the handler that this waits for may open or close ports; and
  // before the ports close, so that a send of that handler still gets its answer.
  mThreadPool->Shutdown();
  PortList<LMidiCapturePort> capturePorts;
  PortList<LMidiRenderPort> renderPorts;
  {
    const MutexLock lock(GetPortsMutex());
    capturePorts = TakeOut(mCapturePorts, IsAny);
    renderPorts = TakeOut(mRenderPorts, IsAny);
  }
  CloseAll(capturePorts);
  CloseAll(renderPorts);
}

TFRESULT LMidiComm::OpenCapturePort(const String& name, RCPtr<LRefCountedObject>& port) {
  return OpenPort(mCapturePorts, name, port);
}

TFRESULT LMidiComm::OpenRenderPort(const String& name, RCPtr<LRefCountedObject>& port) {
  return OpenPort(mRenderPorts, name, port);
}

template <class Port>
TFRESULT LMidiComm::OpenPort(PortList<Port>& ports, const String& name, RCPtr<LRefCountedObject>& port) {
  const MutexLock lock(GetPortsMutex());
  port = nullptr;
  if (mShutDown) return kFailure;
  const StringArray names = MakeUniquePortNames(ReadDeviceNames(mDriver, Port::kDirection));
  std::int32_t index = -1;
  const std::int32_t count = FindPortName(names, name, index);
  if (count > 1) {
    RecordAmbiguousName(Port::kDirection, name, names);
    return kInvalidArgument;
  }
  // Nothing found is still worth a try: "Tessel (1)" means the one "Tessel" that is there.
  MidiPortRequest request{name, false};
  RCPtr<Port> found;
  if (count == 1) {
    const String& entry = names.GetAt(index);
    if (EqualsIgnoreCase(entry, name)) request = {entry, true};
    found = FindOpenPort<Port>(ports, name, entry);
  }
  const bool isPresent = found && found->IsDevicePresent();
  if (isPresent && !IsMeant(*found.Get(), request)) found = nullptr;
  if (!found) {
    found = OpenNewPort(ports, name, request);
  } else if (!isPresent && !Connect(*found.Get(), request)) {
    found = nullptr;
  }
  port = found;
  return port ? kSuccess : kFailure;
}

template <class Port>
RCPtr<Port> LMidiComm::OpenNewPort(PortList<Port>& ports, const String& name,
                                   const MidiPortRequest& request) {
  const RCPtr<Port> port = Port::Create(name, RCPtr<LMidiComm>(this));
  if (!port) return nullptr;
  // On the list before it opens, so that no message finds its port missing.
  ports.Add(port);
  port->AddInternalReferences();
  if (Connect(*port.Get(), request)) return port;
  RemovePort(port);
  return nullptr;
}

template <class Port>
bool LMidiComm::Connect(Port& port, const MidiPortRequest& request) {
  Platform::MidiStatus status = port.OpenDevice(request);
  if (status == Platform::kMidiOk) {
    status = port.Start();
    if (status != Platform::kMidiOk) port.CloseDevice();
  }
  if (status == Platform::kMidiOk) return true;
  // A device that is not there is what the presence checks ask about all the time.
  if (status != Platform::kMidiNoDriver) {
    RecordOpenFailure(Port::kDirection, port.GetName(), port.GetDeviceName(), status);
  }
  return false;
}

TFRESULT LMidiComm::RemovePort(const RCPtr<LMidiPort>& port) {
  const MutexLock lock(GetPortsMutex());
  const bool removed = RemoveFrom(mCapturePorts, port.Get()) || RemoveFrom(mRenderPorts, port.Get());
  return removed ? kSuccess : kFailure;
}

void LMidiComm::RemoveAbandonedPorts() {
  PortList<LMidiCapturePort> capturePorts;
  PortList<LMidiRenderPort> renderPorts;
  const MutexLock lock(GetPortsMutex());
  capturePorts = TakeOut(mCapturePorts, IsAbandoned);
  renderPorts = TakeOut(mRenderPorts, IsAbandoned);
}

TFRESULT LMidiComm::Send(const RCPtr<LRefCountedObject>& port, const RCPtr<LIBuffer>& data) {
  const RCPtr<LMidiRenderPort> renderPort = port;
  if (!renderPort || !data || data->GetSize() == 0) return kInvalidArgument;
  if (data->GetSize() > static_cast<std::uint32_t>(IArray<char>::kNoCountLimit)) return kInvalidArgument;
  return renderPort->Send(static_cast<const char*>(data->GetPointer()),
                          static_cast<std::int32_t>(data->GetSize()));
}

TFRESULT LMidiComm::Send(const RCPtr<LRefCountedObject>& port, const IArray<char>& data) {
  const RCPtr<LMidiRenderPort> renderPort = port;
  if (!renderPort || data.GetCount() == 0) return kInvalidArgument;
  return renderPort->Send(data.GetBuffer(), data.GetCount());
}

void LMidiComm::EnqueueCaptured(const RCPtr<LMidiCaptureNotificationData>& data) {
  if (mShutDown) return;
  mThreadPool->Enqueue(RCPtr<LThreadWorker>(this), data, kMessagePriority);
}

TFRESULT LMidiComm::Work(const RCPtr<LRefCountedObject>& data) {
  const RCPtr<LMidiCaptureNotificationData> captured = data;
  ForwardCapturedData(captured);
  return DistributeCapturedData(captured);
}

void LMidiComm::OnMidiMessage(Platform::MidiHandle handle, Platform::MidiMessage message,
                              std::uintptr_t first, std::uintptr_t second) {
  using Platform::MidiMessage;
  if (message == MidiMessage::kLongDone) {
    if (LMidiRenderPort* port = FindByHandle(mRenderPorts, handle)) port->OnLongDone();
    return;
  }
  LMidiCapturePort* const port = FindByHandle(mCapturePorts, handle);
  if (!port) return;
  switch (message) {
    case MidiMessage::kData:
    case MidiMessage::kMoreData:
      port->OnShortMessage(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second));
      break;
    case MidiMessage::kLongData:
      port->OnLongData(*reinterpret_cast<Platform::MidiBuffer*>(first));
      break;
    case MidiMessage::kLongError:
      port->OnLongError(*reinterpret_cast<Platform::MidiBuffer*>(first));
      break;
    default:
      break;
  }
}

}  // namespace TF
