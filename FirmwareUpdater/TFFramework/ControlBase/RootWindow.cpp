#include "TFFramework/ControlBase/RootWindow.h"

#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/Dialog.h"
#include "TFFramework/ControlBase/GlobalHotKeyManager.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

namespace {

RectT<std::int32_t> Rounded(const RectT<double>& rect) {
  return {RoundToInt32(rect.mX), RoundToInt32(rect.mY), RoundToInt32(rect.mWidth),
          RoundToInt32(rect.mHeight)};
}

}  // namespace

// The queue's own reference keeps the object while the temporary pointer comes and goes.
LRootWindow::LRootWindow(const RCPtr<LRenderer>& renderer, IWindowOSServices* services)
    : mRenderer(renderer), mOSServices(services) {
  SetDistributor(RCPtr<LNotificationDistributor>(this));
  AddInternalReferences();
  if (const LFrameworkApp* const application = LFrameworkApp::GetInstance())
    mHotKeys = application->GetHotKeys();
  RectT<std::int32_t> client;
  if (mOSServices && !Failed(mOSServices->GetClientRect(client))) mBounds = client;
}

LRootWindow::~LRootWindow() = default;

TFRESULT LRootWindow::ReleaseInternalReferences() {
  NotifyClosing();
  if (Shutdown()) DropInternalReferences();
  return LNotificationQueue::ReleaseInternalReferences();
}

void LRootWindow::Detach() {
  mOSServices = nullptr;
}

// What the old tree does while it goes may be to set another one, which then goes, too.
TFRESULT LRootWindow::SetTopControl(const RCPtr<LControl>& control) {
  if (control && control == mTopControl) return kNothingDone;
  const RCPtr<LRootWindow> held(this);
  const RCPtr<LControl> taken = control;
  while (const RCPtr<LControl> old = mTopControl) {
    ForgetTree();
    old->Destroy();
  }
  if (taken) TakeTree(taken);
  return kSuccess;
}

void LRootWindow::ForgetTree() {
  for (RCPtr<LControl>* field :
       {&mFocusControl, &mSavedFocusControl, &mHoverControl, &mToolTipControl, &mCaptureControl})
    *field = nullptr;
  mTopControl = nullptr;
  mSkinFrame = {};
  if (mHotKeys) mHotKeys->Remove(std::exchange(mTopHotKeys, {}));
}

void LRootWindow::TakeTree(const RCPtr<LControl>& control) {
  mTopControl = control;
  if (const RCPtr<LStringTable> strings = control->GetStringSection()) {
    mTopHotKeys = ReadHotKeys(*strings, u"GHK");
    if (mHotKeys) mHotKeys->Add(mTopHotKeys);
  }
  if (!control->GetRootWindow()) control->SetRootWindow(RCPtr<LRootWindow>(this));
  if (!control->GetText().IsEmpty()) SetTitle(control->GetText());
  mSkinFrame = FindSkinFrame();
  RefreshFrame();
  if (mTopControl != control) return;
  FocusTree();
  InvalidateAll();
}

void LRootWindow::RefreshFrame() {
  if (!mTopControl) return;
  LayoutPosition position;
  position.mReference = PositionReference::kClient;
  LayoutSize size;
  size.mReference = SizeReference::kClient;
  size.mRel = 1;
  mTopControl->SetLayout(position, size, position, size);
}

// The layout may refer to the window in front, but not to this one, whose place comes of it.
RectT<std::int32_t> LRootWindow::FindSkinFrame() {
  LayoutDesktop desktop;
  if (!GetLayoutDesktop(desktop)) return {};
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LRootWindow> front = application ? application->GetFrontRootWindow() : RCPtr<LRootWindow>();
  if (!front || front == this || !front->GetLayoutDesktop(desktop)) desktop.mClientOrigin = {};
  RectT<double> frame = mTopControl->ComputeTopFrame(desktop);
  frame.mX += desktop.mClientOrigin.mX;
  frame.mY += desktop.mClientOrigin.mY;
  return Rounded(frame);
}

void LRootWindow::RestoreFrame() {
  PointT<std::int32_t> corner;
  if (!mTopControl || !mOSServices || Failed(mOSServices->ClientToScreen(corner, {0, 0}))) return;
  const RectT<std::int32_t> frame = Rounded(mTopControl->GetBounds());
  SetClientRect({corner.mX + frame.mX, corner.mY + frame.mY, frame.mWidth, frame.mHeight});
}

void LRootWindow::FocusTree() {
  if (mFocusControl || !mOSServices) return;
  const RCPtr<LControl> top = mTopControl;
  if (mOSServices->HasFocus())
    top->SetFocus(true);
  else
    mOSServices->TakeFocus();
}

TFRESULT LRootWindow::SetTopControlByName(const String& name) {
  if (name.IsEmpty()) return SetTopControl(nullptr);
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory) return kFailure;
  const RCPtr<LRootWindow> held(this);
  const RCPtr<LControl> control = factory->CreateControl(name, held);
  return control ? SetTopControl(control) : kFailure;
}

