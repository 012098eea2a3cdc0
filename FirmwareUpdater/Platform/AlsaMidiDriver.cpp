#include "Platform/AlsaMidiDriver.h"

#include "Platform/AlsaHandles.h"
#include "Platform/AlsaTransport.h"
#include "Platform/MidiRecord.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {
namespace {

constexpr const char* kSoundFolder = "/dev/snd";
constexpr std::string_view kControlNode = "controlC";
// ALSA's headers declare a C variadic handler.
void SayNothing(const char*, int, const char*, int, const char*, ...) {}  // NOLINT(cert-dcl50-cpp)

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
  const AlsaControl control(opened);
  const AlsaInfo info = MakeAlsaInfo();
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
  std::unique_ptr<MidiTransport> transport;
  const int error = OpenAlsaTransport(device.address, direction == Direction::kInput, transport);
  if (error != 0) {
    return {MidiStatusOfErrno(error), nullptr, AlsaRefusal(error) + " (" + device.address + ")"};
  }
  return {kMidiOk, std::move(transport), {}};
}

}  // namespace Platform
