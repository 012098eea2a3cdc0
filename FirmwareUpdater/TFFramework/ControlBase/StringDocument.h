#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// A document of texts, parsed once with the texts of every language that may be asked for. To its
// user it is as if each language had been read in a pass of its own.
//
// Threads: one.
class StringDocument : private XmlHandler {
 public:
  using Sections = std::map<String, LStringTable::Strings>;

  // Languages are LCIDs, compared as numbers. Any other language is passed over.
  explicit StringDocument(std::span<const std::uint32_t> languages);

  // kFailure when the document does not parse; what came before the fault is kept, and error tells
  // what and where. Once.
  TFRESULT Read(std::span<const unsigned char> document, std::string& error);

  // How many translations the document has for a language.
  std::uint32_t CountMatches(std::uint32_t language) const;
  // Adds every section of the document, and to them the texts of one language. A text goes behind
  // the one that its key has already.
  void AddTo(Sections& sections, std::uint32_t language) const;
  // Nothing when the document names no application.
  const std::optional<String>& GetApplicationName() const { return mApplicationName; }

 private:
  struct Language {
    std::uint32_t mMatches = 0;
    std::map<String, std::map<String, std::u16string>> mSections;
    std::u16string* mCollecting = nullptr;  // Takes the character data while not null.
  };

  void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) override;
  void OnEndElement(std::u16string_view name) override;
  void OnCharacterData(std::u16string_view text) override;
  void StartTable(const XmlAttributes& attributes);
  void StartLocale(const XmlAttributes& attributes);

  std::map<std::uint32_t, Language> mLanguages;
  std::set<String> mSections;
  std::optional<String> mApplicationName;
  std::optional<String> mSection;  // The one that was opened last.
  std::optional<String> mKey;
  bool mRootSeen = false;
};

}  // namespace TF
