#pragma once

#include <string>
#include <vector>

#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/System/ApplicationBase.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/FakeWindowSystem.h"

namespace TF {

// An application on a display that shows nothing.
class WindowApp : public LApplicationBase<WindowApp> {
 public:
  static constexpr const char* kWindowClassName = "WindowTest";

  WindowApp(const RCPtr<LControlFactory>& factory, TestSupport::FakeWindowSystem& system)
      : LApplicationBase<WindowApp>(factory, u"program"), mSystem(system) {}

  void StartDisplay() override { UseDisplay(mSystem); }
  bool IsExitAllowed() override { return mExitAllowed; }
  String GetCompanyName() override { return u"Company"; }
  String GetProductName() override { return u"Product"; }
  String GetProductVersion() override { return u"1.0"; }
  std::uint32_t GetLanguage() override { return 0x0409; }
  void OnSecondInstance(const String& commandLine) override {
    mSecondInstances.push_back(ToUtf8(commandLine));
  }

  TestSupport::FakeWindowSystem& mSystem;
  bool mExitAllowed = true;
  std::vector<std::string> mSecondInstances;
};

// The skins of an application's elements; null when they are refused.
inline RCPtr<LControlFactory> LoadSkins(const std::string& elements) {
  const std::string document = "<R><Application Name='App'>" + elements + "</Application></R>";
  const Resource resources[] = {
      {u"TFXML", u"SKIN", {reinterpret_cast<const unsigned char*>(document.data()), document.size()}}};
  SetResources(resources);
  const auto factory = MakeRC<LControlFactory>(u"App");
  const bool loaded = factory->LoadSkins(u"::SKIN") == kSuccess;
  SetResources({});
  return loaded ? factory : nullptr;
}

}  // namespace TF
