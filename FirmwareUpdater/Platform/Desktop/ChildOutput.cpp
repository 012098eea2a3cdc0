#include "Platform/Desktop/ChildOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

#include "Platform/OwnedDescriptor.h"

namespace Platform {

namespace {

constexpr std::size_t kMostOutput = 0x1000000;  // Bytes; thousands of long names.

std::string Describe(int error) {
  return std::generic_category().message(error);
}

// GTK's programs print in the charset of the locale, unless this names another.
std::vector<std::string> MakeEnvironment() {
  std::vector<std::string> environment{"CHARSET=UTF-8"};
  for (char** variable = environ; *variable; ++variable)
    if (!std::string_view(*variable).starts_with("CHARSET=")) environment.emplace_back(*variable);
  return environment;
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

// What the system needs to know to start a program; throws system_error for lack of memory.
class SpawnPlan {
 public:
  explicit SpawnPlan(int output) {
    Check(posix_spawn_file_actions_init(&mActions));
    Check(posix_spawnattr_init(&mAttributes));
    Check(posix_spawn_file_actions_addopen(&mActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
    Check(posix_spawn_file_actions_adddup2(&mActions, output, STDOUT_FILENO));
    // The signals that this program handles its own way.
    sigset_t signals;
    sigemptyset(&signals);
    Check(posix_spawnattr_setsigmask(&mAttributes, &signals));
    sigaddset(&signals, SIGPIPE);
    Check(posix_spawnattr_setsigdefault(&mAttributes, &signals));
    Check(posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&mActions);
    posix_spawnattr_destroy(&mAttributes);
  }

  // An error of the system, or 0.
  int Start(const std::vector<std::string>& arguments, pid_t& process) const {
    const std::vector<std::string> environment = MakeEnvironment();
    return posix_spawnp(&process, arguments.front().c_str(), &mActions, &mAttributes,
                        Pointers(arguments).data(), Pointers(environment).data());
  }

 private:
  static void Check(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category(), "cannot start a program");
  }

  posix_spawn_file_actions_t mActions{};
  posix_spawnattr_t mAttributes{};
};

// A program from its start to its end, which it reaches by this object at the latest.
class Child {
 public:
  Child(const std::vector<std::string>& arguments, int cancelDescriptor) : mCancel(cancelDescriptor) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      mResult.mError = Describe(errno);
      return;
    }
    mPipe.Reset(ends[0]);
    const OwnedDescriptor output(ends[1]);
    const int error =
        fcntl(ends[0], F_SETFL, O_NONBLOCK) != 0 ? errno : SpawnPlan(ends[1]).Start(arguments, mProcess);
    if (error != 0) mResult.mError = Describe(error);
    mIsStarted = error == 0;
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (mIsStarted) Kill(ChildOutput::End::kKilled, {});
  }

  ChildOutput Run() {
    if (!mIsStarted) return mResult;
    // glibc's own wrapper cannot be linked against everywhere.
    const OwnedDescriptor life(static_cast<int>(syscall(SYS_pidfd_open, mProcess, 0)));
    if (!life) {
      Kill(ChildOutput::End::kKilled, Describe(errno));
      return mResult;
    }
    while (mIsStarted) Wait(life.Get());
    return mResult;
  }

 private:
  enum : std::size_t { kLife, kCancelled, kOutput };

  // A closed pipe is no end: a program may close its output long before.
  void Wait(int life) {
    std::array<pollfd, 3> entries{pollfd{life, POLLIN, 0}, pollfd{mCancel, POLLIN, 0},
                                  pollfd{mPipe ? mPipe.Get() : -1, POLLIN, 0}};
    if (poll(entries.data(), entries.size(), -1) < 0) {
      if (errno != EINTR) Kill(ChildOutput::End::kKilled, Describe(errno));
      return;
    }
    if (entries[kOutput].revents != 0 && !Read()) return;
    if (entries[kLife].revents != 0)
      Finish();
    else if (entries[kCancelled].revents != 0)
      Kill(ChildOutput::End::kCancelled, {});
  }

  // False when it had to be killed.
  bool Read() {
    std::array<char, 4096> bytes{};
    for (;;) {
      const ssize_t count = read(mPipe.Get(), bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0 && errno == EAGAIN) return true;
      if (count <= 0) {
        mPipe.Reset();
        return true;
      }
      mResult.mOutput.append(bytes.data(), static_cast<std::size_t>(count));
      if (mResult.mOutput.size() > kMostOutput) {
        Kill(ChildOutput::End::kKilled, "too much output");
        return false;
      }
    }
  }

  void Finish() {
    if (mPipe && !Read()) return;
    const int status = Reap();
    if (WIFEXITED(status)) {
      mResult.mEnd = ChildOutput::End::kExited;
      mResult.mStatus = WEXITSTATUS(status);
    } else {
      mResult.mEnd = ChildOutput::End::kKilled;
      mResult.mError = "signal " + std::to_string(WTERMSIG(status));
    }
  }

  // Until it is reaped, its number is nobody else's.
  void Kill(ChildOutput::End end, const std::string& why) {
    kill(mProcess, SIGKILL);
    Reap();
    mResult.mEnd = end;
    mResult.mError = why;
  }

  int Reap() {
    int status = 0;
    while (waitpid(mProcess, &status, 0) < 0 && errno == EINTR) {
    }
    mIsStarted = false;
    return status;
  }

  const int mCancel;
  OwnedDescriptor mPipe;
  pid_t mProcess = -1;
  bool mIsStarted = false;
  ChildOutput mResult;
};

}  // namespace

ChildOutput RunForOutput(const std::vector<std::string>& arguments, int cancelDescriptor) {
  return Child(arguments, cancelDescriptor).Run();
}

}  // namespace Platform
