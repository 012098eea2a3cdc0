#include "Platform/MidiOutputPort.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "Platform/MidiByteStream.h"
#include "Platform/MidiRecord.h"
#include "Platform/MidiThreads.h"
#include "Platform/NativePath.h"

namespace Platform {

MidiOutputPort::MidiOutputPort(MidiHandle handle, std::string label, std::unique_ptr<MidiTransport> transport,
                               std::shared_ptr<MidiListener> listener)
    : mHandle(handle),
      mLabel(std::move(label)),
      mListener(std::move(listener)),
      mTransport(std::move(transport)) {}

MidiStatus MidiOutputPort::Begin() {
  if (mWake.IsValid()) return kMidiOk;
  MidiRecord("MIDI output \"" + mLabel + "\": the system has no event left for the port");
  return kMidiError;
}

MidiStatus MidiOutputPort::Name(std::u16string& name) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (mGone || !mTransport->IsPresent()) return kMidiBadDevice;
  name = FromNativeText(mLabel);
  return kMidiOk;
}

MidiStatus MidiOutputPort::Prepare(MidiBuffer& buffer) {
  const std::lock_guard lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  if (buffer.data == nullptr || buffer.length == 0) return kMidiError;
  if (IsUnderWay(buffer)) return kMidiStillPlaying;
  TakeFailure(buffer);
  buffer.prepared = true;
  return kMidiOk;
}

MidiStatus MidiOutputPort::Unprepare(MidiBuffer& buffer) {
  std::unique_lock lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  CancelSend(buffer, lock);
  buffer.prepared = false;
  return TakeFailure(buffer);
}

void MidiOutputPort::CancelSend(MidiBuffer& buffer, std::unique_lock<std::mutex>& lock) {
  if (IsQueued(buffer)) {
    mQueue.erase(FindQueued(buffer));
    mFailures.push_back({&buffer, kMidiError});
    mChanged.notify_all();
  } else if (mCurrent == &buffer) {
    mCancelled = true;
    mWake.Set();
    mChanged.wait(lock, [&] { return mCurrent != &buffer; });
  }
}

MidiStatus MidiOutputPort::TakeFailure(const MidiBuffer& buffer) {
  const auto found = std::find_if(mFailures.begin(), mFailures.end(),
                                  [&](const Failure& failure) { return failure.buffer == &buffer; });
  if (found == mFailures.end()) return kMidiOk;
  const MidiStatus status = found->status;
  mFailures.erase(found);
  return status;
}

MidiStatus MidiOutputPort::SendShort(std::uint32_t packed) {
  std::array<char, 3> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(packed >> (8 * i) & 0xFF);
  const std::uint32_t length = MidiShortLength(static_cast<std::uint8_t>(packed & 0xFF));
  if (length == 0) return kMidiError;

  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(MidiDriver::kShortSendTimeout);
  std::unique_lock lock(mMutex);
  const auto idle = [this] { return mClosed || IsIdle(); };
  if (!mChanged.wait_until(lock, deadline, idle)) return kMidiError;
  if (mClosed) return kMidiInvalidHandle;
  const MidiStatus status = WriteAll(std::span(bytes).first(length), deadline);
  if (status == kMidiBadDevice) mGone = true;
  return status;
}

MidiStatus MidiOutputPort::SendLong(MidiBuffer& buffer) {
  {
    const std::lock_guard lock(mMutex);
    if (mClosed) return kMidiInvalidHandle;
    if (!buffer.prepared) return kMidiUnprepared;
    if (IsUnderWay(buffer)) return kMidiStillPlaying;
    if (buffer.recorded > buffer.length) return kMidiError;
    if (mGone) return kMidiBadDevice;
    TakeFailure(buffer);
    const std::size_t written = IsIdle() ? WriteAtOnce({buffer.data, buffer.recorded}) : 0;
    buffer.done = written == buffer.recorded && mTransport->DrainSoon();
    if (!buffer.done && LeaveToWriter({&buffer, written})) return kMidiOk;
  }
  if (buffer.done) {
    Announce(buffer);
    return kMidiOk;
  }
  MidiRecord("MIDI output \"" + mLabel + "\": the system has no thread left for the port");
  return kMidiError;
}

