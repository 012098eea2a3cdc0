#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/DocumentSource.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/Resources.h"

// The documents that are linked into the program, checked as data.

namespace TF {
namespace {

const char16_t* const kFrameworkSource = u"::FRAMEWORK_STRINGS";
const char16_t* const kApplicationSource = u"::APP_STRINGS";
constexpr std::uint32_t kEnglishLanguage = 0x0009;
constexpr std::uint32_t kTranslations[] = {0x000A, 0x0007, 0x0011, 0x000C, 0x0010, 0x0012, 0x7C04, 0x0004};

struct FrameworkText {
  const char16_t* mKey;
  const char16_t* mText;
};

const FrameworkText kFrameworkTexts[] = {
    {u"UNDO_IN_PROGRESS", u"Undo in progress..."},
    {u"REDO_IN_PROGRESS", u"Redo in progress..."},
    {u"EXCEPTION_ID",
     u"The application has encountered Error ID %d.  Please contact Ombrel Technical Support."},
    {u"EDIT_CUT", u"Cut"},
    {u"EDIT_COPY", u"Copy"},
    {u"EDIT_PASTE", u"Paste"},
    {u"EDIT_DELETE", u"Delete"},
    {u"STARTUP_ERROR", u"The application encountered problems during startup and will now close."},
    {u"STARTUP_ERROR_CAPTION", u"Error"},
    {u"ERRORPNG_OPEN", u"[read_png_file] File %s could not be opened for reading"},
    {u"ERRORPNG_NOT_PNG", u"[read_png_file] File %s is not recognized as a PNG file"},
    {u"ERRORPNG_READ_STRUCT", u"[read_png_file] png_create_read_struct failed"},
    {u"ERRORPNG_INFO_STRUCT_READ", u"[read_png_file] png_create_info_struct failed"},
    {u"ERRORPNG_INIT_IO", u"[read_png_file] Error during init_io"},
    {u"ERRORPNG_READ_IMAGE", u"[read_png_file] Error during read_image"},
    {u"ERRORPNG_OPEN_FOR_WRITING", u"[write_png_file] File %s could not be opened for writing"},
    {u"ERRORPNG_WRITE_STRUCT", u"[write_png_file] png_create_write_struct failed"},
    {u"ERRORPNG_INFO_STRUCT_WRITE", u"[write_png_file] png_create_info_struct failed"},
    {u"ERRORPNG_WRITE_HEADER", u"[write_png_file] Error during writing header"},
    {u"ERRORPNG_WRITE_BYTES", u"[write_png_file] Error during writing bytes"},
    {u"ERRORPNG_END_OF_WRITE", u"[write_png_file] Error during end of write"},
    {u"GL_ERROR_CAPTION", u"OpenGL Error"},
    {u"GL_ERROR_MESSAGE_GET_PROC_ADDRESS",
     u"wglGetProcAddress(\\\"wglGetExtensionsStringARB\\\") failed with error %d: %s."},
    {u"GL_ERROR_MESSAGE_MAKE_CONTEXT_CURRENT", u"wglMakeCurrent failed with error %d: %s."},
    {u"GL_ERROR_MESSAGE_SET_PIXEL_FORMAT", u"SetPixelFormat failed."},
    {u"GL_ERROR_MESSAGE_CREATE_CONTEXT", u"wglCreateContext failed."},
    {u"GL_ERROR_MESSAGE_CHOOSE_PIXEL_FORMAT", u"ChoosePixelFormat failed."},
    {u"GL_ERROR_UPDATE_DRIVER",
     u"Updating your video card driver, with the latest driver from the manufacturer of your video card, may "
     u"solve this issue."},
    {u"HOURS_SINGULAR", u"Hour"},
    {u"HOURS_PLURAL", u"Hours"},
    {u"MINUTES_SINGULAR", u"Minute"},
    {u"MINUTES_PLURAL", u"Minutes"},
    {u"SECONDS_SINGULAR", u"Second"},
    {u"SECONDS_PLURAL", u"Seconds"},
    {u"REMAINING", u"Remaining"},
};

struct ApplicationText {
  const char16_t* mSection;
  const char16_t* mKey;
  const char16_t* mText;
};

const ApplicationText kApplicationTexts[] = {
    {u"|Brimline", u"SELECT_FIRMWARE_FILE_DIALOG_TITLE", u"Select Firmware File"},
    {u"|Brimline", u"EXIT_APPLICATION_DIALOG_TITLE", u"Update In Process"},
    {u"|Brimline", u"EXIT_APPLICATION_DIALOG_MESSAGE",
     u"Update is currently in process.  Exiting this application in the middle of an update may make your "
     u"device unusable until you complete an update. It is recommended that you allow the update to complete "
     u"before exiting this application.  Are you sure you want to exit ? "},
    {u"|Brimline", u"SELECT_FIRMWARE_FILE_DIALOG_FILE_FILTER",
     u"Firmware Files (*.bin)|*.bin|All files (*.*)|*.*\""},
    {u"|Brimline", u"SELECT_FIRMWARE_FILE_DEFAULT_FILE_EXTENSION", u"*.bin"},
    {u"|Brimline", u"WAITING_FOR_DEVICE_TO_ENTER_UPDATE_MODE_CURSOR_TITLE",
     u"Putting Device in Update Mode..."},
    {u"Brimline|mainControl", u"LABEL", u"Varnok Tessel Firmware Updater"},
    {u"Brimline|toolTip", u"LABEL", u"Tool Tip Test Text"},
    {u"Framework.ProgressBar|percentCompleteLabel", u"LABEL", u"99"},
    {u"Framework.ProgressBar|percentSymbolLabel", u"LABEL", u"%"},
    {u"Framework.ProgressBar|timeRemainingLabel", u"LABEL", u"5 seconds"},
    {u"Framework.PopupMenu|templateItem", u"LABEL", u"Context Menu"},
    {u"FirmwareUpdater.MainControl|mainMenu", u"MENU_LABEL.00", u"File"},
    {u"FirmwareUpdater.MainControl|mainMenu", u"CONTEXT_MENU0.00.NID_MENU_FILE_ITEM_1",
     u"Select Firmware File"},
    {u"FirmwareUpdater.MainControl|buttonExit", u"LABEL", u"EXIT"},
    {u"FirmwareUpdater.MainControl|buttonUpdateFirmware", u"LABEL", u"UPDATE FIRMWARE"},
    {u"FirmwareUpdater.MainControl|buttonScanForDevice", u"LABEL", u"SCAN FOR DEVICE"},
    {u"FirmwareUpdater.MainControl|buttonReinitialize", u"LABEL", u"RESTART"},
    {u"FirmwareUpdater.MainControl|buttonManualDeviceHasUpdatedRescanButton", u"LABEL", u"NEXT"},
    {u"FirmwareUpdater.MainControl|labelDeviceFirmwareVersion", u"LABEL",
     u"Device's current firmware version: %s"},
    {u"FirmwareUpdater.MainControl|labelFileFirmwareVersion", u"LABEL", u"Update to firmware version: %s"},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL", u" "},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_SCANNING_FOR_DEVICE",
     u"Looking for device."},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_DEVICES_AVAILABLE_NONE_SELECTED", u"  "},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_DEVICE_NOT_IN_UPDATE_MODE", u"  "},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_DEVICE_IN_UPDATE_MODE", u"  "},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_DEVICE_CANNOT_BE_UPDATED", u" "},
    {u"FirmwareUpdater.MainControl|labelDeviceInformation", u"LABEL_NO_DEVICE_FOUND",
     u"The Varnok Tessel was not found.\n\n1. Turn the device off.\n2. Connect the device to your computer "
     u"with a USB cable.\n3. Turn the device on.\n4. Click the \"SCAN FOR DEVICE\" button."},
    {u"FirmwareUpdater.MainControl|labelFirmwareFileInformation", u"LABEL", u" "},
    {u"FirmwareUpdater.MainControl|labelFirmwareFileInformation", u"LABEL_NO_FILE_DEFINED",
     u"Use the file menu to open a firmware file."},
    {u"FirmwareUpdater.MainControl|labelFirmwareFileInformation", u"LABEL_FIRMARE_FILE_INVALID",
     u"The firmware update file is missing or invalid."},
    {u"FirmwareUpdater.MainControl|labelFirmwareFileInformation", u"LABEL_FIRMARE_FILE_FOUND_VERSION_KNOWN",
     u"   "},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_READY_FOR_UPDATE",
     u"Click the \"UPDATE FIRMWARE\" button to start the update process."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_IN_PROGRESS",
     u"Firmware update in progress. Do not disconnect the Tessel."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_ABORTED",
     u"Update aborted."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_SUCCEEDED",
     u"Your Tessel has been successfully updated. You may now close this application."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_NOT_NEEDED",
     u"Your Tessel is using the most current firmware. You do not need to update it."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_SUCESS_UNKNOWN",
     u"Your Tessel is not responding. Please try the update once more. Disconnect and reconnect Tessel from "
     u"your computer, power Tessel off and then on again, and then click \"RESTART\""},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_SENT_BUT_NOT_SUCCESSFUL",
     u"The update does not appear to have been successful. Press the \"RESTART\" button to try again."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_UPDATE_TRANSITIONING_AFTER_UPDATE",
     u"Please wait while your device installs the update. When the device has reset press the \"NEXT\" "
     u"button."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation",
     u"LABEL_UPDATE_TRANSITIONING_TO_UPDATE_MODE", u"Waiting for the device to restart in Update Mode."},
    {u"FirmwareUpdater.MainControl|labelUpdateProcessInformation", u"LABEL_READY_FOR_DOWNGRADE_UPDATE",
     u"This updater will update your device to a firmware version that is the same or lower than what is "
     u"currently on your device.\n\nIf you are sure you would like to continue, click the \"UPDATE "
     u"FIRMWARE\" button to start the update process."},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_CANNOT_UPDATE_FILE_ACCESS_FAILURE",
     u"The device can not be updated because of a file access error. Press the \"RESTART\" button to attempt "
     u"restart the update process."},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_CANNOT_UPDATE_SYSTEM_FAILURE",
     u"The device can not be updated because of a system failure. Press the \"RESTART\" button to attempt "
     u"restart the update process."},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_DEVICE_CANNOT_BE_UPDATED_NO_REASON",
     u"The device can not be updated because of an unknown error. Press the \"RESTART\" button to attempt "
     u"restart the update process."},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_DEVICE_DEVICE_ACCESS_FAILURE",
     u"The update failed because Tessel cannot be accessed.\n\n1. Turn the device off.\n2. Connect the "
     u"device to your computer with a USB cable.\n3. Turn the device on.\n4. Click the \"RESTART\" button."},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_DRIVER_IS_TOO_OLD", u" "},
    {u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError", u"LABEL_UPDATE_NOT_NEEDED",
     u"The Tessel device is up to date. An update is not needed."},
    {u"FirmwareUpdater.MainControl|productLogo", u"LABEL", u"TESSEL"},
    {u"FirmwareUpdater.MainControl|firmwareUpdateTextLabel", u"LABEL", u"FIRMWARE UPDATER"},
    {u"FirmwareUpdater.MainControl|updaterVersionLabel", u"LABEL", u"Updater: %s"},
};

