#include "Tools/Simulator/SimulatorServer.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "Tools/Simulator/GadgetPort.h"
#include "Tools/Simulator/TraceFile.h"
#include "Tools/Simulator/VirtualPort.h"
#include "Tools/Support/Descriptor.h"
#include "Tools/Support/FileAccess.h"

namespace Simulator {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kNoDescriptor = -1;  // Ignored by poll.

[[noreturn]] void FailSystem(const char* call, int error) {
  throw std::runtime_error(fmt::format("{}: {}", call, std::strerror(error)));
}

// Wakes a poll from another thread; stays readable until it is cleared.
class WakeUp {
 public:
  WakeUp() : mEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!mEvent) FailSystem("eventfd", errno);
  }
  int Get() const { return mEvent.Get(); }
  void Set() {
    const std::uint64_t one = 1;
    // A full counter is as good a reason to wake up.
    while (write(mEvent.Get(), &one, sizeof(one)) < 0 && errno == EINTR) {
    }
  }
  void Clear() {
    std::uint64_t count = 0;
    while (read(mEvent.Get(), &count, sizeof(count)) < 0 && errno == EINTR) {
    }
  }

 private:
  Tools::Descriptor mEvent;
};

std::unique_ptr<DevicePort> MakePort(const ServerOptions& options) {
  if (!options.mGadget.empty()) return std::make_unique<GadgetPort>(options.mGadget);
  return std::make_unique<VirtualPort>(options.mDirectory, options.mPortName);
}

}  // namespace

// One lock guards everything but the port's descriptors while the serving thread polls them;
// only the serving thread, or Open and Stop while nothing is served, touch the port.
struct SimulatorServer::Core {
  struct Scheduled {
    Clock::time_point mDue;
    Bytes mBytes;
  };

  explicit Core(ServerOptions options)
      : mOptions(std::move(options)),
        mDevice(mOptions.mDevice),
        mPort(MakePort(mOptions)),
        mTrace(mOptions.mTraceFile) {}

  void OpenPort();
  void ClosePort();
  void Serve(int stopDescriptor);
  bool WaitForWork(int stopDescriptor);
  void Step();
  void RunCommands();
  void TakeBytes(const Bytes& bytes);
  void SendDue();
  int PollTimeout() const;
  void WriteFlash();
  void RecordFailure(const char* text);

  const ServerOptions mOptions;
  mutable std::mutex mMutex;
  mutable std::condition_variable mChanged;
  SimulatedDevice mDevice;
  const std::unique_ptr<DevicePort> mPort;
  TraceFile mTrace;
  WakeUp mWakeUp;
  std::vector<Bytes> mReceived;
  std::vector<Scheduled> mScheduled;  // In order of decision.
  std::optional<Clock::time_point> mReturnDue;
  std::vector<std::function<void()>> mCommands;  // For the serving thread, which holds the lock.
  std::string mFailure;
  bool mOpened = false;
  bool mStopping = false;
  std::thread mThread;
};

void SimulatorServer::Core::OpenPort() {
  mDevice.PowerUp();
  mPort->Open();
  mReturnDue.reset();
  mChanged.notify_all();
}

void SimulatorServer::Core::ClosePort() {
  mPort->Close();
  mScheduled.clear();
  mReturnDue.reset();
  mChanged.notify_all();
}

void SimulatorServer::Core::Serve(int stopDescriptor) {
  try {
    while (WaitForWork(stopDescriptor)) Step();
  } catch (const std::exception& error) {
    RecordFailure(error.what());
  }
}

// False when the serving is to end.
bool SimulatorServer::Core::WaitForWork(int stopDescriptor) {
  std::vector<pollfd> descriptors{{mWakeUp.Get(), POLLIN, 0}, {stopDescriptor, POLLIN, 0}};
  int timeout = 0;
  {
    const std::lock_guard lock(mMutex);
    if (mStopping) return false;
    mPort->AppendTo(descriptors);
    timeout = PollTimeout();
  }
  if (poll(descriptors.data(), descriptors.size(), timeout) < 0 && errno != EINTR) FailSystem("poll", errno);
  return descriptors[1].revents == 0;
}

void SimulatorServer::Core::Step() {
  const std::lock_guard lock(mMutex);
  mWakeUp.Clear();
  if (mReturnDue && *mReturnDue <= Clock::now()) OpenPort();
  const Bytes bytes = mPort->Receive();
  if (!bytes.empty()) TakeBytes(bytes);
  RunCommands();  // After Receive, which has let everybody in who may expect what they send.
  SendDue();
}

void SimulatorServer::Core::RunCommands() {
  for (const std::function<void()>& command : std::exchange(mCommands, {})) command();
}

void SimulatorServer::Core::TakeBytes(const Bytes& bytes) {
  Reaction reaction = mDevice.Receive(bytes);
  const Clock::time_point now = Clock::now();
  for (Bytes& message : reaction.mReceived) {
    mTrace.Write("in", message);
    mReceived.push_back(std::move(message));
  }
  for (Transmission& transmission : reaction.mTransmissions) {
    mScheduled.push_back({now + transmission.mDelay, std::move(transmission.mBytes)});
  }
  if (reaction.mPortLeaves) {
    SendDue();
    ClosePort();
    mTrace.Write("port leaves", {});
    if (reaction.mPortReturnsAfter) mReturnDue = now + *reaction.mPortReturnsAfter;
  }
  if (reaction.mFlashSettled) WriteFlash();
  mChanged.notify_all();
}

