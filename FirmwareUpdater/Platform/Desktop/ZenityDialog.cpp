#include "Platform/Desktop/ZenityDialog.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Desktop/ChildOutput.h"
#include "Platform/Desktop/CleanUtf8.h"
#include "Platform/Desktop/FilePattern.h"
#include "Platform/NativePath.h"

namespace Platform {

namespace {

constexpr int kChosenStatus = 0;
constexpr int kCancelledStatus = 1;

// Between two names, each of which begins with a further slash: no absolute name that a dialog gives holds
// three of them.
constexpr const char* kSeparator = "//";
constexpr std::string_view kBoundary = "///";

std::string FilterArgument(const FileFilter& filter) {
  std::string argument = "--file-filter=" + CleanUtf8(filter.mName) + " |";
  for (const std::u16string& pattern : filter.mPatterns) {
    argument += ' ';
    // Blanks part patterns.
    for (const char character : AnyCasePattern(pattern)) argument += character == ' ' ? '?' : character;
  }
  return argument;
}

std::vector<std::string> Arguments(const FileRequest& request) {
  std::vector<std::string> arguments{"zenity", "--file-selection", "--modal",
                                     "--title=" + CleanUtf8(request.mTitle)};
  if (request.mParentHandle != 0) arguments.push_back("--attach=" + std::to_string(request.mParentHandle));
  if (!request.mFolder.empty()) arguments.push_back("--filename=" + ToNativePath(request.mFolder) + "/");
  if (request.mMultiple) {
    arguments.push_back("--multiple");
    arguments.push_back(std::string("--separator=") + kSeparator);
  }
  for (const FileFilter& filter : request.mFilters) arguments.push_back(FilterArgument(filter));
  return arguments;
}

// The names end in one line feed; those before it are theirs.
std::optional<std::vector<std::u16string>> ReadNames(std::string_view output, bool multiple) {
  if (output.empty() || output.front() != '/' || output.back() != '\n') return std::nullopt;
  output.remove_suffix(1);
  std::vector<std::u16string> paths;
  while (multiple) {
    const std::size_t boundary = output.find(kBoundary);
    if (boundary == std::string_view::npos) break;
    paths.push_back(FromNativePath(output.substr(0, boundary)));
    output.remove_prefix(boundary + kBoundary.size() - 1);
  }
  paths.push_back(FromNativePath(output));
  return paths;
}

}  // namespace

std::optional<FileChoice> AskZenity(const FileRequest& request, int cancelDescriptor, std::string& why) {
  using Outcome = FileChoice::Outcome;
  const ChildOutput child = RunForOutput(Arguments(request), cancelDescriptor);
  switch (child.mEnd) {
    case ChildOutput::End::kNotStarted:
      why = "zenity cannot be started (" + child.mError + ")";
      return std::nullopt;
    case ChildOutput::End::kCancelled:
      return FileChoice{Outcome::kCancelled, {}, {}};
    case ChildOutput::End::kKilled:
      return FileChoice{Outcome::kFailed, {}, "zenity was ended before it answered: " + child.mError};
    case ChildOutput::End::kExited:
      break;
  }
  if (child.mStatus == kCancelledStatus) return FileChoice{Outcome::kCancelled, {}, {}};
  if (child.mStatus != kChosenStatus)
    return FileChoice{Outcome::kFailed, {}, "zenity ended with status " + std::to_string(child.mStatus)};
  std::optional<std::vector<std::u16string>> paths = ReadNames(child.mOutput, request.mMultiple);
  if (!paths) return FileChoice{Outcome::kFailed, {}, "zenity named no file"};
  return FileChoice{Outcome::kChosen, std::move(*paths), {}};
}

}  // namespace Platform