const char16_t* const kProcessLabel = u"FirmwareUpdater.MainControl|labelUpdateProcessInformation";
const char16_t* const kErrorLabel = u"FirmwareUpdater.MainControl|labelDeviceCannotUpdateError";

// Keys of the document that have no text.
const std::pair<const char16_t*, const char16_t*> kKeysWithoutText[] = {
    {kProcessLabel, u"LABEL"},
    {kProcessLabel, u"LABEL_UPDATE_FAILED"},
    {kErrorLabel, u"LABEL"},
    {kErrorLabel, u"LABEL_NO_DEVICE_FOUND"},
};

// What a document holds, with no regard to languages.
class TextCensus : public XmlHandler {
 public:
  explicit TextCensus(const char16_t* source) {
    DocumentSource document;
    EXPECT_EQ(document.Open(source), kSuccess);
    EXPECT_EQ(XmlReader(*this).Parse(document.GetBytes()), kSuccess);
  }
  void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) override {
    if (++mDepth == 1) mRoot = std::u16string(name);
    ++mCounts[std::u16string(name)];
    if (name == u"StringTable") mSection = attributes.Find(u"ID").value();
    if (name == u"String") {
      mKey = attributes.Find(u"ID").value();
      mKeys.emplace_back(mSection, mKey);
    }
    if (name == u"Locale") mTranslated.emplace(mSection, mKey);
  }
  void OnEndElement(std::u16string_view) override { --mDepth; }
  void OnCharacterData(std::u16string_view) override {}

  using Key = std::pair<std::u16string, std::u16string>;
  int mDepth = 0;
  std::u16string mRoot, mSection, mKey;
  std::map<std::u16string, int> mCounts;
  std::vector<Key> mKeys;
  std::set<Key> mTranslated;
};

