#include "TFFramework/Midi/MidiRenderPort.h"

#include <algorithm>

#include "TFFramework/Midi/MidiComm.h"
#include "TFFramework/Midi/MidiMessageLength.h"
#include "TFFramework/Utilities/Storage/CaseTable.h"

namespace TF {

namespace {

TFRESULT ResultOf(Platform::MidiStatus status, std::int32_t length) {
  return status == Platform::kMidiOk ? length : kFailure;
}

}  // namespace

RCPtr<LMidiRenderPort> LMidiRenderPort::Create(const String& name, const RCPtr<LMidiComm>& comm) {
  if (name.IsEmpty() || !comm) return nullptr;
  return RCPtr<LMidiRenderPort>(new LMidiRenderPort(name, comm));
}

LMidiRenderPort::LMidiRenderPort(const String& name, const RCPtr<LMidiComm>& comm)
    : LMidiPort(name, comm, kDirection) {
  mSendLight.SetGreen();
}

LMidiRenderPort::~LMidiRenderPort() {
  LMidiRenderPort::CloseDevice();
}

bool LMidiRenderPort::Answers(const String&, const String& entry) const {
  // A port that was asked for by a part of the name stands on the device of the whole name.
  return EqualsIgnoreCase(GetName(), entry) || EqualsIgnoreCase(GetDeviceName(), entry);
}

Platform::MidiStatus LMidiRenderPort::OpenHandle(std::uint32_t device) {
  Platform::MidiHandle handle = nullptr;
  const Platform::MidiStatus status = GetDriver().OpenOutput(device, GetComm().GetGate(), handle);
  SetHandle(handle);
  if (status != Platform::kMidiOk) CloseDevice();
  return status;
}

void LMidiRenderPort::CloseDevice() {
  const Platform::MidiHandle handle = GetHandle();
  if (!handle) return;
  GetDriver().CloseOutput(handle);
  SetHandle(nullptr);
  // A send of another thread that this cut off gets no answer from the driver any more.
  mSendLight.SetGreen();
}

TFRESULT LMidiRenderPort::Send(const char* bytes, std::int32_t length) {
  const MutexLock sending(mSendMutex);
  // Goes on after a timeout too: the driver is the one to refuse.
  mSendLight.Wait(GetComm().GetSendTimeout());
  return IsShortMessage(static_cast<std::uint8_t>(bytes[0])) ? SendShort(bytes, length)
                                                             : SendLong(bytes, length);
}

TFRESULT LMidiRenderPort::SendShort(const char* bytes, std::int32_t length) {
  const std::int32_t wanted = SentMessageLength(static_cast<std::uint8_t>(bytes[0]));
  std::uint32_t packed = 0;
  for (std::int32_t i = std::min(wanted, length) - 1; i >= 0; --i) {
    packed = packed << 8 | static_cast<std::uint8_t>(bytes[i]);
  }
  return ResultOf(GetDriver().SendShort(GetHandle(), packed), wanted);
}

TFRESULT LMidiRenderPort::SendLong(const char* bytes, std::int32_t length) {
  const Platform::MidiHandle handle = GetHandle();
  Platform::MidiDriver& driver = GetDriver();
  Platform::MidiBuffer header;
  header.data = const_cast<char*>(bytes);
  header.length = static_cast<std::uint32_t>(length);
  header.recorded = header.length;
  Platform::MidiStatus status = driver.PrepareOutputBuffer(handle, header);
  if (status != Platform::kMidiOk) return kFailure;
  mSendLight.SetRed();
  status = driver.SendLong(handle, header);
  if (status == Platform::kMidiOk && mSendLight.Wait(GetComm().GetSendTimeout()) != kWaitSignalled) {
    status = Platform::kMidiError;
  }
  // Header and bytes are the caller's: the driver must have let go of them before this returns.
  const Platform::MidiStatus outcome = driver.UnprepareOutputBuffer(handle, header);
  mSendLight.SetGreen();
  return ResultOf(status == Platform::kMidiOk ? outcome : status, length);
}

void LMidiRenderPort::OnLongDone() {
  mSendLight.SetGreen();
}

}  // namespace TF
