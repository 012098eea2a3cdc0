#pragma once

#include <cstdint>

#include "TFFramework/Utilities/Storage/StringT.h"

// A firmware version: four numbers, most significant first, and their printable form.
struct FirmwareVersionInfo {
  std::uint32_t mMajor = 0;
  std::uint32_t mMinor = 0;
  std::uint32_t mPatch = 0;
  std::uint32_t mBuild = 0;
  TF::String mText;
};

enum class VersionDepth : std::int32_t { kPatch = 3, kBuild = 4 };

// Compares as many numbers as depth says; negative, 0 or positive.
std::int32_t CompareVersions(const FirmwareVersionInfo& left, const FirmwareVersionInfo& right,
                             VersionDepth depth);
