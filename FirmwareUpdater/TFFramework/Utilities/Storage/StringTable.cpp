#include "TFFramework/Utilities/Storage/StringTable.h"

#include <utility>

namespace TF {

LStringTable::LStringTable(Strings strings) : mStrings(std::move(strings)) {}

bool LStringTable::GetString(const String& key, String& text) const {
  const auto found = mStrings.find(key);
  if (found == mStrings.end()) return false;
  text = found->second;
  return true;
}

bool LStringTable::HasString(const String& key) const {
  return mStrings.contains(key);
}

}  // namespace TF
