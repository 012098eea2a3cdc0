#include "TFFramework/System/FileDialog.h"

#include <algorithm>
#include <string_view>

#include "Platform/WindowSystem.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

constexpr char16_t kFilterSeparator = u'|';
constexpr char16_t kPatternSeparator = u';';
constexpr char16_t kStrayQuote = u'"';
constexpr std::u16string_view kNamesWithPoint = u"*.*";
constexpr std::u16string_view kAllNames = u"*";

std::vector<std::u16string> Split(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string> parts(1);
  for (const char16_t character : text) {
    if (character == separator)
      parts.emplace_back();
    else
      parts.back() += character;
  }
  return parts;
}

std::vector<std::u16string> ReadPatterns(std::u16string_view text) {
  std::vector<std::u16string> patterns;
  for (std::u16string pattern : Split(text, kPatternSeparator)) {
    std::erase(pattern, kStrayQuote);
    if (pattern == kNamesWithPoint) pattern = kAllNames;
    if (!pattern.empty()) patterns.push_back(std::move(pattern));
  }
  return patterns;
}

std::uintptr_t FindParentHandle(const LFrameworkApp& application) {
  const RCPtr<LRootWindow> active = application.GetActiveRootWindow();
  return active && active->GetServices() ? active->GetServices()->GetWindowHandle() : 0;
}

Platform::FileChoice Choose(const Platform::FileRequest& request) {
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  Platform::WindowSystem* const windowSystem = application ? application->GetWindowSystem() : nullptr;
  if (!windowSystem)
    return {Platform::FileChoice::Outcome::kUnavailable, {}, "no file dialog without a display"};
  return windowSystem->GetFileChooser().Choose(request);
}

}  // namespace

std::vector<Platform::FileFilter> ReadFileFilters(const String& text) {
  const std::vector<std::u16string> parts = Split(text.View(), kFilterSeparator);
  std::vector<Platform::FileFilter> filters;
  for (std::size_t index = 0; index + 1 < parts.size(); index += 2) {
    Platform::FileFilter filter{parts[index], ReadPatterns(parts[index + 1])};
    if (!filter.mPatterns.empty()) filters.push_back(std::move(filter));
  }
  return filters;
}

TFRESULT LFileDialog::Show(const String& filter, const String&, const String& title, bool multiSelect) {
  mPath = String();
  mPaths = StringArray();
  Platform::FileRequest request;
  request.mTitle = title.View();
  request.mFolder = mFolder.View();
  request.mFilters = ReadFileFilters(filter);
  request.mMultiple = multiSelect;
  if (const LFrameworkApp* const application = LFrameworkApp::GetInstance())
    request.mParentHandle = FindParentHandle(*application);
  const Platform::FileChoice choice = Choose(request);
  if (!choice.mReason.empty()) LogRecord("file dialog: " + choice.mReason);
  if (choice.mOutcome != Platform::FileChoice::Outcome::kChosen || choice.mPaths.empty()) return kFailure;
  for (const std::u16string& path : choice.mPaths) {
    if (File::FileExists(String(path))) continue;
    LogRecord("file dialog: no such file: " + ToUtf8(path));
    return kFailure;
  }
  TakePaths(choice.mPaths, multiSelect);
  return kSuccess;
}

void LFileDialog::TakePaths(const std::vector<std::u16string>& paths, bool multiSelect) {
  if (paths.size() == 1 || !multiSelect) mPath = paths.front();
  mFolder = File::GetFolderPart(paths.front());
  if (!multiSelect) return;
  for (const std::u16string& path : paths) mPaths.Add(String(path));
}

}  // namespace TF
