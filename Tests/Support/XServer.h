#pragma once

#include <optional>
#include <string>

#include "Tests/Support/ChildProgram.h"

namespace TestSupport {

// An X server without a screen to look at, for the life of this object, and DISPLAY set to it. No session
// bus belongs to it. Throws runtime_error when none starts.
class XServer {
 public:
  // "WIDTHxHEIGHTxDEPTH".
  explicit XServer(const std::string& screen = "800x600x24");
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  ~XServer();

  // ":" and a number.
  const std::string& GetDisplay() const { return mDisplay; }

 private:
  std::optional<ChildProgram> mProgram;
  std::string mDisplay;
};

}  // namespace TestSupport
