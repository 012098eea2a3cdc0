#include "TFFramework/Controls/Button.h"

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "TFFramework/Controls/Label.h"
#include "TFFramework/Renderer/Renderer.h"
#include "Tests/TFFramework/ControlBase/LookParts.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

class TestButton : public Touchable<LButton> {
 public:
  using LButton::mDragThreshold;
  using LButton::mIdleRefCount;
  using Touchable::Touchable;

  std::int32_t Look() const {
    for (std::int32_t slot = 0; slot < GetLookCount(); ++slot)
      if (GetLookAlpha(slot) > 0) return slot;
    return -1;
  }
};

// Buttons of 40 by 20 pixels beside each other; between them nothing.
class ButtonTest : public BarFixture {
 protected:
  using Heard = std::vector<std::string>;

  void RegisterMore() override {
    mFactory->RegisterControlCreateFunction(u"TestButton", MakeControl<TestButton>);
  }
  static std::string Button(const std::string& name, int x, const std::string& parameters = "") {
    return Part("TestButton", name, Place(x, 0, 40, 20) + "TabStop='0' ", "", parameters);
  }
  static std::string Parameter(const std::string& id, const std::string& value) {
    return "<CreateParam ID='" + id + "'>" + value + "</CreateParam>";
  }
  void MakeButtons(const std::string& buttons) {
    MakeControls(buttons);
    for (std::int32_t index = 0; index < mMain->GetChildCount(); ++index) {
      const RCPtr<TestButton> button(mMain->GetChild(index));
      button->SetLookCount(14);
      button->UpdateLook();
      Listen(button, {u"NID_LEFT_CLICK", u"NID_BUTTON_AUTOREPEAT"});
    }
  }
  RCPtr<TestButton> At(const char16_t* name) const { return mMain->FindChild(name); }
  // What buttons have sent.
  static Heard TakeHeard() {
    Heard heard = TakeLog();
    std::erase_if(heard, [](const std::string& event) { return event.find(" NID_") == std::string::npos; });
    return heard;
  }
  void Pass(double seconds) {
    Wait(seconds);
    mWindow->Idle();
  }
  void Return() { mWindow->Key(0x200D0000); }
};

TEST_F(ButtonTest, ItsStateChoosesOneOfFourteenLooks) {
  for (const bool isOn : {false, true}) {
    MakeButtons(Button("a", 0) + Button("b", 100));
    const auto a = At(u"a");
    a->SetChecked(isOn);
    At(u"b")->SetFocus(true);
    mWindow->mMouse = {300, 200};
    const auto look = [&] { return a->Look() - (isOn ? 7 : 0); };
    EXPECT_EQ(look(), 0);
    mWindow->Move(5, 5);
    EXPECT_EQ(look(), 1);
    // A press that does not move shows the normal face, which has the focus then.
    mWindow->Press();
    EXPECT_EQ(look(), 3);
    mWindow->Move(6, 5);
    EXPECT_EQ(look(), 5);
    mWindow->Move(60, 5);
    EXPECT_EQ(look(), 4);
    a->mPressedOffButton = true;
    a->UpdateLook();
    EXPECT_EQ(look(), 5);
    mWindow->LetGo();
    EXPECT_EQ(look(), 3);
    mWindow->Move(5, 5);
    EXPECT_EQ(look(), 4);
    a->SetEnabled(false);
    EXPECT_EQ(look(), 6);
    mMain->SetEnabled(false);
    a->SetEnabled(true);
    EXPECT_EQ(look(), 6);
    mMain->SetEnabled(true);
    EXPECT_EQ(look(), 1);
    EXPECT_EQ(TakeHeard(), Heard());
  }
}

TEST_F(ButtonTest, ClicksChangeTheValueOfTogglesAndRadios) {
  const std::string sets = Parameter("AUTO_VALUE_SET", "TRUE"), radio = sets + Parameter("IS_RADIO", "true");
  MakeButtons(Button("p", 0) + Button("t", 50, sets) + Button("x", 100, radio) + Button("y", 150, radio) +
              Button("u", 200, sets + Parameter("IS_RADIO", "no")));
  const auto states = [this] {
    std::string text;
    for (const char16_t* name : {u"p", u"t", u"x", u"y", u"u"}) text += At(name)->IsChecked() ? '1' : '0';
    return text;
  };
  struct Case {
    int mX;
    const char* mStates;
  };
  for (const Case& each : {Case{5, "00000"}, Case{55, "01000"}, Case{105, "01100"}, Case{205, "01101"},
                           Case{155, "01011"}, Case{155, "01011"}, Case{55, "00011"}, Case{205, "00010"}}) {
    mWindow->Click(each.mX, 5);
    EXPECT_EQ(states(), each.mStates) << each.mX;
  }
  EXPECT_TRUE(At(u"x")->SetChecked(true));
  EXPECT_EQ(states(), "00100");
}

