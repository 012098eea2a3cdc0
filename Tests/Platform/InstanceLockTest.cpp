#include "Platform/InstanceLock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <mutex>
#include <vector>

#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Platform {
namespace {

using TestSupport::ScopedEnvironment;
using TestSupport::TemporaryFolder;

constexpr const char* kName = "Program";

class InstanceLockTest : public testing::Test {
 protected:
  OwnedDescriptor Connect() const {
    OwnedDescriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = Address();
    if (connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
      connection.Reset();
    }
    return connection;
  }

  sockaddr_un Address() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    mSocketPath.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
  }

  TemporaryFolder mFolder;
  ScopedEnvironment mEnvironment{"XDG_RUNTIME_DIR", mFolder.Path().c_str()};
  std::string mSocketPath = mFolder.Entry("Program.sock").native();
};

// Keeps what the window of an instance was given.
class ForeignWindow {
 public:
  InstanceLock::CommandLineHandler Handler(bool exists = true) {
    return [this, exists](const std::string& text) {
      const std::lock_guard lock(mMutex);
      mTexts.push_back(text);
      return exists;
    };
  }
  std::vector<std::string> Texts() {
    const std::lock_guard lock(mMutex);
    return mTexts;
  }

 private:
  std::mutex mMutex;
  std::vector<std::string> mTexts;
};

TEST_F(InstanceLockTest, OnlyOneIsTheFirst) {
  InstanceLock second(kName);
  {
    InstanceLock first(kName);
    InstanceLock other("OtherProgram");
    EXPECT_TRUE(first.TryAcquire());
    EXPECT_FALSE(second.TryAcquire());
    EXPECT_TRUE(other.TryAcquire());
  }
  InstanceLock third(kName);
  EXPECT_FALSE(third.TryAcquire()) << "the second one is still there";
}

TEST_F(InstanceLockTest, NextOneIsTheFirstOnceAllHaveEnded) {
  {
    InstanceLock first(kName), second(kName);
    EXPECT_TRUE(first.TryAcquire());
    EXPECT_FALSE(second.TryAcquire());
  }
  EXPECT_TRUE(InstanceLock(kName).TryAcquire());
}

TEST_F(InstanceLockTest, CommandLineReachesTheWindow) {
  ForeignWindow window;
  InstanceLock first(kName), second(kName);
  EXPECT_TRUE(first.TryAcquire());
  EXPECT_FALSE(second.SendCommandLine("too early"));
  ASSERT_TRUE(first.Serve(window.Handler()));
  const std::vector<std::string> texts{"prog -SILENT \xC3\xA4", "", std::string("a\0b", 3),
                                       std::string(3 << 20, 'x')};
  for (const auto& text : texts) EXPECT_TRUE(second.SendCommandLine(text)) << text.size();
  EXPECT_EQ(window.Texts(), texts);
  first.StopServing();
  EXPECT_FALSE(second.SendCommandLine("too late"));
  EXPECT_FALSE(std::filesystem::exists(mSocketPath));
  EXPECT_EQ(window.Texts(), texts);
}

TEST_F(InstanceLockTest, InstanceWithoutAWindowTakesNothingOver) {
  ForeignWindow window;
  InstanceLock first(kName), second(kName);
  ASSERT_TRUE(first.Serve(window.Handler(false)));
  EXPECT_FALSE(second.SendCommandLine("text"));
  EXPECT_EQ(window.Texts(), std::vector<std::string>{"text"});
}

TEST_F(InstanceLockTest, OnlyOneWindowAnswersAtATime) {
  ForeignWindow first, second;
  InstanceLock lock(kName), other(kName), client(kName);
  ASSERT_TRUE(lock.Serve(first.Handler()));
  EXPECT_FALSE(other.Serve(second.Handler()));
  EXPECT_TRUE(client.SendCommandLine("1"));
  lock.StopServing();
  EXPECT_TRUE(other.Serve(second.Handler()));
  EXPECT_TRUE(client.SendCommandLine("2"));
  EXPECT_EQ(first.Texts(), std::vector<std::string>{"1"});
  EXPECT_EQ(second.Texts(), std::vector<std::string>{"2"});
}

