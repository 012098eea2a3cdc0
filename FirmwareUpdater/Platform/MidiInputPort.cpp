#include "Platform/MidiInputPort.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Platform/MidiRecord.h"
#include "Platform/MidiThreads.h"
#include "Platform/MidiWait.h"
#include "Platform/NativePath.h"

namespace Platform {
namespace {

constexpr std::size_t kReadBytes = 1024;
// More than any service queues: the queue grows once, and the reader's path stays off the heap.
constexpr std::size_t kUsualBuffers = 16;

}  // namespace

MidiInputPort::MidiInputPort(MidiHandle handle, std::string label, std::unique_ptr<MidiTransport> transport,
                             std::shared_ptr<MidiListener> listener)
    : mHandle(handle),
      mLabel(std::move(label)),
      mListener(std::move(listener)),
      mTransport(std::move(transport)) {
  mQueue.reserve(kUsualBuffers);
}

MidiStatus MidiInputPort::Begin() {
  if (mWake.IsValid() && StartMidiThread([port = shared_from_this()] { port->ReadLoop(); })) return kMidiOk;
  MidiRecord("MIDI input \"" + mLabel + "\": the system has no thread or event left for the port");
  return kMidiError;
}

MidiStatus MidiInputPort::Name(std::u16string& name) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (mGone || !mTransport->IsPresent()) return kMidiBadDevice;
  name = FromNativeText(mLabel);
  return kMidiOk;
}

MidiStatus MidiInputPort::Prepare(MidiBuffer& buffer) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (buffer.data == nullptr || buffer.length == 0) return kMidiError;
  if (IsQueued(buffer)) return kMidiStillPlaying;
  buffer.prepared = true;
  return kMidiOk;
}

MidiStatus MidiInputPort::Unprepare(MidiBuffer& buffer) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (IsQueued(buffer)) return kMidiStillPlaying;
  buffer.prepared = false;
  return kMidiOk;
}

MidiStatus MidiInputPort::Add(MidiBuffer& buffer) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (!buffer.prepared) return kMidiUnprepared;
  if (IsQueued(buffer)) return kMidiStillPlaying;
  buffer.recorded = 0;
  buffer.done = false;
  mQueue.push_back(&buffer);
  mChanged.notify_all();
  return kMidiOk;
}

MidiStatus MidiInputPort::Start() {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (mGone) return kMidiBadDevice;
  if (mStarted) return kMidiOk;
  mStarted = true;
  mStartTime = std::chrono::steady_clock::now();
  return kMidiOk;
}

MidiStatus MidiInputPort::Stop() {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  StopLocked();
  return kMidiOk;
}

void MidiInputPort::StopLocked() {
  mStarted = false;
  mStream.Reset();
  if (!mQueue.empty()) mQueue.front()->recorded = 0;
  mChanged.notify_all();
}

MidiStatus MidiInputPort::Reset() {
  std::vector<MidiBuffer*> returned;
  returned.reserve(kUsualBuffers);
  std::uintptr_t milliseconds = 0;
  {
    const std::lock_guard lock(mMutex);
    if (mClosed) return kMidiInvalidHandle;
    StopLocked();
    // A buffer that the listener queues again meanwhile is not for this reset.
    mQueue.swap(returned);
    for (MidiBuffer* buffer : returned) buffer->done = true;
    milliseconds = MillisecondsSinceStart();
  }
  for (MidiBuffer* buffer : returned) {
    mListener->OnMidiMessage(mHandle, MidiMessage::kLongData, reinterpret_cast<std::uintptr_t>(buffer),
                             milliseconds);
  }
  return kMidiOk;
}

MidiStatus MidiInputPort::Close() {
  std::unique_ptr<MidiTransport> closing;
  std::unique_lock lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  mClosed = true;
  mQueue.clear();
  mWake.Set();
  mChanged.notify_all();
  mChanged.wait(lock, [this] { return !mInDevice; });
  closing = std::move(mTransport);
  return kMidiOk;
}

void MidiInputPort::ReadLoop() {
  std::array<char, kReadBytes> bytes{};
  while (const std::size_t count = ReadSome(bytes)) Deliver(std::span(bytes).first(count));
}

// Bytes read, at least one; 0 once the port is closed or the device has gone.
std::size_t MidiInputPort::ReadSome(std::span<char> bytes) {
  while (EnterDevice()) {
    const Readiness readiness = AwaitReadable(mWake, mTransport->Descriptor());
    MidiTransport::Moved moved;
    if (readiness == Readiness::kReady) moved = mTransport->Read(bytes.data(), bytes.size());
    if (readiness == Readiness::kGone) moved.status = kMidiBadDevice;
    LeaveDevice(moved.status);
    if (moved.bytes > 0) return moved.bytes;
    if (moved.status != kMidiOk) {
      MidiRecord("MIDI input \"" + mLabel + "\": the device has gone");
      return 0;
    }
  }
  return 0;
}

bool MidiInputPort::EnterDevice() {
  const std::lock_guard lock(mMutex);
  if (mClosed) return false;
  mInDevice = true;
  return true;
}

void MidiInputPort::LeaveDevice(MidiStatus status) {
  const std::lock_guard lock(mMutex);
  mInDevice = false;
  if (status != kMidiOk) mGone = true;
  mChanged.notify_all();
}

void MidiInputPort::Deliver(std::span<const char> bytes) {
  while (const auto message = NextMessage(bytes)) {
    mListener->OnMidiMessage(mHandle, message->kind, message->first, message->milliseconds);
  }
}

// The next message, with its bytes taken off; nothing when they are used up, or when the port
// has been stopped or closed.
std::optional<MidiInputPort::Message> MidiInputPort::NextMessage(std::span<const char>& bytes) {
  using Outcome = MidiByteStream::Outcome;
  std::unique_lock lock(mMutex);
  while (!bytes.empty() && mStarted && !mClosed) {
    const auto step = mStream.Feed(bytes, mQueue.empty() ? nullptr : mQueue.front());
    bytes = bytes.subspan(step.used);
    if (step.outcome == Outcome::kShort)
      return Message{MidiMessage::kData, step.packed, MillisecondsSinceStart()};
    if (step.outcome == Outcome::kBufferDone) {
      const auto buffer = reinterpret_cast<std::uintptr_t>(TakeFirstBuffer());
      return Message{MidiMessage::kLongData, buffer, MillisecondsSinceStart()};
    }
    if (step.outcome == Outcome::kNeedBuffer) {
      mChanged.wait(lock, [this] { return mClosed || !mStarted || !mQueue.empty(); });
    }
  }
  return std::nullopt;
}

MidiBuffer* MidiInputPort::TakeFirstBuffer() {
  MidiBuffer* buffer = mQueue.front();
  mQueue.erase(mQueue.begin());
  buffer->done = true;
  return buffer;
}

bool MidiInputPort::IsQueued(const MidiBuffer& buffer) const {
  return std::find(mQueue.begin(), mQueue.end(), &buffer) != mQueue.end();
}

std::uintptr_t MidiInputPort::MillisecondsSinceStart() const {
  const auto passed = std::chrono::steady_clock::now() - mStartTime;
  return static_cast<std::uintptr_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

}  // namespace Platform
