#include <fmt/format.h>

#include <string>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/DocumentSource.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

const char16_t* const kFrameworkSection = u"Framework";
const char16_t* const kSectionSeparator = u"|";

constexpr std::uint32_t kEnglish = 0x0009;
constexpr std::uint32_t kPrimaryLanguageMask = 0xFF;
constexpr std::uint32_t kTraditionalChinese = 0x7C04;
constexpr std::uint32_t kTaiwan = 0x0404;
constexpr std::uint32_t kHongKong = 0x0C04;
constexpr std::uint32_t kMacau = 0x1404;

// The primary language does not tell the two ways to write Chinese apart.
std::uint32_t WiderLanguage(std::uint32_t language) {
  if (language == kTaiwan || language == kHongKong || language == kMacau) return kTraditionalChinese;
  return language & kPrimaryLanguageMask;
}

}  // namespace

TFRESULT LControlFactory::LoadStrings(const String& frameworkSource, const String& applicationSource,
                                      std::uint32_t language) {
  const TFRESULT result = LoadStringDocument(frameworkSource, {language, WiderLanguage(language), kEnglish});
  if (Failed(result)) return result;
  return LoadStringDocument(applicationSource, {mLanguage, kEnglish});
}

// The last language is what the document ends with when it has none of them.
TFRESULT LControlFactory::LoadStringDocument(const String& source,
                                             std::initializer_list<std::uint32_t> languages) {
  DocumentSource bytes;
  const TFRESULT result = bytes.Open(source);
  if (Failed(result)) return result;
  StringDocument document(languages);
  std::string error;
  if (result == kSuccess && Failed(document.Read(bytes.GetBytes(), error))) {
    LogRecord(fmt::format("strings: \"{}\": {}", ToUtf8(source), error));
  }
  ChooseLanguage(document, languages);
  document.AddTo(mStringSections, mLanguage);
  if (document.GetApplicationName()) mApplicationName = *document.GetApplicationName();
  return kSuccess;
}

void LControlFactory::ChooseLanguage(const StringDocument& document,
                                     std::initializer_list<std::uint32_t> languages) {
  for (const std::uint32_t language : languages) {
    mLanguage = language;
    mStringsMatched = document.CountMatches(language);
    if (mStringsMatched > 0) return;
  }
}

RCPtr<LStringTable> LControlFactory::GetFrameworkStrings() const {
  return MakeTable(kFrameworkSection);
}

RCPtr<LStringTable> LControlFactory::GetApplicationStrings() const {
  return MakeTable(kSectionSeparator + mApplicationName);
}

RCPtr<LStringTable> LControlFactory::GetControlStrings(const String& parentClass,
                                                       const String& controlName) const {
  const String& owner = parentClass.IsEmpty() ? mApplicationName : parentClass;
  return MakeTable(owner + kSectionSeparator + controlName);
}

RCPtr<LStringTable> LControlFactory::MakeTable(const String& section) const {
  const auto found = mStringSections.find(section);
  if (found == mStringSections.end()) return nullptr;
  return MakeRC<LStringTable>(found->second);
}

}  // namespace TF
