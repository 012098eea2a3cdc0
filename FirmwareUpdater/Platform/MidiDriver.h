#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

// The MIDI driver family that the MIDI service is written for: devices by index, ports by
// opaque handle, capture into buffers that the caller prepares, long sends that complete
// with a callback message.
//
// Threads: any thread may call the operations, two threads never for the same handle at
// once, except that ResetInput, StopInput, CloseInput and UnprepareOutputBuffer may meet the
// port's own reader or writer thread. Callbacks come on the port's reader or writer thread,
// except for the buffers that ResetInput hands back, which come on the thread that resets, and
// a long send that the device takes at once, which may be done before SendLong returns.
// A callback must not throw; it may call every operation, for its own port too.
namespace Platform {

// Null is no port. A value is never used twice in a process, so that a message that was
// under way while its port closed can never be taken for one of a later port.
using MidiHandle = struct MidiPortTag*;

// 0 is success; everything else is a failure of the driver.
using MidiStatus = std::uint32_t;
inline constexpr MidiStatus kMidiOk = 0;
inline constexpr MidiStatus kMidiError = 1;
inline constexpr MidiStatus kMidiBadDevice = 2;      // Device index out of range, or the device has gone.
inline constexpr MidiStatus kMidiAllocated = 4;      // Another program holds the device.
inline constexpr MidiStatus kMidiInvalidHandle = 5;  // Handle null or closed.
inline constexpr MidiStatus kMidiNoDriver = 6;       // No device fits.
inline constexpr MidiStatus kMidiAccessDenied = 7;   // The user may not open the device.
inline constexpr MidiStatus kMidiUnprepared = 64;    // Buffer was not prepared.
inline constexpr MidiStatus kMidiStillPlaying = 65;  // Buffer is still queued.

enum class MidiMessage : std::uint32_t {
  kData = 963,       // first: packed short message, second: milliseconds since the port was started
  kLongData = 964,   // first: MidiBuffer*, second: milliseconds since the port was started
  kLongError = 966,  // first: MidiBuffer*; its bytes do not count
  kMoreData = 972,   // like kData
  kLongDone = 969,   // first: MidiBuffer* of SendLong
};

// The header of a buffer that travels to the driver and back. The owner fills data, length
// and user and keeps both header and bytes in place from Prepare to Unprepare.
struct MidiBuffer {
  char* data = nullptr;
  std::uint32_t length = 0;    // Bytes at data.
  std::uint32_t recorded = 0;  // Bytes that count: set by the driver for capture, by the owner for sends.
  void* user = nullptr;
  bool prepared = false;  // Set and cleared by Prepare and Unprepare.
  bool done = false;      // Set by the driver when it hands the buffer back.
};

// Receives the messages of the ports opened with it. A port shares the ownership of its
// listener until its own thread has left, so a message that is under way while the port
// closes still finds a live object. The last owner may thus be the port's thread.
class MidiListener {
 public:
  virtual ~MidiListener() = default;
  virtual void OnMidiMessage(MidiHandle port, MidiMessage message, std::uintptr_t first,
                             std::uintptr_t second) = 0;
};

class MidiDriver {
 public:
  virtual ~MidiDriver() = default;

  // Devices present at this moment, numbered from 0 in a stable order. The numbers, with
  // their names, hold until the same count is asked for again.
  virtual std::uint32_t InputCount() = 0;
  virtual std::uint32_t OutputCount() = 0;

  // Product name of a device, or of the device behind an open port; the latter fails once
  // the device has gone.
  virtual MidiStatus InputName(std::uint32_t device, std::u16string& name) = 0;
  virtual MidiStatus InputName(MidiHandle port, std::u16string& name) = 0;
  virtual MidiStatus OutputName(std::uint32_t device, std::u16string& name) = 0;
  virtual MidiStatus OutputName(MidiHandle port, std::u16string& name) = 0;

  // handle is null after a failure. The port is stopped: what arrives before StartInput is lost.
  virtual MidiStatus OpenInput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                               MidiHandle& handle) = 0;
  // Preparing twice is harmless, and so is unpreparing what was never prepared.
  virtual MidiStatus PrepareInputBuffer(MidiHandle port, MidiBuffer& buffer) = 0;
  virtual MidiStatus UnprepareInputBuffer(MidiHandle port, MidiBuffer& buffer) = 0;
  // Queues a prepared buffer. It comes back as kLongData only when it is full, when a 0xF7
  // ended the message, or through ResetInput (then with done set and recorded 0). While a
  // system-exclusive message finds no buffer, the port reads no further; nothing is dropped.
  virtual MidiStatus AddInputBuffer(MidiHandle port, MidiBuffer& buffer) = 0;
  virtual MidiStatus StartInput(MidiHandle port) = 0;
  // The queued buffers stay; a message that has begun is forgotten.
  virtual MidiStatus StopInput(MidiHandle port) = 0;
  // Stops the port and hands all queued buffers back before it returns.
  virtual MidiStatus ResetInput(MidiHandle port) = 0;
  // Never waits for a callback in progress, so it may be called under a lock that the
  // callback takes; no callback starts afterwards, queued buffers are forgotten, and the
  // device is free for the next open.
  virtual MidiStatus CloseInput(MidiHandle port) = 0;

  virtual MidiStatus OpenOutput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                                MidiHandle& handle) = 0;
  virtual MidiStatus PrepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) = 0;
  // Cancels a send that is still under way and returns once the writer has let go of it; a
  // cancelled send has no kLongDone.
  // A failure tells that the bytes of the last send did not all reach the device.
  virtual MidiStatus UnprepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) = 0;
  // Status byte lowest; sends as many bytes as the status asks for, after the long sends that
  // are under way. Refuses what is no short message (data byte first, 0xF0, 0xF7). Waits at
  // most kShortSendTimeout for a device that takes nothing.
  virtual MidiStatus SendShort(MidiHandle port, std::uint32_t packed) = 0;
  // Asynchronous, in the order of the calls; kLongDone follows when the bytes have left, or
  // when the device has failed. The bytes are used in place.
  virtual MidiStatus SendLong(MidiHandle port, MidiBuffer& buffer) = 0;
  // Like CloseInput; sends that are under way are cancelled.
  virtual MidiStatus CloseOutput(MidiHandle port) = 0;

  static constexpr std::uint32_t kShortSendTimeout = 2000;  // Milliseconds.
};

// The driver of this process, chosen at the first call: TESSEL_MIDI=virtual:DIR takes Unix
// sockets below DIR, without it ALSA is taken. Lives until the process ends.
MidiDriver& SystemMidiDriver();

// Takes the sentences (UTF-8, no line end) in which the drivers tell a developer why an
// operation failed. Without a sink they are lost. The sink is called on any thread, never
// under a lock of the driver, and must not throw.
void SetMidiRecordSink(std::function<void(std::string_view)> sink);

// Waits until the threads of all closed ports have left; false after the given time. For the
// end of the process, when every port is closed and no lock of a listener is held.
bool WaitForMidiThreads(std::uint32_t milliseconds);

}  // namespace Platform
