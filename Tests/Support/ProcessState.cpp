#include "Tests/Support/ProcessState.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace TestSupport {

namespace {

constexpr uid_t kNobody = 65534;

void Become(uid_t user) {
  EXPECT_EQ(seteuid(user), 0);
}

[[noreturn]] void RunBody(const std::function<void()>& body, int output) {
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  body();
  std::cout.flush();
  std::fflush(stdout);
  _exit(0);
}

std::string ReadToEnd(int input) {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = read(input, buffer.data(), buffer.size());
    if (count > 0)
      text.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || errno != EINTR)
      return text;
  }
}

int ExitStatus(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waitpid");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ScopedEnvironment::ScopedEnvironment(const char* name, const char* value) : mName(name) {
  const char* former = getenv(name);
  if (former != nullptr) mFormer = former;
  Set(name, value);
}

ScopedEnvironment::~ScopedEnvironment() {
  Set(mName, mFormer ? mFormer->c_str() : nullptr);
}

void ScopedEnvironment::Set(const char* name, const char* value) {
  const int result = value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  if (result != 0) ADD_FAILURE() << name << " cannot be changed";
}

ScopedWorkingDirectory::ScopedWorkingDirectory(const std::filesystem::path& path)
    : mFormer(std::filesystem::current_path()) {
  std::filesystem::current_path(path);
}

ScopedWorkingDirectory::~ScopedWorkingDirectory() {
  std::error_code error;
  std::filesystem::current_path(mFormer, error);
  if (error) ADD_FAILURE() << mFormer << ": " << error.message();
}

OrdinaryUser::OrdinaryUser() : mUser(geteuid()) {
  if (mUser == 0) Become(kNobody);
}

OrdinaryUser::~OrdinaryUser() {
  if (mUser == 0) Become(mUser);
}

ChildResult RunInChild(const std::function<void()>& body) {
  std::array<int, 2> ends;
  if (pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  std::fflush(stdout);
  std::cout.flush();
  const pid_t child = fork();
  if (child == -1) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    close(ends[0]);
    RunBody(body, ends[1]);
  }
  close(ends[1]);
  ChildResult result;
  result.output = ReadToEnd(ends[0]);
  close(ends[0]);
  result.exitStatus = ExitStatus(child);
  return result;
}

}  // namespace TestSupport
