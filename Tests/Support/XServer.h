#pragma once

#include <sys/types.h>

#include <string>

namespace TestSupport {

// An X server without a screen to look at, for the life of this object, and DISPLAY set to it.
// Throws runtime_error when none starts.
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
  void End();

  const pid_t mParent;
  pid_t mProcess = -1;
  std::string mDisplay;
};

}  // namespace TestSupport