LStringTable::Strings FrameworkTextsIn(std::uint32_t language) {
  LControlFactory factory(u"Tessel");
  EXPECT_EQ(factory.LoadStrings(kFrameworkSource, u"::NONE", language), kSuccess);
  const auto table = factory.GetFrameworkStrings();
  return table ? table->GetStrings() : LStringTable::Strings();
}

std::vector<std::string> PlaceholdersOf(const std::string& text) {
  std::vector<std::string> placeholders;
  for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
    placeholders.push_back(text.substr(at, 2));
  }
  return placeholders;
}

std::size_t CountOf(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

class EmbeddedStringsTest : public testing::Test {
 protected:
  void SetUp() override { RegisterProgramResources(); }
  void TearDown() override { SetResources({}); }
};

TEST_F(EmbeddedStringsTest, DocumentsAreUtf16WithAByteOrderMark) {
  for (const char16_t* source : {kFrameworkSource, kApplicationSource}) {
    DocumentSource document;
    ASSERT_EQ(document.Open(source), kSuccess);
    const auto bytes = document.GetBytes();
    const std::u16string_view start = u"\xFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>";
    ASSERT_GT(bytes.size(), start.size() * 2);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(start.size() * 2),
                           reinterpret_cast<const unsigned char*>(start.data())));
  }
}

