#pragma once

#include "TFFramework/System/ApplicationBase.h"

// The application object of the gallery. Main thread; RequestExit on any.
class LGalleryApplication : public TF::LApplicationBase<LGalleryApplication> {
 public:
  using LApplicationBase<LGalleryApplication>::LApplicationBase;

  static constexpr const char* kWindowClassName = "Varnok_GalleryWindow";

  TFRESULT Initialize() override;
  TF::String GetCompanyName() override;
  TF::String GetProductName() override;
  TF::String GetProductVersion() override;
  std::uint32_t GetLanguage() override;
  bool IsExitAllowed() override { return true; }
  void OnBeforeMessageLoop() override;
  void OnSecondInstance(const TF::String& commandLine) override;

  void RequestExit();
};
