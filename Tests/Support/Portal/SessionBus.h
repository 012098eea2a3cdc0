#pragma once

#include <optional>
#include <string>

#include "Tests/Support/ChildProgram.h"
#include "Tests/Support/TemporaryFolder.h"

namespace TestSupport {

// A session bus of the test's own, on which nobody can be started by name, and the environment that points
// to it; afterwards there is none again. Throws runtime_error when none starts.
class SessionBus {
 public:
  SessionBus();
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;
  ~SessionBus();

  const std::string& GetAddress() const { return mAddress; }
  void End() { mProgram.reset(); }

 private:
  const TemporaryFolder mFolder;
  std::optional<ChildProgram> mProgram;
  std::string mAddress;
};

}  // namespace TestSupport
