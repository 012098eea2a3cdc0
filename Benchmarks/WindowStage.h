#pragma once

#include <stdexcept>
#include <string>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Controls/FrameworkControls.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/System/WindowApp.h"

namespace WindowBenchmarks {

inline constexpr const char* kLooks = R"(
  <Colorizers>
    <Colorizer Name='White' ColorType='SolidFill' Color='0xFFFFFFFF'/>
    <Colorizer Name='Tint' ColorType='SolidFill' Color='0xFFD5EAEC'/>
    <Colorizer Name='Ink' ColorType='SolidFill' Color='0xFF17212B'/>
  </Colorizers>
  <Parts>
    <Part Name='White' Width='1' Height='1' ResizeType='Stretch' ColorizerName='White' ColorizerAlphaMod='1.0'/>
    <Part Name='Tint' Width='1' Height='1' ResizeType='Stretch' ColorizerName='Tint' ColorizerAlphaMod='1.0'/>
    <Part Name='Ink' Width='1' Height='1' ResizeType='Stretch' ColorizerName='Ink' ColorizerAlphaMod='1.0'/>
  </Parts>
  <Looks>
    <Look Name='Screen'><ClientPart Name='White' OffsetLeft='0' OffsetTop='0' OffsetRight='0' OffsetBottom='0'/></Look>
    <Look Name='Box'>
      <ClientPart Name='Tint' OffsetLeft='0' OffsetTop='0' OffsetRight='0' OffsetBottom='0'/>
      <TextProperties TextLeftRel='0' TextLeftAbs='4' TextRightRel='1' TextRightAbs='-4' TextHAlign='0'
                      TextTopRel='0' TextTopAbs='0' TextBottomRel='1' TextBottomAbs='0' TextVAlign='0.5'
                      TextForegroundPart='Ink'/>
    </Look>
  </Looks>
  <LookLists>
    <LookList Name='Screen' NumLooks='1'><Look Name='Screen' Index='0'/></LookList>
    <LookList Name='Box' NumLooks='1'><Look Name='Box' Index='0'/></LookList>
  </LookLists>)";

inline std::string Box(const std::string& name, const std::string& place, const std::string& inner = "") {
  return "<SubControl Class='Box' Name='" + name + "' " + place + "><Skin Name='" + name +
         "' LookList='Box'>" + inner + "</Skin></SubControl>";
}

inline std::string Number(const char* attribute, double value) {
  return std::string(" ") + attribute + "='" + std::to_string(value) + "'";
}

// A window of controls, each with its look.
class Stage {
 public:
  explicit Stage(const std::string& children) {
    setenv("XDG_CONFIG_HOME", mFolder.Path().c_str(), 1);
    const auto factory = TF::LoadSkins(std::string(kLooks) +
                                       "<Skins><Skin Name='S' FontName='Liberation Sans' FontSize='8.25' "
                                       "FontStyle='0'><SubControl Class='Box' Name='mainControl' "
                                       "XSizeAbs='400' YSizeAbs='425'><Skin Name='main' LookList='Screen'>" +
                                       children + "</Skin></SubControl></Skin></Skins>");
    if (!factory) throw std::runtime_error("no skin");
    TF::RegisterFrameworkControls(*factory);
    factory->RegisterControlCreateFunction(u"Box", TF::MakeControl<TF::LControl>);
    mProgram = TF::MakeRC<TF::WindowApp>(factory, mSystem);
    if (mProgram->Initialize() != TF::kSuccess || mProgram->SetSkin(0) != TF::kSuccess)
      throw std::runtime_error("no skin");
    mProgram->StartDisplay();
    if (mProgram->OpenScreen() != TF::kSuccess) throw std::runtime_error("no window");
    Paint();
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  ~Stage() {
    TF::CloseWindows(*mProgram);
    mProgram->Shutdown();
    mProgram = nullptr;
    TF::LNotificationCenterManager::ReleaseInstance();
  }

  TF::RCPtr<TF::LRootWindow> Root() const { return mProgram->GetRootWindows()[0]; }
  TF::RCPtr<TF::LControl> Child(const std::string& name) const {
    return Root()->GetTopControl()->FindChild(TF::FromUtf8(name));
  }
  void Paint() {
    Window().mPresented.clear();
    mSystem.DispatchPaints();
    if (Window().mPresented.empty()) throw std::runtime_error("nothing painted");
  }
  const TestSupport::FakePlatformWindow& Shown() { return Window(); }
  void Resize(std::int32_t width, std::int32_t height) {
    Window().mClient = {0, 0, width, height};
    Window().mListener.OnResize({width, height});
  }

 private:
  TestSupport::FakePlatformWindow& Window() { return *mSystem.mWindows.at(0); }

  const TestSupport::TemporaryFolder mFolder;
  TestSupport::FakeWindowSystem mSystem;
  TF::RCPtr<TF::WindowApp> mProgram;
};

}  // namespace WindowBenchmarks
