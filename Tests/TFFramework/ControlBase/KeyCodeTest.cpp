#include "TFFramework/ControlBase/KeyCode.h"

#include <gtest/gtest.h>

#include "TFFramework/ControlBase/KeyNames.h"

namespace TF {

namespace {

KeyCode Code(std::uint32_t code) {
  KeyCode key;
  key.code = code;
  return key;
}

TEST(KeyCodeTest, NamesAreReadAsKeysOrCharacters) {
  const std::pair<const char16_t*, std::uint32_t> cases[] = {
      {u"Alt+VKEY_F4", 0x24730000},
      {u"ctrl+shift+vkey_f1", 0x23700000},
      {u"Command+VKEY_RETURN", 0x280D0000},
      {u"VKEY_KANJI", 0x20190000},
      {u"VKEY_HANJA", 0x20190000},
      {u"Alt+VKEY_NOTHING", 0x24000000},
      {u"VKEY_F1 ", 0x20000000},
      {u"Ctrl+[65]", 65},
      {u"Alt+[65]", 0x04000041},
      {u"[65535]", 0xFFFF},
      {u"[65536]", 0},
      {u"[]", 0},
      {u"[x]", 0},
      {u"[65x]", 65},
      {u"[\u0136\u0135]", 0},
      {u"[65", 0x20000000},
      {u"", 0x20000000},
      {u"Ctrl+a", 'a'},
      {u"Shift+A", 'A'},
      {u"Alt+x", 0x04000000 | 'x'},
  };
  for (const auto& [name, code] : cases) {
    const KeyCode key = KeyCodeFromName(name);
    EXPECT_EQ(key.code, code) << ToUtf8(name);
    EXPECT_EQ(key.sides, 0U);
    EXPECT_FALSE(key.repeated);
  }
}

// One of each run of codes, its ends, and every second name of a code.
TEST(KeyCodeTest, NamesStandForTheirCodes) {
  const std::pair<const char16_t*, std::uint8_t> codes[] = {{u"BACK", 0x08},
                                                            {u"RETURN", 0x0D},
                                                            {u"CAPITAL", 0x14},
                                                            {u"KANA", 0x15},
                                                            {u"HANGEUL", 0x15},
                                                            {u"HANGUL", 0x15},
                                                            {u"JUNJA", 0x17},
                                                            {u"HANJA", 0x19},
                                                            {u"KANJI", 0x19},
                                                            {u"ESCAPE", 0x1B},
                                                            {u"SPACE", 0x20},
                                                            {u"LEFT", 0x25},
                                                            {u"HELP", 0x2F},
                                                            {u"0", 0x30},
                                                            {u"9", 0x39},
                                                            {u"A", 0x41},
                                                            {u"Z", 0x5A},
                                                            {u"LWIN", 0x5B},
                                                            {u"APPS", 0x5D},
                                                            {u"SLEEP", 0x5F},
                                                            {u"NUMPAD0", 0x60},
                                                            {u"NUMPAD9", 0x69},
                                                            {u"SEPARATOR", 0x6C},
                                                            {u"DIVIDE", 0x6F},
                                                            {u"F1", 0x70},
                                                            {u"F24", 0x87},
                                                            {u"NUMLOCK", 0x90},
                                                            {u"SCROLL", 0x91},
                                                            {u"OEM_NEC_EQUAL", 0x92},
                                                            {u"OEM_FJ_JISHO", 0x92},
                                                            {u"OEM_FJ_ROYA", 0x96},
                                                            {u"LSHIFT", 0xA0},
                                                            {u"RMENU", 0xA5},
                                                            {u"BROWSER_HOME", 0xAC},
                                                            {u"VOLUME_MUTE", 0xAD},
                                                            {u"MEDIA_PLAY_PAUSE", 0xB3},
                                                            {u"LAUNCH_APP2", 0xB7}};
  for (const auto& [name, code] : codes)
    EXPECT_EQ(FindVirtualKey(std::u16string(u"VKEY_") + name), code) << ToUtf8(name);
  for (const char16_t* name : {u"VKEY_", u"VKEY_F25", u"vkey_f1", u"F1", u""})
    EXPECT_FALSE(FindVirtualKey(name));
}

TEST(KeyCodeTest, EveryKeyComesBackByItsName) {
  int keys = 0;
  for (std::uint32_t key = 1; key < 256; ++key) {
    const KeyNames names = GetKeyNames(static_cast<std::uint8_t>(key));
    EXPECT_EQ(names.mName.empty(), names.mDisplayText.empty()) << key;
    if (names.mName.empty()) continue;
    ++keys;
    const std::uint32_t code = KeyCode::kPressed | KeyCode::kAlt | KeyCode::kShift | key << 16;
    EXPECT_EQ(KeyCodeToName(Code(code)), String(u"Alt+Shift+") + String(names.mName));
    EXPECT_EQ(KeyCodeFromName(KeyCodeToName(Code(code))).code, code) << key;
  }
  // Three codes have more than one name.
  EXPECT_EQ(keys, 145);
}

TEST(KeyCodeTest, PeopleReadTextsOfTheirOwn) {
  const std::pair<std::uint32_t, const char16_t*> cases[] = {
      {0x2F210000, u"Ctrl+Alt+Shift+Cmd+Page Up"},
      {0x20150000, u"Hangul"},
      {0x20920000, u"Jisho"},
      {0x206B0000, u"+"},
      {0x202E0000, u"Del"},
      {0x20870000, u"F24"},
      {0x20690000, u"Numpad 9"},
      {0x20B70000, u"Launch App 2"},
      {0x20410000, u"A"},
      {0x20070000, u""},
      {1, u"Ctrl+A"},
      {26, u"Ctrl+Z"},
      {27, u""},
      {' ', u""},
      {'!', u"!"},
      {0x04000000 | '~', u"Alt+~"},
      {127, u""},
      {0xE4, u""},
      {0x81000000 | 'a', u"Ctrl+"},
  };
  for (const auto& [code, text] : cases)
    EXPECT_EQ(KeyCodeToDisplayText(Code(code)), text) << std::hex << code;
  EXPECT_EQ(KeyCodeToName(Code(0x04000041)), u"Alt+[65]");
}

TEST(KeyCodeTest, EventsCarryModifiersAndTheirSides) {
  struct Case {
    std::uint32_t mMask, mCode, mSides;
  };
  for (const Case& entry :
       {Case{0, 0, 0}, Case{0x18, 0x02000000, 0x1}, Case{0x28, 0x02000000, 0x2}, Case{0x3, 0x01000000, 0x4},
        Case{0x5, 0x01000000, 0x8}, Case{0xC0, 0x04000000, 0x10}, Case{0x140, 0x04000000, 0x20},
        Case{0x600, 0x08000000, 0x40}, Case{0xA00, 0x08000000, 0x80}, Case{0x38, 0x02000000, 0x3},
        Case{0x10, 0, 0}, Case{0x1000, 0x10000000, 0}}) {
    const KeyCode character = KeyCodeFromCharacter(u'x', entry.mMask);
    EXPECT_EQ(character.code, entry.mCode | 'x') << entry.mMask;
    EXPECT_EQ(character.sides, entry.mSides) << entry.mMask;
    EXPECT_FALSE(character.repeated);
    const KeyCode press = KeyCodeFromVirtualKey(0x73, true, false, entry.mMask);
    EXPECT_EQ(press.code, entry.mCode | 0x20730000) << entry.mMask;
    EXPECT_FALSE(press.repeated);
  }
  EXPECT_TRUE(KeyCodeFromVirtualKey(0x73, true, true, 0).repeated);
  const KeyCode release = KeyCodeFromVirtualKey(0x73, false, false, 0);
  EXPECT_EQ(release.code, 0x00730000U);
  EXPECT_TRUE(release.repeated);
}

}  // namespace

}  // namespace TF
