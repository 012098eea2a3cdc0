#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "TFFramework/Controls/Button.h"
#include "TFFramework/Controls/Panel.h"
#include "TFFramework/Controls/ScrollBar.h"
#include "TFFramework/Controls/ScrollView.h"
#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {

// Scroll bars for skins that stand in a test, and what they are made of. Arrows are 10 pixels long, a thumb
// is at least 12.

constexpr int kTestArrow = 10;
constexpr int kTestThumb = 12;

inline std::string Part(const std::string& type, const std::string& name, const std::string& attributes,
                        const std::string& children = "", const std::string& parameters = "") {
  return "<SubControl Class='" + type + "' Name='" + name + "' " + attributes + "><Skin>" + children +
         "</Skin>" + (parameters.empty() ? "" : "<CreateParamList>" + parameters + "</CreateParamList>") +
         "</SubControl>";
}

// One axis of a control that fills the client area of its parent.
inline std::string FillAxis(char axis) {
  const std::string a(1, axis);
  return a + "SizeToControl='Client' " + a + "SizeRel='1' " + a + "SizeAbs='0' ";
}

inline std::string SizeOnAxis(char axis, int pixels) {
  return std::string(1, axis) + "SizeAbs='" + std::to_string(pixels) + "' ";
}

inline std::string AtFarEnd(char axis) {
  const std::string a(1, axis);
  return a + "PlacementAnchor='1' " + a + "PositionToControl='Client' " + a + "PositionRel='1' ";
}

inline std::string TestThumb(bool vertical) {
  const char along = vertical ? 'Y' : 'X', across = vertical ? 'X' : 'Y';
  return Part("Button", "thumb", FillAxis(across) + SizeOnAxis(along, kTestThumb));
}

// What a bar holds; the names of parts leaves out the others.
inline std::string BarParts(bool vertical, const std::string& parts = "dec inc channel thumb") {
  const char along = vertical ? 'Y' : 'X', across = vertical ? 'X' : 'Y';
  const std::string a(1, along);
  const auto has = [&parts](const char* name) { return parts.find(name) != std::string::npos; };
  const std::string arrow = FillAxis(across) + SizeOnAxis(along, kTestArrow);
  const std::string between = FillAxis(across) + a + "PositionAbs='" + std::to_string(kTestArrow) + "' " +
                              FillAxis(along).substr(0, FillAxis(along).find(a + "SizeAbs")) + a +
                              "SizeAbs='-" + std::to_string(kTestArrow) + "' ";
  return (has("dec") ? Part("Button", "dec", arrow) : "") +
         (has("inc") ? Part("Button", "inc", arrow + AtFarEnd(along)) : "") +
         (has("channel") ? Part("Channel", "channel", between, has("thumb") ? TestThumb(vertical) : "") : "");
}

// The bars of a view, docked at its far edges; with a corner, they follow that.
inline std::string ViewBars(int thickness, bool hasCorner, const std::string& bars = "hBar vBar") {
  const std::string docked = "XIsDocked='True' YIsDocked='True' Z_Order='1' ";
  const std::string toCorner = "='corner' ";
  const auto axis = [&](char letter, bool across) {
    const std::string a(1, letter);
    if (hasCorner) {
      return (across ? AtFarEnd(letter) : "") + a + "SizeToControl" + toCorner + a + "SizeRel='0' " + a +
             "SizeAbs='0' ";
    }
    return across ? AtFarEnd(letter) + SizeOnAxis(letter, thickness) : FillAxis(letter);
  };
  const auto has = [&bars](const char* name) { return bars.find(name) != std::string::npos; };
  return (hasCorner ? Part("Box", "corner",
                           docked + "LayoutOrder='0' " + AtFarEnd('X') + AtFarEnd('Y') +
                               SizeOnAxis('X', thickness) + SizeOnAxis('Y', thickness))
                    : "") +
         (has("hBar") ? Part("Bar", "hBar", docked + "LayoutOrder='1' " + axis('X', false) + axis('Y', true),
                             BarParts(false))
                      : "") +
         (has("vBar") ? Part("Bar", "vBar", docked + "LayoutOrder='2' " + axis('X', true) + axis('Y', false),
                             BarParts(true))
                      : "");
}

// Takes clicks without a look.
template <class T>
class Touchable : public T {
 public:
  using T::T;
  bool IsTransparentAt(const PointT<double>&) override { return false; }
};

class OpenButton : public LButton {
 public:
  using LButton::LButton;
  using LControl::mIdleRefCount;
};

