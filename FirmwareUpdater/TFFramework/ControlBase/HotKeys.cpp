#include "TFFramework/ControlBase/HotKeys.h"

#include <algorithm>

namespace TF {

namespace {

// A character, with any modifiers.
constexpr std::uint32_t kCharacterKeyMask = 0x7F00FFFF;

bool IsCharacterKey(const KeyCode& key) {
  return (key.code & ~kCharacterKeyMask) == 0;
}

bool Matches(const KeyCode& key, const KeyCode& stored) {
  const bool isCharacter = IsCharacterKey(key) && IsCharacterKey(stored);
  const std::uint32_t ignored = isCharacter ? KeyCode::kCtrl | KeyCode::kShift : 0;
  return ((key.code ^ stored.code) & ~ignored) == 0;
}

bool IsNoKey(const KeyCode& key) {
  return (key.code & (KeyCode::kCharacterMask | KeyCode::kVirtualKeyMask)) == 0;
}

}  // namespace

HotKeyMap ReadHotKeys(const LStringTable& section, const String& prefix) {
  const String start = prefix + u".";
  HotKeyMap hotKeys;
  for (const auto& [identifier, text] : section.GetStrings()) {
    if (identifier.Find(start) != 0) continue;
    const KeyCode key = KeyCodeFromName(text);
    // What lies between tells apart the keys of one notification.
    const auto point = static_cast<std::int32_t>(identifier.View().rfind(u'.'));
    const String notification = identifier.Mid(point + 1);
    if (!IsNoKey(key) && !notification.IsEmpty()) hotKeys[notification].push_back(key);
  }
  return hotKeys;
}

bool FindKeyOf(const HotKeyMap& hotKeys, const String& notification, KeyCode& key) {
  const auto found = hotKeys.find(notification);
  if (found == hotKeys.end() || found->second.empty()) return false;
  key = found->second.front();
  return true;
}

const String* FindHotKey(const HotKeyMap& hotKeys, const KeyCode& key) {
  for (const auto& [notification, keys] : hotKeys) {
    const auto matches = [&key](const KeyCode& stored) { return Matches(key, stored); };
    if (std::any_of(keys.begin(), keys.end(), matches)) return &notification;
  }
  return nullptr;
}

}  // namespace TF
