#pragma once

#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/System/ApplicationBase.h"

// The application object of a program that only draws: fonts and texts measure with its renderer.
class LSheetApplication : public TF::LApplicationBase<LSheetApplication> {
 public:
  explicit LSheetApplication(const TF::RCPtr<TF::LRenderer>& renderer)
      : LApplicationBase<LSheetApplication>(TF::String()), mRenderer(renderer) {}

  TF::RCPtr<TF::LRenderer> GetRenderer() override { return mRenderer; }
  bool IsExitAllowed() override { return true; }

 private:
  const TF::RCPtr<TF::LRenderer> mRenderer;
};
