#include "TFFramework/Utilities/Graphics/Color.h"

#include <cmath>

namespace TF {

namespace {

constexpr float kByteToChannel = 0.003921569F;
constexpr float kChannelToByte = 255.0F;
constexpr int kAlphaShift = 24;
constexpr int kRedShift = 16;
constexpr int kGreenShift = 8;
constexpr int kBlueShift = 0;

float ChannelAt(std::uint32_t argb, int shift) {
  return static_cast<float>(argb >> shift & 0xFF) * kByteToChannel;
}

std::uint32_t PackedAt(float channel, int shift) {
  const float rounded = std::round(channel * kChannelToByte);
  if (!(rounded > 0)) return 0;
  return (rounded < kChannelToByte ? static_cast<std::uint32_t>(rounded) : 0xFFU) << shift;
}

}  // namespace

LColor LColor::FromPacked(std::uint32_t argb) {
  return {ChannelAt(argb, kRedShift), ChannelAt(argb, kGreenShift), ChannelAt(argb, kBlueShift),
          ChannelAt(argb, kAlphaShift)};
}

std::uint32_t LColor::ToPacked() const {
  return PackedAt(mRed, kRedShift) | PackedAt(mGreen, kGreenShift) | PackedAt(mBlue, kBlueShift) |
         PackedAt(mAlpha, kAlphaShift);
}

}  // namespace TF
