#include "TFFramework/System/MainWindow.h"

#include <algorithm>
#include <optional>

#include "Platform/Desktop.h"
#include "Platform/ProfileStore.h"
#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/System/WindowPlacement.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr const char16_t* kProfileFile = u"\\Windows.ini";
constexpr const char* kPlacementName = "WP";

bool IsNone(const LayoutLimit& limit) {
  return limit.mAbs == 0 && limit.mRel == 0;
}

Platform::WindowDescription DescribeWindow(LFrameworkApp& application, const LayoutValues& layout) {
  const auto whole = [](double number) {
    return static_cast<std::int32_t>(std::clamp(number, -30000.0, 30000.0));
  };
  Platform::WindowDescription description;
  description.mTitle = ToUtf8(application.GetCompanyName());
  description.mIsResizable = IsResizable(layout);
  description.mClient = {whole(layout.Axis(LayoutAxis::kX).mPosition.mAbs),
                         whole(layout.Axis(LayoutAxis::kY).mPosition.mAbs),
                         std::max(whole(layout.Axis(LayoutAxis::kX).mSize.mAbs), 1),
                         std::max(whole(layout.Axis(LayoutAxis::kY).mSize.mAbs), 1)};
  return description;
}

std::unique_ptr<Platform::ProfileStore> OpenProfile(LFrameworkApp& application) {
  return Platform::GetDesktop().OpenProfile(
      std::u16string((application.GetFolder(kLocalFolderId) + kProfileFile).View()));
}

std::optional<WindowPlacement> ReadPlacement(Platform::ProfileStore& profile, const std::string& section) {
  const auto bytes = profile.Read(section, kPlacementName);
  return bytes ? WindowPlacement::Decode(*bytes) : std::nullopt;
}

void StorePlacement(Platform::ProfileStore& profile, const std::string& section, const OSWindow& window) {
  const Platform::Window* const shown = window.GetPlatformWindow();
  if (!shown) return;
  WindowPlacement placement;
  placement.mNormal = window.GetNormalRect();
  if (shown->IsMinimized()) placement.mState = WindowPlacement::State::kMinimized;
  if (shown->IsMaximized()) placement.mState = WindowPlacement::State::kMaximized;
  const auto record = placement.Encode();
  if (!profile.Write(section, kPlacementName, record)) LogRecord("The place of the window cannot be stored.");
}

}  // namespace

bool IsResizable(const LayoutValues& layout) {
  const AxisLayout& x = layout.Axis(LayoutAxis::kX);
  const AxisLayout& y = layout.Axis(LayoutAxis::kY);
  const bool hasMinimum = !IsNone(x.mMinimum) || !IsNone(y.mMinimum);
  const bool isFixed = x.mMinimum == x.mMaximum && y.mMinimum == y.mMaximum;
  const bool isNamed =
      x.mMinimum.mIsNamed && x.mMaximum.mIsNamed && y.mMinimum.mIsNamed && y.mMaximum.mIsNamed;
  return !isNamed && !(isFixed && hasMinimum);
}

RCPtr<OSWindow> MakeControlWindow(LFrameworkApp& application, MessageLoop& messageLoop, OSWindow::Role role,
                                  const RCPtr<OSWindow>& parent, const String& controlName,
                                  std::int32_t rendererType) {
  const auto descriptor = application.GetControlFactory()->FindControlDescriptor(controlName);
  if (!descriptor) {
    Throw<std::runtime_error>("Null Pointer : Invalid Control Name",
                              "TF::LApplicationBase<class LApplication>::CreateMainWindow");
  }
  const auto window = MakeRC<OSWindow>(*application.GetWindowSystem(), messageLoop, role);
  Platform::WindowDescription description = DescribeWindow(application, *descriptor->mLayout);
  if (parent) description.mParent = parent->GetPlatformWindow();
  if (Failed(window->Create(description))) return nullptr;
  window->SetParent(parent);
  if (const auto icon = application.GetIcon()) window->GetPlatformWindow()->SetIcon(icon->GetView());
  window->AttachRenderer(rendererType);
  return window;
}

void ShowMainWindow(OSWindow& window, LFrameworkApp& application, const std::string& section) {
  const RCPtr<LRootWindow> root = window.GetRootWindow();
  const auto profile = OpenProfile(application);
  const auto placement = ReadPlacement(*profile, section);
  RectT<std::int32_t> frame = root->GetSkinFrame();
  if (placement) frame = placement->mNormal;
  SizeT<std::int32_t> size{frame.mWidth, frame.mHeight};
  root->ConstrainClientSize(size);
  frame = FitIntoDesktop({frame.mX, frame.mY, size.mWidth, size.mHeight}, application.GetWorkArea());
  if (!IsEmpty(frame)) root->SetClientRect(frame);
  window.SetClosingHandler([section, &application](OSWindow& closing) {
    StorePlacement(*OpenProfile(application), section, closing);
  });
  const bool wasMaximized = placement && placement->mState == WindowPlacement::State::kMaximized;
  window.Show(wasMaximized ? ShowCommand::kMaximize : ShowCommand::kShow);
}

TFRESULT OpenFurtherWindow(LFrameworkApp& application, MessageLoop& messageLoop, const String& controlName,
                           const RCPtr<LRootWindow>& parent) {
  const RCPtr<OSWindow> above(dynamic_cast<OSWindow*>(parent ? parent->GetServices() : nullptr));
  const RCPtr<OSWindow> window = MakeControlWindow(application, messageLoop, OSWindow::Role::kFurther, above,
                                                   controlName, application.GetRendererType());
  if (!window) return kFailure;
  const RCPtr<LRootWindow> root = window->GetRootWindow();
  if (Failed(root->SetTopControlByName(controlName))) {
    window->Close();
    return kFailure;
  }
  if (!IsEmpty(root->GetSkinFrame())) root->SetClientRect(root->GetSkinFrame());
  return window->Show(ShowCommand::kShow);
}

void CloseWindows(LFrameworkApp& application) {
  while (application.GetRootWindows().GetCount() > 0) {
    const RCPtr<LRootWindow> root = application.GetRootWindows()[application.GetRootWindows().GetCount() - 1];
    if (auto* const window = dynamic_cast<OSWindow*>(root->GetServices())) window->Close();
    // What is no window of the desktop leaves the list all the same.
    application.RemoveRootWindow(root);
  }
}

}  // namespace TF
