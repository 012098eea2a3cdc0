#include "Platform/NativePath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Platform {
namespace {

using TestSupport::ScopedWorkingDirectory;
using TestSupport::TemporaryFolder;

TEST(NativePath, BothSpellingsOfANameBelongTogether) {
  const struct {
    std::string native;
    std::u16string inner;
  } cases[] = {
      {"a/b.bin", u"a\\b.bin"},
      {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
      {"\xF0\x9F\x8E\xB9", u"\U0001F3B9"},
      {"a\\b", u"a\uF75Cb"},
      {"\xFFx", u"\uF7FFx"},
      {"\xE2\x82", u"\uF7E2\uF782"},                      // Cut off.
      {"\xC0\xAF", u"\uF7C0\uF7AF"},                      // A slash in two bytes.
      {"\xED\xA0\x80", u"\uF7ED\uF7A0\uF780"},            // A surrogate.
      {"\xF4\x90\x80\x80", u"\uF7F4\uF790\uF780\uF780"},  // Above the last character.
      {"\xEF\x9D\x9C", u"\uF7EF\uF79D\uF79C"},            // The very unit that stands for a backslash.
  };
  for (const auto& test : cases) {
    EXPECT_EQ(FromNativeName(test.native), test.inner) << test.native;
    EXPECT_EQ(ToNativePath(test.inner), test.native) << test.native;
  }
}

TEST(NativePath, EveryNameComesBackByteForByte) {
  const unsigned seed = 20261122;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  // Bytes that lead or follow in sequences, so that many names are valid or nearly so.
  const std::string alphabet = "a/\\\x80\x9C\x9D\xA0\xBF\xC2\xDF\xE0\xED\xEF\xF0\xF4\xFF";
  for (int i = 0; i < 50'000; ++i) {
    std::string native;
    for (auto length = random() % 9; length > 0; --length) native += alphabet[random() % alphabet.size()];
    ASSERT_EQ(ToNativePath(FromNativeName(native)), native) << "name " << i;
  }
}

TEST(NativePath, LoneSurrogateStaysANameOfItsOwn) {
  EXPECT_EQ(ToNativePath(u"\xD800x"), "\xED\xA0\x80x");
  EXPECT_EQ(ToNativePath(u"\xDC00\xD800"), "\xED\xB0\x80\xED\xA0\x80");
}

TEST(NativePath, PathsFromOutsideBecomeAbsolute) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Entry("real"));
  std::filesystem::create_directory_symlink("real", folder.Entry("link"));
  const ScopedWorkingDirectory inside(folder.Path());
  const std::u16string here = FromNativeName(std::filesystem::current_path().native());
  const struct {
    std::string native;
    std::u16string inner;
  } cases[] = {
      {"", u""},
      {"fw.vbin", here + u"\\fw.vbin"},
      {"./fw.vbin", here + u"\\.\\fw.vbin"},
      {"link/../fw.vbin", here + u"\\link\\..\\fw.vbin"},
      {"/x/fw.vbin", u"\\x\\fw.vbin"},
      {"/fw.vbin", u"\\.\\fw.vbin"},
      {"//fw.vbin", u"\\.\\fw.vbin"},
      {"///x/fw.vbin", u"\\x\\fw.vbin"},
      {"/", u"\\"},
      {"//", u"\\"},
  };
  for (const auto& test : cases) EXPECT_EQ(FromNativePath(test.native), test.inner) << test.native;
}

TEST(NativePath, RelativePathInTheRootHasAFolder) {
  const ScopedWorkingDirectory inside("/");
  EXPECT_EQ(FromNativePath("fw.vbin"), u"\\.\\fw.vbin");
  EXPECT_EQ(FromNativePath("x/fw.vbin"), u"\\x\\fw.vbin");
}

TEST(NativePath, RemovedWorkingDirectoryLeavesThePathRelativeToIt) {
  const TemporaryFolder folder;
  const auto gone = folder.Entry("gone");
  std::filesystem::create_directory(gone);
  const auto result = TestSupport::RunInChild([&] {
    std::filesystem::current_path(gone);
    std::filesystem::remove(gone);
    if (FromNativePath("fw.vbin") != u".\\fw.vbin") std::abort();
  });
  EXPECT_EQ(result.exitStatus, 0);
}

TEST(NativePath, PlainTextKeepsItsSeparators) {
  EXPECT_EQ(FromNativeText("-A=c:\\x/y"), u"-A=c:\\x/y");
  EXPECT_EQ(FromNativeText("\xC3\xA4\xFF"), u"\u00E4\uF7FF");
}

}  // namespace
}  // namespace Platform
