#include "Platform/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Platform/NativePath.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Platform {
namespace {

using TestSupport::ScopedEnvironment;
using TestSupport::TemporaryFolder;

TEST(Folders, ProgramFolderHoldsTheRunningFile) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(ToNativePath(ProgramPath()), program.native());
  EXPECT_EQ(ToNativePath(ProgramFolder()), program.parent_path().native());
}

TEST(Folders, CommonFolderIsGivenWhetherWritableOrNot) {
  EXPECT_EQ(CommonFolder(), u"\\var\\lib");
}

TEST(Folders, LocalFolderFollowsTheEnvironment) {
  const struct {
    const char* config;
    const char* home;
    std::u16string folder;
  } cases[] = {
      {"/c/onfig", "/home/x", u"\\c\\onfig"},         {"/c/onfig//", "/home/x", u"\\c\\onfig"},
      {"relative", "/home/x", u"\\home\\x\\.config"}, {"", "/home/x", u"\\home\\x\\.config"},
      {nullptr, "/home/x", u"\\home\\x\\.config"},
  };
  for (const auto& test : cases) {
    const ScopedEnvironment config("XDG_CONFIG_HOME", test.config);
    const ScopedEnvironment home("HOME", test.home);
    EXPECT_EQ(LocalFolder(), test.folder);
  }
}

TEST(Folders, UserEntryStandsInForAMissingHome) {
  const ScopedEnvironment config("XDG_CONFIG_HOME", nullptr);
  const ScopedEnvironment home("HOME", nullptr);
  EXPECT_TRUE(LocalFolder().starts_with(u'\\'));
  EXPECT_TRUE(LocalFolder().ends_with(u"\\.config"));
}

TEST(Folders, UserDirsNameTheDocumentsFolder) {
  const struct {
    const char* text;
    const char* folder;
  } cases[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "/home/x/Papers"},
      {"# XDG_DOCUMENTS_DIR=\"/wrong\"\nXDG_MUSIC_DIR=\"/m\"\n  XDG_DOCUMENTS_DIR=\"/data/my docs\"",
       "/data/my docs"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/a\"\nXDG_DOCUMENTS_DIR=\"$HOME/b\"\n", "/home/x/b"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/q\\\"uote\"", "/home/x/q\"uote"},
      {"XDG_DOCUMENTS_DIR=\"$HOME\"", "/home/x"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/\"", "/home/x"},
      {"XDG_DOCUMENTS_DIR=\"$HOMEPAGE/x\"", ""},
      {"XDG_DOCUMENTS_DIR=\"relative\"", ""},
      {"XDG_DOCUMENTS_DIR=\"", ""},
      {"XDG_DOCUMENTS_DIR=/no/quotes", ""},
      {"", ""},
  };
  for (const auto& test : cases) EXPECT_EQ(DocumentsFolderIn(test.text, "/home/x"), test.folder) << test.text;
}

TEST(Folders, DocumentsFolderFallsBackOnTheHomeFolder) {
  const TemporaryFolder home;
  const ScopedEnvironment config("XDG_CONFIG_HOME", nullptr);
  const ScopedEnvironment variable("HOME", home.Path().c_str());
  EXPECT_EQ(DocumentsFolder(), home.InnerPath());
  std::filesystem::create_directory(home.Entry(".config"));
  home.WriteFile(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
  EXPECT_EQ(DocumentsFolder(), home.InnerEntry("Papers"));
}

}  // namespace
}  // namespace Platform
