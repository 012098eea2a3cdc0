#include "TFFramework/System/OSWindow.h"

#include <exception>
#include <optional>
#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

// The display has one mouse, whichever window it is over.
std::uintptr_t shownCursor = Platform::kNoCursor;

std::optional<Platform::WindowShow> ShowOf(std::int32_t command) {
  switch (command) {
    case ShowCommand::kHide:
      return Platform::WindowShow::kHide;
    case ShowCommand::kShow:
      return Platform::WindowShow::kShow;
    case ShowCommand::kMinimize:
      return Platform::WindowShow::kMinimize;
    case ShowCommand::kMaximize:
      return Platform::WindowShow::kMaximize;
    case ShowCommand::kRestore:
      return Platform::WindowShow::kRestore;
    default:
      return std::nullopt;
  }
}

}  // namespace

OSWindow::OSWindow(Platform::WindowSystem& windowSystem, MessageLoop& messageLoop, Role role)
    : mWindowSystem(windowSystem), mMessageLoop(messageLoop), mRole(role) {}

OSWindow::~OSWindow() = default;

TFRESULT OSWindow::Create(const Platform::WindowDescription& description) {
  try {
    mWindow = mWindowSystem.CreateWindow(description, *this);
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
    return kFailure;
  }
  mSelf = RCPtr<OSWindow>(this);
  return kSuccess;
}

TFRESULT OSWindow::AttachRenderer(std::int32_t type) {
  if (!mWindow) return kFailure;
  AttachRenderer(LRenderer::Create(type, mWindow.get()));
  return kSuccess;
}

void OSWindow::AttachRenderer(const RCPtr<LRenderer>& renderer) {
  mRenderer = renderer;
  const Platform::PixelRect client = mWindow->GetClientRect();
  const RectT<std::int32_t> area{0, 0, client.mWidth, client.mHeight};
  ThrowIfFailed(renderer->CreateRenderContext(area, mWindow.get(), false, mRenderContext),
                "TF::OSWindow::AttachRenderer");
  mRootWindow = MakeRC<LRootWindow>(renderer, this);
  LFrameworkApp::GetInstance()->AddRootWindow(mRootWindow);
}

// The tree goes first, since its controls hold each other and the window.
void OSWindow::Close() {
  if (!mSelf) return;
  const RCPtr<OSWindow> self = std::move(mSelf);
  if (mOnClosing) std::exchange(mOnClosing, nullptr)(*this);
  const RCPtr<LRootWindow> root = mRootWindow;
  try {
    if (root) root->SetTopControl(nullptr);
  } catch (...) {
    LetGo(root);
    throw;
  }
  LetGo(root);
}

void OSWindow::LetGo(const RCPtr<LRootWindow>& root) {
  if (root) {
    if (LFrameworkApp* const application = LFrameworkApp::GetInstance()) application->RemoveRootWindow(root);
    root->Detach();
    mRootWindow = nullptr;
  }
  mRenderContext = nullptr;
  mRenderer = nullptr;
  mWindow = nullptr;
  mParent = nullptr;
}

RectT<std::int32_t> OSWindow::GetNormalRect() const {
  return {mNormalRect.mX, mNormalRect.mY, mNormalRect.mWidth, mNormalRect.mHeight};
}

TFRESULT OSWindow::SetTitle(const String& title) {
  if (!mWindow) return kFailure;
  mWindow->SetTitle(ToUtf8(title));
  return kSuccess;
}

TFRESULT OSWindow::InvalidateAll() {
  if (!mWindow) return kFailure;
  mRepaintsAll = true;
  mWindow->RequestPaint();
  return kSuccess;
}

TFRESULT OSWindow::InvalidateRect(const RectT<std::int32_t>&) {
  if (!mWindow) return kFailure;
  mWindow->RequestPaint();
  return kSuccess;
}

TFRESULT OSWindow::GetClientRect(RectT<std::int32_t>& rect) {
  if (!mWindow) return kFailure;
  const Platform::PixelRect client = mWindow->GetClientRect();
  rect = {0, 0, client.mWidth, client.mHeight};
  return kSuccess;
}

TFRESULT OSWindow::ScreenToClient(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) {
  if (!mWindow) return kFailure;
  const Platform::PixelRect client = mWindow->GetClientRect();
  result = {point.mX - client.mX, point.mY - client.mY};
  return kSuccess;
}

TFRESULT OSWindow::ClientToScreen(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) {
  if (!mWindow) return kFailure;
  const Platform::PixelRect client = mWindow->GetClientRect();
  result = {point.mX + client.mX, point.mY + client.mY};
  return kSuccess;
}

// The display tells of the new size later; what is painted until then has it already. A size that the
// display has given is not changed while the controls take it over: that would go on for ever where the
// display insists.
TFRESULT OSWindow::SetClientRect(const RectT<std::int32_t>& rect) {
  if (!mWindow) return kFailure;
  if (mIsResizing) return kNothingDone;
  mWindow->SetClientRect({rect.mX, rect.mY, rect.mWidth, rect.mHeight});
  const Platform::PixelRect client = mWindow->GetClientRect();
  OnResize({client.mWidth, client.mHeight});
  return kSuccess;
}

