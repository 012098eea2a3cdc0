#include "Platform/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <future>
#include <thread>

#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Platform {
namespace {

using TestSupport::TemporaryFolder;

constexpr FileAccess kReading{};
constexpr FileAccess kWriting{.write = true, .create = true};

std::error_code TryOpen(const std::u16string& path, const FileAccess& access = kReading) {
  FileDescriptor file = 12345;
  const auto error = OpenFile(path, access, file);
  EXPECT_EQ(file == kNoFile, static_cast<bool>(error));
  if (!error) {
    EXPECT_FALSE(CloseFile(file));
  }
  return error;
}

TEST(Files, OnlyRegularFilesAreOpened) {
  const TemporaryFolder folder;
  folder.WriteFile("file", "x");
  std::filesystem::create_directory(folder.Entry("folder"));
  ASSERT_EQ(mkfifo(folder.Entry("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("file", folder.Entry("link"));
  std::filesystem::create_symlink("pipe", folder.Entry("pipe link"));
  std::filesystem::create_symlink("nothing", folder.Entry("dangling"));
  const struct {
    const char* name;
    std::error_code error;
  } cases[] = {
      {"file", {}},
      {"link", {}},
      {"folder", std::make_error_code(std::errc::is_a_directory)},
      {"pipe", std::make_error_code(std::errc::operation_not_supported)},
      {"pipe link", std::make_error_code(std::errc::operation_not_supported)},
      {"dangling", std::make_error_code(std::errc::no_such_file_or_directory)},
      {"missing", std::make_error_code(std::errc::no_such_file_or_directory)},
      {"file/below", std::make_error_code(std::errc::not_a_directory)},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(TryOpen(folder.InnerEntry(test.name)), test.error) << test.name;
    const bool existsForWriting = TryOpen(folder.InnerEntry(test.name), {.write = true}) == test.error;
    EXPECT_TRUE(existsForWriting) << test.name;
  }
  EXPECT_EQ(TryOpen(u"\\dev\\null"), std::make_error_code(std::errc::operation_not_supported));
  EXPECT_EQ(TryOpen(u""), std::make_error_code(std::errc::no_such_file_or_directory));
}

TEST(Files, PathWithAZeroNamesNothing) {
  const TemporaryFolder folder;
  folder.WriteFile("a", "x");
  const std::u16string path = folder.InnerEntry("a") + u'\0' + u"b";
  EXPECT_EQ(TryOpen(path), std::make_error_code(std::errc::invalid_argument));
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_TRUE(CreateFolder(folder.InnerEntry("c") + u'\0'));
  EXPECT_EQ(GetPathKind(path), PathKind::kNothing);
  EXPECT_FALSE(IsAccessible(path));
  EXPECT_TRUE(std::filesystem::exists(folder.Entry("a")));
  EXPECT_FALSE(std::filesystem::exists(folder.Entry("c")));
}

TEST(Files, CreatedFileBelongsToItsOwnerAlone) {
  const TemporaryFolder folder;
  const auto path = folder.InnerEntry("new");
  EXPECT_FALSE(TryOpen(path, kWriting));
  struct stat status;
  ASSERT_EQ(stat(folder.Entry("new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);
  EXPECT_EQ(TryOpen(path, {.create = true, .exclusive = true}), std::make_error_code(std::errc::file_exists));
  EXPECT_FALSE(TryOpen(path, {.create = true}));
  EXPECT_FALSE(TryOpen(path, {.exclusive = true}));
}

TEST(Files, OpenFilesAreNotHandedToOtherPrograms) {
  const TemporaryFolder folder;
  folder.WriteFile("a", "x");
  FileDescriptor file;
  ASSERT_FALSE(OpenFile(folder.InnerEntry("a"), kReading, file));
  EXPECT_TRUE(fcntl(file, F_GETFD) & FD_CLOEXEC);
  EXPECT_FALSE(CloseFile(file));
}

TEST(Files, WhatTheUserMayNotReadIsRefused) {
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
  std::filesystem::permissions(folder.WriteFile("open", "x"), std::filesystem::perms(0644));
  std::filesystem::permissions(folder.WriteFile("closed", "x"), std::filesystem::perms(0));
  const bool root = geteuid() == 0;
  std::error_code open, closed, written;
  {
    const TestSupport::OrdinaryUser user;
    open = TryOpen(folder.InnerEntry("open"));
    closed = TryOpen(folder.InnerEntry("closed"));
    written = TryOpen(folder.InnerEntry("open"), {.write = true});
  }
  const auto denied = std::make_error_code(std::errc::permission_denied);
  EXPECT_FALSE(open);
  EXPECT_EQ(closed, denied);
  EXPECT_EQ(written, root ? denied : std::error_code());
}

TEST(Files, BytesGoToAndComeFromTheirPosition) {
  const TemporaryFolder folder;
  FileDescriptor file;
  ASSERT_FALSE(OpenFile(folder.InnerEntry("a"), kWriting, file));
  EXPECT_FALSE(WriteFile(file, "0123456789", 10));
  std::int64_t position = 0;
  EXPECT_FALSE(SeekFile(file, -4, SeekOrigin::kEnd, position));
  EXPECT_EQ(position, 6);
  EXPECT_FALSE(SeekFile(file, 1, SeekOrigin::kCurrent, position));
  EXPECT_EQ(position, 7);
  std::array<char, 8> bytes{};
  std::size_t count = 99;
  EXPECT_FALSE(ReadFile(file, bytes.data(), bytes.size(), count));
  EXPECT_EQ(std::string(bytes.data(), count), "789");
  EXPECT_EQ(SeekFile(file, -1, SeekOrigin::kStart, position),
            std::make_error_code(std::errc::invalid_argument));
  std::uint64_t size = 0;
  EXPECT_FALSE(GetFileSize(file, size));
  EXPECT_EQ(size, 10u);
  EXPECT_FALSE(CloseFile(file));
  EXPECT_EQ(ReadFile(file, bytes.data(), 1, count), std::make_error_code(std::errc::bad_file_descriptor));
  EXPECT_EQ(CloseFile(file), std::make_error_code(std::errc::bad_file_descriptor));
}

std::atomic<int> gSignals{0};

void Interrupt(std::thread& thread) {
  EXPECT_EQ(pthread_kill(thread.native_handle(), SIGUSR1), 0);
}

// A pipe moves its bytes in pieces and lets signals end a call early, unlike a file.
TEST(Files, TransfersAreWholeDespitePiecesAndSignals) {
  struct sigaction action {};
  struct sigaction former {};
  action.sa_handler = [](int) { ++gSignals; };
  ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
  std::array<int, 2> ends;
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  std::string sent(3 << 20, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 251);
  std::string received(sent.size() + 5, '\0');
  std::size_t count = 0;
  std::error_code readError, writeError;
  std::promise<void> go;
  std::atomic<bool> written{false};
  std::thread reader([&] { readError = ReadFile(ends[0], received.data(), received.size(), count); });
  std::thread writer([&] {
    go.get_future().wait();
    writeError = WriteFile(ends[1], sent.data(), sent.size());
    close(ends[1]);
    written = true;
  });
  while (gSignals < 50) Interrupt(reader);  // It waits for the first byte meanwhile.
  go.set_value();
  while (!written) {
    Interrupt(reader);
    Interrupt(writer);
    std::this_thread::yield();
  }
  writer.join();
  reader.join();
  close(ends[0]);
  EXPECT_FALSE(readError) << readError.message();
  EXPECT_FALSE(writeError) << writeError.message();
  EXPECT_EQ(count, sent.size());
  received.resize(sent.size());
  EXPECT_TRUE(received == sent);
  EXPECT_EQ(sigaction(SIGUSR1, &former, nullptr), 0);
}

TEST(Files, FullFileSystemIsAnErrorOfTheWriter) {
  const TemporaryFolder folder;
  const auto result = TestSupport::RunInChild([&] {
    const rlimit limit{1000, 1000};
    signal(SIGXFSZ, SIG_IGN);
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(10);
    FileDescriptor file;
    if (OpenFile(folder.InnerEntry("a"), kWriting, file)) _exit(11);
    const std::string bytes(1500, 'x');
    _exit(WriteFile(file, bytes.data(), bytes.size()) == std::errc::file_too_large ? 0 : 12);
  });
  EXPECT_EQ(result.exitStatus, 0);
}

TEST(Files, SizesAboveFourGibibytesAreTold) {
  const TemporaryFolder folder;
  constexpr std::uint64_t kSize = (5ull << 30) + 1;
  std::filesystem::resize_file(folder.WriteFile("sparse", ""), kSize);
  FileDescriptor file;
  ASSERT_FALSE(OpenFile(folder.InnerEntry("sparse"), kReading, file));
  std::uint64_t size = 0;
  EXPECT_FALSE(GetFileSize(file, size));
  EXPECT_EQ(size, kSize);
  EXPECT_FALSE(CloseFile(file));
}

TEST(Files, KindsOfPathsAreToldApart) {
  const TemporaryFolder folder;
  folder.WriteFile("file", "x");
  std::filesystem::create_directory(folder.Entry("folder"));
  std::filesystem::create_symlink("folder", folder.Entry("link"));
  std::filesystem::create_symlink("nothing", folder.Entry("dangling"));
  const struct {
    const char* name;
    PathKind kind;
  } cases[] = {
      {"file", PathKind::kFile},        {"folder", PathKind::kFolder},   {"link", PathKind::kFolder},
      {"dangling", PathKind::kNothing}, {"missing", PathKind::kNothing}, {"folder/", PathKind::kFolder},
      {"file/", PathKind::kNothing},    {"file/x", PathKind::kNothing},
  };
  for (const auto& test : cases) {
    const auto path = folder.InnerEntry(test.name);
    EXPECT_EQ(GetPathKind(path), test.kind) << test.name;
    EXPECT_EQ(IsAccessible(path), test.kind != PathKind::kNothing) << test.name;
  }
}

TEST(Files, EveryNameOfAFolderCanBeOpenedAsListed) {
  const TemporaryFolder folder;
  const std::vector<std::string> names{"plain.bin", "with\\backslash", "\xFF\xFE", "\xC3\xA4",
                                       "\xC3",      "\xEF\x9D\x9C",    ".hidden"};
  for (const auto& name : names) folder.WriteFile(name, name);
  std::filesystem::create_directory(folder.Entry("sub"));
  std::filesystem::create_symlink("sub", folder.Entry("sub link"));
  std::filesystem::create_symlink("nothing", folder.Entry("dangling"));
  std::vector<FolderEntry> entries;
  ASSERT_FALSE(ListFolder(folder.InnerPath(), entries));
  std::vector<std::string> contents, folders, rest;
  for (const auto& entry : entries) {
    FileDescriptor file;
    if (entry.folder) {
      folders.push_back(ToNativePath(entry.name));
    } else if (OpenFile(folder.InnerPath() + u"\\" + entry.name, kReading, file)) {
      rest.push_back(ToNativePath(entry.name));
    } else {
      std::array<char, 64> bytes;
      std::size_t count = 0;
      EXPECT_FALSE(ReadFile(file, bytes.data(), bytes.size(), count));
      contents.emplace_back(bytes.data(), count);
      EXPECT_FALSE(CloseFile(file));
    }
  }
  auto expected = names;
  for (auto* list : {&expected, &contents, &folders}) std::sort(list->begin(), list->end());
  EXPECT_EQ(contents, expected);
  EXPECT_EQ(folders, (std::vector<std::string>{"sub", "sub link"}));
  EXPECT_EQ(rest, std::vector<std::string>{"dangling"});
}

TEST(Files, FolderThatCannotBeListedSaysWhy) {
  const TemporaryFolder folder;
  folder.WriteFile("file", "x");
  std::vector<FolderEntry> entries;
  EXPECT_EQ(ListFolder(folder.InnerEntry("none"), entries), std::errc::no_such_file_or_directory);
  EXPECT_EQ(ListFolder(folder.InnerEntry("file"), entries), std::errc::not_a_directory);
  EXPECT_TRUE(entries.empty());
}

}  // namespace
}  // namespace Platform