TEST_F(InstanceLockTest, KilledInstanceLeavesNothingInTheWay) {
  std::array<int, 2> ends;
  ASSERT_EQ(pipe(ends.data()), 0);
  const pid_t child = fork();
  if (child == 0) {
    InstanceLock lock(kName);
    const bool good = lock.TryAcquire() && lock.Serve([](const std::string&) { return true; });
    const ssize_t written = write(ends[1], &good, sizeof(good));
    for (;;) pause();
    _exit(static_cast<int>(written));
  }
  bool served = false;
  ASSERT_EQ(read(ends[0], &served, sizeof(served)), static_cast<ssize_t>(sizeof(served)));
  EXPECT_TRUE(served);
  EXPECT_FALSE(InstanceLock(kName).TryAcquire());
  EXPECT_TRUE(InstanceLock(kName).SendCommandLine("x"));
  ASSERT_EQ(kill(child, SIGKILL), 0);
  ASSERT_EQ(waitpid(child, nullptr, 0), child);
  close(ends[0]);
  close(ends[1]);

  EXPECT_TRUE(std::filesystem::exists(mSocketPath)) << "the case under test needs a stale socket";
  ForeignWindow window;
  InstanceLock lock(kName);
  EXPECT_TRUE(lock.TryAcquire());
  EXPECT_FALSE(lock.SendCommandLine("x"));
  EXPECT_TRUE(lock.Serve(window.Handler()));
  EXPECT_TRUE(InstanceLock(kName).SendCommandLine("y"));
}

TEST_F(InstanceLockTest, FilesAreForTheUserAlone) {
  InstanceLock lock(kName);
  ASSERT_TRUE(lock.TryAcquire());
  ASSERT_TRUE(lock.Serve([](const std::string&) { return true; }));
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(mFolder.Path())) {
    struct stat status;
    ASSERT_EQ(stat(entry.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u) << entry.path();
    ++files;
  }
  EXPECT_EQ(files, 3);
}

TEST_F(InstanceLockTest, ClientThatBreaksOffHoldsUpNobody) {
  ForeignWindow window;
  InstanceLock lock(kName);
  ASSERT_TRUE(lock.Serve(window.Handler()));
  const std::vector<std::string> requests{"", std::string("\x05", 1), std::string("\x05\0\0\0abc", 7),
                                          std::string("\xFF\xFF\xFF\xFF", 4)};
  for (const auto& request : requests) {
    const OwnedDescriptor gone = Connect();
    ASSERT_TRUE(gone);
    ASSERT_EQ(send(gone.Get(), request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
  }
  const OwnedDescriptor silent = Connect();
  ASSERT_TRUE(silent);
  EXPECT_TRUE(InstanceLock(kName).SendCommandLine("whole"));
  EXPECT_EQ(window.Texts(), std::vector<std::string>{"whole"});
}

TEST_F(InstanceLockTest, ServerStopsWhileAClientIsSilent) {
  ForeignWindow window;
  InstanceLock lock(kName);
  ASSERT_TRUE(lock.Serve(window.Handler()));
  const OwnedDescriptor silent = Connect();
  ASSERT_TRUE(silent);
  lock.StopServing();
  EXPECT_TRUE(window.Texts().empty());
}

TEST_F(InstanceLockTest, WindowThatDoesNotAnswerIsGivenUp) {
  const OwnedDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address = Address();
  ASSERT_EQ(bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  ASSERT_EQ(listen(listener.Get(), 1), 0);
  EXPECT_FALSE(InstanceLock(kName).SendCommandLine("x"));
}

TEST(InstanceLock, WithoutAPrivateFolderEveryInstanceIsTheFirst) {
  const TemporaryFolder shared;
  std::filesystem::permissions(shared.Path(), std::filesystem::perms(0755));
  const TemporaryFolder files;
  const std::string file = files.WriteFile("file", "").native();
  const std::string missing = files.Entry("missing").native();
  for (const char* folder : {static_cast<const char*>(nullptr), "", "relative", shared.Path().c_str(),
                             file.c_str(), missing.c_str()}) {
    const ScopedEnvironment environment("XDG_RUNTIME_DIR", folder);
    InstanceLock first(kName), second(kName);
    EXPECT_TRUE(first.TryAcquire());
    EXPECT_TRUE(second.TryAcquire());
    EXPECT_FALSE(first.Serve([](const std::string&) { return true; }));
    EXPECT_FALSE(second.SendCommandLine("x"));
  }
  EXPECT_TRUE(std::filesystem::is_empty(shared.Path()));
}

TEST(InstanceLock, PathTooLongForASocketLeavesTheMarkWorking) {
  const TemporaryFolder folder;
  const auto longPath = folder.Entry(std::string(120, 'x'));
  std::filesystem::create_directory(longPath);
  std::filesystem::permissions(longPath, std::filesystem::perms(0700));
  const ScopedEnvironment environment("XDG_RUNTIME_DIR", longPath.c_str());
  InstanceLock first(kName), second(kName);
  EXPECT_TRUE(first.TryAcquire());
  EXPECT_FALSE(second.TryAcquire());
  EXPECT_FALSE(first.Serve([](const std::string&) { return true; }));
  EXPECT_FALSE(second.SendCommandLine("x"));
}

}  // namespace
}  // namespace Platform
