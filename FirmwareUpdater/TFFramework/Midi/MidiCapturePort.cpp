#include "TFFramework/Midi/MidiCapturePort.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "TFFramework/Midi/MidiComm.h"
#include "TFFramework/Midi/MidiMessageLength.h"
#include "TFFramework/Utilities/Storage/CaseTable.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

RCPtr<LMidiCapturePort> LMidiCapturePort::Create(const String& name, const RCPtr<LMidiComm>& comm) {
  if (name.IsEmpty() || !comm) return nullptr;
  return RCPtr<LMidiCapturePort>(new LMidiCapturePort(name, comm));
}

LMidiCapturePort::LMidiCapturePort(const String& name, const RCPtr<LMidiComm>& comm)
    : LMidiPort(name, comm, kDirection) {
  for (CaptureBuffer& buffer : mBuffers) {
    buffer.mHeader.data = buffer.mData.data();
    buffer.mHeader.length = kBufferBytes;
    buffer.mHeader.user = &buffer;
  }
}

LMidiCapturePort::~LMidiCapturePort() {
  LMidiCapturePort::CloseDevice();
}

bool LMidiCapturePort::Answers(const String& requested, const String&) const {
  return EqualsIgnoreCase(GetName(), requested);
}

Platform::MidiStatus LMidiCapturePort::OpenHandle(std::uint32_t device) {
  // The rest of a message that an earlier device began never comes.
  mPending = nullptr;
  Platform::MidiHandle handle = nullptr;
  Platform::MidiStatus status = GetDriver().OpenInput(device, GetComm().GetGate(), handle);
  SetHandle(handle);
  if (status == Platform::kMidiOk) {
    mClosing = 0;
    status = QueueAllBuffers();
  }
  if (status != Platform::kMidiOk) CloseDevice();
  return status;
}

Platform::MidiStatus LMidiCapturePort::Start() {
  return GetDriver().StartInput(GetHandle());
}

void LMidiCapturePort::CloseDevice() {
  const Platform::MidiHandle handle = GetHandle();
  mClosing = 1;
  if (!handle) return;
  Platform::MidiDriver& driver = GetDriver();
  // A device that has gone answers these with failures; there is nothing left to do about it.
  driver.StopInput(handle);
  driver.ResetInput(handle);
  UnprepareBuffers();
  driver.CloseInput(handle);
  SetHandle(nullptr);
}

Platform::MidiStatus LMidiCapturePort::QueueAllBuffers() {
  for (CaptureBuffer& buffer : mBuffers) {
    const Platform::MidiStatus status = QueueBuffer(buffer);
    if (status != Platform::kMidiOk) return status;
  }
  return Platform::kMidiOk;
}

Platform::MidiStatus LMidiCapturePort::QueueBuffer(CaptureBuffer& buffer) {
  const Platform::MidiHandle handle = GetHandle();
  buffer.mHeader.done = false;
  buffer.mHeader.recorded = 0;
  const Platform::MidiStatus status = GetDriver().PrepareInputBuffer(handle, buffer.mHeader);
  if (status != Platform::kMidiOk) return status;
  buffer.mPreparedFor = handle;
  return GetDriver().AddInputBuffer(handle, buffer.mHeader);
}

void LMidiCapturePort::UnprepareBuffers() {
  for (CaptureBuffer& buffer : mBuffers) {
    const Platform::MidiHandle handle = std::exchange(buffer.mPreparedFor, nullptr);
    if (handle) GetDriver().UnprepareInputBuffer(handle, buffer.mHeader);
  }
}

void LMidiCapturePort::RequeueBuffer(Platform::MidiBuffer& header) {
  if (mClosing != 0 || !GetHandle()) return;
  const auto buffer = std::find_if(mBuffers.begin(), mBuffers.end(),
                                   [&](const CaptureBuffer& own) { return &own == header.user; });
  if (buffer == mBuffers.end()) return;
  const Platform::MidiStatus status = QueueBuffer(*buffer);
  if (status == Platform::kMidiOk) return;
  LogRecord(fmt::format("MIDI: input port \"{}\" lost a capture buffer: {} ({})", ToUtf8(GetName()),
                        MidiStatusText(status), status));
}

void LMidiCapturePort::OnShortMessage(std::uint32_t packed, std::uint32_t timestamp) {
  const std::int32_t count = CapturedMessageLength(static_cast<std::uint8_t>(packed));
  std::array<char, sizeof packed> bytes{};
  for (char& byte : bytes) {
    byte = static_cast<char>(static_cast<std::uint8_t>(packed));
    packed >>= 8;
  }
  const auto data = MakeRC<LMidiCaptureNotificationData>(this, GetName(), timestamp);
  data->Append(bytes.data(), count);
  GetComm().EnqueueCaptured(data);
}

void LMidiCapturePort::OnLongData(Platform::MidiBuffer& header) {
  const std::uint32_t count = std::min(header.recorded, header.length);
  if (count > 0) {
    const auto last = static_cast<std::uint8_t>(header.data[count - 1]);
    const bool complete = count < header.length || last == kMidiEndOfExclusive;
    TakePiece(header.data, static_cast<std::int32_t>(count), complete);
  }
  RequeueBuffer(header);
}

void LMidiCapturePort::OnLongError(Platform::MidiBuffer& header) {
  RequeueBuffer(header);
}

void LMidiCapturePort::TakePiece(const char* bytes, std::int32_t count, bool complete) {
  // A piece that begins a message tells that the one before it was cut off.
  if (static_cast<std::uint8_t>(bytes[0]) == kMidiSystemExclusive) {
    mPending = MakeRC<LMidiCaptureNotificationData>(this, GetName());
  }
  if (!mPending) return;
  if (mPending->mData.GetCount() + count > kMaxMessageBytes) {
    mPending = nullptr;
    LogRecord(fmt::format("MIDI: a message on input port \"{}\" has no end after {} bytes and is dropped",
                          ToUtf8(GetName()), kMaxMessageBytes));
    return;
  }
  mPending->Append(bytes, count);
  if (!complete) return;
  const RCPtr<LMidiCaptureNotificationData> whole = std::move(mPending);
  GetComm().EnqueueCaptured(whole);
}

}  // namespace TF
