#pragma once

#include <cstdint>

#include "Platform/Language.h"
#include "TFFramework/Application/VersionBlock.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// The program's version block, the resource "VERSION" with the name "1", in one of its translations.
// Made on the stack for each question.
//
// Threads: any.
class Version {
 public:
  // Takes the first translation in the user's primary language, else in the system's, else in
  // English, else the first of all. Throws runtime_error with a numbered text when the block cannot
  // be used: "EXCEPTION_ID" of the framework's texts, or a text of its own while there are none.
  explicit Version(const RCPtr<LStringTable>& frameworkStrings = nullptr,
                   std::uint32_t userLanguage = Platform::UserLanguage(),
                   std::uint32_t systemLanguage = Platform::UserLanguage());

  String GetCompanyName() const { return GetString(u"CompanyName"); }
  String GetProductName() const { return GetString(u"ProductName"); }
  String GetProductVersion() const { return GetString(u"ProductVersion"); }
  // Empty when the block has no such text. Keys are compared as they stand.
  String GetString(const String& key) const;

 private:
  Translation mTranslation;
};

}  // namespace TF
