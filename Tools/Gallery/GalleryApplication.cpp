#include "Tools/Gallery/GalleryApplication.h"

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Controls/FrameworkControls.h"
#include "Tools/Gallery/GalleryControls.h"
#include "Tools/Gallery/GalleryMain.h"
#include "Tools/Gallery/GalleryPages.h"
#include "Tools/Gallery/GalleryTrace.h"

using namespace TF;

TFRESULT LGalleryApplication::Initialize() {
  TFRESULT result = LApplicationBase<LGalleryApplication>::Initialize();
  if (!Failed(result)) result = RegisterFrameworkControls(*GetControlFactory());
  if (Failed(result)) return result;
  RegisterGalleryControls(*GetControlFactory());
  RegisterGalleryPages(*GetControlFactory());
  GetControlFactory()->RegisterControlCreateFunction(u"Gallery.Main", MakeControl<LGalleryMain>);
  return result;
}

void LGalleryApplication::OnBeforeMessageLoop() {
  TraceLine("ready");
}

void LGalleryApplication::OnSecondInstance(const String& commandLine) {
  TraceLine("second instance: " + ToUtf8(commandLine));
}

void LGalleryApplication::RequestExit() {
  PostExitRequest();
}
