#include "Tools/Simulator/GadgetPort.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sound/asound.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace Simulator {
namespace {

namespace fs = std::filesystem;

constexpr const char* kControllers = "/sys/class/udc";
constexpr const char* kCards = "/proc/asound";
constexpr std::string_view kMidiFunction = "midi.";
constexpr std::string_view kCard = "card";
constexpr std::size_t kReadSize = 65536;
// The kernel's buffer for what the computer sends; the usual 4 KiB lose bytes when the reader
// is late.
constexpr std::size_t kKernelBuffer = 65536;
constexpr std::chrono::seconds kNodePatience{10};
constexpr std::chrono::milliseconds kNodeInterval{10};

[[noreturn]] void Fail(const std::string& path, const char* action, int error) {
  throw std::runtime_error(fmt::format("{}: cannot {}: {}", path, action, std::strerror(error)));
}

void WriteAttribute(const std::string& path, std::string_view text) {
  const Tools::Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file) Fail(path, "open", errno);
  if (write(file.Get(), text.data(), text.size()) < 0) Fail(path, "write", errno);
}

std::string ReadAttribute(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  if (line.empty()) throw std::runtime_error(path + ": is missing or empty");
  return line;
}

std::string FirstEntry(const std::string& folder, std::string_view beginning) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const std::string name = entry.path().filename();
    if (name.starts_with(beginning)) return name;
  }
  throw std::runtime_error(fmt::format("{}: has no {}* ", folder, beginning));
}

// The raw MIDI port of the sound card with this id, which the kernel links to its number.
std::string NodeOf(const std::string& cardId) {
  std::error_code error;
  const std::string card = fs::read_symlink(fs::path(kCards) / cardId, error).filename();
  if (error || !card.starts_with(kCard)) return {};
  return fmt::format("/dev/snd/midiC{}D0", card.substr(kCard.size()));
}

// The port appears when the gadget is bound, with a little delay for its device node.
Tools::Descriptor OpenNode(const std::string& cardId) {
  const auto deadline = std::chrono::steady_clock::now() + kNodePatience;
  while (true) {
    const std::string path = NodeOf(cardId);
    Tools::Descriptor node(path.empty() ? -1 : open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (node) return node;
    if (std::chrono::steady_clock::now() > deadline)
      throw std::runtime_error(fmt::format("sound card \"{}\": has no raw MIDI port that opens", cardId));
    std::this_thread::sleep_for(kNodeInterval);
  }
}

void EnlargeInput(int node) {
  snd_rawmidi_params parameters{};
  parameters.stream = SNDRV_RAWMIDI_STREAM_INPUT;
  parameters.buffer_size = kKernelBuffer;
  parameters.avail_min = 1;
  if (ioctl(node, SNDRV_RAWMIDI_IOCTL_PARAMS, &parameters) < 0)
    Fail("the gadget's MIDI port", "enlarge its buffer", errno);
}

}  // namespace

GadgetPort::GadgetPort(std::string folder) : mFolder(std::move(folder)) {}

GadgetPort::~GadgetPort() {
  try {
    Close();
  } catch (const std::exception&) {
    // The gadget has gone by itself, and with it the cable.
  }
}

void GadgetPort::Open() {
  if (IsOpen()) return;
  const std::string functions = mFolder + "/functions";
  const std::string id = ReadAttribute(functions + '/' + FirstEntry(functions, kMidiFunction) + "/id");
  WriteAttribute(mFolder + "/UDC", FirstEntry(kControllers, ""));
  mNode = OpenNode(id);
  EnlargeInput(mNode.Get());
  Receive();  // The kernel drops what comes before the first read.
}

void GadgetPort::Close() {
  if (!IsOpen()) return;
  mUnsent.clear();
  // The cable before the port, whose closing waits for what is under way.
  const Tools::Descriptor closing = std::move(mNode);
  WriteAttribute(mFolder + "/UDC", "\n");
}

void GadgetPort::AppendTo(std::vector<pollfd>& descriptors) const {
  if (!IsOpen()) return;
  const int events = mUnsent.empty() ? POLLIN : POLLIN | POLLOUT;
  descriptors.push_back({mNode.Get(), static_cast<short>(events), 0});
}

std::vector<std::uint8_t> GadgetPort::Receive() {
  std::vector<std::uint8_t> bytes;
  if (!IsOpen()) return bytes;
  Flush();
  std::array<std::uint8_t, kReadSize> buffer;
  const ssize_t count = read(mNode.Get(), buffer.data(), buffer.size());
  if (count > 0) bytes.assign(buffer.begin(), buffer.begin() + count);
  if (count < 0 && errno != EAGAIN && errno != EINTR) Fail(mFolder, "read from the computer", errno);
  return bytes;
}

void GadgetPort::Send(std::span<const std::uint8_t> bytes) {
  if (!IsOpen() || mUnsent.size() + bytes.size() > kMaxUnsent) return;
  mUnsent.insert(mUnsent.end(), bytes.begin(), bytes.end());
  Flush();
}

void GadgetPort::Flush() {
  std::size_t sent = 0;
  while (sent < mUnsent.size()) {
    const ssize_t count = write(mNode.Get(), mUnsent.data() + sent, mUnsent.size() - sent);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno != EAGAIN) Fail(mFolder, "write to the computer", errno);
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
  }
  mUnsent.erase(mUnsent.begin(), mUnsent.begin() + static_cast<std::ptrdiff_t>(sent));
}

}  // namespace Simulator
