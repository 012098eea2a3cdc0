#include "Tools/Gallery/GalleryApplication.h"

#include "TFFramework/ControlBase/ControlFactory.h"
#include "Tools/Gallery/GalleryControls.h"
#include "Tools/Gallery/GalleryTrace.h"

using namespace TF;

TFRESULT LGalleryApplication::Initialize() {
  const TFRESULT result = LApplicationBase<LGalleryApplication>::Initialize();
  if (!Failed(result)) RegisterGalleryControls(*GetControlFactory());
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
