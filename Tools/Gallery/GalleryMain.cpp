#include "Tools/Gallery/GalleryMain.h"

#include <string_view>

#include "Platform/NativePath.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "Tools/Gallery/GalleryControls.h"
#include "Tools/Gallery/GalleryTrace.h"

using namespace TF;

namespace {

// With the items of the menu bar that show them.
struct Page {
  const char16_t* mName;
  const char16_t* mItem;
};
constexpr Page kPages[] = {
    {u"Layout", nullptr},
    {u"Floating", nullptr},
    {u"Drag", nullptr},
    {u"Focus", nullptr},
    {u"Buttons", u"NID_GALLERY_BUTTONS"},
    {u"Panels", u"NID_GALLERY_PANELS"},
    {u"Views", u"NID_GALLERY_VIEWS"},
    {u"Lists", u"NID_GALLERY_LISTS"},
    {u"Menus", u"NID_GALLERY_MENUS"},
    {u"Status", u"NID_GALLERY_STATUS"},
};

constexpr const char16_t* kOfTheApplication[] = {kAppExitRequest, u"NID_EDIT_CUT_REQ", u"NID_EDIT_COPY_REQ",
                                                 u"NID_EDIT_PASTE_REQ", u"NID_EDIT_DELETE_REQ"};

}  // namespace

TFRESULT LGalleryMain::OnDescriptorApplied() {
  ShowPage(mPage.IsEmpty() ? String(kPages[0].mName) : mPage);
  return kSuccess;
}

void LGalleryMain::ProcessRootWindowAquired() {
  HandlingControl::ProcessRootWindowAquired();
  const RCPtr<LNotificationDistributor> window(GetRootWindow());
  if (!window) return;
  MakeHandler();
  for (const Page& page : kPages)
    if (page.mItem) mHandler->AddHandler(&LGalleryMain::HandleMenu, window, page.mItem);
  mHandler->AddHandler(&LGalleryMain::HandleOpen, window, u"NID_GALLERY_OPEN");
  for (const char16_t* const name : kOfTheApplication)
    mHandler->AddHandler(&LGalleryMain::HandOn, window, name);
}

TFRESULT LGalleryMain::HandleMenu(const RCPtr<LNotificationDistributor>&,
                                  const RCPtr<LNotification>& notification) {
  for (const Page& page : kPages)
    if (page.mItem && notification->GetId() == GetNotificationID(page.mItem)) ShowPage(page.mName);
  return kSuccess;
}

TFRESULT LGalleryMain::HandleOpen(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  if (!mFileDialog) mFileDialog = MakeRC<LFileDialog>(String());
  const TFRESULT result =
      mFileDialog->Show(u"Pictures|*.png;*.jpg|All files|*.*", u"", u"Open a file", false);
  Tell(Failed(result) ? String(u"no file")
                      : u"file: " + FromUtf8(Platform::ToNativePath(mFileDialog->GetPath().View())));
  return kSuccess;
}

TFRESULT LGalleryMain::HandOn(const RCPtr<LNotificationDistributor>&,
                              const RCPtr<LNotification>& notification) {
  if (const LFrameworkApp* const application = LFrameworkApp::GetInstance())
    application->GetApplicationCenter()->Post(LNotification::Create(notification->GetId()));
  return kSuccess;
}

RCPtr<LControl> LGalleryMain::GetPage(const String& name, bool makes) {
  const String pageName = u"page" + name;
  const RCPtr<LControl> page = FindChild(pageName);
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (page || !makes || !factory) return page;
  return factory->CreateSubControl(RCPtr<LControl>(this), FindPart(*this, pageName));
}

void LGalleryMain::ShowPage(const String& name) {
  mPage = name;
  const RCPtr<LControl> head = FindChild(u"head");
  for (const Page& page : kPages) {
    const bool isChosen = name == page.mName;
    if (const RCPtr<LControl> control = GetPage(page.mName, isChosen)) control->SetVisible(isChosen);
    const RCPtr<LGalleryTab> tab = head ? head->FindChild(String(u"tab") + page.mName) : nullptr;
    if (tab) tab->ShowChosen(isChosen);
  }
  Tell(name + u" page");
}

void LGalleryMain::Tell(const String& text) {
  TraceLine(ToUtf8(text));
  if (LFrameworkApp* const application = LFrameworkApp::GetInstance())
    application->SetStatusText(text, false);
}
