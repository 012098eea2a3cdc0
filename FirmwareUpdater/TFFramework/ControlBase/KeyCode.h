#pragma once

#include <cstdint>

#include "Platform/InputBits.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A key that went down or up, or a character, with the modifiers that were held.
struct KeyCode {
  static constexpr std::uint32_t kCharacterMask = 0x0000FFFF;
  static constexpr std::uint32_t kVirtualKeyMask = 0x00FF0000;
  static constexpr std::uint32_t kVirtualKeyShift = 16;
  static constexpr std::uint32_t kCtrl = 1U << 24;
  static constexpr std::uint32_t kShift = 1U << 25;
  static constexpr std::uint32_t kAlt = 1U << 26;
  static constexpr std::uint32_t kCommand = 1U << 27;
  static constexpr std::uint32_t kFifth = 1U << 28;
  static constexpr std::uint32_t kPressed =
      1U << 29;  // Of a virtual key; clear on its release and on characters.
  static constexpr std::uint32_t kNoKey = 1U << 31;

  // The bits above. Two keys are the same when these are.
  std::uint32_t code = 0;
  // 0x1 left Shift, 0x2 right Shift, and so on for Ctrl, Alt and Command.
  std::uint32_t sides = 0;
  // On a press: the key was down already. True on a release, false on a character.
  bool repeated = false;
};

// The modifiers that go with an event.
namespace Modifier = Platform::ModifierBit;

// From what a window hears; mask is made of Modifier's bits.
KeyCode KeyCodeFromCharacter(char16_t character, std::uint32_t mask);
KeyCode KeyCodeFromVirtualKey(std::uint8_t key, bool pressed, bool repeated, std::uint32_t mask);

// For people to read, such as "Ctrl+Shift+F1". A key without a text leaves its modifiers alone.
String KeyCodeToDisplayText(const KeyCode& key);
// For documents, such as "Ctrl+VKEY_F1"; a character is its number, as "[65]".
String KeyCodeToName(const KeyCode& key);
// Reads a name in any case. A virtual key takes all four modifiers, a character Alt alone, and a name that is
// none is a press of no key. Names are those that KeyCodeToName writes, but for Command, which is read as
// "Command".
KeyCode KeyCodeFromName(const String& text);

// Whole codes of key presses without modifiers.
struct PressedKey {
  static constexpr std::uint32_t kReturn = 0x200D0000;
  static constexpr std::uint32_t kEscape = 0x201B0000;
  static constexpr std::uint32_t kPageUp = 0x20210000;
  static constexpr std::uint32_t kPageDown = 0x20220000;
  static constexpr std::uint32_t kEnd = 0x20230000;
  static constexpr std::uint32_t kHome = 0x20240000;
  static constexpr std::uint32_t kLeft = 0x20250000;
  static constexpr std::uint32_t kUp = 0x20260000;
  static constexpr std::uint32_t kRight = 0x20270000;
  static constexpr std::uint32_t kDown = 0x20280000;
};

}  // namespace TF
