#pragma once

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Renderer/Renderer.h"

// An application that is nothing but a clock and a renderer.
class ClockApplication : public TF::LFrameworkApp {
 public:
  ClockApplication() : LFrameworkApp(u"") {}
  explicit ClockApplication(const TF::RCPtr<TF::LControlFactory>& factory) : LFrameworkApp(factory, u"") {}
  TF::String GetCompanyName() override { return u""; }
  TF::String GetProductName() override { return u""; }
  TF::String GetProductVersion() override { return u""; }
  std::uint32_t GetLanguage() override { return 0; }
  TF::RCPtr<TF::LRenderer> GetRenderer() override { return mRenderer; }
  double GetTime() override { return mTime; }
  std::uint32_t GetTickCount() override { return mTicks; }
  bool ProcessNotifications(bool) override { return false; }
  TFRESULT Initialize() override { return TF::kSuccess; }
  std::int32_t RunMessageLoop() override { return 0; }
  bool IsExitAllowed() override { return true; }

  std::uint32_t mTicks = 0xFFFFFF00;  // About to wrap around.
  double mTime = 0;                   // Seconds.
  TF::RCPtr<TF::LRenderer> mRenderer;
};
