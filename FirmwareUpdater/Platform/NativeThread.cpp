#include "Platform/NativeThread.h"

#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <utility>

#include "Platform/Clock.h"

namespace Platform {

namespace {

std::atomic<std::size_t> threadStackSize{0};

// Nice values that one step of priority is worth: the two steps of each side reach half of
// the range that the system knows.
constexpr int kNicePerPriority = 5;

// Keeps the signals that ask the program to end away from a thread made while it lives.
class EndSignalsBlocked {
 public:
  EndSignalsBlocked() {
    sigset_t endSignals;
    sigemptyset(&endSignals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&endSignals, number);
    mBlocked = pthread_sigmask(SIG_BLOCK, &endSignals, &mBefore) == 0;
  }
  ~EndSignalsBlocked() {
    if (mBlocked) pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
  }
  EndSignalsBlocked(const EndSignalsBlocked&) = delete;
  EndSignalsBlocked& operator=(const EndSignalsBlocked&) = delete;

  bool Succeeded() const { return mBlocked; }

 private:
  sigset_t mBefore{};
  bool mBlocked = false;
};

class ThreadAttributes {
 public:
  ThreadAttributes() : mUsable(pthread_attr_init(&mAttributes) == 0) {
    if (!mUsable) return;
    mInitialised = true;
    const std::size_t stackSize = threadStackSize.load();
    if (stackSize != 0) mUsable = pthread_attr_setstacksize(&mAttributes, stackSize) == 0;
  }
  ~ThreadAttributes() {
    if (mInitialised) pthread_attr_destroy(&mAttributes);
  }
  ThreadAttributes(const ThreadAttributes&) = delete;
  ThreadAttributes& operator=(const ThreadAttributes&) = delete;

  bool AreUsable() const { return mUsable; }
  const pthread_attr_t* Get() const { return &mAttributes; }

 private:
  pthread_attr_t mAttributes{};
  bool mUsable;
  bool mInitialised = false;
};

}  // namespace

// Shared with the thread, which may outlive its owner.
struct NativeThread::State {
  void Begin() {
    ApplyTimerResolution();
    current = this;
    const std::scoped_lock lock(mutex);
    id = static_cast<std::uint32_t>(gettid());
    granted = ApplyPriority();
  }

  // The system may give the number to another thread from here on.
  void End() {
    const std::scoped_lock lock(mutex);
    id = 0;
  }

  // Here a nice value belongs to one thread; a new one inherits that of its creator.
  bool ApplyPriority() const {
    errno = 0;
    const int base = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    if (base == -1 && errno != 0) return false;
    return setpriority(PRIO_PROCESS, id, base - priority * kNicePerPriority) == 0;
  }

  std::mutex mutex;
  std::function<void()> body;
  std::uint32_t id = 0;
  int priority = kThreadPriorityNormal;
  bool granted = true;
  // Of the owner's thread alone.
  pthread_t handle{};
  bool started = false;
  bool attached = false;

  static thread_local const State* current;
};

thread_local const NativeThread::State* NativeThread::State::current = nullptr;

std::shared_ptr<NativeThread::State> NativeThread::MakeState() {
  return std::make_shared<State>();
}

NativeThread::~NativeThread() {
  Detach();
}

void* NativeThread::Run(void* startup) {
  const std::unique_ptr<std::shared_ptr<State>> state(static_cast<std::shared_ptr<State>*>(startup));
  State& own = **state;
  own.Begin();
  // What body holds goes before the thread ends, so that a joiner sees it gone.
  [&]() noexcept { std::exchange(own.body, nullptr)(); }();
  own.End();
  return nullptr;
}

bool NativeThread::Start(std::function<void()> body) {
  if (mState->started) return false;
  const ThreadAttributes attributes;
  const EndSignalsBlocked signals;
  if (!attributes.AreUsable() || !signals.Succeeded()) return false;
  mState->body = std::move(body);
  auto startup = std::make_unique<std::shared_ptr<State>>(mState);
  if (pthread_create(&mState->handle, attributes.Get(), &Run, startup.get()) != 0) {
    mState->body = nullptr;
    return false;
  }
  (void)startup.release();  // The thread's own now.
  mState->started = true;
  mState->attached = true;
  return true;
}

std::uint32_t NativeThread::GetId() const {
  const std::scoped_lock lock(mState->mutex);
  return mState->id;
}

bool NativeThread::IsCurrent() const {
  return State::current == mState.get();
}

bool NativeThread::SetPriority(int priority) {
  const std::scoped_lock lock(mState->mutex);
  const int wanted = std::clamp(priority, kThreadPriorityLowest, kThreadPriorityHighest);
  if (wanted == mState->priority) return mState->granted;
  mState->priority = wanted;
  mState->granted = mState->id == 0 || mState->ApplyPriority();
  return mState->granted;
}

void NativeThread::Join() {
  if (!mState->attached) return;
  mState->attached = false;
  pthread_join(mState->handle, nullptr);
}

void NativeThread::Detach() {
  if (!mState->attached) return;
  mState->attached = false;
  pthread_detach(mState->handle);
}

std::size_t SetThreadStackSize(std::size_t bytes) {
  return threadStackSize.exchange(bytes);
}

}  // namespace Platform
