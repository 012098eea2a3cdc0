#include "TFFramework/Application/SplashWindow.h"

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "Platform/Clock.h"
#include "Platform/DebugOutput.h"
#include "Platform/Desktop.h"
#include "Platform/SplashSurface.h"
#include "TFFramework/Application/SplashProgress.h"
#include "TFFramework/Threads/LightMutex.h"

namespace TF {

namespace {

constexpr std::uint32_t kStartWaitMs = 5000;
constexpr std::uint32_t kEndWaitMs = 1000;
constexpr std::uint32_t kWordBits = 16;

std::uint32_t OnWhite(std::uint32_t argb) {
  const std::uint32_t alpha = argb >> 24;
  std::uint32_t opaque = 0xFF;
  for (const std::uint32_t shift : {16U, 8U, 0U}) {
    const std::uint32_t channel = argb >> shift & 0xFF;
    opaque = opaque << 8 | (channel * alpha + 0xFF * (0xFF - alpha) + 0x7F) / 0xFF;
  }
  return opaque;
}

std::uint32_t ToWord(std::int32_t position) {
  return static_cast<std::uint32_t>(std::clamp(position, 0, SplashProgress::kLastPosition));
}

}  // namespace

struct LSplashWindow::State {
  void Post(const SplashMessage& message) {
    {
      const LightMutexLock lock(mLock);
      mMessages.push_back(message);
    }
    mWake.Set();
  }

  bool Fetch(SplashMessage& message) {
    const LightMutexLock lock(mLock);
    if (mMessages.empty()) return false;
    message = mMessages.front();
    mMessages.pop_front();
    return true;
  }

  // Written before the thread starts.
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  std::vector<std::uint32_t> mPixels;
  std::string mTitle;

  Platform::EventHandle mStarted{true};
  Platform::EventHandle mEnded{true};
  Platform::EventHandle mWake{true};
  LightMutex mLock;  // Guards mMessages.
  std::deque<SplashMessage> mMessages;
};

namespace {

std::unique_ptr<Platform::SplashSurface> OpenSurface(const Platform::SplashPicture& picture,
                                                     const std::string& title) {
  try {
    return Platform::GetDesktop().OpenSplash(picture, title);
  } catch (const std::exception& exception) {
    Platform::WriteDebugOutput("Unable to create SplashWnd\n");
    Platform::WriteDebugOutput(exception.what());
    return nullptr;
  }
}

// Runs the bar until the message that ends it, or until the display is gone.
template <class Fetch>
void RunBar(Platform::SplashSurface& surface, Platform::EventHandle& wake, const Fetch& fetch) {
  SplashProgress progress;
  std::uint32_t stepTicks = 0;
  while (true) {
    SplashMessage message;
    while (fetch(message)) {
      if (!progress.Take(message)) return;
      if (message.mId == SplashMessageId::kRun) stepTicks = Platform::MillisecondTicks();
    }
    const std::uint32_t elapsed = Platform::MillisecondTicks() - stepTicks;
    if (progress.IsStepping() && elapsed >= SplashProgress::kStepMilliseconds) {
      progress.OnTimer();
      stepTicks += SplashProgress::kStepMilliseconds;
      continue;
    }
    if (progress.HasBar()) surface.ShowBar(progress.GetPosition(), progress.GetColor());
    const std::uint32_t wait =
        progress.IsStepping() ? SplashProgress::kStepMilliseconds - elapsed : Platform::kWaitForever;
    if (surface.Wait(wake, wait) == Platform::WaitStatus::kFailed) return;
  }
}

}  // namespace

LSplashWindow::LSplashWindow() : mState(std::make_shared<State>()) {}

LSplashWindow::~LSplashWindow() {
  if (!mRunning) return;
  mState->Post({SplashMessageId::kQuit});
  if (mState->mEnded.Wait(kEndWaitMs) == Platform::WaitStatus::kSignalled)
    mThread.Join();
  else
    mThread.Detach();
}

void LSplashWindow::SetImage(const RCPtr<LBitmap>& bitmap) {
  if (mRunning || !mState->mPixels.empty() || !bitmap) return;
  const RCPtr<LBitmap> copy = bitmap->Clone();
  if (!copy) return;
  mState->mWidth = copy->GetWidth();
  mState->mHeight = copy->GetHeight();
  const std::span<const std::uint32_t> pixels(copy->GetImage()->mPicture.mPixels);
  mState->mPixels.resize(pixels.size());
  std::transform(pixels.begin(), pixels.end(), mState->mPixels.begin(), OnWhite);
}

void LSplashWindow::Start() {
  if (mRunning) return;
  mRunning = mThread.Start([state = mState] {
    RunThread(*state);
    state->mStarted.Set();
    state->mEnded.Set();
  });
  if (!mRunning || mState->mStarted.Wait(kStartWaitMs) != Platform::WaitStatus::kSignalled)
    Platform::WriteDebugOutput("Error starting SplashThread\n");
}

void LSplashWindow::SetProgress(std::int32_t position) {
  mState->Post({SplashMessageId::kSetPosition, ToWord(position), 0});
}

void LSplashWindow::RunProgress(std::int32_t first, std::int32_t last, std::int32_t seconds) {
  mState->Post({SplashMessageId::kRun, ToWord(first) | ToWord(last) << kWordBits,
                static_cast<std::uint32_t>(std::max(seconds, 0))});
}

// A thread that ends without a window lets Start go at once: the program must not wait for what will
// not come.
void LSplashWindow::RunThread(State& state) {
  if (state.mPixels.empty()) return;
  const auto surface = OpenSurface({state.mWidth, state.mHeight, state.mPixels}, state.mTitle);
  if (!surface) return;
  state.mStarted.Set();
  RunBar(*surface, state.mWake, [&state](SplashMessage& message) { return state.Fetch(message); });
}

}  // namespace TF