TEST_F(ButtonTest, HeldDownItRepeatsWhileTheMouseIsOverIt) {
  MakeButtons(Button("a", 0));
  const auto a = At(u"a");
  a->mAutoRepeat = true;
  const auto repeats = [this] { return static_cast<int>(TakeHeard().size()); };
  mWindow->Move(5, 5);
  mWindow->Press();
  EXPECT_EQ(repeats(), 1);
  for (const auto& [seconds, count] :
       {std::pair(0.29, 0), std::pair(0.02, 1), std::pair(0.09, 0), std::pair(0.02, 1), std::pair(0.5, 1)}) {
    Pass(seconds);
    EXPECT_EQ(repeats(), count) << seconds;
  }
  mWindow->Move(100, 5);
  Pass(5);
  EXPECT_EQ(repeats(), 0);
  mWindow->Move(5, 5);
  Pass(0.05);
  EXPECT_EQ(repeats(), 0);
  Pass(0.06);
  EXPECT_EQ(repeats(), 1);
  mWindow->LetGo();
  TakeHeard();
  EXPECT_EQ(a->mIdleRefCount, 0);
  Pass(5);
  EXPECT_EQ(repeats(), 0);
}

TEST_F(ButtonTest, ReturnShowsAPressAndClicksBehindIt) {
  MakeButtons(Button("a", 0) + Button("b", 100));
  const auto a = At(u"a");
  a->SetFocus(true);
  Return();
  EXPECT_EQ(a->Look(), 2);
  mWindow->Move(5, 5);
  EXPECT_EQ(a->Look(), 2);
  Pass(0.14);
  EXPECT_EQ(TakeHeard(), Heard());
  Pass(0.011);
  EXPECT_EQ(TakeHeard(), Heard{"a NID_LEFT_CLICK"});
  EXPECT_EQ(a->Look(), 4);
  EXPECT_EQ(a->mIdleRefCount, 0);
  // A second one clicks at once for the first.
  Return();
  Pass(0.1);
  Return();
  EXPECT_EQ(TakeHeard(), Heard{"a NID_LEFT_CLICK"});
  Pass(0.1);
  EXPECT_EQ(TakeHeard(), Heard());
  Pass(0.06);
  EXPECT_EQ(TakeHeard(), Heard{"a NID_LEFT_CLICK"});
}

TEST_F(ButtonTest, WhatIsDisabledOrHiddenMeanwhileIsNotClicked) {
  for (const bool repeats : {false, true}) {
    for (const bool hides : {false, true}) {
      MakeButtons(Button("a", 0));
      const auto a = At(u"a");
      a->mAutoRepeat = repeats;
      a->Send(LNotification::Create(u"NID_SIMULATE_CLICK"));
      EXPECT_EQ(a->Look(), 2);
      if (hides)
        a->SetVisible(false);
      else
        a->SetEnabled(false);
      Pass(1);
      a->Send(LNotification::Create(u"NID_SIMULATE_CLICK"));
      Pass(1);
      EXPECT_EQ(TakeHeard(), Heard());
      EXPECT_EQ(a->Look(), hides ? 0 : 6);
      EXPECT_EQ(a->mIdleRefCount, 0);
    }
  }
}

TEST_F(ButtonTest, ItMayGoOrBePressedAgainInsideItsOwnClick) {
  for (const std::string act : {"go", "again", "throw"}) {
    MakeButtons(Button("a", 0));
    const auto a = At(u"a");
    a->mAutoRepeat = true;
    a->SetFocus(true);
    int acts = 0;
    mEar->mAct = [&] {
      if (++acts > 3) return;
      if (act == "go") a->Destroy();
      if (act == "again") a->SimulateClick();
      if (act == "throw") throw std::runtime_error(act);
    };
    const auto guarded = [&](const std::function<void()>& step) {
      try {
        step();
      } catch (const std::runtime_error&) {
        EXPECT_EQ(act, "throw");
      }
    };
    guarded([this] { Return(); });
    for (int pass = 0; pass < 9; ++pass) guarded([this] { Pass(0.2); });
    mEar->mAct = nullptr;
    EXPECT_EQ(a->mIdleRefCount, 0) << act;
    EXPECT_GT(acts, 0);
    TakeLog();
  }
}

TEST_F(ButtonTest, ATextThatDoesNotFitIsItsTip) {
  MakeButtons(Button("a", 0));
  mApplication->mRenderer = LRenderer::Create(static_cast<std::int32_t>(RendererType::kGdi), nullptr);
  const auto label = MakeRC<LLabel>(nullptr, u"label");
  label->SetToolTipText(u"tip");
  label->SetText(u"A text that is wide");
  EXPECT_EQ(label->GetToolTipText(), u"tip");
  label->SetFont(u"Sans", 10, LFont::kRegular, false);
  label->SetLookCount(1);
  auto descriptor = MakeRC<LLookDescriptor>();
  label->SetLook(MakeRC<LLook>(descriptor, label->GetFont()), 0);
  EXPECT_EQ(label->GetToolTipText(), u"A text that is wide");
  descriptor = MakeRC<LLookDescriptor>();
  descriptor->mHasText = true;
  descriptor->TextRightRel = 0.5;
  descriptor->TextForegroundPart = ColorPart(0xFF000000);
  const auto look = MakeRC<LLook>(descriptor, label->GetFont());
  label->SetLook(look, 0);
  const std::int32_t natural = look->GetFontText()->GetNaturalWidth();
  ASSERT_GT(natural, 50);
  for (const auto& [width, tip] :
       {std::pair(2 * natural, u"tip"), std::pair(2 * natural - 2, u"A text that is wide")}) {
    label->GetLayout()->Axis(LayoutAxis::kX).mSize.mReference = SizeReference::kSelf;
    label->GetLayout()->Axis(LayoutAxis::kX).mSize.mAbs = width;
    label->SetParent(mMain);
    label->Relayout();
    EXPECT_EQ(label->GetToolTipText(), tip) << width;
  }
}

}  // namespace
}  // namespace TF
