#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace EndToEnd {

struct ProgramOptions {
  std::string mProgram = "tessel-firmware-updater";  // In the folder of the built programs.
  std::vector<std::string> mArguments;
  // Added to this process's environment; an empty value takes the variable away.
  std::map<std::string, std::string> mEnvironment;
  std::string mWorkingFolder;  // Empty: this process's.
};

// One run of a built program with its output in memory. A run that is not over after the
// limit is killed, and fails the test.
class ProgramRun {
 public:
  static constexpr std::chrono::seconds kLimit{180};

  explicit ProgramRun(const ProgramOptions& options);
  ProgramRun(const ProgramRun&) = delete;
  ProgramRun& operator=(const ProgramRun&) = delete;
  ~ProgramRun();

  pid_t Process() const { return mProcess; }
  void Signal(int signal);
  // Reads standard error until text has appeared there; false when the program has ended or
  // the limit has passed without it.
  bool WaitForError(const std::string& text);
  // The same with standard output.
  bool WaitForOutput(const std::string& text);
  // Exit status; 128 and the signal's number for a program that a signal ended.
  int Wait();

  const std::string& Output() const { return mOutput; }
  const std::string& Errors() const { return mErrors; }

 private:
  bool ReadMore();
  bool WaitFor(const std::string& where, const std::string& text);

  pid_t mProcess = -1;
  int mOutputPipe = -1;
  int mErrorPipe = -1;
  int mStatus = -1;
  std::string mOutput;
  std::string mErrors;
  std::chrono::steady_clock::time_point mDeadline = std::chrono::steady_clock::now() + kLimit;
};

}  // namespace EndToEnd
