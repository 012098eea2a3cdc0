#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace TestSupport {

// A program that runs as long as this object, found like in a shell. Throws runtime_error when it cannot
// be started; whether it works, the test must see.
class ChildProgram {
 public:
  // descriptor: what it inherits beside the standard ones; -1 for nothing.
  explicit ChildProgram(const std::vector<std::string>& arguments, int descriptor = -1);
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  ~ChildProgram();

  bool IsRunning();
  pid_t GetId() const { return mProcess; }

 private:
  const pid_t mParent;
  pid_t mProcess = -1;
};

}  // namespace TestSupport
