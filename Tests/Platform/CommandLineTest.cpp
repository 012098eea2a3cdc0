#include "Platform/CommandLine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "Platform/NativePath.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Platform {
namespace {

using TestSupport::ScopedWorkingDirectory;
using TestSupport::TemporaryFolder;

std::u16string Join(const std::vector<std::string>& arguments) {
  return JoinCommandLine(u"\\p", arguments);
}

TEST(CommandLine, ArgumentsKeepWhatTheShellHasEaten) {
  const struct {
    std::vector<std::string> arguments;
    std::u16string line;
  } cases[] = {
      {{}, u"\\p"},
      {{"-SILENT", "-x"}, u"\\p -SILENT -x"},
      {{"two words"}, u"\\p \"two words\""},
      {{"-A=two words"}, u"\\p -A=\"two words\""},
      {{"-A=b=c d"}, u"\\p -A=\"b=c d\""},
      {{"-A b=c"}, u"\\p -A b=\"c\""},
      {{"", "-x"}, u"\\p  -x"},
      {{" "}, u"\\p \" \""},
      {{"\xC3\xA4\xFF/\\"}, u"\\p \u00E4\uF7FF/\\"},
      {{"-ABSOLUTE_FIRMWARE_FILE_PATH=/fw 2/x.vbin"}, u"\\p -ABSOLUTE_FIRMWARE_FILE_PATH=\"\\fw 2\\x.vbin\""},
  };
  for (const auto& test : cases) EXPECT_EQ(Join(test.arguments), test.line);
}

TEST(CommandLine, ProgramPathWithABlankIsQuoted) {
  EXPECT_EQ(JoinCommandLine(u"\\my programs=1\\p", std::vector<std::string>{"-x"}),
            u"\"\\my programs=1\\p\" -x");
}

TEST(CommandLine, PathValuesTakeTheInnerForm) {
  const TemporaryFolder folder;
  const ScopedWorkingDirectory inside(folder.Path());
  const std::u16string here = FromNativeName(std::filesystem::current_path().native());
  const struct {
    std::string argument;
    std::u16string text;
  } cases[] = {
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=/x/y.vbin", u"-ABSOLUTE_FIRMWARE_FILE_PATH=\\x\\y.vbin"},
      {"-absolute_Firmware_file_path=/x/y.vbin", u"-absolute_Firmware_file_path=\\x\\y.vbin"},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=/fw.vbin", u"-ABSOLUTE_FIRMWARE_FILE_PATH=\\.\\fw.vbin"},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=fw.vbin", u"-ABSOLUTE_FIRMWARE_FILE_PATH=" + here + u"\\fw.vbin"},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=a\\b=\xFF",
       u"-ABSOLUTE_FIRMWARE_FILE_PATH=" + here + u"\\a\uF75Cb=\uF7FF"},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=", u"-ABSOLUTE_FIRMWARE_FILE_PATH="},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH=\"/x/y\"", u"-ABSOLUTE_FIRMWARE_FILE_PATH=\"/x/y\""},
      {"-ABSOLUTE_FIRMWARE_FILE_PATH", u"-ABSOLUTE_FIRMWARE_FILE_PATH"},
      {"-FIRMWARE_IMAGE_NAME=sub/y.vbin", u"-FIRMWARE_IMAGE_NAME=sub\\y.vbin"},
      {"-Firmware_Image_Name=a\\b", u"-Firmware_Image_Name=a\uF75Cb"},
      {"-FIRMWARE_IMAGE_NAME=", u"-FIRMWARE_IMAGE_NAME="},
      {"-OTHER=/x/y", u"-OTHER=/x/y"},
  };
  for (const auto& test : cases) EXPECT_EQ(Join({test.argument}), u"\\p " + test.text) << test.argument;
}

// A value that became longer must not be cut at a blank that the user never typed.
TEST(CommandLine, BlankOfTheWorkingDirectoryIsQuotedToo) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Entry("my files"));
  const ScopedWorkingDirectory inside(folder.Entry("my files"));
  const std::u16string here = FromNativeName(std::filesystem::current_path().native());
  EXPECT_EQ(Join({"-ABSOLUTE_FIRMWARE_FILE_PATH=fw.vbin"}),
            u"\\p -ABSOLUTE_FIRMWARE_FILE_PATH=\"" + here + u"\\fw.vbin\"");
}

}  // namespace
}  // namespace Platform
