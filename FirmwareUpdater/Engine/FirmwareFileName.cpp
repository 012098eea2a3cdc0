#include "Engine/FirmwareFileName.h"

using namespace TF;

namespace {

// The digit at position, or -1; the terminator ends every name.
std::int32_t DigitAt(const String& name, std::int32_t position) {
  const char16_t character = name[position];
  return character >= u'0' && character <= u'9' ? character - u'0' : -1;
}

}  // namespace

bool VersionFromFileName(const String& name, FirmwareVersionInfo& version) {
  constexpr std::u16string_view kMark = u"_V";
  const std::int32_t mark = name.ToUpper().Find(kMark);
  if (mark < 0) return false;
  std::int32_t position = mark + static_cast<std::int32_t>(kMark.size());
  std::int32_t major = DigitAt(name, position++);
  if (major < 0) return false;
  if (const std::int32_t second = DigitAt(name, position); second >= 0) {
    major = major * 10 + second;
    ++position;
  }
  if (name[position++] != u'_') return false;
  const std::int32_t minor = DigitAt(name, position);
  const std::int32_t patch = minor < 0 ? -1 : DigitAt(name, position + 1);
  if (patch < 0) return false;
  version.mMajor = static_cast<std::uint32_t>(major);
  version.mMinor = static_cast<std::uint32_t>(minor);
  version.mPatch = static_cast<std::uint32_t>(patch);
  version.mBuild = 0;
  version.mText = String::Format(u"%d.%d.%d", major, minor, patch);
  return true;
}
