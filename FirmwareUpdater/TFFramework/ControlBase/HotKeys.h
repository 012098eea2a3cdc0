#pragma once

#include <map>
#include <vector>

#include "TFFramework/ControlBase/KeyCode.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

// The keys that send a notification, by its name.
using HotKeyMap = std::map<String, std::vector<KeyCode>>;

// The keys in a section of texts: the name of each begins with the prefix and a point, and what is behind its
// last point names the notification. Texts that name no key are left out.
HotKeyMap ReadHotKeys(const LStringTable& section, const String& prefix);

// The name of the first notification that the key sends; null for none. Characters match in whatever state
// Ctrl and Shift are.
const String* FindHotKey(const HotKeyMap& hotKeys, const KeyCode& key);

// The first key that sends the notification; false without one.
bool FindKeyOf(const HotKeyMap& hotKeys, const String& notification, KeyCode& key);

}  // namespace TF
