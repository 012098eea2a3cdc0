#include "Platform/AlsaTransport.h"

#include "Platform/AlsaKernelPort.h"
#include "Platform/MidiThreads.h"
#include "Platform/MidiWait.h"

#include <poll.h>
#include <unistd.h>

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
// What one message of the update needs fits several times.
constexpr std::size_t kOutputBuffer = 4096;

class AlsaTransport : public MidiTransport {
 public:
  AlsaTransport(OwnedDescriptor port, KernelPortDirection direction)
      : mPort(std::move(port)), mDirection(direction) {}

  // The kernel's close waits up to ten seconds for a device that takes nothing, and for one that
  // has gone as well, where nothing can be dropped; that one is left to a thread.
  ~AlsaTransport() override {
    if (mDirection == KernelPortDirection::kInput || AwaitHandOver(kCloseDrain) == Readiness::kReady) return;
    if (KernelPortDrop(mPort.Get()) == 0) return;
    StartMidiThread([port = std::make_shared<OwnedDescriptor>(std::move(mPort))] {});
  }
  AlsaTransport(const AlsaTransport&) = delete;
  AlsaTransport& operator=(const AlsaTransport&) = delete;

  int Descriptor() const override { return mPort.Get(); }

  Moved Read(char* bytes, std::size_t count) override {
    return MoveBytes([&] { return read(mPort.Get(), bytes, count); });
  }

  Moved Write(const char* bytes, std::size_t count) override {
    const bool wasEmpty = AwaitHandOver(std::chrono::milliseconds(0)) == Readiness::kReady;
    const Moved moved = MoveBytes([&] { return write(mPort.Get(), bytes, count); });
    mHandedOver = wasEmpty && moved.bytes == count && count <= kOnePacket;
    return moved;
  }

  bool DrainSoon() override {
    const Readiness readiness = AwaitHandOver(kSoon);
    if (readiness == Readiness::kGone) return mHandedOver;
    return readiness == Readiness::kReady && DrainLastPacket() == kMidiOk;
  }

  // The port is writable only while its whole buffer is free, so this first wait can be ended;
  // what the drain then still waits for is the last packet.
  MidiStatus Drain(const EventHandle& wake) override {
    const Readiness readiness = AwaitWritable(wake, mPort.Get());
    if (readiness == Readiness::kGone) return mHandedOver ? kMidiOk : kMidiBadDevice;
    if (readiness != Readiness::kReady) return kMidiError;
    return DrainLastPacket();
  }

  // A device that has gone has nothing left to drop.
  void Drop() override { (void)KernelPortDrop(mPort.Get()); }

  bool IsPresent() override {
    pollfd entry{mPort.Get(), 0, 0};
    return poll(&entry, 1, 0) == 0 && IsKernelPortPresent(mPort.Get(), mDirection);
  }

 private:
  // Ready when all bytes are handed to the device.
  Readiness AwaitHandOver(std::chrono::milliseconds time) const {
    pollfd entry{mPort.Get(), POLLOUT, 0};
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
    const MidiStatus status = MidiStatusOfErrno(KernelPortDrain(mPort.Get()));
    return status == kMidiBadDevice ? kMidiOk : status;
  }

  OwnedDescriptor mPort;
  const KernelPortDirection mDirection;
  bool mHandedOver = false;  // The last write was one packet into an empty port.
};

}  // namespace

int OpenAlsaTransport(const std::string& address, bool input, std::unique_ptr<MidiTransport>& opened) {
  const auto direction = input ? KernelPortDirection::kInput : KernelPortDirection::kOutput;
  KernelPortAddress place;
  if (!ParseKernelPortAddress(address, place)) return EINVAL;
  OwnedDescriptor port;
  if (const int error = OpenKernelPort(place, direction, port)) return error;
  const std::size_t buffer = input ? kInputBuffer : kOutputBuffer;
  if (const int error = SetKernelPortBuffer(port.Get(), direction, buffer)) return error;
  // The kernel drops what comes before a port is asked for the first time, and the reader may be
  // late: the answer to a quick question would be lost.
  pollfd entry{port.Get(), POLLIN, 0};
  if (input && poll(&entry, 1, 0) < 0 && errno != EINTR) return errno;
  opened = std::make_unique<AlsaTransport>(std::move(port), direction);
  return 0;
}

}  // namespace Platform
