#include "Platform/Desktop/SdlKeys.h"

#include <algorithm>
#include <array>
#include <span>

#include "Platform/InputBits.h"

namespace Platform {

namespace {

struct KeyEntry {
  SDL_Keycode mSymbol;
  std::uint8_t mVirtualKey;
};

constexpr std::uint8_t kBackspace = 0x08;
constexpr std::uint8_t kTab = 0x09;
constexpr std::uint8_t kReturn = 0x0D;
constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kNumpad0 = 0x60;
constexpr std::uint8_t kF1 = 0x70;
constexpr std::uint8_t kF13 = 0x7C;
constexpr char16_t kDeletedWord = 127;

constexpr KeyEntry kNamedKeys[] = {
    {SDLK_BACKSPACE, kBackspace},
    {SDLK_TAB, kTab},
    {SDLK_RETURN, kReturn},
    {SDLK_RETURN2, kReturn},
    {SDLK_KP_ENTER, kReturn},
    {SDLK_ESCAPE, kEscape},
    {SDLK_SPACE, 0x20},
    {SDLK_CANCEL, 0x03},
    {SDLK_CLEAR, 0x0C},
    {SDLK_LSHIFT, 0x10},
    {SDLK_RSHIFT, 0x10},
    {SDLK_LCTRL, 0x11},
    {SDLK_RCTRL, 0x11},
    {SDLK_LALT, 0x12},
    {SDLK_RALT, 0x12},
    {SDLK_MODE, 0x12},
    {SDLK_PAUSE, 0x13},
    {SDLK_CAPSLOCK, 0x14},
    {SDLK_PAGEUP, 0x21},
    {SDLK_PRIOR, 0x21},
    {SDLK_PAGEDOWN, 0x22},
    {SDLK_END, 0x23},
    {SDLK_HOME, 0x24},
    {SDLK_LEFT, 0x25},
    {SDLK_UP, 0x26},
    {SDLK_RIGHT, 0x27},
    {SDLK_DOWN, 0x28},
    {SDLK_SELECT, 0x29},
    {SDLK_EXECUTE, 0x2B},
    {SDLK_PRINTSCREEN, 0x2C},
    {SDLK_SYSREQ, 0x2C},
    {SDLK_INSERT, 0x2D},
    {SDLK_DELETE, 0x2E},
    {SDLK_HELP, 0x2F},
    {SDLK_LGUI, 0x5B},
    {SDLK_RGUI, 0x5C},
    {SDLK_APPLICATION, 0x5D},
    {SDLK_MENU, 0x5D},
    {SDLK_SLEEP, 0x5F},
    {SDLK_KP_MULTIPLY, 0x6A},
    {SDLK_KP_PLUS, 0x6B},
    {SDLK_KP_COMMA, 0x6C},
    {SDLK_SEPARATOR, 0x6C},
    {SDLK_KP_MINUS, 0x6D},
    {SDLK_KP_DIVIDE, 0x6F},
    {SDLK_NUMLOCKCLEAR, 0x90},
    {SDLK_SCROLLLOCK, 0x91},
    {SDLK_AC_BACK, 0xA6},
    {SDLK_AC_FORWARD, 0xA7},
    {SDLK_AC_REFRESH, 0xA8},
    {SDLK_AC_STOP, 0xA9},
    {SDLK_AC_SEARCH, 0xAA},
    {SDLK_AC_BOOKMARKS, 0xAB},
    {SDLK_AC_HOME, 0xAC},
    {SDLK_WWW, 0xAC},
    {SDLK_AUDIOMUTE, 0xAD},
    {SDLK_MUTE, 0xAD},
    {SDLK_VOLUMEDOWN, 0xAE},
    {SDLK_VOLUMEUP, 0xAF},
    {SDLK_AUDIONEXT, 0xB0},
    {SDLK_AUDIOPREV, 0xB1},
    {SDLK_AUDIOSTOP, 0xB2},
    {SDLK_AUDIOPLAY, 0xB3},
    {SDLK_MAIL, 0xB4},
    {SDLK_MEDIASELECT, 0xB5},
    {SDLK_COMPUTER, 0xB6},
    {SDLK_CALCULATOR, 0xB7},
};

constexpr KeyEntry kPunctuation[] = {
    {';', 0xBA}, {'=', 0xBB}, {'+', 0xBB},  {',', 0xBC}, {'-', 0xBD},  {'.', 0xBE}, {'/', 0xBF},
    {'`', 0xC0}, {'[', 0xDB}, {'\\', 0xDC}, {']', 0xDD}, {'\'', 0xDE}, {'<', 0xE2},
};

struct PlaceEntry {
  SDL_Scancode mPlace;
  std::uint8_t mVirtualKey;
};

constexpr PlaceEntry kPlaces[] = {
    {SDL_SCANCODE_SEMICOLON, 0xBA},      {SDL_SCANCODE_EQUALS, 0xBB},       {SDL_SCANCODE_COMMA, 0xBC},
    {SDL_SCANCODE_MINUS, 0xBD},          {SDL_SCANCODE_PERIOD, 0xBE},       {SDL_SCANCODE_SLASH, 0xBF},
    {SDL_SCANCODE_GRAVE, 0xC0},          {SDL_SCANCODE_LEFTBRACKET, 0xDB},  {SDL_SCANCODE_BACKSLASH, 0xDC},
    {SDL_SCANCODE_NONUSHASH, 0xDC},      {SDL_SCANCODE_RIGHTBRACKET, 0xDD}, {SDL_SCANCODE_APOSTROPHE, 0xDE},
    {SDL_SCANCODE_NONUSBACKSLASH, 0xE2},
};

std::uint8_t FindSymbol(std::span<const KeyEntry> entries, SDL_Keycode symbol) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const KeyEntry& entry) { return entry.mSymbol == symbol; });
  return found == entries.end() ? std::uint8_t{0} : found->mVirtualKey;
}

