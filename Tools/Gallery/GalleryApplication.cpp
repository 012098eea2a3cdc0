#include "Tools/Gallery/GalleryApplication.h"

#include "Platform/Language.h"
#include "TFFramework/Application/Version.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "Tools/Gallery/GalleryControls.h"
#include "Tools/Gallery/GalleryTrace.h"

using namespace TF;

TFRESULT LGalleryApplication::Initialize() {
  const TFRESULT result = LApplicationBase<LGalleryApplication>::Initialize();
  if (!Failed(result)) RegisterGalleryControls(*GetControlFactory());
  return result;
}

String LGalleryApplication::GetCompanyName() {
  return TF::Version(GetStringTable()).GetCompanyName();
}

String LGalleryApplication::GetProductName() {
  return TF::Version(GetStringTable()).GetProductName();
}

String LGalleryApplication::GetProductVersion() {
  return TF::Version(GetStringTable()).GetProductVersion();
}

std::uint32_t LGalleryApplication::GetLanguage() {
  return Platform::UserLanguage();
}

void LGalleryApplication::OnBeforeMessageLoop() {
  TraceLine("ready");
}

void LGalleryApplication::OnSecondInstance(const String& commandLine) {
  TraceLine("second instance: " + ToUtf8(commandLine));
}

void LGalleryApplication::RequestExit() {
  GetApplicationCenter()->Post(LNotification::Create(kAppExitRequest, nullptr));
}
