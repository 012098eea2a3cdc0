#pragma once

#include <map>

#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// The texts of one section by their keys, which are compared as they stand. A table is a copy that
// never changes, so that it outlives whatever it was made from.
//
// Threads: any.
class LStringTable : public virtual LRefCountedObject {
 public:
  using Strings = std::map<String, String>;

  explicit LStringTable(Strings strings);

  // False leaves text as it was. A key may have an empty text.
  bool GetString(const String& key, String& text) const;
  bool HasString(const String& key) const;
  const Strings& GetStrings() const { return mStrings; }

 private:
  const Strings mStrings;
};

}  // namespace TF
