#include "TFFramework/Utilities/Storage/TFFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <thread>
#include <vector>

#include "Tests/Support/LogCapture.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace TF {
namespace {

using TestSupport::ReadWholeFile;
using TestSupport::TemporaryFolder;

constexpr std::uint32_t kCreateForWriting = kFileWrite | kFileCreate;

class FileTest : public testing::Test {
 protected:
  String Path(const char* name = "file") const { return String(mFolder.InnerEntry(name)); }
  String FolderPath() const { return String(mFolder.InnerPath()); }

  // The descriptor that this process has open on a file of the folder.
  std::optional<int> DescriptorOf(const char* name = "file") const {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code error;
      if (std::filesystem::read_symlink(entry.path(), error) == mFolder.Entry(name)) {
        return std::stoi(entry.path().filename());
      }
    }
    return std::nullopt;
  }

  // Puts something else behind the descriptor of an open File.
  void Replace(const char* path, int flags) const {
    const auto descriptor = DescriptorOf();
    ASSERT_TRUE(descriptor);
    const int other = open(path, flags | O_CLOEXEC);
    ASSERT_NE(other, -1) << path;
    ASSERT_EQ(dup3(other, *descriptor, O_CLOEXEC), *descriptor);
    close(other);
  }

  TemporaryFolder mFolder;
};

std::string ReadAll(File& file) {
  std::string text(100, '\0');
  text.resize(static_cast<std::size_t>(file.Read(text.data(), 100, 0)));
  return text;
}

template <class Action>
void ExpectRuntimeError(Action action, const std::string& start) {
  try {
    action();
    ADD_FAILURE() << "nothing thrown, but expected: " << start;
  } catch (const Exception<std::runtime_error>& exception) {
    EXPECT_THAT(exception.what(), testing::MatchesRegex("Runtime Error : " + start +
                                                        " : Utilities.Storage.TFFile : Line [0-9]+"));
    EXPECT_NE(std::string(exception.what()).find("Utilities\\Storage\\TFFile"), std::string::npos);
  }
}

