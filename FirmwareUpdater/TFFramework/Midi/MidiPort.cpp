#include "TFFramework/Midi/MidiPort.h"

#include <string>

#include "TFFramework/Midi/MidiComm.h"

namespace TF {

LMidiPort::LMidiPort(const String& name, const RCPtr<LMidiComm>& comm, MidiDirection direction)
    : mName(name), mComm(comm), mDirection(direction) {}

LMidiPort::~LMidiPort() = default;

Platform::MidiDriver& LMidiPort::GetDriver() const {
  return mComm->GetDriver();
}

Platform::MidiStatus LMidiPort::OpenDevice(const MidiPortRequest& request) {
  CloseDevice();
  const StringArray names = ReadDeviceNames(GetDriver(), mDirection);
  const std::int32_t device = ChooseDevice(names, request);
  if (device < 0) return Platform::kMidiNoDriver;
  mDeviceName = names.GetAt(device);
  return OpenHandle(static_cast<std::uint32_t>(device));
}

bool LMidiPort::IsDevicePresent() {
  std::u16string name;
  const Platform::MidiStatus status = mDirection == MidiDirection::kInput
                                          ? GetDriver().InputName(GetHandle(), name)
                                          : GetDriver().OutputName(GetHandle(), name);
  return status == Platform::kMidiOk;
}

std::int32_t LMidiPort::Release() {
  // The port may be gone afterwards.
  const RCPtr<LMidiComm> comm = mComm;
  const std::int32_t left = LRefCountedObject::Release();
  // Two clients that let go at the same moment, one of them just after it asked for the port
  // again, each take the other for the last one. Then only the list still holds the port.
  if (left == 1) comm->RemoveAbandonedPorts();
  return left;
}

TFRESULT LMidiPort::ReleaseInternalReferences() {
  {
    const RCPtr<LMidiPort> self(this);
    const MutexLock lock(mComm->GetPortsMutex());
    // Two references are this pointer and the one being dropped. A third came from the list
    // a moment ago: the port has been asked for again and stays open for that client.
    const bool wantedAgain = GetRefCount() - GetInternalRefCount() > 2;
    if (!wantedAgain) mComm->RemovePort(self);
  }
  return LRefCountedObject::ReleaseInternalReferences();
}

}  // namespace TF