bool LRootWindow::ConstrainClientSize(SizeT<std::int32_t>& size) {
  if (!mTopControl) return false;
  const SizeT<double> fitting = mTopControl->ConstrainSize({double(size.mWidth), double(size.mHeight)});
  const SizeT<std::int32_t> result{RoundToInt32(fitting.mWidth), RoundToInt32(fitting.mHeight)};
  return std::exchange(size, result) != result;
}

void LRootWindow::SetClientRect(const RectT<std::int32_t>& rect) {
  if (!mOSServices) return;
  RectT<std::int32_t> client;
  PointT<std::int32_t> corner;
  if (Failed(mOSServices->GetClientRect(client)) || Failed(mOSServices->ClientToScreen(corner, {0, 0})))
    return;
  if (RectT<std::int32_t>{corner.mX, corner.mY, client.mWidth, client.mHeight} == rect) return;
  const RCPtr<LRootWindow> held(this);
  mOSServices->SetClientRect(rect);
  if (mTopControl) mTopControl->InvalidateFrame();
}

RectT<std::int32_t> LRootWindow::GetClientRect() const {
  const MutexLock lock(mRegionMutex);
  return mBounds;
}

TFRESULT LRootWindow::RequestEnd(std::int32_t result) {
  if (!mOSServices) return kFailure;
  mEndResult = result;
  mEndRequested = true;
  return kSuccess;
}

void LRootWindow::ProcessClose() {
  if (const RCPtr<LDialog> dialog = mTopControl)
    dialog->Close(LDialog::kCancelled);
  else
    RequestEnd(0);
}

bool LRootWindow::ProcessKeyQueue(bool first) {
  const RCPtr<LRootWindow> held(this);
  while (!mKeyQueue.IsEmpty()) ProcessKey(mKeyQueue.Dequeue());
  const bool remains = Process(first);
  if (mOSServices && std::exchange(mEndRequested, false)) mOSServices->EndWindow(mEndResult);
  return remains;
}

void LRootWindow::SetTitle(const String& title) {
  if (mOSServices) mOSServices->SetTitle(title);
}

void LRootWindow::SetClientSize(const SizeT<std::int32_t>& size) {
  PointT<std::int32_t> corner;
  if (mOSServices && !Failed(mOSServices->ClientToScreen(corner, {0, 0})))
    SetClientRect({corner.mX, corner.mY, size.mWidth, size.mHeight});
}

bool LRootWindow::GetLayoutDesktop(LayoutDesktop& desktop) {
  RectT<std::int32_t> client;
  PointT<std::int32_t> corner;
  if (!mOSServices || Failed(mOSServices->GetClientRect(client)) ||
      Failed(mOSServices->ClientToScreen(corner, {0, 0})))
    return false;
  desktop.mClientOrigin = {double(corner.mX), double(corner.mY)};
  desktop.mClientSize = {double(client.mWidth), double(client.mHeight)};
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RectT<std::int32_t> workArea = application ? application->GetWorkArea() : RectT<std::int32_t>();
  desktop.mWorkArea = {double(workArea.mWidth), double(workArea.mHeight)};
  if (!application) return true;
  // A window that has not been under the mouse yet does not know where it is.
  PointT<std::int32_t> mouse = application->GetCursorPosition();
  const RCPtr<LRootWindow> active = application->GetActiveRootWindow();
  if (active && active->mOSServices) active->mOSServices->ClientToScreen(mouse, mouse);
  desktop.mMouse = {double(mouse.mX), double(mouse.mY)};
  return true;
}

std::uintptr_t LRootWindow::SetCursor(std::uintptr_t cursor) {
  if (!mOSServices) return 0;
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (cursor == 0 && application) cursor = application->GetCursorHandle(u"UI_CURSOR_ARROW");
  return mOSServices->SetCursor(cursor);
}

void LRootWindow::ShowNamedCursor(const String& name) {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  SetCursor(application ? application->GetCursorHandle(name) : 0);
}

void LRootWindow::ForgetControl(LControl& control) {
  if (mTopControl == &control) return ForgetTree();
  for (RCPtr<LControl>* field :
       {&mFocusControl, &mSavedFocusControl, &mHoverControl, &mToolTipControl, &mCaptureControl}) {
    if (*field == &control) *field = nullptr;
  }
}

RCPtr<LControl> LRootWindow::GetFocusControl() {
  return mFocusControl;
}

void LRootWindow::SetFocusControl(const RCPtr<LControl>& control) {
  mFocusControl = control;
}

void LRootWindow::ClearFocusControl() {
  mSavedFocusControl = std::exchange(mFocusControl, RCPtr<LControl>());
}

RCPtr<LControl> LRootWindow::GetPreviousFocusControl() {
  return mSavedFocusControl;
}

TFRESULT LRootWindow::SetCaptureControl(const RCPtr<LControl>& control) {
  if (!control) return kInvalidArgument;
  const RCPtr<LRootWindow> held(this);
  if (const RCPtr<LControl> before = mCaptureControl) before->ReleaseMouse();
  mCaptureControl = control;
  return kSuccess;
}

void LRootWindow::ClearCaptureControl() {
  mCaptureControl = nullptr;
}

}  // namespace TF
