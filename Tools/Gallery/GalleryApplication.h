#pragma once

#include "TFFramework/System/ApplicationBase.h"

// The application object of the gallery. Main thread; RequestExit on any.
class LGalleryApplication : public TF::LApplicationBase<LGalleryApplication> {
 public:
  using LApplicationBase<LGalleryApplication>::LApplicationBase;

  static constexpr const char* kWindowClassName = "Varnok_GalleryWindow";

  TFRESULT Initialize() override;
  bool IsExitAllowed() override { return true; }
  void OnBeforeMessageLoop() override;
  void OnSecondInstance(const TF::String& commandLine) override;

  void RequestExit();
};
