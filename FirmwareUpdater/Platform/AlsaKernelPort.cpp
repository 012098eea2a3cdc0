#include "Platform/AlsaKernelPort.h"

#include <fcntl.h>
#include <sound/asound.h>
#include <sys/ioctl.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <string>

namespace Platform {
namespace {

constexpr std::string_view kAddressMark = "hw:";
constexpr std::string_view kSoundFolder = "/dev/snd/";
// Another program may open a port between our choice of a subdevice and our opening of it.
constexpr int kMostAttempts = 3;

int StreamOf(KernelPortDirection direction) {
  return direction == KernelPortDirection::kInput ? SNDRV_RAWMIDI_STREAM_INPUT : SNDRV_RAWMIDI_STREAM_OUTPUT;
}

int OpenNode(const std::string& name, int access, OwnedDescriptor& opened) {
  const std::string path = std::string(kSoundFolder) + name;
  int descriptor = -1;
  do {
    descriptor = open(path.c_str(), access | O_NONBLOCK | O_CLOEXEC);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) return errno;
  opened.Reset(descriptor);
  return 0;
}

template <class Argument>
int Ask(int descriptor, unsigned long request, Argument* argument) {
  int result = 0;
  do {
    result = ioctl(descriptor, request, argument);
  } while (result < 0 && errno == EINTR);
  return result < 0 ? errno : 0;
}

int AskInfo(int port, KernelPortDirection direction, snd_rawmidi_info& info) {
  info = {};
  info.stream = StreamOf(direction);
  return Ask(port, SNDRV_RAWMIDI_IOCTL_INFO, &info);
}

// The subdevice that is preferred holds for this process's next opening alone.
int OpenPreferred(const KernelPortAddress& address, KernelPortDirection direction, OwnedDescriptor& opened) {
  const std::string card = std::to_string(address.mCard);
  OwnedDescriptor control;
  if (const int error = OpenNode("controlC" + card, O_RDWR, control)) return error;
  int subdevice = address.mSubdevice;
  if (const int error = Ask(control.Get(), SNDRV_CTL_IOCTL_RAWMIDI_PREFER_SUBDEVICE, &subdevice))
    return error;
  const int access = direction == KernelPortDirection::kInput ? O_RDONLY : O_WRONLY;
  return OpenNode("midiC" + card + 'D' + std::to_string(address.mDevice), access, opened);
}

}  // namespace

bool ParseKernelPortAddress(std::string_view text, KernelPortAddress& address) {
  if (!text.starts_with(kAddressMark)) return false;
  const char* next = text.data() + kAddressMark.size();
  const char* const end = text.data() + text.size();
  std::array<int, 3> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0 && (next == end || *next++ != ',')) return false;
    const auto [rest, error] = std::from_chars(next, end, numbers[i]);
    if (error != std::errc() || numbers[i] < 0) return false;
    next = rest;
  }
  if (next != end) return false;
  address = {numbers[0], numbers[1], numbers[2]};
  return true;
}

int OpenKernelPort(const KernelPortAddress& address, KernelPortDirection direction, OwnedDescriptor& opened) {
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    OwnedDescriptor port;
    if (const int error = OpenPreferred(address, direction, port)) return error;
    snd_rawmidi_info info{};
    if (const int error = AskInfo(port.Get(), direction, info)) return error;
    if (info.subdevice != static_cast<unsigned>(address.mSubdevice)) continue;
    opened = std::move(port);
    return 0;
  }
  return EBUSY;
}

int SetKernelPortBuffer(int port, KernelPortDirection direction, std::size_t bytes) {
  snd_rawmidi_params parameters{};
  parameters.stream = StreamOf(direction);
  parameters.buffer_size = bytes;
  parameters.avail_min = direction == KernelPortDirection::kInput ? 1 : bytes;
  parameters.no_active_sensing = 1;
  return Ask(port, SNDRV_RAWMIDI_IOCTL_PARAMS, &parameters);
}

int KernelPortDrain(int port) {
  int stream = SNDRV_RAWMIDI_STREAM_OUTPUT;
  return Ask(port, SNDRV_RAWMIDI_IOCTL_DRAIN, &stream);
}

int KernelPortDrop(int port) {
  int stream = SNDRV_RAWMIDI_STREAM_OUTPUT;
  return Ask(port, SNDRV_RAWMIDI_IOCTL_DROP, &stream);
}

bool IsKernelPortPresent(int port, KernelPortDirection direction) {
  snd_rawmidi_info info{};
  return AskInfo(port, direction, info) == 0;
}

}  // namespace Platform