TFRESULT OSWindow::Show(std::int32_t command) {
  if (!mWindow) return kFailure;
  const auto show = ShowOf(command);
  if (!show) return kFailure;
  // Once the window shows, its user may be resizing it already.
  TellSizeLimits();
  mWindow->Show(*show);
  return kSuccess;
}

// Paints and presents at once, and hands out no input meanwhile.
TFRESULT OSWindow::RedrawNow() {
  if (!mWindow || !mRootWindow) return kFailure;
  mRepaintsAll = true;
  PaintDirt();
  return kSuccess;
}

TFRESULT OSWindow::BringToTop() {
  if (!mWindow) return kFailure;
  mWindow->Raise();
  return kSuccess;
}

TFRESULT OSWindow::SetTopMost(bool topMost) {
  if (!mWindow) return kFailure;
  mWindow->SetTopMost(topMost);
  return kSuccess;
}

TFRESULT OSWindow::EndWindow(std::int32_t result) {
  if (!mWindow) return kFailure;
  if (!mIsModal) {
    Close();
    return kSuccess;
  }
  mModalResult = result;
  mIsModal = false;
  return kSuccess;
}

std::int32_t OSWindow::RunModal() {
  if (!mWindow) return kModalQuit;
  const RCPtr<OSWindow> self(this);
  mIsModal = true;
  Platform::Window* const parent = mParent ? mParent->GetPlatformWindow() : nullptr;
  const bool disablesParent = parent && parent->IsEnabled();
  if (disablesParent) parent->SetEnabled(false);
  mWindow->SetEnabled(true);
  if (!mWindow->IsVisible()) Show(ShowCommand::kShow);
  bool ended = false;
  try {
    ended = mMessageLoop.RunWhile([this] { return mIsModal && mWindow; });
  } catch (...) {
    EndModal(disablesParent);
    throw;
  }
  const std::int32_t result = ended ? mModalResult : kModalQuit;
  EndModal(disablesParent);
  return result;
}

void OSWindow::EndModal(bool enablesParent) {
  mIsModal = false;
  const bool wasActive = mWindow && mWindow->HasFocus();
  if (enablesParent && mParent && mParent->GetPlatformWindow()) {
    mParent->GetPlatformWindow()->SetEnabled(true);
    if (wasActive) mParent->GetPlatformWindow()->Raise();
  }
  Close();
}

bool OSWindow::HasFocus() {
  return mWindow && mWindow->HasFocus();
}

TFRESULT OSWindow::TakeFocus() {
  if (!mWindow) return kFailure;
  mWindow->TakeFocus();
  return kSuccess;
}

std::uintptr_t OSWindow::SetCursor(std::uintptr_t cursor) {
  const std::uintptr_t before = std::exchange(shownCursor, cursor);
  if (before != cursor) mWindowSystem.SetCursor(cursor);
  return before;
}

TFRESULT OSWindow::GetMousePosition(PointT<std::int32_t>& point) {
  if (!mWindow) return kFailure;
  point = {mMouseX, mMouseY};
  return kSuccess;
}

std::uintptr_t OSWindow::GetWindowHandle() {
  return mWindow ? mWindow->GetNativeHandle() : 0;
}

// What an input method does with it is the display's matter.
TFRESULT OSWindow::SetTextInputTarget(bool, const PointT<std::int32_t>&) {
  return kSuccess;
}

void OSWindow::OnPaint() {
  const RCPtr<OSWindow> self(this);
  PaintDirt();
  TellSizeLimits();
}

// What wants a paint while one runs gets it afterwards.
void OSWindow::PaintDirt() {
  if (!mRootWindow || !mRenderContext) return;
  if (mIsPainting) {
    InvalidateAll();
    return;
  }
  Region dirty;
  mRootWindow->TakeDirtyRegion(dirty);
  if (mRepaintsAll.exchange(false)) dirty = Region(mRenderContext->mRect);
  if (dirty.IsEmpty()) return;
  const RCPtr<OSWindow> self(this);
  const RCPtr<LRootWindow> root = mRootWindow;
  mIsPainting = true;
  try {
    PaintFrame(*root, dirty);
  } catch (...) {
    mIsPainting = false;
    mRepaintsAll = true;
    throw;
  }
  mIsPainting = false;
}

void OSWindow::PaintFrame(LRootWindow& root, const Region& dirty) {
  const RCPtr<LRenderer> renderer = mRenderer;
  const RCPtr<LRenderContextInfo> context = mRenderContext;
  context->mRegion = dirty;
  renderer->RenderStart(context);
  try {
    root.Paint(dirty);
  } catch (...) {
    renderer->RenderFinish(context);
    throw;
  }
  renderer->RenderFinish(context);
}

}  // namespace TF
