#pragma once

#include <atomic>
#include <cstdint>

#include "Platform/MidiDriver.h"
#include "TFFramework/Midi/MidiDevices.h"
#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

class LMidiComm;

// A port of the MIDI service, for clients an opaque handle. The service's list of open ports
// counts as an internal reference; when the last other one goes, the port leaves the list and
// its device closes.
//
// Threads: OpenDevice, Start, IsDevicePresent and the names need the service's ports mutex.
class LMidiPort : public virtual LRefCountedObject {
 public:
  ~LMidiPort() override;

  // The name it was asked for.
  const String& GetName() const { return mName; }
  // Name of the device that it was last opened on.
  const String& GetDeviceName() const { return mDeviceName; }
  // Null when closed. Any thread.
  Platform::MidiHandle GetHandle() const { return mHandle.load(); }

  // Opens the device that request means, after closing the one that was open. Gives the
  // driver's status, kMidiNoDriver when no device fits.
  Platform::MidiStatus OpenDevice(const MidiPortRequest& request);
  // Lets messages in, where the port is for capture.
  virtual Platform::MidiStatus Start() { return Platform::kMidiOk; }
  // False once the device behind the open port has gone.
  bool IsDevicePresent();
  // Safe to call again.
  virtual void CloseDevice() = 0;

  std::int32_t Release() override;
  TFRESULT ReleaseInternalReferences() override;

 protected:
  LMidiPort(const String& name, const RCPtr<LMidiComm>& comm, MidiDirection direction);

  virtual Platform::MidiStatus OpenHandle(std::uint32_t device) = 0;

  Platform::MidiDriver& GetDriver() const;
  LMidiComm& GetComm() const { return *mComm.Get(); }
  void SetHandle(Platform::MidiHandle handle) { mHandle.store(handle); }

 private:
  const String mName;
  String mDeviceName;
  std::atomic<Platform::MidiHandle> mHandle{nullptr};
  const RCPtr<LMidiComm> mComm;
  const MidiDirection mDirection;
};

}  // namespace TF
