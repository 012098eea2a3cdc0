#include "Tests/Support/ChildProgram.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace TestSupport {

ChildProgram::ChildProgram(const std::vector<std::string>& arguments, int descriptor) : mParent(getpid()) {
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  mProcess = fork();
  if (mProcess < 0) throw std::runtime_error("cannot start " + arguments.front());
  if (mProcess > 0) return;
  // It must not outlive a test that crashes.
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  const bool inherits = descriptor < 0 || fcntl(descriptor, F_SETFD, 0) == 0;
  if (inherits && getppid() == mParent) execvp(pointers.front(), pointers.data());
  _exit(127);
}

ChildProgram::~ChildProgram() {
  if (!IsRunning()) return;
  kill(mProcess, SIGTERM);
  waitpid(mProcess, nullptr, 0);
}

bool ChildProgram::IsRunning() {
  if (mProcess > 0 && waitpid(mProcess, nullptr, WNOHANG) != 0) mProcess = -1;
  return mProcess > 0;
}

}  // namespace TestSupport
