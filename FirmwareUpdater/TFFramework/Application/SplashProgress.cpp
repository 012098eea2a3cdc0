#include "TFFramework/Application/SplashProgress.h"

#include <algorithm>
#include <limits>

namespace TF {

namespace {

constexpr std::int64_t kStepsPerSecond = 1000 / SplashProgress::kStepMilliseconds;
constexpr std::uint32_t kWordBits = 16;
constexpr std::uint32_t kWordMask = 0xFFFF;
constexpr std::uint32_t kOpaque = 0xFF000000;

}  // namespace

bool SplashProgress::Take(const SplashMessage& message) {
  switch (message.mId) {
    case SplashMessageId::kQuit:
      return false;
    case SplashMessageId::kSetPosition:
      mStepsLeft = 0;
      MoveTo(static_cast<std::int32_t>(
          std::min<std::uint32_t>(message.mFirst, std::numeric_limits<std::int32_t>::max())));
      break;
    case SplashMessageId::kRun:
      Run(static_cast<std::int32_t>(message.mFirst & kWordMask),
          static_cast<std::int32_t>(message.mFirst >> kWordBits), message.mSecond);
      break;
    case SplashMessageId::kSetColor:
      if (!mHasBar) MoveTo(0);
      mColor = message.mSecond | kOpaque;
      break;
  }
  return true;
}

void SplashProgress::OnTimer() {
  if (!IsStepping()) return;
  MoveTo(mPosition + mStep);
  --mStepsLeft;
}

void SplashProgress::MoveTo(std::int32_t position) {
  mHasBar = true;
  mPosition = std::clamp(position, 0, kLastPosition);
}

// A run of no length is at its end at once. Steps are whole positions, so a long run may end short of
// its last position.
void SplashProgress::Run(std::int32_t first, std::int32_t last, std::uint32_t seconds) {
  MoveTo(seconds == 0 ? last : first);
  mStepsLeft = std::int64_t{seconds} * kStepsPerSecond;
  if (mStepsLeft > 0) mStep = static_cast<std::int32_t>((last - first) / mStepsLeft);
}

}  // namespace TF