class OpenBar : public LScrollbar {
 public:
  using LControl::mIdleRefCount;
  using LScrollbar::LScrollbar;
  using LScrollbar::mApplyPendingValue;
  using LScrollbar::mChannelPress;
};

// A channel that can show which of its sides is pressed.
class TestChannel : public Touchable<LControl> {
 public:
  TestChannel(const RCPtr<LControl>& parent, const String& name) : Touchable<LControl>(parent, name) {}
  TFRESULT Initialize() override {
    SetLookCount(2);
    for (std::int32_t slot = 0; slot < 2; ++slot) {
      SetLook(MakeRC<LLook>(MakeRC<LLookDescriptor>(), RCPtr<LFont>()), slot);
    }
    SetActiveLook(0);
    return Touchable<LControl>::Initialize();
  }
};

// Hears one notification and does what a test says.
class Hearer : public virtual LNotificationClient {
 public:
  using Act = std::function<void(const RCPtr<LNotification>&)>;
  explicit Hearer(Act act) : mAct(std::move(act)) {}
  void OnNotification(const RCPtr<LNotificationDistributor>&,
                      const RCPtr<LNotification>& notification) override {
    ++mCount;
    if (mAct) mAct(notification);
  }

  int mCount = 0;

 private:
  const Act mAct;
};

inline RCPtr<Hearer> Hear(const RCPtr<LControl>& control, const char16_t* name, Hearer::Act act = nullptr) {
  const auto hearer = MakeRC<Hearer>(std::move(act));
  hearer->Register(RCPtr<LNotificationDistributor>(control), name);
  return hearer;
}

// A window of 400 by 300 pixels whose controls may be bars, views and panels, too.
class BarFixture : public ProbeFixture {
 protected:
  // Other classes than those here, which stand behind them.
  virtual void RegisterMore() {}

  // For RegisterMore: the texts of a control, such as "Box|bar".
  void LoadTexts(const std::string& section, const std::vector<std::pair<std::string, std::string>>& texts) {
    std::string document = "<StringTable ID='" + section + "'>";
    for (const auto& [key, text] : texts)
      document += "<String ID='" + key + "'><Locale LCID='9'>" + text + "</Locale></String>";
    document = SkinDocument(document + "</StringTable>");
    const Resource resources[] = {
        {u"TFXML", u"TEXTS", {reinterpret_cast<const unsigned char*>(document.data()), document.size()}}};
    SetResources(resources);
    EXPECT_EQ(mFactory->LoadStrings(u"::NONE", u"::TEXTS", 9), kSuccess);
    SetResources({});
  }

  // others: what stands in the skin beside the main control.
  void MakeControls(const std::string& children, const std::string& others = "") {
    if (mMain) mMain->Destroy();
    mWindow->mTop = nullptr;
    mWindow->mMouse.reset();
    const std::string skin =
        std::string("<Skin>") + Part("Box", "main", kFill, children) + others + "</Skin>";
    ASSERT_EQ(Load(SkinDocument(skin)), kSuccess) << mLog.Text();
    mApplication = nullptr;  // One at a time.
    mApplication = MakeRC<ClockApplication>(mFactory);
    RegisterMore();
    mFactory->RegisterControlCreateFunction(u"Box", MakeControl<ProbeControl>);
    mFactory->RegisterControlCreateFunction(u"Button", MakeControl<Touchable<OpenButton>>);
    mFactory->RegisterControlCreateFunction(u"Channel", MakeControl<TestChannel>);
    mFactory->RegisterControlCreateFunction(u"Bar", MakeControl<Touchable<OpenBar>>);
    mFactory->RegisterControlCreateFunction(u"View", MakeControl<Touchable<LScrollView>>);
    mFactory->RegisterControlCreateFunction(u"Panel", MakeControl<Touchable<LPanel>>);
    mMain = mFactory->CreateControl(u"main", RCPtr<LRootWindow>(mWindow));
    ASSERT_TRUE(mMain);
    mMain->Relayout();
    mWindow->mTop = mMain;
    Forget();
  }
  // By the names on the way down, such as u"view.vBar"; null when there is none, or of another class.
  template <class T = LControl>
  RCPtr<T> Find(const std::u16string& path) const {
    RCPtr<LControl> control = mMain;
    for (std::size_t from = 0; from < path.size() && control;) {
      const std::size_t to = std::min(path.find(u'.', from), path.size());
      control = control->FindChild(path.substr(from, to - from).c_str());
      from = to + 1;
    }
    return RCPtr<T>(control);
  }
};

}  // namespace TF
