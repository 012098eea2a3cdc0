#include "Platform/AlsaTransport.h"

#include "Platform/AlsaHandles.h"
#include "Platform/AlsaOutputBuffer.h"
#include "Platform/MidiThreads.h"
#include "Platform/MidiWait.h"

#include <poll.h>

#include <cerrno>
#include <chrono>
#include <utility>

namespace Platform {
namespace {

// What a closing port grants its last short messages to leave.
constexpr std::chrono::milliseconds kCloseDrain{200};

// What a sender waits itself for its bytes to be handed to the device; most messages need less.
constexpr std::chrono::milliseconds kSoon{5};
// Bytes that fit into one packet of the slowest USB-MIDI device: 16 events of 3 bytes. Into an
// empty port they are handed over at once. When the device goes right afterwards nobody can ask
// the port any more, but it most likely went because of them: a message made it restart.
constexpr std::size_t kOnePacket = 48;
// Bytes that wait for a reader which is late. In ALSA's usual 4 KiB a burst of messages loses
// its end, and nobody is told.
constexpr std::size_t kInputBuffer = 65536;

class AlsaTransport : public MidiTransport {
 public:
  AlsaTransport(AlsaRawMidi port, int descriptor) : mPort(std::move(port)), mDescriptor(descriptor) {}

  // The kernel's close waits up to ten seconds for a device that takes nothing, and for one that
  // has gone as well, where nothing can be dropped; that one is left to a thread.
  ~AlsaTransport() override {
    if (snd_rawmidi_stream(mPort.get()) != SND_RAWMIDI_STREAM_OUTPUT ||
        AwaitHandOver(kCloseDrain) == Readiness::kReady) {
      return;
    }
    if (snd_rawmidi_drop(mPort.get()) >= 0) return;
    StartMidiThread([port = std::shared_ptr<snd_rawmidi_t>(mPort.release(), snd_rawmidi_close)] {});
  }
  AlsaTransport(const AlsaTransport&) = delete;
  AlsaTransport& operator=(const AlsaTransport&) = delete;

  int Descriptor() const override { return mDescriptor; }

  Moved Read(char* bytes, std::size_t count) override {
    return Result([&] { return snd_rawmidi_read(mPort.get(), bytes, count); });
  }

  Moved Write(const char* bytes, std::size_t count) override {
    const bool wasEmpty = AwaitHandOver(std::chrono::milliseconds(0)) == Readiness::kReady;
    const Moved moved = Result([&] { return snd_rawmidi_write(mPort.get(), bytes, count); });
    mHandedOver = wasEmpty && moved.bytes == count && count <= kOnePacket;
    return moved;
  }

  bool DrainSoon() override {
    const Readiness readiness = AwaitHandOver(kSoon);
    if (readiness == Readiness::kGone) return mHandedOver;
    return readiness == Readiness::kReady && DrainLastPacket() == kMidiOk;
  }

  // The port is writable only while its whole buffer is free, so this first wait can be ended;
  // what ALSA's drain then still waits for is the last packet.
  MidiStatus Drain(const EventHandle& wake) override {
    const Readiness readiness = AwaitWritable(wake, mDescriptor);
    if (readiness == Readiness::kGone) return mHandedOver ? kMidiOk : kMidiBadDevice;
    if (readiness != Readiness::kReady) return kMidiError;
    return DrainLastPacket();
  }

  // A device that has gone has nothing left to drop.
  void Drop() override { (void)snd_rawmidi_drop(mPort.get()); }

  bool IsPresent() override {
    pollfd entry{mDescriptor, 0, 0};
    const AlsaInfo info = MakeAlsaInfo();
    return poll(&entry, 1, 0) == 0 && snd_rawmidi_info(mPort.get(), info.get()) == 0;
  }

 private:
  template <class Transfer>
  static Moved Result(Transfer transfer) {
    ssize_t count = 0;
    do {
      count = transfer();
    } while (count == -EINTR);
    if (count > 0) return {static_cast<std::size_t>(count), kMidiOk};
    if (count == -EAGAIN) return {0, kMidiOk};
    return {0, count == 0 ? kMidiBadDevice : MidiStatusOfErrno(static_cast<int>(-count))};
  }

  // Ready when all bytes are handed to the device.
  Readiness AwaitHandOver(std::chrono::milliseconds time) const {
    pollfd entry{mDescriptor, POLLOUT, 0};
    int count = 0;
    do {
      count = poll(&entry, 1, static_cast<int>(time.count()));
    } while (count < 0 && errno == EINTR);
    if (count == 0) return Readiness::kTimeout;
    return count == 1 && entry.revents == POLLOUT ? Readiness::kReady : Readiness::kGone;
  }

  // A message may make the device restart: one that goes when it has been handed every byte got
  // the message.
  MidiStatus DrainLastPacket() {
    const MidiStatus status = MidiStatusOfErrno(-snd_rawmidi_drain(mPort.get()));
    return status == kMidiBadDevice ? kMidiOk : status;
  }

  AlsaRawMidi mPort;
  const int mDescriptor;
  bool mHandedOver = false;  // The last write was one packet into an empty port.
};

// Gives change(port, parameters) the port's parameters. 0 or a negative errno.
template <class Change>
int ChangeParameters(snd_rawmidi_t* port, Change change) {
  snd_rawmidi_params_t* allocated = nullptr;
  if (const int error = snd_rawmidi_params_malloc(&allocated); error < 0) return error;
  const AlsaParameters parameters(allocated);
  if (const int error = snd_rawmidi_params_current(port, parameters.get()); error < 0) return error;
  return change(port, parameters.get());
}

int EnlargeInput(snd_rawmidi_t* port, snd_rawmidi_params_t* parameters) {
  if (const int error = snd_rawmidi_params_set_buffer_size(port, parameters, kInputBuffer); error < 0) {
    return error;
  }
  return snd_rawmidi_params(port, parameters);
}

}  // namespace

int OpenAlsaTransport(const std::string& address, snd_rawmidi_stream_t stream,
                      std::unique_ptr<MidiTransport>& opened) {
  const bool input = stream == SND_RAWMIDI_STREAM_INPUT;
  snd_rawmidi_t* port = nullptr;
  int error = snd_rawmidi_open(input ? &port : nullptr, input ? nullptr : &port, address.c_str(),
                               SND_RAWMIDI_NONBLOCK);
  if (error < 0) return error;
  AlsaRawMidi owned(port);
  pollfd entry{};
  if (snd_rawmidi_poll_descriptors(port, &entry, 1) != 1) return -EIO;
  error = input ? ChangeParameters(port, EnlargeInput)
                : ChangeParameters(port, [&](snd_rawmidi_t*, const snd_rawmidi_params_t* parameters) {
                    return -AwaitWholeOutputBuffer(entry.fd, snd_rawmidi_params_get_buffer_size(parameters));
                  });
  if (error < 0) return error;
  // The kernel drops what comes before a port is asked for the first time, and the reader may be
  // late: the answer to a quick question would be lost.
  if (input && poll(&entry, 1, 0) < 0 && errno != EINTR) return -errno;
  opened = std::make_unique<AlsaTransport>(std::move(owned), entry.fd);
  return 0;
}

}  // namespace Platform