TEST_F(EmbeddedStringsTest, EveryElementIsThereOnce) {
  const TextCensus framework(kFrameworkSource);
  EXPECT_EQ(framework.mCounts, (std::map<std::u16string, int>{{u"Ombrel_StringTable_Definitions", 1},
                                                              {u"StringTable", 1},
                                                              {u"String", 35},
                                                              {u"Locale", 35 * 9}}));
  const TextCensus application(kApplicationSource);
  EXPECT_EQ(application.mCounts, (std::map<std::u16string, int>{{u"Ombrel_StringTable_Definitions", 1},
                                                                {u"Application", 1},
                                                                {u"StringTable", 22},
                                                                {u"String", 55},
                                                                {u"Locale", 51}}));
  for (const TextCensus* census : {&framework, &application}) {
    EXPECT_EQ(census->mRoot, u"Ombrel_StringTable_Definitions");
    EXPECT_EQ(std::set<TextCensus::Key>(census->mKeys.begin(), census->mKeys.end()).size(),
              census->mKeys.size());
  }
}

TEST_F(EmbeddedStringsTest, FrameworkTextsInEnglishAreLetterForLetter) {
  const auto texts = FrameworkTextsIn(kEnglishLanguage);
  EXPECT_EQ(texts.size(), std::size(kFrameworkTexts));
  for (const auto& [key, text] : kFrameworkTexts) {
    const auto found = texts.find(key);
    ASSERT_NE(found, texts.end()) << ToUtf8(key);
    EXPECT_EQ(ToUtf8(found->second), ToUtf8(text)) << ToUtf8(key);
  }
}

TEST_F(EmbeddedStringsTest, EveryTranslationKeepsPlaceholdersBlanksAndBackslashes) {
  for (const std::uint32_t language : kTranslations) {
    const auto texts = FrameworkTextsIn(language);
    EXPECT_EQ(texts.size(), std::size(kFrameworkTexts)) << language;
    int same = 0;
    for (const auto& [key, english] : kFrameworkTexts) {
      const auto found = texts.find(key);
      ASSERT_NE(found, texts.end()) << language << ' ' << ToUtf8(key);
      const std::string text = ToUtf8(found->second);
      EXPECT_EQ(PlaceholdersOf(text), PlaceholdersOf(ToUtf8(english))) << text;
      for (const char* part : {"  ", "\\\"", "[read_png_file] ", "[write_png_file] "}) {
        EXPECT_EQ(CountOf(text, part), CountOf(ToUtf8(english), part)) << text;
      }
      EXPECT_FALSE(text.empty() || text.front() == ' ' || text.back() == ' ') << text;
      EXPECT_EQ(text.find('\n'), text.npos) << text;
      if (text == ToUtf8(english)) ++same;
    }
    // "Error" in Spanish and "Minute" in German are no words left in English.
    EXPECT_LE(same, 2) << language;
  }
}

TEST_F(EmbeddedStringsTest, EveryLanguageStandsUnderItsOwnNumber) {
  const std::pair<std::uint32_t, const char16_t*> words[] = {
      {0x0009, u"Paste"},  {0x000A, u"Pegar"},   {0x0007, u"Einfügen"}, {0x0011, u"貼り付け"},
      {0x000C, u"Coller"}, {0x0010, u"Incolla"}, {0x0012, u"붙여넣기"}, {0x7C04, u"貼上"},
      {0x0004, u"粘贴"},   {0x0409, u"Paste"},   {0x0407, u"Einfügen"}, {0x0411, u"貼り付け"},
      {0x040C, u"Coller"}, {0x0410, u"Incolla"}, {0x0412, u"붙여넣기"}, {0x0404, u"貼上"},
      {0x0C04, u"貼上"},   {0x1404, u"貼上"},    {0x0804, u"粘贴"},     {0x0413, u"Paste"}};
  for (const auto& [language, word] : words) {
    EXPECT_EQ(FrameworkTextsIn(language)[String(u"EDIT_PASTE")], word) << std::hex << language;
  }
}

