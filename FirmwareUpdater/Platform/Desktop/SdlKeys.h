#pragma once

#include <SDL_keyboard.h>

#include <cstdint>

namespace Platform {

// The virtual key number of KeyEvent; 0 for a key without one.
std::uint8_t ToVirtualKey(const SDL_Keysym& key);

// ModifierBit mask of SDL's one. With AltGr, which may be the right Alt key, it has neither Ctrl nor Alt.
std::uint32_t ToModifiers(std::uint16_t mod, bool rightAltIsAltGr);

// The control character that a press types; 0 for none.
char16_t ToControlCharacter(std::uint8_t virtualKey, std::uint32_t modifiers);

}  // namespace Platform
