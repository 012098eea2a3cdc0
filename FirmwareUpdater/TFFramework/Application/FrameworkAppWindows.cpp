#include <exception>
#include <utility>

#include "TFFramework/Application/CursorTable.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Application/MessageLabels.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/StatusDisplay.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr std::u16string_view kIconName = u"128";
constexpr std::int32_t kIconSide = 64;  // Pixels: displays scale it for their lists of windows.

constexpr std::uint32_t kButtonMask = 0xF;
constexpr std::uint32_t kIconMask = 0xF0;

Platform::MessageButtons ButtonsOf(std::uint32_t flags) {
  switch (flags & kButtonMask) {
    case MessageBoxFlag::kOkCancel:
      return Platform::MessageButtons::kOkCancel;
    case MessageBoxFlag::kYesNoCancel:
      return Platform::MessageButtons::kYesNoCancel;
    case MessageBoxFlag::kYesNo:
      return Platform::MessageButtons::kYesNo;
    default:
      return Platform::MessageButtons::kOk;
  }
}

Platform::MessageIcon IconOf(std::uint32_t flags) {
  switch (flags & kIconMask) {
    case MessageBoxFlag::kIconError:
      return Platform::MessageIcon::kError;
    case MessageBoxFlag::kIconQuestion:
      return Platform::MessageIcon::kQuestion;
    case MessageBoxFlag::kIconWarning:
      return Platform::MessageIcon::kWarning;
    case MessageBoxFlag::kIconInformation:
      return Platform::MessageIcon::kInformation;
    default:
      return Platform::MessageIcon::kNone;
  }
}

RCPtr<LControl> FindStatusBar(const LFrameworkApp::RootWindowArray& windows) {
  const RCPtr<LRootWindow> window = windows.GetCount() > 0 ? windows[0] : RCPtr<LRootWindow>();
  const RCPtr<LControl> top = window ? window->GetTopControl() : RCPtr<LControl>();
  return top ? top->FindChild(IStatusDisplay::kName) : nullptr;
}

TFRESULT ShowStatus(IStatusDisplay* display, const String& text, bool immediately) {
  if (!display) return kFailure;
  if (immediately)
    display->SetTextNow(text);
  else
    display->PostText(text);
  return kSuccess;
}

}  // namespace

void LFrameworkApp::StartWindowSystem(Platform::WindowSystem& windowSystem) {
  mWindowSystem = &windowSystem;
  mCursors = std::make_unique<CursorTable>(windowSystem);
}

std::uintptr_t LFrameworkApp::GetCursorHandle(const String& name) {
  return mCursors ? mCursors->Find(name) : Platform::kNoCursor;
}

RectT<std::int32_t> LFrameworkApp::GetWorkArea() {
  if (!mWindowSystem) return {};
  const Platform::PixelRect area = mWindowSystem->GetWorkArea();
  return {area.mX, area.mY, area.mWidth, area.mHeight};
}

TFRESULT LFrameworkApp::GetKeyState(std::uint8_t key, bool& down, bool& toggled) {
  down = false;
  toggled = false;
  if (mWindowSystem) mWindowSystem->GetKeyState(key, down, toggled);
  return kSuccess;
}

std::uint32_t LFrameworkApp::GetModifiers() {
  return mWindowSystem ? mWindowSystem->GetModifiers() : 0;
}

Platform::MessageAnswer LFrameworkApp::MessageBox(const String& text, const String& caption,
                                                  std::uint32_t flags) {
  try {
    if (mWindowSystem)
      return mWindowSystem->ShowMessage(
          {ToUtf8(text), ToUtf8(caption), IconOf(flags), ButtonsOf(flags), MessageLabelsOf(GetLanguage())});
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
  }
  WriteMessage(text, caption);
  return Platform::MessageAnswer::kOk;
}

const LFrameworkApp::RootWindowArray& LFrameworkApp::GetRootWindows() const {
  return *mRootWindows;
}

TFRESULT LFrameworkApp::AddRootWindow(const RCPtr<LRootWindow>& window) {
  if (!window) return kInvalidArgument;
  if (FindRootWindow(window) >= 0) return kNothingDone;
  mRootWindows->Add(window);
  return kSuccess;
}

TFRESULT LFrameworkApp::RemoveRootWindow(const RCPtr<LRootWindow>& window) {
  const std::int32_t index = FindRootWindow(window);
  if (index < 0) return kNothingDone;
  RCPtr<LRootWindow> removed;
  mRootWindows->RemoveItem(index, removed);
  return kSuccess;
}

std::int32_t LFrameworkApp::FindRootWindow(const RCPtr<LRootWindow>& window) const {
  std::int32_t index = mRootWindows->GetCount();
  while (--index >= 0 && (*mRootWindows)[index] != window) {
  }
  return index;
}

RCPtr<LRootWindow> LFrameworkApp::GetActiveRootWindow() const {
  for (std::int32_t index = 0; index < mRootWindows->GetCount(); ++index) {
    if ((*mRootWindows)[index]->IsActive()) return (*mRootWindows)[index];
  }
  return nullptr;
}

RCPtr<LRootWindow> LFrameworkApp::GetFrontRootWindow() const {
  RCPtr<LRootWindow> active = GetActiveRootWindow();
  if (active || mRootWindows->GetCount() == 0) return active;
  return (*mRootWindows)[0];
}

TFRESULT LFrameworkApp::OpenRootWindow(const String&) {
  return kFailure;
}

TFRESULT LFrameworkApp::OpenChildRootWindow(const String&, const RCPtr<LRootWindow>&) {
  return kFailure;
}

TFRESULT LFrameworkApp::CreateMainWindow(std::int32_t) {
  return kFailure;
}

void LFrameworkApp::ShowCursor(bool show) {
  if (mWindowSystem) mWindowSystem->ShowCursor(show);
}

TFRESULT LFrameworkApp::SetCursorPosition(std::int32_t x, std::int32_t y) {
  return mWindowSystem && mWindowSystem->SetCursorPosition({x, y}) ? kSuccess : kFailure;
}

PointT<std::int32_t> LFrameworkApp::GetCursorPosition() {
  PointT<std::int32_t> result;
  if (const RCPtr<LRootWindow> active = GetActiveRootWindow()) {
    active->GetMousePosition(result);
    return result;
  }
  Platform::PixelPoint point;
  if (mWindowSystem && mWindowSystem->GetCursorPosition(point)) result = {point.mX, point.mY};
  return result;
}

std::optional<IconPicture> LFrameworkApp::GetIcon() {
  return LoadIconResource(LIconGroup::Kind::kIcon, kIconName, kIconSide);
}

TFRESULT LFrameworkApp::SetStatusText(const String& text, bool immediately) {
  const RCPtr<LControl> held = FindStatusBar(*mRootWindows);
  return ShowStatus(dynamic_cast<IStatusDisplay*>(held.Get()), text, immediately);
}

TFRESULT LFrameworkApp::RestoreStatusText(bool immediately) {
  const RCPtr<LControl> held = FindStatusBar(*mRootWindows);
  IStatusDisplay* const display = dynamic_cast<IStatusDisplay*>(held.Get());
  return ShowStatus(display, display ? display->GetDefaultText() : String(), immediately);
}

}  // namespace TF
