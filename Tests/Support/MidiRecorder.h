#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Platform/MidiDriver.h"

namespace TestSupport {

// A system-exclusive message of so many bytes, different at every place.
std::string Exclusive(std::size_t size);

// A listener that keeps what a capture or render port tells it, and hands capture buffers
// back to the driver at once, as the MIDI service does.
class MidiRecorder : public Platform::MidiListener {
 public:
  struct Event {
    Platform::MidiMessage kind;
    std::string bytes;  // Of a short message or of a capture buffer; as many as count.
    Platform::MidiBuffer* buffer;
    std::uintptr_t second;
    Platform::MidiHandle port;
    std::thread::id thread;
  };

  // Buffers that come with bytes are queued again through this driver; null leaves them.
  explicit MidiRecorder(Platform::MidiDriver* requeueThrough) : mDriver(requeueThrough) {}

  void OnMidiMessage(Platform::MidiHandle port, Platform::MidiMessage message, std::uintptr_t first,
                     std::uintptr_t second) override;

  // Waits until so many events have come, or fails the test; gives all that are there.
  std::vector<Event> WaitForEvents(std::size_t count);
  std::vector<Event> Events();
  // The bytes of all events in order; waits for that many, or fails the test.
  std::string WaitForBytes(std::size_t count);

  // While it is held, a callback that is under way waits at its very beginning.
  std::recursive_mutex& CallbackLock() { return mCallbackLock; }
  // Waits until a callback has come to the lock.
  void WaitForCallback();

 private:
  static Event MakeEvent(Platform::MidiHandle port, Platform::MidiMessage message, std::uintptr_t first,
                         std::uintptr_t second);

  Platform::MidiDriver* const mDriver;
  std::recursive_mutex mCallbackLock;
  std::mutex mMutex;  // Guards all below.
  std::condition_variable mChanged;
  std::vector<Event> mEvents;
  std::size_t mByteCount = 0;
  std::size_t mEntered = 0;
};

// Capture buffers with their bytes, like the three of the service.
class MidiBufferSet {
 public:
  explicit MidiBufferSet(std::size_t count, std::size_t bytes);

  Platform::MidiBuffer& operator[](std::size_t index) { return mBuffers[index]; }
  std::size_t Count() const { return mBuffers.size(); }
  // Prepares and queues all of them.
  void AddTo(Platform::MidiDriver& driver, Platform::MidiHandle port);

 private:
  std::vector<std::vector<char>> mData;
  std::vector<Platform::MidiBuffer> mBuffers;
};

}  // namespace TestSupport
