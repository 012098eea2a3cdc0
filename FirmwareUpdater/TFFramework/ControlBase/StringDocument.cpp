#include "TFFramework/ControlBase/StringDocument.h"

#include <fmt/format.h>

#include "TFFramework/ControlBase/AttributeValues.h"

namespace TF {

namespace {

std::optional<String> StringOf(std::optional<std::u16string_view> value) {
  if (!value) return std::nullopt;
  return String(*value);
}

}  // namespace

StringDocument::StringDocument(std::span<const std::uint32_t> languages) {
  for (const std::uint32_t language : languages) mLanguages[language];
}

TFRESULT StringDocument::Read(std::span<const unsigned char> document, std::string& error) {
  XmlReader reader(*this);
  const TFRESULT result = reader.Parse(document);
  if (Failed(result)) error = fmt::format("{} in line {}", reader.GetErrorText(), reader.GetErrorLine());
  return result;
}

std::uint32_t StringDocument::CountMatches(std::uint32_t language) const {
  const auto found = mLanguages.find(language);
  return found == mLanguages.end() ? 0 : found->second.mMatches;
}

void StringDocument::AddTo(Sections& sections, std::uint32_t language) const {
  for (const String& section : mSections) sections[section];
  const auto found = mLanguages.find(language);
  if (found == mLanguages.end()) return;
  for (const auto& [section, texts] : found->second.mSections) {
    LStringTable::Strings& target = sections[section];
    for (const auto& [key, text] : texts) target[key] += std::u16string_view(text);
  }
}

void StringDocument::OnStartElement(std::u16string_view name, const XmlAttributes& attributes) {
  if (!mRootSeen) {
    mRootSeen = true;
  } else if (name == u"Application") {
    if (auto application = StringOf(attributes.Find(u"Name"))) mApplicationName = std::move(application);
  } else if (name == u"StringTable") {
    StartTable(attributes);
  } else if (name == u"String") {
    mKey = StringOf(attributes.Find(u"ID"));
  } else if (name == u"Locale") {
    StartLocale(attributes);
  }
}

void StringDocument::StartTable(const XmlAttributes& attributes) {
  mSection = StringOf(attributes.Find(u"ID"));
  if (mSection) mSections.insert(*mSection);
}

void StringDocument::StartLocale(const XmlAttributes& attributes) {
  const auto number = attributes.Find(u"LCID");
  if (!number || !mSection || !mKey) return;
  const auto language = mLanguages.find(static_cast<std::uint32_t>(ParseInt(*number)));
  if (language == mLanguages.end()) return;
  ++language->second.mMatches;
  language->second.mCollecting = &language->second.mSections[*mSection][*mKey];
}

void StringDocument::OnEndElement(std::u16string_view) {
  for (auto& [number, language] : mLanguages) language.mCollecting = nullptr;
}

void StringDocument::OnCharacterData(std::u16string_view text) {
  for (auto& [number, language] : mLanguages) {
    if (language.mCollecting) language.mCollecting->append(text);
  }
}

}  // namespace TF
