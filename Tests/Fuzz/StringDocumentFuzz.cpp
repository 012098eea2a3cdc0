#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "TFFramework/ControlBase/AttributeValues.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/Resources.h"

// Whatever the document, parsing it once for all languages gives what parsing it anew for each
// language gives. The first byte chooses the user's language.

namespace {

using Texts = std::map<std::u16string, std::u16string>;

constexpr std::uint32_t kLanguages[] = {0x0409, 0x0407, 0x0807, 0x041D, 0x0404, 0x0804, 0x1404, 0x0000};
constexpr std::uint32_t kEnglish = 9;

void Require(bool condition) {
  if (!condition) std::abort();
}

// All that a program keeps of its documents.
struct Model {
  std::u16string mApplication = u"Tessel";
  std::map<std::u16string, Texts> mSections;
};

// Reads a document for one language.
class Pass : public TF::XmlHandler {
 public:
  Pass(Model& model, std::uint32_t language, std::span<const unsigned char> document)
      : mModel(model), mLanguage(language) {
    TF::XmlReader(*this).Parse(document);
  }

  std::uint32_t mMatched = 0;

 private:
  void OnStartElement(std::u16string_view name, const TF::XmlAttributes& attributes) override {
    if (!mStarted) {
      mStarted = true;
      return;
    }
    const auto id = attributes.Find(u"ID");
    if (name == u"Application") mModel.mApplication = attributes.Find(u"Name").value_or(mModel.mApplication);
    if (name == u"StringTable") mSection = id ? &mModel.mSections[std::u16string(*id)] : nullptr;
    if (name == u"String") {
      mHasKey = id.has_value();
      mKey = id.value_or(u"");
    }
    const auto language = attributes.Find(u"LCID");
    if (name != u"Locale" || !language || !mSection || !mHasKey) return;
    if (static_cast<std::uint32_t>(TF::ParseInt(*language)) != mLanguage) return;
    ++mMatched;
    mText = &(*mSection)[mKey];
  }
  void OnEndElement(std::u16string_view) override { mText = nullptr; }
  void OnCharacterData(std::u16string_view text) override {
    if (mText) mText->append(text);
  }

  Model& mModel;
  std::uint32_t mLanguage;
  bool mStarted = false;
  Texts* mSection = nullptr;
  std::u16string mKey;
  bool mHasKey = false;
  std::u16string* mText = nullptr;
};

// The language that the document ended with.
std::uint32_t ReadPassByPass(Model& model, std::initializer_list<std::uint32_t> languages,
                             std::span<const unsigned char> document) {
  std::uint32_t last = 0;
  for (const std::uint32_t language : languages) {
    last = language;
    if (Pass(model, language, document).mMatched > 0) break;
  }
  return last;
}

bool Equals(const TF::RCPtr<TF::LStringTable>& table, const Texts& texts) {
  if (!table || table->GetStrings().size() != texts.size()) return false;
  for (const auto& [key, text] : texts) {
    TF::String found;
    if (!table->GetString(TF::String(key), found) || found.View() != text) return false;
  }
  return true;
}

void Compare(const TF::LControlFactory& factory, const Model& model) {
  Require(factory.GetApplicationName().View() == model.mApplication);
  Require(factory.GetFrameworkStrings() == nullptr || model.mSections.contains(u"Framework"));
  Require(factory.GetApplicationStrings() == nullptr || model.mSections.contains(u"|" + model.mApplication));
  for (const auto& [section, texts] : model.mSections) {
    if (section == u"Framework") Require(Equals(factory.GetFrameworkStrings(), texts));
    if (section == u"|" + model.mApplication) Require(Equals(factory.GetApplicationStrings(), texts));
    const std::size_t bar = section.find(u'|');
    if (bar == section.npos || bar == 0) continue;
    const TF::String parent(section.substr(0, bar)), name(section.substr(bar + 1));
    Require(Equals(factory.GetControlStrings(parent, name), texts));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint32_t language = kLanguages[data[0] % std::size(kLanguages)];
  const std::span<const unsigned char> document(data + 1, size - 1);
  const TF::Resource resources[] = {{u"TFXML", u"DOCUMENT", document}};
  TF::SetResources(resources);

  const auto factory = TF::MakeRC<TF::LControlFactory>(u"Tessel");
  Require(factory->LoadStrings(u"::DOCUMENT", u"::DOCUMENT", language) == TF::kSuccess);

  Model model;
  const bool isTraditional = language == 0x0404 || language == 0x1404;
  const std::uint32_t wider = isTraditional ? 0x7C04 : language & 0xFF;
  const std::uint32_t ended = ReadPassByPass(model, {language, wider, kEnglish}, document);
  ReadPassByPass(model, {ended, kEnglish}, document);
  Compare(*factory, model);
  return 0;
}
