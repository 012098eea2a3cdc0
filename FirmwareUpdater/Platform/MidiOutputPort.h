#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Platform/EventHandle.h"
#include "Platform/MidiDriver.h"
#include "Platform/MidiTransport.h"
#include "Platform/MidiWait.h"

namespace Platform {

// An open render port: short messages go out on the caller's thread, and so does a long one
// that the device takes whole at once. The rest of any other is left to a writer thread, which
// begins with the first of them. The operations are those of MidiDriver for one handle.
//
// The writer holds no lock while it calls the listener. While it has a current buffer it owns
// the device and the buffer's bytes; Unprepare and Close set the event and wait for it to let go.
class MidiOutputPort : public std::enable_shared_from_this<MidiOutputPort> {
 public:
  MidiOutputPort(MidiHandle handle, std::string label, std::unique_ptr<MidiTransport> transport,
                 std::shared_ptr<MidiListener> listener);

  MidiStatus Begin();  // Once, before everything else.
  MidiStatus Name(std::u16string& name);
  MidiStatus Prepare(MidiBuffer& buffer);
  MidiStatus Unprepare(MidiBuffer& buffer);
  MidiStatus SendShort(std::uint32_t packed);
  MidiStatus SendLong(MidiBuffer& buffer);
  MidiStatus Close();

 private:
  struct Failure {
    const MidiBuffer* buffer;
    MidiStatus status;
  };

  struct Send {
    MidiBuffer* buffer;
    std::size_t written;  // Bytes that the device has taken already.
  };

  std::size_t WriteAtOnce(std::span<const char> bytes);
  bool LeaveToWriter(const Send& send);
  void WriteLoop();
  std::optional<Send> NextSend();
  void Announce(MidiBuffer& buffer);
  bool FinishSend(MidiBuffer& buffer, MidiStatus status);
  MidiStatus WriteLong(std::span<const char> bytes);
  MidiStatus WriteAll(std::span<const char> bytes, MidiDeadline deadline);
  void ReportFailure(MidiStatus status, std::size_t bytes, bool awaited);
  void CancelSend(MidiBuffer& buffer, std::unique_lock<std::mutex>& lock);
  MidiStatus TakeFailure(const MidiBuffer& buffer);
  std::vector<Send>::const_iterator FindQueued(const MidiBuffer& buffer) const;
  bool IsQueued(const MidiBuffer& buffer) const { return FindQueued(buffer) != mQueue.end(); }
  bool IsIdle() const { return mCurrent == nullptr && mQueue.empty(); }
  bool IsUnderWay(const MidiBuffer& buffer) const { return mCurrent == &buffer || IsQueued(buffer); }

  const MidiHandle mHandle;
  const std::string mLabel;  // The device's name, UTF-8.
  const std::shared_ptr<MidiListener> mListener;

  std::mutex mMutex;  // Guards all below.
  std::condition_variable mChanged;
  EventHandle mWake{false};  // Set while the writer shall let go of its current buffer.
  std::unique_ptr<MidiTransport> mTransport;
  std::vector<Send> mQueue;
  std::vector<Failure> mFailures;  // Sends that failed and were not unprepared yet.
  MidiBuffer* mCurrent = nullptr;
  bool mCancelled = false;  // mCurrent shall have no kLongDone.
  bool mWriterRuns = false;
  bool mGone = false;  // The device has hung up.
  bool mClosed = false;
};

}  // namespace Platform