// What is due goes out by due time, and in order of decision where that is equal.
void SimulatorServer::Core::SendDue() {
  std::stable_sort(mScheduled.begin(), mScheduled.end(),
                   [](const Scheduled& left, const Scheduled& right) { return left.mDue < right.mDue; });
  const Clock::time_point now = Clock::now();
  const auto end = std::find_if(mScheduled.begin(), mScheduled.end(),
                                [&](const Scheduled& scheduled) { return scheduled.mDue > now; });
  for (auto scheduled = mScheduled.begin(); scheduled != end; ++scheduled) {
    mTrace.Write("out", scheduled->mBytes);
    mPort->Send(scheduled->mBytes);
  }
  mScheduled.erase(mScheduled.begin(), end);
}

// Milliseconds, rounded up; -1 is no limit.
int SimulatorServer::Core::PollTimeout() const {
  std::optional<Clock::time_point> next = mReturnDue;
  for (const Scheduled& scheduled : mScheduled)
    next = next ? std::min(*next, scheduled.mDue) : scheduled.mDue;
  if (!next) return -1;
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(rest, 0, std::numeric_limits<int>::max()));
}

void SimulatorServer::Core::WriteFlash() {
  if (mOptions.mFlashFile.empty()) return;
  const std::string text = mDevice.Flash().ToIntelHex();
  Tools::ReplaceFile(mOptions.mFlashFile, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void SimulatorServer::Core::RecordFailure(const char* text) {
  const std::lock_guard lock(mMutex);
  mFailure = text;
  ClosePort();
}

SimulatorServer::SimulatorServer(ServerOptions options) : mCore(std::make_unique<Core>(std::move(options))) {}

SimulatorServer::~SimulatorServer() {
  Stop();
}

void SimulatorServer::Open() {
  const std::lock_guard lock(mCore->mMutex);
  if (mCore->mOpened) return;
  mCore->mTrace.Open();
  mCore->OpenPort();
  mCore->mOpened = true;
}

void SimulatorServer::Start() {
  Open();
  if (mCore->mThread.joinable()) return;
  mCore->mThread = std::thread([core = mCore.get()] { core->Serve(kNoDescriptor); });
}

void SimulatorServer::Run(int stopDescriptor) {
  Open();
  mCore->Serve(stopDescriptor);
}

void SimulatorServer::Stop() {
  {
    const std::lock_guard lock(mCore->mMutex);
    if (!mCore->mOpened) return;
    mCore->mStopping = true;
    mCore->mWakeUp.Set();
  }
  if (mCore->mThread.joinable()) mCore->mThread.join();
  const std::lock_guard lock(mCore->mMutex);
  mCore->ClosePort();
  mCore->mCommands.clear();
  mCore->mStopping = false;
  mCore->mOpened = false;
  try {
    mCore->WriteFlash();
  } catch (const std::exception& error) {
    mCore->mFailure = error.what();
  }
}

std::string SimulatorServer::Failure() const {
  const std::lock_guard lock(mCore->mMutex);
  return mCore->mFailure;
}

std::vector<Bytes> SimulatorServer::Received() const {
  const std::lock_guard lock(mCore->mMutex);
  return mCore->mReceived;
}

void SimulatorServer::ClearReceived() {
  const std::lock_guard lock(mCore->mMutex);
  mCore->mReceived.clear();
}

DeviceStatus SimulatorServer::Status() const {
  const std::lock_guard lock(mCore->mMutex);
  return mCore->mDevice.Status();
}

Vbin::FlashMemory SimulatorServer::Flash() const {
  const std::lock_guard lock(mCore->mMutex);
  return mCore->mDevice.Flash();
}

bool SimulatorServer::IsPluggedIn() const {
  const std::lock_guard lock(mCore->mMutex);
  return mCore->mPort->IsOpen();
}

bool SimulatorServer::WaitFor(const std::function<bool(const DeviceStatus&)>& condition,
                              std::chrono::milliseconds limit) const {
  std::unique_lock lock(mCore->mMutex);
  return mCore->mChanged.wait_for(lock, limit, [&] { return condition(mCore->mDevice.Status()); });
}

bool SimulatorServer::WaitForPlug(bool pluggedIn, std::chrono::milliseconds limit) const {
  std::unique_lock lock(mCore->mMutex);
  return mCore->mChanged.wait_for(lock, limit, [&] { return mCore->mPort->IsOpen() == pluggedIn; });
}

void SimulatorServer::Send(std::span<const std::uint8_t> bytes) {
  const std::lock_guard lock(mCore->mMutex);
  mCore->mCommands.push_back([core = mCore.get(), copy = Bytes(bytes.begin(), bytes.end())] {
    core->mTrace.Write("out", copy);
    core->mPort->Send(copy);
  });
  mCore->mWakeUp.Set();
}

void SimulatorServer::Unplug() {
  const std::lock_guard lock(mCore->mMutex);
  mCore->mCommands.push_back([core = mCore.get()] { core->ClosePort(); });
  mCore->mWakeUp.Set();
}

void SimulatorServer::Replug() {
  const std::lock_guard lock(mCore->mMutex);
  mCore->mCommands.push_back([core = mCore.get()] { core->OpenPort(); });
  mCore->mWakeUp.Set();
}

}  // namespace Simulator
