#include "TFFramework/ControlBase/KeyCode.h"

#include <string_view>

#include "TFFramework/ControlBase/KeyNames.h"

namespace TF {

namespace {

using View = std::u16string_view;

constexpr View kVirtualKeyMark = u"VKEY_";
constexpr char16_t kLastControlCharacter = 26;  // Ctrl+Z.
constexpr char16_t kLetterOfControl = 64;       // To be added to 1 for A.
constexpr char16_t kFirstVisible = 33;
constexpr char16_t kLastVisible = 126;

struct ModifierRule {
  std::uint32_t mMask;  // As events carry it.
  std::uint32_t mCode;
  View mPrefix;  // Of texts and names.
  View mWord;    // In names that are read.
};
// In the order in which they are written.
constexpr ModifierRule kModifiers[] = {
    {Modifier::kCtrl, KeyCode::kCtrl, u"Ctrl+", u"CTRL"},
    {Modifier::kAlt, KeyCode::kAlt, u"Alt+", u"ALT"},
    {Modifier::kShift, KeyCode::kShift, u"Shift+", u"SHIFT"},
    {Modifier::kCommand, KeyCode::kCommand, u"Cmd+", u"COMMAND"},
};

struct SideRule {
  std::uint32_t mMask;  // The general bit and that of the side.
  std::uint32_t mSide;
};
constexpr SideRule kSides[] = {
    {Modifier::kShift | Modifier::kLeftShift, 0x1},      {Modifier::kShift | Modifier::kRightShift, 0x2},
    {Modifier::kCtrl | Modifier::kLeftCtrl, 0x4},        {Modifier::kCtrl | Modifier::kRightCtrl, 0x8},
    {Modifier::kAlt | Modifier::kLeftAlt, 0x10},         {Modifier::kAlt | Modifier::kRightAlt, 0x20},
    {Modifier::kCommand | Modifier::kLeftCommand, 0x40}, {Modifier::kCommand | Modifier::kRightCommand, 0x80},
};

KeyCode WithModifiers(std::uint32_t mask) {
  KeyCode key;
  for (const ModifierRule& rule : kModifiers) {
    if ((mask & rule.mMask) != 0) key.code |= rule.mCode;
  }
  if ((mask & Modifier::kFifth) != 0) key.code |= KeyCode::kFifth;
  for (const SideRule& rule : kSides) {
    if ((mask & rule.mMask) == rule.mMask) key.sides |= rule.mSide;
  }
  return key;
}

String Prefixes(const KeyCode& key) {
  String text;
  for (const ModifierRule& rule : kModifiers) {
    if ((key.code & rule.mCode) != 0) text += rule.mPrefix;
  }
  return text;
}

std::uint8_t VirtualKeyOf(const KeyCode& key) {
  return static_cast<std::uint8_t>((key.code & KeyCode::kVirtualKeyMask) >> KeyCode::kVirtualKeyShift);
}

char16_t CharacterOf(const KeyCode& key) {
  return static_cast<char16_t>(key.code & KeyCode::kCharacterMask);
}

// The decimal number that a text begins with; 0 when it is none or too large for a character.
std::uint32_t ReadCharacterNumber(View text) {
  std::uint32_t number = 0;
  for (const char16_t unit : text) {
    if (unit < u'0' || unit > u'9') break;
    number = number * 10 + (unit - u'0');
    if (number > KeyCode::kCharacterMask) return 0;
  }
  return number;
}

// text is the name as it was given, upper the same in upper case.
KeyCode CharacterFromName(View text, View upper) {
  KeyCode key;
  if (upper.find(u"ALT") != View::npos) key.code = KeyCode::kAlt;
  const std::size_t open = text.find(u'[');
  const std::size_t close = open == View::npos ? open : text.find(u']', open);
  if (open != View::npos && close != View::npos) {
    key.code |= ReadCharacterNumber(text.substr(open + 1, close - open - 1));
  } else if (open == View::npos && !text.empty()) {
    key.code |= text.back();
  } else {
    key.code |= KeyCode::kPressed;
  }
  return key;
}

}  // namespace

KeyCode KeyCodeFromCharacter(char16_t character, std::uint32_t mask) {
  KeyCode key = WithModifiers(mask);
  key.code |= character;
  return key;
}

KeyCode KeyCodeFromVirtualKey(std::uint8_t virtualKey, bool pressed, bool repeated, std::uint32_t mask) {
  KeyCode key = WithModifiers(mask);
  key.code |= std::uint32_t{virtualKey} << KeyCode::kVirtualKeyShift | (pressed ? KeyCode::kPressed : 0);
  key.repeated = !pressed || repeated;
  return key;
}

String KeyCodeToDisplayText(const KeyCode& key) {
  const String prefixes = Prefixes(key);
  if ((key.code & KeyCode::kNoKey) != 0) return prefixes;
  if (const std::uint8_t virtualKey = VirtualKeyOf(key))
    return prefixes + String(GetKeyNames(virtualKey).mDisplayText);
  const char16_t character = CharacterOf(key);
  if (character >= 1 && character <= kLastControlCharacter)
    return prefixes + u"Ctrl+" + String(static_cast<char16_t>(character + kLetterOfControl));
  return character >= kFirstVisible && character <= kLastVisible ? prefixes + String(character) : prefixes;
}

String KeyCodeToName(const KeyCode& key) {
  const String prefixes = Prefixes(key);
  if ((key.code & KeyCode::kNoKey) != 0) return prefixes;
  if (const std::uint8_t virtualKey = VirtualKeyOf(key))
    return prefixes + String(GetKeyNames(virtualKey).mName);
  return prefixes + String::Format(u"[%d]", static_cast<std::int32_t>(CharacterOf(key)));
}

KeyCode KeyCodeFromName(const String& text) {
  const String upperText = text.ToUpper();
  const View upper = upperText;
  const std::size_t mark = upper.find(kVirtualKeyMark);
  if (mark == View::npos) return CharacterFromName(text, upper);
  KeyCode key;
  key.code = KeyCode::kPressed;
  for (const ModifierRule& rule : kModifiers) {
    if (upper.find(rule.mWord) != View::npos) key.code |= rule.mCode;
  }
  if (const auto virtualKey = FindVirtualKey(upper.substr(mark)))
    key.code |= std::uint32_t{*virtualKey} << KeyCode::kVirtualKeyShift;
  return key;
}

}  // namespace TF
