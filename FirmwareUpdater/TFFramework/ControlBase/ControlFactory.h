#pragma once

#include <cstdint>
#include <initializer_list>

#include "TFFramework/ControlBase/StringDocument.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// Holds what the program's documents say about its controls: their texts, in the one language that
// was chosen at the start. One exists in a process.
//
// Threads: main thread. The tables that it hands out may be read on any.
class LControlFactory : public virtual LRefCountedObject {
 public:
  // The name holds until a document names the application.
  explicit LControlFactory(const String& applicationName);

  // Adds the texts of the framework's document, in the user's language, else in its primary
  // language, else in English; then those of the application's document in the language that the
  // framework's ended with, else in English. A source is "::" and a resource's name, or a file. Only
  // a file that cannot be read is a failure: then kFailure, or kOutOfMemory. A resource that is not
  // there and a document that does not parse leave texts out.
  TFRESULT LoadStrings(const String& frameworkSource, const String& applicationSource,
                       std::uint32_t language);

  // Copies of one section; null when no document had it.
  RCPtr<LStringTable> GetFrameworkStrings() const;
  RCPtr<LStringTable> GetApplicationStrings() const;
  // The section of a control below a parent of this class. An empty class stands for no parent.
  RCPtr<LStringTable> GetControlStrings(const String& parentClass, const String& controlName) const;

  // Part of section names: final when all documents were loaded.
  const String& GetApplicationName() const { return mApplicationName; }

 private:
  TFRESULT LoadStringDocument(const String& source, std::initializer_list<std::uint32_t> languages);
  void ChooseLanguage(const StringDocument& document, std::initializer_list<std::uint32_t> languages);
  RCPtr<LStringTable> MakeTable(const String& section) const;

  String mApplicationName;
  std::uint32_t mLanguage = 0;        // Of the document that was read last.
  std::uint32_t mStringsMatched = 0;  // How many of its translations were in that language.
  StringDocument::Sections mStringSections;
};

}  // namespace TF
