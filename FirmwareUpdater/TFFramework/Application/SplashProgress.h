#pragma once

#include <cstdint>

namespace TF {

// The messages that a splash window's thread takes.
enum class SplashMessageId : std::uint32_t {
  kQuit = 0x0012,
  kSetPosition = 0x0402,  // First: the position, 0 to 100. Stops the stepping.
  kRun = 0x0404,          // First: first position in the low word, last in the high one; second: seconds.
  kSetColor = 0x0409,     // Second: 0x00RRGGBB.
};

struct SplashMessage {
  SplashMessageId mId = SplashMessageId::kQuit;
  std::uint32_t mFirst = 0;
  std::uint32_t mSecond = 0;
};

// The bar of a splash window as numbers: where it stands and how it steps.
//
// Threads: one.
class SplashProgress {
 public:
  static constexpr std::uint32_t kStepMilliseconds = 250;
  static constexpr std::int32_t kLastPosition = 100;
  static constexpr std::uint32_t kDefaultColor = 0xFF2F7FD1;

  // False for the message that ends the thread.
  bool Take(const SplashMessage& message);
  // One step; the last of a run ends the stepping.
  void OnTimer();

  // There is none before the first message that concerns it.
  bool HasBar() const { return mHasBar; }
  bool IsStepping() const { return mStepsLeft > 0; }
  std::int32_t GetPosition() const { return mPosition; }
  // 0xFFRRGGBB.
  std::uint32_t GetColor() const { return mColor; }

 private:
  void MoveTo(std::int32_t position);
  void Run(std::int32_t first, std::int32_t last, std::uint32_t seconds);

  bool mHasBar = false;
  std::int32_t mPosition = 0;
  std::uint32_t mColor = kDefaultColor;
  std::int32_t mStep = 0;
  std::int64_t mStepsLeft = 0;
};

}  // namespace TF
