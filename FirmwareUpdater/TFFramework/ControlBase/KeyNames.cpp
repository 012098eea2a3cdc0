#include "TFFramework/ControlBase/KeyNames.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace TF {

namespace {

struct Row {
  std::uint8_t mCode;
  std::u16string_view mName;
  std::u16string_view mDisplayText;
};

constexpr Row kRows[] = {
    {0x08, u"VKEY_BACK", u"Back"},
    {0x09, u"VKEY_TAB", u"Tab"},
    {0x0C, u"VKEY_CLEAR", u"Clear"},
    {0x0D, u"VKEY_RETURN", u"Return"},
    {0x10, u"VKEY_SHIFT", u"Shift"},
    {0x11, u"VKEY_CONTROL", u"Control"},
    {0x12, u"VKEY_MENU", u"Menu"},
    {0x13, u"VKEY_PAUSE", u"Pause"},
    {0x14, u"VKEY_CAPITAL", u"Capital"},
    {0x15, u"VKEY_KANA", u"Kana"},
    {0x15, u"VKEY_HANGEUL", u"Hangeul"},
    {0x15, u"VKEY_HANGUL", u"Hangul"},
    {0x17, u"VKEY_JUNJA", u"Junja"},
    {0x18, u"VKEY_FINAL", u"Final"},
    {0x19, u"VKEY_HANJA", u"Hanja"},
    {0x19, u"VKEY_KANJI", u"Kanji"},
    {0x1B, u"VKEY_ESCAPE", u"Escape"},
    {0x1C, u"VKEY_CONVERT", u"Convert"},
    {0x1D, u"VKEY_NONCONVERT", u"Non-convert"},
    {0x1E, u"VKEY_ACCEPT", u"Accept"},
    {0x1F, u"VKEY_MODECHANGE", u"Mode Change"},
    {0x20, u"VKEY_SPACE", u"Space"},
    {0x21, u"VKEY_PAGEUP", u"Page Up"},
    {0x22, u"VKEY_PAGEDN", u"Page Down"},
    {0x23, u"VKEY_END", u"End"},
    {0x24, u"VKEY_HOME", u"Home"},
    {0x25, u"VKEY_LEFT", u"Left Arrow"},
    {0x26, u"VKEY_UP", u"Up Arrow"},
    {0x27, u"VKEY_RIGHT", u"Right Arrow"},
    {0x28, u"VKEY_DOWN", u"Down Arrow"},
    {0x29, u"VKEY_SELECT", u"Select"},
    {0x2A, u"VKEY_PRINT", u"Print"},
    {0x2B, u"VKEY_EXECUTE", u"Execute"},
    {0x2C, u"VKEY_SNAPSHOT", u"Snapshot"},
    {0x2D, u"VKEY_INSERT", u"Insert"},
    {0x2E, u"VKEY_DELETE", u"Del"},
    {0x2F, u"VKEY_HELP", u"Help"},
    {0x30, u"VKEY_0", u"0"},
    {0x31, u"VKEY_1", u"1"},
    {0x32, u"VKEY_2", u"2"},
    {0x33, u"VKEY_3", u"3"},
    {0x34, u"VKEY_4", u"4"},
    {0x35, u"VKEY_5", u"5"},
    {0x36, u"VKEY_6", u"6"},
    {0x37, u"VKEY_7", u"7"},
    {0x38, u"VKEY_8", u"8"},
    {0x39, u"VKEY_9", u"9"},
    {0x41, u"VKEY_A", u"A"},
    {0x42, u"VKEY_B", u"B"},
    {0x43, u"VKEY_C", u"C"},
    {0x44, u"VKEY_D", u"D"},
    {0x45, u"VKEY_E", u"E"},
    {0x46, u"VKEY_F", u"F"},
    {0x47, u"VKEY_G", u"G"},
    {0x48, u"VKEY_H", u"H"},
    {0x49, u"VKEY_I", u"I"},
    {0x4A, u"VKEY_J", u"J"},
    {0x4B, u"VKEY_K", u"K"},
    {0x4C, u"VKEY_L", u"L"},
    {0x4D, u"VKEY_M", u"M"},
    {0x4E, u"VKEY_N", u"N"},
    {0x4F, u"VKEY_O", u"O"},
    {0x50, u"VKEY_P", u"P"},
    {0x51, u"VKEY_Q", u"Q"},
    {0x52, u"VKEY_R", u"R"},
    {0x53, u"VKEY_S", u"S"},
    {0x54, u"VKEY_T", u"T"},
    {0x55, u"VKEY_U", u"U"},
    {0x56, u"VKEY_V", u"V"},
    {0x57, u"VKEY_W", u"W"},
    {0x58, u"VKEY_X", u"X"},
    {0x59, u"VKEY_Y", u"Y"},
    {0x5A, u"VKEY_Z", u"Z"},
    {0x5B, u"VKEY_LWIN", u"Left Win"},
    {0x5C, u"VKEY_RWIN", u"Right Win"},
    {0x5D, u"VKEY_APPS", u"Apps"},
    {0x5F, u"VKEY_SLEEP", u"Sleep"},
    {0x60, u"VKEY_NUMPAD0", u"Numpad 0"},
    {0x61, u"VKEY_NUMPAD1", u"Numpad 1"},
    {0x62, u"VKEY_NUMPAD2", u"Numpad 2"},
    {0x63, u"VKEY_NUMPAD3", u"Numpad 3"},
    {0x64, u"VKEY_NUMPAD4", u"Numpad 4"},
    {0x65, u"VKEY_NUMPAD5", u"Numpad 5"},
    {0x66, u"VKEY_NUMPAD6", u"Numpad 6"},
    {0x67, u"VKEY_NUMPAD7", u"Numpad 7"},
    {0x68, u"VKEY_NUMPAD8", u"Numpad 8"},
    {0x69, u"VKEY_NUMPAD9", u"Numpad 9"},
    {0x6A, u"VKEY_MULTIPLY", u"*"},
    {0x6B, u"VKEY_ADD", u"+"},
    {0x6C, u"VKEY_SEPARATOR", u"Separator"},
    {0x6D, u"VKEY_SUBTRACT", u"-"},
    {0x6E, u"VKEY_DECIMAL", u"."},
    {0x6F, u"VKEY_DIVIDE", u"/"},
    {0x70, u"VKEY_F1", u"F1"},
    {0x71, u"VKEY_F2", u"F2"},
    {0x72, u"VKEY_F3", u"F3"},
    {0x73, u"VKEY_F4", u"F4"},
    {0x74, u"VKEY_F5", u"F5"},
    {0x75, u"VKEY_F6", u"F6"},
    {0x76, u"VKEY_F7", u"F7"},
    {0x77, u"VKEY_F8", u"F8"},
    {0x78, u"VKEY_F9", u"F9"},
    {0x79, u"VKEY_F10", u"F10"},
    {0x7A, u"VKEY_F11", u"F11"},
    {0x7B, u"VKEY_F12", u"F12"},
    {0x7C, u"VKEY_F13", u"F13"},
    {0x7D, u"VKEY_F14", u"F14"},
    {0x7E, u"VKEY_F15", u"F15"},
    {0x7F, u"VKEY_F16", u"F16"},
    {0x80, u"VKEY_F17", u"F17"},
    {0x81, u"VKEY_F18", u"F18"},
    {0x82, u"VKEY_F19", u"F19"},
    {0x83, u"VKEY_F20", u"F20"},
    {0x84, u"VKEY_F21", u"F21"},
    {0x85, u"VKEY_F22", u"F22"},
    {0x86, u"VKEY_F23", u"F23"},
    {0x87, u"VKEY_F24", u"F24"},
    {0x90, u"VKEY_NUMLOCK", u"Numlock"},
    {0x91, u"VKEY_SCROLL", u"Scroll"},
    {0x92, u"VKEY_OEM_NEC_EQUAL", u"NEC Equal"},
    {0x92, u"VKEY_OEM_FJ_JISHO", u"Jisho"},
    {0x93, u"VKEY_OEM_FJ_MASSHOU", u"Masshou"},
    {0x94, u"VKEY_OEM_FJ_TOUROKU", u"Touroku"},
    {0x95, u"VKEY_OEM_FJ_LOYA", u"Loya"},
    {0x96, u"VKEY_OEM_FJ_ROYA", u"Roya"},
    {0xA0, u"VKEY_LSHIFT", u"Left Shift"},
    {0xA1, u"VKEY_RSHIFT", u"Right Shift"},
    {0xA2, u"VKEY_LCONTROL", u"Left Control"},
    {0xA3, u"VKEY_RCONTROL", u"Right Control"},
    {0xA4, u"VKEY_LMENU", u"Left Menu"},
    {0xA5, u"VKEY_RMENU", u"Right Menu"},
    {0xA6, u"VKEY_BROWSER_BACK", u"Browser Back"},
    {0xA7, u"VKEY_BROWSER_FORWARD", u"Browser Forward"},
    {0xA8, u"VKEY_BROWSER_REFRESH", u"Browser Refresh"},
    {0xA9, u"VKEY_BROWSER_STOP", u"Browser Stop"},
    {0xAA, u"VKEY_BROWSER_SEARCH", u"Browser Search"},
    {0xAB, u"VKEY_BROWSER_FAVORITES", u"Browser Favorites"},
    {0xAC, u"VKEY_BROWSER_HOME", u"Browser Home"},
    {0xAD, u"VKEY_VOLUME_MUTE", u"Volume Mute"},
    {0xAE, u"VKEY_VOLUME_DOWN", u"Volume Down"},
    {0xAF, u"VKEY_VOLUME_UP", u"Volume Up"},
    {0xB0, u"VKEY_MEDIA_NEXT_TRACK", u"Media Next Track"},
    {0xB1, u"VKEY_MEDIA_PREV_TRACK", u"Media Prev Track"},
    {0xB2, u"VKEY_MEDIA_STOP", u"Media Stop"},
    {0xB3, u"VKEY_MEDIA_PLAY_PAUSE", u"Media Play Pause"},
    {0xB4, u"VKEY_LAUNCH_MAIL", u"Launch Mail"},
    {0xB5, u"VKEY_LAUNCH_MEDIA_SELECT", u"Launch Media Select"},
    {0xB6, u"VKEY_LAUNCH_APP1", u"Launch App 1"},
    {0xB7, u"VKEY_LAUNCH_APP2", u"Launch App 2"},
};

constexpr std::size_t kCodes = 256;

std::array<KeyNames, kCodes> MakeNamesByCode() {
  std::array<KeyNames, kCodes> names{};
  for (const Row& row : kRows) names[row.mCode] = {row.mName, row.mDisplayText};
  return names;
}

}  // namespace

std::optional<std::uint8_t> FindVirtualKey(std::u16string_view name) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [name](const Row& candidate) { return candidate.mName == name; });
  return row == std::end(kRows) ? std::nullopt : std::optional(row->mCode);
}

KeyNames GetKeyNames(std::uint8_t virtualKey) {
  static const std::array<KeyNames, kCodes> names = MakeNamesByCode();
  return names[virtualKey];
}

}  // namespace TF
