#include "Engine/FirmwareVersionInfo.h"

std::int32_t CompareVersions(const FirmwareVersionInfo& left, const FirmwareVersionInfo& right,
                             VersionDepth depth) {
  const std::uint32_t leftNumbers[] = {left.mMajor, left.mMinor, left.mPatch, left.mBuild};
  const std::uint32_t rightNumbers[] = {right.mMajor, right.mMinor, right.mPatch, right.mBuild};
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(depth); ++i) {
    if (leftNumbers[i] != rightNumbers[i]) return leftNumbers[i] > rightNumbers[i] ? 1 : -1;
  }
  return 0;
}
