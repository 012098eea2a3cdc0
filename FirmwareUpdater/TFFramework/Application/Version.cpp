#include "TFFramework/Application/Version.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/Resources.h"

namespace TF {

namespace {

constexpr std::u16string_view kResourceType = u"VERSION";
constexpr std::u16string_view kResourceName = u"1";
constexpr std::uint32_t kPrimaryLanguageMask = 0x3FF;
constexpr std::uint32_t kEnglish = 0x09;
constexpr const char16_t* kErrorKey = u"EXCEPTION_ID";
constexpr std::string_view kNumberMark = "%d";
constexpr std::string_view kEarlyErrorText =
    "The application encountered problems during startup and will now close.  (Error code = %d)";

// The numbers tell support which step failed: the program has no block, the block is empty, it is not
// readable to its end, it holds no translation.
enum ErrorId : int { kNoTranslation = 900, kUnreadable = 901, kEmpty = 902, kMissing = 903 };

[[noreturn]] void ThrowNumbered(ErrorId id, const RCPtr<LStringTable>& strings) {
  String known;
  std::string text(strings && strings->GetString(kErrorKey, known) ? ToUtf8(known) : kEarlyErrorText);
  const std::size_t mark = text.find(kNumberMark);
  if (mark != text.npos) text.replace(mark, kNumberMark.size(), std::to_string(id));
  Throw<std::runtime_error>(text, "TF::Version::Version");
}

std::vector<Translation> ReadTranslations(const RCPtr<LStringTable>& strings) {
  const auto bytes = FindResource(kResourceType, kResourceName);
  if (!bytes) ThrowNumbered(kMissing, strings);
  if (bytes->empty()) ThrowNumbered(kEmpty, strings);
  const auto block = VersionBlock::Parse(*bytes);
  if (!block) ThrowNumbered(kUnreadable, strings);
  if (block->GetTranslations().empty()) ThrowNumbered(kNoTranslation, strings);
  return block->GetTranslations();
}

const Translation& Choose(const std::vector<Translation>& translations,
                          std::initializer_list<std::uint32_t> languages) {
  for (const std::uint32_t language : languages) {
    const auto found =
        std::find_if(translations.begin(), translations.end(), [language](const Translation& translation) {
          return (translation.mLanguage & kPrimaryLanguageMask) == (language & kPrimaryLanguageMask);
        });
    if (found != translations.end()) return *found;
  }
  return translations.front();
}

}  // namespace

Version::Version(const RCPtr<LStringTable>& frameworkStrings, std::uint32_t userLanguage,
                 std::uint32_t systemLanguage)
    : mTranslation(Choose(ReadTranslations(frameworkStrings), {userLanguage, systemLanguage, kEnglish})) {}

String Version::GetString(const String& key) const {
  for (const auto& [name, text] : mTranslation.mStrings) {
    if (name == key) return text;
  }
  return String();
}

}  // namespace TF
