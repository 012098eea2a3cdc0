#include "Platform/AlsaMidiDriver.h"

#include "Platform/AlsaOutputBuffer.h"
#include "Platform/MidiRecord.h"
#include "Platform/MidiThreads.h"
#include "Platform/MidiWait.h"

#include <alsa/asoundlib.h>
#include <dirent.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {
namespace {

constexpr const char* kSoundFolder = "/dev/snd";
constexpr std::string_view kControlNode = "controlC";
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

template <class Type, void (*Free)(Type*)>
struct FreeWith {
  void operator()(Type* object) const { Free(object); }
};
template <class Type, int (*Close)(Type*)>
struct CloseWith {
  void operator()(Type* object) const { Close(object); }
};

using Info = std::unique_ptr<snd_rawmidi_info_t, FreeWith<snd_rawmidi_info_t, snd_rawmidi_info_free>>;
using Parameters =
    std::unique_ptr<snd_rawmidi_params_t, FreeWith<snd_rawmidi_params_t, snd_rawmidi_params_free>>;
using Control = std::unique_ptr<snd_ctl_t, CloseWith<snd_ctl_t, snd_ctl_close>>;
using RawMidi = std::unique_ptr<snd_rawmidi_t, CloseWith<snd_rawmidi_t, snd_rawmidi_close>>;

// ALSA's headers declare a C variadic handler.
void SayNothing(const char*, int, const char*, int, const char*, ...) {}  // NOLINT(cert-dcl50-cpp)

Info MakeInfo() {
  snd_rawmidi_info_t* info = nullptr;
  if (snd_rawmidi_info_malloc(&info) < 0) throw std::bad_alloc();
  return Info(info);
}

class AlsaTransport : public MidiTransport {
 public:
  AlsaTransport(RawMidi port, int descriptor) : mPort(std::move(port)), mDescriptor(descriptor) {}

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
    const Info info = MakeInfo();
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

  RawMidi mPort;
  const int mDescriptor;
  bool mHandedOver = false;  // The last write was one packet into an empty port.
};

// Gives change(port, parameters) the port's parameters. 0 or a negative errno.
template <class Change>
int ChangeParameters(snd_rawmidi_t* port, Change change) {
  snd_rawmidi_params_t* allocated = nullptr;
  if (const int error = snd_rawmidi_params_malloc(&allocated); error < 0) return error;
  const Parameters parameters(allocated);
  if (const int error = snd_rawmidi_params_current(port, parameters.get()); error < 0) return error;
  return change(port, parameters.get());
}

int EnlargeInput(snd_rawmidi_t* port, snd_rawmidi_params_t* parameters) {
  if (const int error = snd_rawmidi_params_set_buffer_size(port, parameters, kInputBuffer); error < 0) {
    return error;
  }
  return snd_rawmidi_params(port, parameters);
}

// 0 or a negative errno; then opened stays empty.
int OpenRawMidi(const std::string& address, snd_rawmidi_stream_t stream, RawMidi& opened, int& descriptor) {
  const bool input = stream == SND_RAWMIDI_STREAM_INPUT;
  snd_rawmidi_t* port = nullptr;
  int error = snd_rawmidi_open(input ? &port : nullptr, input ? nullptr : &port, address.c_str(),
                               SND_RAWMIDI_NONBLOCK);
  if (error < 0) return error;
  RawMidi owned(port);
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
  descriptor = entry.fd;
  opened = std::move(owned);
  return 0;
}

// The cards whose control node this user may not open, parted by commas. ALSA leaves them out
// of its own list without a word.
std::string ForbiddenCards() {
  std::vector<std::string> cards;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(kSoundFolder), &closedir);
  while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
    const std::string_view file = entry->d_name;
    if (!file.starts_with(kControlNode)) continue;
    const std::string path = std::string(kSoundFolder) + '/' + entry->d_name;
    if (access(path.c_str(), R_OK | W_OK) != 0 && errno == EACCES) cards.push_back(path);
  }
  std::sort(cards.begin(), cards.end());
  std::string text;
  for (const std::string& card : cards) text += (text.empty() ? "" : ", ") + card;
  return text;
}

