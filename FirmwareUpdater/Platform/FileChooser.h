#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Platform {

// Files that a dialog offers to show alone.
struct FileFilter {
  std::u16string mName;
  std::vector<std::u16string> mPatterns;  // With * and ?; they match in any case.

  bool operator==(const FileFilter&) const = default;
};

struct FileRequest {
  std::u16string mTitle;
  std::u16string mFolder;            // An inner path, as all here; empty leaves it to the dialog.
  std::vector<FileFilter> mFilters;  // The first one holds at the start.
  bool mMultiple = false;            // More than one file may be chosen.
  std::uintptr_t mParentHandle = 0;  // As of Window::GetNativeHandle; 0 for none.
};

struct FileChoice {
  enum class Outcome {
    kChosen,
    kCancelled,    // By the user, or by a wish to quit.
    kFailed,       // There was a dialog, but it gave no usable answer.
    kUnavailable,  // This desktop has no dialog.
  };

  Outcome mOutcome = Outcome::kFailed;
  std::vector<std::u16string> mPaths;  // At least one when chosen; whether they are files nobody has looked.
  std::string mReason;                 // For the diagnostics, when it failed or there is none.
};

// The desktop's own dialog for choosing files.
//
// Threads: main thread.
class FileChooser {
 public:
  virtual ~FileChooser() = default;

  // Returns when the user has answered. Meanwhile no window hears input, wishes to close included; what is
  // shown is kept in order. A wish to quit ends the dialog and stays for TakeQuitRequest. What a listener
  // throws ends the dialog and comes out of here.
  virtual FileChoice Choose(const FileRequest& request) = 0;
};

}  // namespace Platform