// The number of value in a row that begins at first.
std::uint8_t Row(std::int32_t value, std::int32_t first, std::uint8_t start) {
  return static_cast<std::uint8_t>(start + (value - first));
}

bool IsWithin(std::int32_t value, std::int32_t first, std::int32_t last) {
  return value >= first && value <= last;
}

std::uint8_t LetterOrDigit(SDL_Keycode symbol) {
  if (IsWithin(symbol, 'a', 'z')) return Row(symbol, 'a', 'A');
  return IsWithin(symbol, '0', '9') ? Row(symbol, '0', '0') : std::uint8_t{0};
}

// Of a key whose symbol says nothing: what stands there on a Latin keyboard.
std::uint8_t AtPlace(SDL_Scancode place) {
  if (IsWithin(place, SDL_SCANCODE_A, SDL_SCANCODE_Z)) return Row(place, SDL_SCANCODE_A, 'A');
  if (IsWithin(place, SDL_SCANCODE_1, SDL_SCANCODE_9)) return Row(place, SDL_SCANCODE_1, '1');
  if (place == SDL_SCANCODE_0) return '0';
  const auto* const found = std::find_if(std::begin(kPlaces), std::end(kPlaces),
                                         [&](const PlaceEntry& entry) { return entry.mPlace == place; });
  return found == std::end(kPlaces) ? std::uint8_t{0} : found->mVirtualKey;
}

bool IsDigitPlace(SDL_Scancode place) {
  return IsWithin(place, SDL_SCANCODE_1, SDL_SCANCODE_0);
}

std::uint8_t KeypadKey(SDL_Keycode symbol, bool numLock) {
  constexpr std::uint8_t kNavigation[] = {0x23, 0x28, 0x22, 0x25, 0x0C, 0x27, 0x24, 0x26, 0x21};
  if (symbol == SDLK_KP_0) return numLock ? kNumpad0 : std::uint8_t{0x2D};
  if (symbol == SDLK_KP_PERIOD) return numLock ? 0x6E : 0x2E;
  if (!IsWithin(symbol, SDLK_KP_1, SDLK_KP_9)) return 0;
  return numLock ? Row(symbol, SDLK_KP_1, kNumpad0 + 1) : kNavigation[symbol - SDLK_KP_1];
}

}  // namespace

std::uint8_t ToVirtualKey(const SDL_Keysym& key) {
  if (const std::uint8_t found = LetterOrDigit(key.sym)) return found;
  if (const std::uint8_t found = FindSymbol(kNamedKeys, key.sym)) return found;
  if (const std::uint8_t found = KeypadKey(key.sym, (key.mod & KMOD_NUM) != 0)) return found;
  if (IsWithin(key.sym, SDLK_F1, SDLK_F12)) return Row(key.sym, SDLK_F1, kF1);
  if (IsWithin(key.sym, SDLK_F13, SDLK_F24)) return Row(key.sym, SDLK_F13, kF13);
  const std::uint8_t punctuation = FindSymbol(kPunctuation, key.sym);
  // Where digits take Shift, the keys of the row count as digits nevertheless.
  return punctuation != 0 && !IsDigitPlace(key.scancode) ? punctuation : AtPlace(key.scancode);
}

std::uint32_t ToModifiers(std::uint16_t mod, bool rightAltIsAltGr) {
  struct Side {
    std::uint16_t mMod;
    std::uint32_t mBits;
  };
  constexpr std::array kPlain{Side{KMOD_LSHIFT, ModifierBit::kShift | ModifierBit::kLeftShift},
                              Side{KMOD_RSHIFT, ModifierBit::kShift | ModifierBit::kRightShift},
                              Side{KMOD_LGUI, ModifierBit::kCommand | ModifierBit::kLeftCommand},
                              Side{KMOD_RGUI, ModifierBit::kCommand | ModifierBit::kRightCommand}};
  constexpr std::array kWithoutAltGr{Side{KMOD_LCTRL, ModifierBit::kCtrl | ModifierBit::kLeftCtrl},
                                     Side{KMOD_RCTRL, ModifierBit::kCtrl | ModifierBit::kRightCtrl},
                                     Side{KMOD_LALT, ModifierBit::kAlt | ModifierBit::kLeftAlt},
                                     Side{KMOD_RALT, ModifierBit::kAlt | ModifierBit::kRightAlt}};
  std::uint32_t bits = 0;
  const auto add = [&](const auto& sides) {
    for (const Side& side : sides) bits |= (mod & side.mMod) != 0 ? side.mBits : 0;
  };
  add(kPlain);
  const int altGr = KMOD_MODE | (rightAltIsAltGr ? KMOD_RALT : 0);
  if ((mod & altGr) == 0) add(kWithoutAltGr);
  return bits;
}

char16_t ToControlCharacter(std::uint8_t virtualKey, std::uint32_t modifiers) {
  if ((modifiers & ModifierBit::kAlt) != 0) return 0;
  const bool ctrl = (modifiers & ModifierBit::kCtrl) != 0;
  switch (virtualKey) {
    case kBackspace:
      return ctrl ? kDeletedWord : kBackspace;
    case kTab:
    case kReturn:
    case kEscape:
      return virtualKey;
    default:
      break;
  }
  if (!ctrl || !IsWithin(virtualKey, 'A', 'Z')) return 0;
  return static_cast<char16_t>(virtualKey - 'A' + 1);
}

}  // namespace Platform