// The names of all subdevices of one direction, or nothing if the device has no such direction.
template <class Visit>
void VisitSubdevices(snd_ctl_t* control, snd_rawmidi_info_t* info, Visit visit) {
  unsigned count = 1;
  for (unsigned subdevice = 0; subdevice < count; ++subdevice) {
    snd_rawmidi_info_set_subdevice(info, subdevice);
    if (snd_ctl_rawmidi_info(control, info) < 0) return;
    count = snd_rawmidi_info_get_subdevices_count(info);
    const std::string_view own = snd_rawmidi_info_get_subdevice_name(info);
    visit(subdevice, own.empty() ? snd_rawmidi_info_get_name(info) : own);
  }
}

template <class Visit>
void VisitCard(int card, snd_rawmidi_stream_t stream, Visit visit) {
  const std::string cardName = "hw:" + std::to_string(card);
  snd_ctl_t* opened = nullptr;
  if (snd_ctl_open(&opened, cardName.c_str(), SND_CTL_NONBLOCK) < 0) return;
  const Control control(opened);
  const Info info = MakeInfo();
  int device = -1;
  while (snd_ctl_rawmidi_next_device(control.get(), &device) == 0 && device >= 0) {
    snd_rawmidi_info_set_device(info.get(), static_cast<unsigned>(device));
    snd_rawmidi_info_set_stream(info.get(), stream);
    const std::string prefix = cardName + ',' + std::to_string(device) + ',';
    VisitSubdevices(control.get(), info.get(), [&](unsigned subdevice, std::string_view name) {
      visit(prefix + std::to_string(subdevice), name);
    });
  }
}

}  // namespace

std::string AlsaRefusal(int error) {
  std::string text = std::generic_category().message(error);
  switch (MidiStatusOfErrno(error)) {
    case kMidiAllocated:
      return text + "; another program holds the port";
    case kMidiAccessDenied:
      return text +
             "; add the user to the group \"audio\", or install a udev rule that gives access to who is "
             "logged in: SUBSYSTEM==\"sound\", TAG+=\"uaccess\"";
    case kMidiBadDevice:
      return text + "; the device has gone";
    default:
      return text;
  }
}

AlsaMidiDriver::AlsaMidiDriver() {
  snd_lib_error_set_handler(&SayNothing);
}

std::vector<MidiPortDriver::Device> AlsaMidiDriver::ListDevices(Direction direction) {
  ReportForbiddenCards();
  std::vector<Device> devices;
  const auto stream = direction == Direction::kInput ? SND_RAWMIDI_STREAM_INPUT : SND_RAWMIDI_STREAM_OUTPUT;
  int card = -1;
  while (snd_card_next(&card) == 0 && card >= 0) {
    VisitCard(card, stream, [&](std::string address, std::string_view name) {
      devices.push_back({std::move(address), std::string(name)});
    });
  }
  return devices;
}

void AlsaMidiDriver::ReportForbiddenCards() {
  const std::string cards = ForbiddenCards();
  {
    const std::lock_guard lock(mReportMutex);
    if (cards == mReportedCards) return;
    mReportedCards = cards;
  }
  if (!cards.empty()) MidiRecord("Sound cards left out (" + cards + "): " + AlsaRefusal(EACCES));
}

MidiPortDriver::Connection AlsaMidiDriver::Connect(Direction direction, const Device& device) {
  const auto stream = direction == Direction::kInput ? SND_RAWMIDI_STREAM_INPUT : SND_RAWMIDI_STREAM_OUTPUT;
  RawMidi port;
  int descriptor = -1;
  const int error = -OpenRawMidi(device.address, stream, port, descriptor);
  if (error != 0) {
    return {MidiStatusOfErrno(error), nullptr, AlsaRefusal(error) + " (" + device.address + ")"};
  }
  return {kMidiOk, std::make_unique<AlsaTransport>(std::move(port), descriptor), {}};
}

}  // namespace Platform
