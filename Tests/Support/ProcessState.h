#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace TestSupport {

// Sets an environment variable, or removes it for nullptr, and puts it back at the end.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const char* value);
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment();

 private:
  static void Set(const char* name, const char* value);

  const char* mName;
  std::optional<std::string> mFormer;
};

// Changes the working directory and changes back at the end.
class ScopedWorkingDirectory {
 public:
  explicit ScopedWorkingDirectory(const std::filesystem::path& path);
  ScopedWorkingDirectory(const ScopedWorkingDirectory&) = delete;
  ScopedWorkingDirectory& operator=(const ScopedWorkingDirectory&) = delete;
  ~ScopedWorkingDirectory();

 private:
  std::filesystem::path mFormer;
};

// Gives up the rights of root, to whom every file is open, until the end of the scope.
class OrdinaryUser {
 public:
  OrdinaryUser();
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser();

 private:
  unsigned mUser;
};

struct ChildResult {
  int exitStatus = -1;  // -1 when a signal ended it.
  std::string output;   // Standard output and standard error, in the order they were written.
};

// Runs body in a copy of this process and waits for its end. Status 0 when body returns.
ChildResult RunInChild(const std::function<void()>& body);

}  // namespace TestSupport
