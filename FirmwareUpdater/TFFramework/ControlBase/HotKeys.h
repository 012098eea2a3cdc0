#pragma once

#include <map>
#include <vector>

#include "TFFramework/ControlBase/KeyCode.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// The keys that send a notification, by its name.
using HotKeyMap = std::map<String, std::vector<KeyCode>>;

// The keys in a section of texts: each stands below the prefix, a point and the name of its notification.
// Texts that name no key are left out.
HotKeyMap ReadHotKeys(const LStringTable& section, const String& prefix);

// The name of the first notification that the key sends; null for none. Characters match in whatever state
// Ctrl and Shift are.
const String* FindHotKey(const HotKeyMap& hotKeys, const KeyCode& key);

}  // namespace TF
