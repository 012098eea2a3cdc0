#include "Tests/EndToEnd/ProgramRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace EndToEnd {

namespace {

std::pair<int, int> MakePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error(std::strerror(errno));
  return {ends[0], ends[1]};
}

std::vector<std::string> MakeEnvironment(const std::map<std::string, std::string>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry; ++entry) {
    const std::string text = *entry;
    if (!changes.contains(text.substr(0, text.find('=')))) result.push_back(text);
  }
  for (const auto& [name, value] : changes) {
    if (!value.empty()) result.push_back(name + "=" + value);
  }
  return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Moves what is there into text; closes the pipe at its end.
void Drain(int& pipe, std::string& text) {
  char buffer[4096];
  const ssize_t count = read(pipe, buffer, sizeof buffer);
  if (count > 0) {
    text.append(buffer, static_cast<std::size_t>(count));
  } else if (count == 0 || errno != EINTR) {
    close(pipe);
    pipe = -1;
  }
}

}  // namespace

ProgramRun::ProgramRun(const ProgramOptions& options) {
  const std::string path = std::string(PROGRAM_FOLDER) + "/" + options.mProgram;
  std::vector<std::string> arguments = options.mArguments;
  arguments.insert(arguments.begin(), path);
  std::vector<std::string> environment = MakeEnvironment(options.mEnvironment);
  const std::vector<char*> argumentPointers = Pointers(arguments);
  const std::vector<char*> environmentPointers = Pointers(environment);
  const auto [outputRead, outputWrite] = MakePipe();
  const auto [errorRead, errorWrite] = MakePipe();
  mProcess = fork();
  if (mProcess == 0) {
    dup2(outputWrite, STDOUT_FILENO);
    dup2(errorWrite, STDERR_FILENO);
    if (!options.mWorkingFolder.empty() && chdir(options.mWorkingFolder.c_str()) != 0) _exit(127);
    execve(path.c_str(), argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  close(outputWrite);
  close(errorWrite);
  mOutputPipe = outputRead;
  mErrorPipe = errorRead;
  if (mProcess < 0) throw std::runtime_error(std::strerror(errno));
}

ProgramRun::~ProgramRun() {
  if (mStatus < 0) {
    Signal(SIGKILL);
    waitpid(mProcess, nullptr, 0);
  }
  if (mOutputPipe >= 0) close(mOutputPipe);
  if (mErrorPipe >= 0) close(mErrorPipe);
}

void ProgramRun::Signal(int signal) {
  kill(mProcess, signal);
}

bool ProgramRun::ReadMore() {
  pollfd pipes[] = {{mOutputPipe, POLLIN, 0}, {mErrorPipe, POLLIN, 0}};
  const auto left = mDeadline - std::chrono::steady_clock::now();
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(left).count();
  if ((mOutputPipe < 0 && mErrorPipe < 0) || milliseconds <= 0) return false;
  if (poll(pipes, 2, static_cast<int>(milliseconds)) <= 0) return errno == EINTR;
  if (pipes[0].revents != 0) Drain(mOutputPipe, mOutput);
  if (pipes[1].revents != 0) Drain(mErrorPipe, mErrors);
  return true;
}

bool ProgramRun::WaitForError(const std::string& text) {
  return WaitFor(mErrors, text);
}

bool ProgramRun::WaitForOutput(const std::string& text) {
  return WaitFor(mOutput, text);
}

bool ProgramRun::WaitFor(const std::string& where, const std::string& text) {
  while (where.find(text) == std::string::npos) {
    if (!ReadMore()) return false;
  }
  return true;
}

int ProgramRun::Wait() {
  while (ReadMore()) {
  }
  if (std::chrono::steady_clock::now() >= mDeadline) {
    ADD_FAILURE() << "the program did not end; it said\n" << mOutput << mErrors;
    Signal(SIGKILL);
  }
  int status = 0;
  while (waitpid(mProcess, &status, 0) < 0 && errno == EINTR) {
  }
  mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return mStatus;
}

}  // namespace EndToEnd
