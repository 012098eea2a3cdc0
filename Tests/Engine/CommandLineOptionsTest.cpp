#include "Engine/CommandLineOptions.h"

#include <gtest/gtest.h>

namespace {

std::string Answer(const char16_t* line, const char16_t* option) {
  TF::String value(u"old");
  const bool found = FindOption(line, option, value);
  return found ? "found:" + TF::ToUtf8(value) : "absent:" + TF::ToUtf8(value);
}

TEST(CommandLineOptions, OptionsAreFoundByTheRules) {
  using namespace CommandLineOption;
  const struct {
    const char16_t* line;
    const char16_t* option;
    const char* answer;
  } cases[] = {
      {u"updater -SILENT", kSilent, "found:"},
      {u"updater -silent", kSilent, "found:"},
      {u"updater -Silent more", kSilent, "found:"},
      {u"updater -Silent=1", kSilent, "absent:"},
      {u"updater -SILENT\t", kSilent, "absent:"},
      {u"updater -SILENT\"", kSilent, "absent:"},
      {u"updater", kSilent, "absent:"},
      {u"", kSilent, "absent:"},
      {u"-SILENT", kSilent, "found:"},
      {u"updater -SILEN", kSilent, "absent:"},
      {u"updater --SILENT", kSilent, "found:"},
      {u"updater -SILENT_IF_UPDATE_NOT_NEEDED -SILENT", kSilent, "absent:"},
      {u"updater -SILENT -SILENT_IF_UPDATE_NOT_NEEDED", kSilent, "found:"},
      {u"updater -SILENT -SILENT_IF_UPDATE_NOT_NEEDED", kSilentIfUpdateNotNeeded, "found:"},
      {u"updater -SILENTLY -SILENT", kSilent, "absent:"},
      {u"updater -always_update", kAlwaysUpdate, "found:"},
      {u"updater -Return_Update_Mode_Status -x", kReturnUpdateModeStatus, "found:"},
      {u"updater -START_UPDATE_AUTOMATICALLY", kStartUpdateAutomatically, "found:"},

      {u"u -FIRMWARE_IMAGE_NAME=Fw.vbin", kFirmwareImageName, "found:Fw.vbin"},
      {u"u -firmware_image_name=Fw.vbin -SILENT", kFirmwareImageName, "found:Fw.vbin"},
      {u"u -FIRMWARE_IMAGE_NAME=", kFirmwareImageName, "found:"},
      {u"u -FIRMWARE_IMAGE_NAME= Fw.vbin", kFirmwareImageName, "absent:"},
      {u"u -FIRMWARE_IMAGE_NAME=a -FIRMWARE_IMAGE_NAME=b", kFirmwareImageName, "found:a"},
      {u"u -FIRMWARE_IMAGE_NAME= -FIRMWARE_IMAGE_NAME=b", kFirmwareImageName, "absent:"},
      {u"u -FIRMWARE_IMAGE_NAME=\"a b\" c", kFirmwareImageName, "found:\"a b\""},
      {u"u -FIRMWARE_IMAGE_NAME=\"a b c", kFirmwareImageName, "found:\"a b c"},
      {u"u -FIRMWARE_IMAGE_NAME=\"\"", kFirmwareImageName, "found:\"\""},
      {u"u -FIRMWARE_IMAGE_NAME=\"", kFirmwareImageName, "found:\""},
      {u"u -FIRMWARE_IMAGE_NAME=a\"b c\"", kFirmwareImageName, "found:a\"b"},
      {u"u -FIRMWARE_IMAGE_NAME", kFirmwareImageName, "absent:"},
      {u"u -ABSOLUTE_FIRMWARE_FILE_PATH= \\x", kAbsoluteFirmwareFilePath, "absent:"},
      {u"u -absolute_firmware_file_path=\\Fw\\Straße.vbin", kAbsoluteFirmwareFilePath,
       "found:\\Fw\\Straße.vbin"},
      // Characters whose capital form would be longer must not move the value.
      {u"ßßßß -FIRMWARE_IMAGE_NAME=ok", kFirmwareImageName, "found:ok"},

      {u"u -S", u"-S", "found:"},
      {u"u - x", u"-", "absent:"},
      {u"u SILENT", u"SILENT", "absent:"},
      {u"u ", u"", "absent:"},
      // Options are written in capitals: another form is never found.
      {u"u -silent", u"-silent", "absent:"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Answer(test.line, test.option), test.answer)
        << TF::ToUtf8(test.line) << " | " << TF::ToUtf8(test.option);
  }
}

}  // namespace