TEST_F(FileTest, PathIsFolderSeparatorAndName) {
  File file;
  EXPECT_EQ(file.GetMode(), kFileRead);
  EXPECT_EQ(file.Open(u"C:\\x", u"a.bin", kFileRead), kFailure);
  EXPECT_EQ(file.GetPath(), u"C:\\x\\a.bin");
  EXPECT_EQ(file.GetName(), u"a.bin");
  EXPECT_EQ(file.Open(u"C:\\x\\", u"a.bin", kFileRead), kFailure);
  EXPECT_EQ(file.GetPath(), u"C:\\x\\\\a.bin");
  EXPECT_EQ(file.Open(u"C:\\x\\b.bin", u"", kFileRead), kFailure);
  EXPECT_EQ(file.GetPath(), u"C:\\x\\b.bin");
  EXPECT_EQ(file.GetName(), u"");
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(FileTest, OpenFileStaysWhatItIs) {
  mFolder.WriteFile("file", "abc");
  File file;
  ASSERT_EQ(file.Open(FolderPath(), u"file", kFileRead), kSuccess);
  const String path = file.GetPath();
  EXPECT_EQ(file.Open(FolderPath(), u"other", kCreateForWriting), kNothingDone);
  EXPECT_EQ(file.GetPath(), path);
  EXPECT_EQ(file.GetMode(), kFileRead);
  EXPECT_EQ(ReadAll(file), "abc");
  EXPECT_FALSE(std::filesystem::exists(mFolder.Entry("other")));
}

TEST_F(FileTest, EmptyPathIsAnError) {
  File file;
  ExpectRuntimeError([&] { file.Open(u"", u"", kFileRead); }, "invalid pathname : TF::File::Open");
  ExpectRuntimeError([] { File(u"", u"", kFileRead); }, "invalid pathname : TF::File::Open");
}

TEST_F(FileTest, WhatIsNoRegularFileIsRefusedAtOnce) {
  std::filesystem::create_directory(mFolder.Entry("folder"));
  ASSERT_EQ(mkfifo(mFolder.Entry("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("pipe", mFolder.Entry("link"));
  for (const char* name : {"folder", "pipe", "link", "missing"}) {
    File file;
    EXPECT_EQ(file.Open(Path(name), u"", kFileRead), kFailure) << name;
    EXPECT_EQ(file.Open(Path(name), u"", kFileWrite), kFailure) << name;
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(DescriptorOf(name));
  }
}

TEST_F(FileTest, ModeBitsDecideHowAFileIsOpened) {
  mFolder.WriteFile("there", "old");
  const struct {
    const char* name;
    std::uint32_t mode;
    TFRESULT result;
  } cases[] = {
      {"there", 0, kSuccess},
      {"there", kFileWrite, kSuccess},
      {"there", kFileExclusive, kSuccess},
      {"there", kFileCreate, kSuccess},
      {"there", kFileCreate | kFileExclusive, kFailure},
      {"new1", kFileWrite, kFailure},
      {"new1", kFileWrite | kFileExclusive, kFailure},
      {"new1", kFileCreate, kSuccess},
      {"new2", kFileCreate | kFileExclusive, kSuccess},
  };
  for (const auto& test : cases) {
    File file;
    EXPECT_EQ(file.Open(Path(test.name), u"", test.mode), test.result) << test.name << " " << test.mode;
  }
  EXPECT_EQ(ReadWholeFile(mFolder.Entry("there")), "old");
}

TEST_F(FileTest, BytesKeepTheirPositions) {
  File file(Path(), u"", kCreateForWriting);
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(file.Write("hello", 5), 5);
  EXPECT_EQ(file.Write(" world", 6), 6);
  EXPECT_EQ(file.Write("J", 1, 0), 1);
  EXPECT_EQ(file.GetLength(), 11u);
  std::array<char, 20> bytes{};
  EXPECT_EQ(file.Read(bytes.data(), 5, 6), 5);
  EXPECT_EQ(std::string(bytes.data(), 5), "world");
  EXPECT_EQ(file.Read(bytes.data(), 5), 0) << "at the end";
  EXPECT_EQ(file.Read(bytes.data(), 5, 400), 0) << "behind the end";
  EXPECT_EQ(file.Read(bytes.data(), 20, 8), 3);
  EXPECT_EQ(file.Seek(-2, kFileEnd), 9);
  EXPECT_EQ(file.Seek(-4, kFileCurrent), 5);
  EXPECT_EQ(file.Seek(3, kFileStart), 3);
  EXPECT_EQ(file.Seek(-1, kFileStart), -1);
  EXPECT_EQ(file.Seek(0, 3), -1);
  EXPECT_EQ(file.Read(bytes.data(), 2), 2);
  EXPECT_EQ(std::string(bytes.data(), 2), "lo");
  file.Close();
  EXPECT_EQ(ReadWholeFile(mFolder.Entry("file")), "Jello world");
}

TEST_F(FileTest, FailuresOfTheSystemAreToldByTheirCall) {
  mFolder.WriteFile("file", "abc");
  char byte = 'x';
  {
    File file(Path(), u"", kFileRead);
    ExpectRuntimeError([&] { file.Write(&byte, 1); }, "file is read only : TF::File::Write");
    Replace(mFolder.Path().c_str(), O_RDONLY | O_DIRECTORY);
    ExpectRuntimeError([&] { file.Read(&byte, 1); }, "read : TF::File::Read");
  }
  {
    File file(Path(), u"", kFileWrite);
    Replace(mFolder.Entry("file").c_str(), O_RDONLY);
    ExpectRuntimeError([&] { file.Write(&byte, 1, 0); }, "write : TF::File::Write");
  }
  ASSERT_EQ(mkfifo(mFolder.Entry("pipe").c_str(), 0600), 0);
  {
    File file(Path(), u"", kFileWrite);
    Replace(mFolder.Entry("pipe").c_str(), O_RDWR | O_NONBLOCK);
    ExpectRuntimeError([&] { file.Read(&byte, 1, 0); }, "lseek : TF::File::Read");
    ExpectRuntimeError([&] { file.Write(&byte, 1, 0); }, "lseek : TF::File::Write");
    EXPECT_EQ(file.Seek(0, kFileStart), -1);
  }
}

TEST_F(FileTest, LostDescriptorIsReported) {
  mFolder.WriteFile("file", "abc");
  TestSupport::LogCapture log;
  {
    File file(Path(), u"", kFileRead);
    ASSERT_EQ(close(DescriptorOf().value()), 0);
    ExpectRuntimeError([&] { file.GetLength(); }, "fstat : TF::File::GetLength");
  }
  EXPECT_THAT(log.Text(), testing::HasSubstr("cannot close"));
}

TEST_F(FileTest, LengthsStopAtTwoGibibytes) {
  constexpr std::uint32_t kLongest = 0x7FFFFFFF;
  EXPECT_EQ(File().GetLength(), 0u);
  mFolder.WriteFile("file", "");
  std::filesystem::resize_file(mFolder.Entry("file"), kLongest);
  File file(Path(), u"", kFileRead);
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(file.GetLength(), kLongest);
  EXPECT_EQ(file.Seek(0, kFileEnd), kLongest);
  std::filesystem::resize_file(mFolder.Entry("file"), std::uint64_t{kLongest} + 1);
  ExpectRuntimeError([&] { file.GetLength(); }, "fstat : TF::File::GetLength");
  for (const std::uint64_t size : {std::uint64_t{kLongest} + 1, (std::uint64_t{1} << 32) + 3}) {
    std::filesystem::resize_file(mFolder.Entry("file"), size);
    File larger;
    EXPECT_EQ(larger.Open(Path(), u"", kFileRead | kFileDeleteOnClose), kFailure) << size;
  }
  EXPECT_TRUE(std::filesystem::exists(mFolder.Entry("file"))) << "a refused file must stay";
}

TEST_F(FileTest, CopiesShareOneOpenFile) {
  mFolder.WriteFile("file", "abcdef");
  File file(Path(), u"", kFileRead);
  {
    File copy = file;
    char byte = 0;
    EXPECT_EQ(copy.Read(&byte, 1), 1);
    EXPECT_EQ(file.Read(&byte, 1), 1);
    EXPECT_EQ(byte, 'b') << "the position is shared";
    EXPECT_EQ(file.Close(), kSuccess);
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(ReadAll(copy), "abcdef");
  }
  EXPECT_EQ(ReadAll(file), "abcdef");
  EXPECT_EQ(file.Close(), kSuccess);
  EXPECT_FALSE(file.IsOpen());
  EXPECT_FALSE(DescriptorOf());
  EXPECT_EQ(file.Close(), kSuccess);
}

TEST_F(FileTest, LastCopyClosesOnWhateverThreadItEnds) {
  mFolder.WriteFile("file", "abcdef");
  for (int round = 0; round < 200; ++round) {
    auto file = std::make_unique<File>(Path(), u"", kFileRead);
    std::thread other([copy = std::make_unique<File>(*file)]() mutable { copy.reset(); });
    file.reset();
    other.join();
    ASSERT_FALSE(DescriptorOf()) << "round " << round;
  }
}

TEST_F(FileTest, AssignmentLetsGoOfTheFormerFile) {
  mFolder.WriteFile("file", "abc");
  mFolder.WriteFile("other", "xyz");
  File file(Path(), u"", kFileRead);
  const File& same = file;
  file = same;
  EXPECT_EQ(ReadAll(file), "abc");
  file = File(Path("other"), u"", kFileRead);
  EXPECT_FALSE(DescriptorOf());
  EXPECT_EQ(ReadAll(file), "xyz");
}

TEST_F(FileTest, DeletesOnceTheLastCopyHasClosed) {
  {
    File file(FolderPath(), u"file", kCreateForWriting | kFileDeleteOnClose);
    const File copy = file;
    file.Close();
    EXPECT_TRUE(std::filesystem::exists(mFolder.Entry("file")));
  }
  EXPECT_FALSE(std::filesystem::exists(mFolder.Entry("file")));
}

TEST_F(FileTest, NamesOfEveryKindAreOpenedAsListed) {
  const std::vector<std::string> names{"plain", "back\\slash", "\xFF\xFE", "\xC3\xA4", "two words"};
  for (const auto& name : names) mFolder.WriteFile(name, name);
  StringArray paths;
  ASSERT_EQ(File::ListFiles(FolderPath(), u"*", paths), 5);
  std::vector<std::string> contents;
  for (std::int32_t i = 0; i < paths.GetCount(); ++i) {
    EXPECT_TRUE(File::FileExists(paths.GetAt(i)));
    File file(paths.GetAt(i), u"", kFileRead);
    ASSERT_TRUE(file.IsOpen()) << i;
    contents.push_back(ReadAll(file));
  }
  EXPECT_THAT(contents, testing::UnorderedElementsAreArray(names));
}

TEST_F(FileTest, FilesAndFoldersAreToldApart) {
  mFolder.WriteFile("file", "");
  std::filesystem::create_directory(mFolder.Entry("folder"));
  const struct {
    String path;
    bool file;
    bool folder;
  } cases[] = {
      {Path("file"), true, false},
      {Path("folder"), false, true},
      {Path("folder") + u"\\", false, true},
      {Path("file") + u"\\", false, false},
      {Path("missing"), false, false},
      {u"\\", false, true},
      {u"", false, false},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(File::FileExists(test.path), test.file) << ToUtf8(test.path);
    EXPECT_EQ(File::FolderExists(test.path), test.folder) << ToUtf8(test.path);
  }
}

TEST_F(FileTest, DriveRootIsAskedWithItsSeparator) {
  const TestSupport::ScopedWorkingDirectory inside(mFolder.Path());
  EXPECT_FALSE(File::FolderExists(u"C:\\"));
  std::filesystem::create_directories(mFolder.Entry("C:/x"));
  EXPECT_TRUE(File::FolderExists(u"C:\\"));
  EXPECT_TRUE(File::FolderExists(u"C:\\x\\"));
}

TEST_F(FileTest, FoldersAreMadeOnceAndNeverOverAFile) {
  EXPECT_EQ(File::EnsureFolder(Path("a/b/c")), kSuccess);
  EXPECT_EQ(File::EnsureFolder(Path("a/b/c")), kNothingDone);
  EXPECT_TRUE(std::filesystem::is_directory(mFolder.Entry("a/b/c")));
  EXPECT_EQ(File::EnsureFolder(u"\\"), kNothingDone);
  mFolder.WriteFile("file", "kept");
  EXPECT_EQ(File::EnsureFolder(Path("file")), kFailure);
  EXPECT_EQ(File::EnsureFolder(Path("file") + u"\\"), kFailure);
  EXPECT_EQ(File::EnsureFolder(Path("file/below")), kFailure);
  EXPECT_EQ(File::EnsureFolder(u""), kFailure);
  EXPECT_EQ(ReadWholeFile(mFolder.Entry("file")), "kept");
}

TEST_F(FileTest, TreesEndBeforeAFile) {
  EXPECT_TRUE(File::CreateFolderTree(Path("t/u") + u"/v\\w.bin", true));
  EXPECT_TRUE(std::filesystem::is_directory(mFolder.Entry("t/u/v")));
  EXPECT_FALSE(std::filesystem::exists(mFolder.Entry("t/u/v/w.bin")));
  EXPECT_TRUE(File::CreateFolderTree(Path("t/x"), false));
  EXPECT_TRUE(std::filesystem::is_directory(mFolder.Entry("t/x")));
  EXPECT_TRUE(File::CreateFolderTree(u"no separator", true));
  EXPECT_TRUE(File::CreateFolderTree(u"\\file-in-the-root", true));
  EXPECT_FALSE(std::filesystem::exists("/file-in-the-root"));
  mFolder.WriteFile("file", "");
  EXPECT_FALSE(File::CreateFolderTree(Path("file/x/y.bin"), true));
  EXPECT_FALSE(File::CreateFolderTree(Path("file/x"), false));
  EXPECT_FALSE(File::CreateFolderTree(u"", false));
}

TEST_F(FileTest, PathsComeApartAtTheirSeparators) {
  const struct {
    const char16_t* path;
    const char16_t* folder;
    const char16_t* name;
  } cases[] = {
      {u"dir\\", u"dir", u"dir\\"}, {u"a/b\\c", u"a/b", u"c"}, {u"a\\b/c", u"a", u"c"},
      {u"c", u"c", u"c"},           {u"a/b", u"a/b", u"b"},    {u"\\.\\fw.vbin", u"\\.", u"fw.vbin"},
      {u"\\x", u"", u"x"},          {u"", u"", u""},           {u"a\\b\\c", u"a\\b", u"c"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(File::GetFolderPart(test.path), test.folder) << ToUtf8(String(test.path));
    EXPECT_EQ(File::GetNamePart(test.path), test.name) << ToUtf8(String(test.path));
    EXPECT_EQ(File::GetLongPath(test.path), test.path);
  }
}

TEST_F(FileTest, ValidNamesLackWhatSystemsReserve) {
  const String name = u"a/b:c(1)";
  EXPECT_EQ(File::MakeValidName(name), u"a_b_c_1_");
  EXPECT_EQ(name, u"a/b:c(1)");
  EXPECT_EQ(File::MakeValidName(u"\\/:*?\"<>|&;,^()x.y-z \u00E4"), u"_______________x.y-z \u00E4");
}

TEST_F(FileTest, ListsHoldTheFilesThatFitThePattern) {
  for (const char* name : {"a.bin", "B.BIN", "ab.bin.txt", "noext", "x.b"}) mFolder.WriteFile(name, "");
  std::filesystem::create_directory(mFolder.Entry("folder.bin"));
  const struct {
    const char16_t* pattern;
    std::vector<std::string> names;
  } cases[] = {
      {u"*.bin", {"a.bin", "B.BIN"}},
      {u"*.bin*", {"a.bin", "B.BIN", "ab.bin.txt"}},
      {u"?.b*", {"a.bin", "B.BIN", "x.b"}},
      {u"*b*n*", {"a.bin", "B.BIN", "ab.bin.txt"}},
      {u"*", {"a.bin", "B.BIN", "ab.bin.txt", "noext", "x.b"}},
      {u"*.*", {"a.bin", "B.BIN", "ab.bin.txt", "noext", "x.b"}},
      {u"NOEXT", {"noext"}},
      {u"??????", {}},
      {u"", {}},
  };
  for (const auto& test : cases) {
    StringArray found;
    found.Add(u"left over");
    EXPECT_EQ(File::ListFiles(FolderPath(), test.pattern, found), static_cast<TFRESULT>(test.names.size()));
    std::vector<std::string> paths, expected;
    for (std::int32_t i = 0; i < found.GetCount(); ++i) paths.push_back(ToUtf8(found.GetAt(i)));
    for (const auto& name : test.names) expected.push_back(ToUtf8(Path(name.c_str())));
    EXPECT_THAT(paths, testing::UnorderedElementsAreArray(expected)) << ToUtf8(String(test.pattern));
  }
}

TEST_F(FileTest, MissingFolderIsNotListed) {
  mFolder.WriteFile("file", "");
  StringArray found;
  found.Add(u"left over");
  EXPECT_EQ(File::ListFiles(Path("missing"), u"*", found), kNotImplemented);
  EXPECT_EQ(found.GetCount(), 0);
  EXPECT_EQ(File::ListFiles(Path("file"), u"*", found), kNotImplemented);
}

TEST_F(FileTest, FolderThatCannotBeReadIsNotAnEmptyOne) {
  using std::filesystem::perms;
  std::filesystem::permissions(mFolder.Path(), perms(0755));
  std::filesystem::create_directory(mFolder.Entry("open"));
  std::filesystem::create_directory(mFolder.Entry("closed"));
  std::filesystem::permissions(mFolder.Entry("open"), perms(0755));
  std::filesystem::permissions(mFolder.Entry("closed"), perms(0));
  StringArray found;
  TFRESULT open, closed;
  {
    const TestSupport::OrdinaryUser user;
    open = File::ListFiles(Path("open"), u"*", found);
    closed = File::ListFiles(Path("closed"), u"*", found);
  }
  std::filesystem::permissions(mFolder.Entry("closed"), perms(0700));
  EXPECT_EQ(open, 0);
  EXPECT_EQ(closed, kFailure);
}

}  // namespace
}  // namespace TF