// "5 Seconds Remaining" in the time label: the words stand in the middle of a phrase.
TEST_F(EmbeddedStringsTest, WordsOfTheTimeLabelAreLowerCaseWhereTheLanguageWantsThat) {
  constexpr std::uint32_t kSpanish = 0x000A, kFrench = 0x000C, kItalian = 0x0010, kGerman = 0x0007;
  const auto isCapital = [](const String& text) { return text[0] >= u'A' && text[0] <= u'Z'; };
  for (const char16_t* key : {u"HOURS_SINGULAR", u"HOURS_PLURAL", u"MINUTES_SINGULAR", u"MINUTES_PLURAL",
                              u"SECONDS_SINGULAR", u"SECONDS_PLURAL", u"REMAINING"}) {
    for (const std::uint32_t language : {kSpanish, kFrench, kItalian}) {
      EXPECT_FALSE(isCapital(FrameworkTextsIn(language).at(key))) << language << ' ' << ToUtf8(key);
    }
    const bool isNoun = String(key) != u"REMAINING";
    EXPECT_EQ(isCapital(FrameworkTextsIn(kGerman).at(key)), isNoun) << ToUtf8(key);
  }
}

TEST_F(EmbeddedStringsTest, AFrenchColonIsNotPartedFromItsWord) {
  std::size_t colons = 0;
  for (const auto& [key, text] : FrameworkTextsIn(0x000C)) {
    const std::string utf8 = ToUtf8(text);
    colons += CountOf(utf8, ":");
    EXPECT_EQ(CountOf(utf8, ":"), CountOf(utf8, "\xC2\xA0:")) << utf8;
  }
  EXPECT_EQ(colons, 2U);
}

TEST_F(EmbeddedStringsTest, NoTwoLanguagesAreOneTranslation) {
  const String key(u"STARTUP_ERROR");
  std::set<String> texts{FrameworkTextsIn(kEnglishLanguage).at(key)};
  for (const std::uint32_t language : kTranslations) texts.insert(FrameworkTextsIn(language).at(key));
  EXPECT_EQ(texts.size(), 9U);
}

TEST_F(EmbeddedStringsTest, ApplicationTextsAreLetterForLetter) {
  LControlFactory factory(u"Tessel");
  ASSERT_EQ(factory.LoadStrings(kFrameworkSource, kApplicationSource, 0x0409), kSuccess);
  EXPECT_EQ(factory.GetApplicationName(), u"Brimline");
  std::set<std::u16string> sections;
  for (const auto& [section, key, expected] : kApplicationTexts) {
    const std::u16string_view name = section;
    const std::size_t bar = name.find(u'|');
    const auto table = name == u"|Brimline" ? factory.GetApplicationStrings()
                                            : factory.GetControlStrings(String(name.substr(0, bar)),
                                                                        String(name.substr(bar + 1)));
    ASSERT_TRUE(table) << ToUtf8(section);
    String text;
    EXPECT_TRUE(table->GetString(key, text)) << ToUtf8(section) << ' ' << ToUtf8(key);
    EXPECT_EQ(ToUtf8(text), ToUtf8(expected)) << ToUtf8(section) << ' ' << ToUtf8(key);
    sections.insert(section);
  }
  EXPECT_EQ(sections.size(), 22U);
  EXPECT_EQ(std::size(kApplicationTexts), 51U);
}

TEST_F(EmbeddedStringsTest, FourKeysOfTheApplicationHaveNoText) {
  const TextCensus census(kApplicationSource);
  std::vector<TextCensus::Key> without;
  std::copy_if(census.mKeys.begin(), census.mKeys.end(), std::back_inserter(without),
               [&](const TextCensus::Key& key) { return !census.mTranslated.contains(key); });
  std::vector<TextCensus::Key> expected;
  for (const auto& [section, key] : kKeysWithoutText) expected.emplace_back(section, key);
  EXPECT_THAT(without, testing::UnorderedElementsAreArray(expected));
}

}  // namespace
}  // namespace TF