MidiStatus MidiOutputPort::Close() {
  std::unique_ptr<MidiTransport> closing;
  std::unique_lock lock(mMutex);
  if (mClosed) return kMidiInvalidHandle;
  mClosed = true;
  mQueue.clear();
  mWake.Set();
  mChanged.notify_all();
  mChanged.wait(lock, [this] { return mCurrent == nullptr; });
  closing = std::move(mTransport);
  return kMidiOk;
}

// A port that only looks whether its device is there never needs a thread. False if the
// system grants none.
bool MidiOutputPort::LeaveToWriter(const Send& send) {
  if (!mWriterRuns) mWriterRuns = StartMidiThread([port = shared_from_this()] { port->WriteLoop(); });
  if (mWriterRuns) {
    mQueue.push_back(send);
    mChanged.notify_all();
  } else {
    mTransport->Drop();
  }
  return mWriterRuns;
}

// Bytes that the device takes without a wait. A failure is left for the writer to meet.
std::size_t MidiOutputPort::WriteAtOnce(std::span<const char> bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const auto moved = mTransport->Write(bytes.data() + written, bytes.size() - written);
    if (moved.status != kMidiOk || moved.bytes == 0) break;
    written += moved.bytes;
  }
  return written;
}

void MidiOutputPort::WriteLoop() {
  while (const auto send = NextSend()) {
    MidiBuffer& buffer = *send->buffer;
    const std::size_t length = buffer.recorded;
    const MidiStatus status = WriteLong(std::span<const char>(buffer.data, length).subspan(send->written));
    // After a cancelled send the buffer is no longer there.
    const bool announce = FinishSend(buffer, status);
    if (status != kMidiOk) ReportFailure(status, length, announce);
    if (announce) Announce(buffer);
  }
}

// Nothing once the port is closed.
std::optional<MidiOutputPort::Send> MidiOutputPort::NextSend() {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, [this] { return mClosed || !mQueue.empty(); });
  if (mClosed) return std::nullopt;
  const Send send = mQueue.front();
  mQueue.erase(mQueue.begin());
  mCurrent = send.buffer;
  mCancelled = false;
  return send;
}

void MidiOutputPort::Announce(MidiBuffer& buffer) {
  mListener->OnMidiMessage(mHandle, MidiMessage::kLongDone, reinterpret_cast<std::uintptr_t>(&buffer), 0);
}

// Lets go of the buffer; true if its owner is to be told.
bool MidiOutputPort::FinishSend(MidiBuffer& buffer, MidiStatus status) {
  const std::lock_guard lock(mMutex);
  buffer.done = true;
  if (status != kMidiOk) mFailures.push_back({&buffer, status});
  if (status == kMidiBadDevice) mGone = true;
  mCurrent = nullptr;
  if (!mClosed) mWake.Reset();
  mChanged.notify_all();
  return !mCancelled && !mClosed;
}

MidiStatus MidiOutputPort::WriteLong(std::span<const char> bytes) {
  MidiStatus status = WriteAll(bytes, std::nullopt);
  if (status == kMidiOk) status = mTransport->Drain(mWake);
  // What is left of a torn message must not hold up the next one.
  if (status != kMidiOk) mTransport->Drop();
  return status;
}

MidiStatus MidiOutputPort::WriteAll(std::span<const char> bytes, MidiDeadline deadline) {
  while (!bytes.empty()) {
    const Readiness readiness = AwaitWritable(mWake, mTransport->Descriptor(), deadline);
    if (readiness == Readiness::kGone) return kMidiBadDevice;
    if (readiness != Readiness::kReady) return kMidiError;
    const auto moved = mTransport->Write(bytes.data(), bytes.size());
    if (moved.status != kMidiOk) return moved.status;
    bytes = bytes.subspan(moved.bytes);
  }
  return kMidiOk;
}

void MidiOutputPort::ReportFailure(MidiStatus status, std::size_t bytes, bool awaited) {
  const char* reason = status == kMidiBadDevice ? "the device has gone"
                       : awaited                ? "the device refused it"
                                                : "cancelled while the device took nothing";
  MidiRecord("MIDI output \"" + mLabel + "\": a message of " + std::to_string(bytes) +
             " bytes did not all go out: " + reason);
}

std::vector<MidiOutputPort::Send>::const_iterator MidiOutputPort::FindQueued(const MidiBuffer& buffer) const {
  return std::find_if(mQueue.begin(), mQueue.end(), [&](const Send& send) { return send.buffer == &buffer; });
}

}  // namespace Platform
