#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Platform/EventHandle.h"
#include "Platform/MidiByteStream.h"
#include "Platform/MidiDriver.h"
#include "Platform/MidiTransport.h"

namespace Platform {

// An open capture port: its reader thread turns what the device sends into messages for the
// listener. The operations are those of MidiDriver for one handle.
//
// The reader holds no lock while it calls the listener and touches the device only between
// EnterDevice and LeaveDevice, so Close waits for the device to be free, never for a callback.
class MidiInputPort : public std::enable_shared_from_this<MidiInputPort> {
 public:
  MidiInputPort(MidiHandle handle, std::string label, std::unique_ptr<MidiTransport> transport,
                std::shared_ptr<MidiListener> listener);

  MidiStatus Begin();  // Starts the reader; once, before everything else.
  MidiStatus Name(std::u16string& name);
  MidiStatus Prepare(MidiBuffer& buffer);
  MidiStatus Unprepare(MidiBuffer& buffer);
  MidiStatus Add(MidiBuffer& buffer);
  MidiStatus Start();
  MidiStatus Stop();
  MidiStatus Reset();
  MidiStatus Close();

 private:
  struct Message {
    MidiMessage kind;
    std::uintptr_t first;
    std::uintptr_t milliseconds;  // Since the start.
  };

  void ReadLoop();
  std::size_t ReadSome(std::span<char> bytes);
  bool EnterDevice();
  void LeaveDevice(MidiStatus status);
  void Deliver(std::span<const char> bytes);
  std::optional<Message> NextMessage(std::span<const char>& bytes);
  MidiBuffer* TakeFirstBuffer();
  void StopLocked();
  bool IsQueued(const MidiBuffer& buffer) const;
  std::uintptr_t MillisecondsSinceStart() const;

  const MidiHandle mHandle;
  const std::string mLabel;  // The device's name, UTF-8.
  const std::shared_ptr<MidiListener> mListener;

  std::mutex mMutex;  // Guards all below, and what the driver writes into queued buffers.
  std::condition_variable mChanged;
  EventHandle mWake{false};  // Set when the port closes.
  std::unique_ptr<MidiTransport> mTransport;
  std::vector<MidiBuffer*> mQueue;
  MidiByteStream mStream;
  std::chrono::steady_clock::time_point mStartTime = std::chrono::steady_clock::now();
  bool mStarted = false;
  bool mClosed = false;
  bool mGone = false;      // The device has hung up.
  bool mInDevice = false;  // The reader uses mTransport.
};

}  // namespace Platform
