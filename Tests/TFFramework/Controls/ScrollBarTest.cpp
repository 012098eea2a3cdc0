#include <cmath>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

constexpr const char16_t* kValueChange = u"NID_VALUE_CHANGE";

// A bar of 20 by 120 pixels with a track of 100, or one that lies on its side.
class ScrollBarTest : public BarFixture {
 protected:
  void MakeBar(bool vertical = true, const std::string& parts = "dec inc channel thumb") {
    MakeControls(Part("Bar", "bar", vertical ? Place(0, 0, 20, 120) : Place(0, 0, 120, 20),
                      BarParts(vertical, parts)));
    mBar = Find<OpenBar>(u"bar");
    ASSERT_TRUE(mBar);
  }
  void TearDown() override {
    mBar = nullptr;
    BarFixture::TearDown();
  }
  RectT<double> Thumb() const { return Find(u"bar.channel.thumb")->GetBounds(); }
  RCPtr<LControl> Channel() const { return Find(u"bar.channel"); }
  void Set(double value, double line, double page, double ratio) {
    mBar->SetSteps(line, page, ratio);
    mBar->SetValue(value);
  }
  // True when a bar has taken it.
  bool Key(std::uint32_t code) {
    KeyCode key;
    key.code = code;
    return mMain->OnSiblingKey(MakeRC<LKeyParam>(key)) == kSuccess;
  }
  void IdleAfter(double seconds) {
    Wait(seconds);
    mWindow->Idle();
  }

  RCPtr<OpenBar> mBar;
};

TEST_F(ScrollBarTest, TheThumbStandsWhereTheValueSays) {
  struct Case {
    double mRatio, mValue, mSize, mPlace;
  };
  const Case cases[] = {
      {0.1, 0, 12, 0},    {0.1, 1, 12, 88}, {0.1, 0.5, 12, 44},   {0, 0.5, 12, 44},
      {0.5, 0.5, 50, 25}, {1, 0.5, 100, 0}, {0.255, 0.5, 26, 37}, {0.333, 0.25, 33, 17},
      {0.333, 0, 33, 0},  {0.5, -3, 50, 0}, {0.5, 7, 50, 50},
  };
  for (const bool vertical : {true, false}) {
    MakeBar(vertical);
    EXPECT_EQ(mBar->IsVertical(), vertical);
    for (const Case& each : cases) {
      Set(each.mValue, 0.1, 0.2, each.mRatio);
      const RectT<double> expected = vertical ? RectT<double>{0, each.mPlace, 20, each.mSize}
                                              : RectT<double>{each.mPlace, 0, each.mSize, 20};
      EXPECT_EQ(Thumb(), expected) << each.mRatio << " at " << each.mValue;
    }
  }
}

TEST_F(ScrollBarTest, TheThumbFollowsTheSizeOfTheBar) {
  MakeBar();
  Set(1, 0.1, 0.2, 0.5);
  LayoutSize size;
  for (const auto& [length, thumb, place] :
       {std::tuple{220, 100.0, 100.0}, {40, 12.0, 8.0}, {20, 12.0, 0.0}, {0, 12.0, 0.0}, {120, 50.0, 50.0}}) {
    size.mAbs = length;
    mBar->SetAxisLayout(LayoutAxis::kY, LayoutPosition(), size);
    EXPECT_EQ(Thumb(), (RectT<double>{0, place, 20, thumb})) << length;
  }
}

TEST_F(ScrollBarTest, AThumbIsOnlyLaidOutWhenItsPixelsChange) {
  MakeBar();
  Set(0.5, 0.1, 0.2, 0.1);
  Forget();
  mBar->SetValue(0.501);
  EXPECT_TRUE(mWindow->TakeInvalid().empty());
  mBar->SetValue(0.55);
  EXPECT_FALSE(mWindow->TakeInvalid().empty());
}

TEST_F(ScrollBarTest, AnyPartMayBeMissing) {
  for (const char* parts :
       {"", "dec", "inc channel", "dec inc", "channel", "channel thumb", "dec channel thumb"}) {
    MakeBar(true, parts);
    mBar->SetValue(0.5);
    EXPECT_EQ(mBar->GetValue(), 0.5) << parts;
    for (const int y : {5, 15, 60, 115}) {
      mWindow->Move(10, y);
      mWindow->Press();
      mWindow->Move(10, y + 3);
      IdleAfter(1);
      mWindow->LetGo();
    }
    EXPECT_TRUE(Key(0x20240000)) << parts;
    EXPECT_EQ(mBar->GetValue(), 0) << parts;
    EXPECT_EQ(mBar->mIdleRefCount, 0) << parts;
  }
}

TEST_F(ScrollBarTest, NoPartTakesTheFocus) {
  MakeBar();
  for (const char16_t* name : {u"bar", u"bar.dec", u"bar.inc", u"bar.channel", u"bar.channel.thumb"}) {
    EXPECT_TRUE(Find(name)->IsNotFocusable());
  }
}

TEST_F(ScrollBarTest, ArrowsStepByLines) {
  MakeBar();
  Set(0.5, 0.1, 0.3, 0.1);
  const auto repeat = [this](const char16_t* name) {
    Find(name)->Send(LNotification::Create(u"NID_BUTTON_AUTOREPEAT"));
  };
  repeat(u"bar.inc");
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.6);
  for (int i = 0; i < 2; ++i) repeat(u"bar.dec");
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.4);
}

TEST_F(ScrollBarTest, HoldingAnArrowRepeatsItsStep) {
  MakeBar();
  Set(0, 0.1, 0.3, 0.1);
  mWindow->Move(10, 115);
  mWindow->Press();
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.1);
  IdleAfter(0.31);
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.2);
  IdleAfter(0.11);
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.3);
  mWindow->LetGo();
  IdleAfter(1);
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.3);
}

TEST_F(ScrollBarTest, AnotherSkinEndsTheRepeatingOfAnArrow) {
  MakeBar();
  Set(0, 0.1, 0.3, 0.1);
  mWindow->Move(10, 115);
  mWindow->Press();
  mBar->ApplyDescriptor(mBar->GetDescriptor());
  mWindow->LetGo();
  IdleAfter(1);
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.1);
  EXPECT_EQ(Find<OpenButton>(u"bar.inc")->mIdleRefCount, 0);
}

TEST_F(ScrollBarTest, AThumbWithoutALengthOfItsOwnHasTheUsualLeast) {
  MakeBar();
  Set(0.5, 0.1, 0.2, 0);
  const RCPtr<LControlDescriptor> thumb = Find(u"bar.channel.thumb")->GetDescriptor();
  for (const auto& [reference, length, least] : {std::tuple{SizeReference::kSelf, 30, 30.0},
                                                 {SizeReference::kClient, 30, 10.0},
                                                 {SizeReference::kSelf, 12, 12.0}}) {
    LayoutSize& size = thumb->mLayout->Axis(LayoutAxis::kY).mSize;
    size.mReference = reference;
    size.mAbs = static_cast<float>(length);
    mBar->ApplyDescriptor(mBar->GetDescriptor());
    EXPECT_EQ(Thumb().mHeight, least);
  }
}

TEST_F(ScrollBarTest, APressBesideTheThumbStepsByPagesOnThatSide) {
  struct Case {
    int mY;
    double mValue;
    std::int32_t mSide;
  };
  // The thumb covers 54 to 65 of the window.
  for (const Case& each :
       {Case{10, 0.2, 1}, {53, 0.2, 1}, {54, 0.5, 0}, {65, 0.5, 0}, {66, 0.8, 2}, {109, 0.8, 2}}) {
    MakeBar();
    Set(0.5, 0.1, 0.3, 0.1);
    mWindow->Move(10, each.mY);
    mWindow->Press();
    EXPECT_DOUBLE_EQ(mBar->GetValue(), each.mValue) << each.mY;
    EXPECT_EQ(mBar->mChannelPress, each.mSide) << each.mY;
    EXPECT_EQ(mBar->mIdleRefCount, each.mSide == 0 ? 0 : 1) << each.mY;
    mWindow->LetGo();
    EXPECT_EQ(mBar->mChannelPress, 0) << each.mY;
    EXPECT_EQ(mBar->mIdleRefCount, 0) << each.mY;
  }
}

TEST_F(ScrollBarTest, APressIsRepeatedAsLongAsThePointerStaysOnItsSide) {
  MakeBar();
  Set(0.9, 0.01, 0.05, 0.1);
  struct Moment {
    double mWait;
    int mX;
    double mValue;
  };
  mWindow->Move(10, 20);
  mWindow->Press();
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.85);
  // Time that is spent off the channel does not count.
  const Moment moments[] = {{0.39, 10, 0.85}, {0.02, 10, 0.8}, {0.19, 10, 0.8},  {0.02, 10, 0.75},
                            {0.1, 10, 0.75},  {5, 50, 0.75},   {0.05, 10, 0.75}, {0.06, 10, 0.7}};
  for (const Moment& each : moments) {
    mWindow->Move(each.mX, 20);
    IdleAfter(each.mWait);
    EXPECT_NEAR(mBar->GetValue(), each.mValue, 1e-9) << each.mWait;
  }
  // It ends under the pointer.
  for (int i = 0; i < 50; ++i) IdleAfter(0.21);
  EXPECT_LE(Thumb().mY, 10);
  EXPECT_GT(Thumb().GetBottom(), 10);
  mWindow->LetGo();
}

TEST_F(ScrollBarTest, AChannelShowsThePressedSideUpToTheThumb) {
  MakeBar();
  Set(0.5, 0.1, 0.25, 0.1);
  const auto shown = [this] {
    const auto& region = Channel()->GetLook(1)->GetClipRegion();
    return region && Channel()->GetLookAlpha(1) == 1 ? region->GetBounds() : RectT<std::int32_t>();
  };
  using Rect = RectT<std::int32_t>;
  mWindow->Move(10, 100);
  mWindow->Press();
  EXPECT_EQ(shown(), (Rect{0, 78, 20, 22}));
  mWindow->Move(50, 100);
  mWindow->Idle();
  EXPECT_EQ(shown(), Rect());
  EXPECT_FALSE(Channel()->GetLook(1)->GetClipRegion());
  mWindow->LetGo();
  mBar->SetValue(0.5);
  mWindow->Move(10, 12);
  mWindow->Press();
  EXPECT_EQ(shown(), (Rect{0, 0, 20, 22}));
  mWindow->LetGo();
  EXPECT_EQ(shown(), Rect());
}

TEST_F(ScrollBarTest, TheThumbFollowsThePointerFromThePressOn) {
  MakeBar();
  Set(0.5, 0.1, 0.3, 0.1);
  mWindow->Move(10, 60);
  mWindow->Press();
  EXPECT_FALSE(mBar->IsDraggingThumb());
  struct Move {
    int mY;
    double mPlace;
  };
  for (const Move& each : {Move{61, 45}, {80, 64}, {300, 88}, {104, 88}, {59, 43}, {-50, 0}, {70, 54}}) {
    mWindow->Move(10, each.mY);
    EXPECT_TRUE(mBar->IsDraggingThumb());
    EXPECT_EQ(Thumb().mY, each.mPlace) << each.mY;
    EXPECT_DOUBLE_EQ(mBar->GetValue(), each.mPlace / 88) << each.mY;
  }
  mWindow->LetGo();
  EXPECT_FALSE(mBar->IsDraggingThumb());
  EXPECT_EQ(Thumb().mY, 54);
}

TEST_F(ScrollBarTest, AValueFromOutsideWaitsForTheEndOfADrag) {
  struct Case {
    bool mApplies;
    double mGiven, mValue;
  };
  for (const Case& each :
       {Case{true, 0.1, 0.1}, {true, 4, 54.0 / 88}, {true, -0.2, 54.0 / 88}, {false, 0.1, 54.0 / 88}}) {
    MakeBar();
    Set(0.5, 0.1, 0.3, 0.1);
    mBar->mApplyPendingValue = each.mApplies;
    mWindow->Move(10, 60);
    mWindow->Press();
    mWindow->Move(10, 70);
    EXPECT_DOUBLE_EQ(mBar->SetValue(each.mGiven), 54.0 / 88);
    EXPECT_EQ(Thumb().mY, 54);
    mWindow->LetGo();
    EXPECT_DOUBLE_EQ(mBar->GetValue(), each.mValue);
    EXPECT_EQ(Thumb().mY, std::round(88 * each.mValue));
  }
}

TEST_F(ScrollBarTest, ANewRangeKeepsTheScaledValue) {
  MakeBar();
  mBar->SetValueRange(0, 100, LControl::kLinearScale);
  mBar->SetScaledValue(30);
  EXPECT_EQ(mBar->SetValueRange(0, 60, LControl::kLinearScale), kSuccess);
  EXPECT_DOUBLE_EQ(mBar->GetValue(), 0.5);
  for (int part = 0; part < 97; ++part) {
    mBar->SetValue(part / 97.0);
    EXPECT_EQ(mBar->SetValueRange(0, 60, LControl::kLinearScale), kSuccess);
    EXPECT_EQ(mBar->GetValue(), part / 97.0);
  }
  mBar->SetValue(0.5);
  const auto hearer = Hear(mBar, kValueChange);
  EXPECT_EQ(mBar->SetValueRange(0, 60, LControl::kLogarithmicScale), kInvalidArgument);
  EXPECT_EQ(mBar->SetValueRange(1, 60, 7), kInvalidArgument);
  EXPECT_EQ(hearer->mCount, 0);
  EXPECT_EQ(mBar->SetValueRange(1, 900, LControl::kLogarithmicScale), kSuccess);
  EXPECT_NEAR(mBar->GetScaledValue(), 30, 1e-9);
}

TEST_F(ScrollBarTest, KeysThatTheMaskNamesMoveABarThatFitsThem) {
  struct Case {
    std::uint32_t mCode, mBit;
    bool mVertical, mHorizontal;
    double mValue;
  };
  const Case cases[] = {{0x20260000, 0x01, true, false, 0.4}, {0x20280000, 0x02, true, false, 0.6},
                        {0x20250000, 0x04, false, true, 0.4}, {0x20270000, 0x08, false, true, 0.6},
                        {0x20210000, 0x10, true, false, 0.2}, {0x20220000, 0x20, true, false, 0.8},
                        {0x20240000, 0x40, true, true, 0},    {0x20230000, 0x80, true, true, 1},
                        {0x20410000, 0x00, false, false, 0},  {0x22260000, 0x01, false, false, 0},
                        {0x00260000, 0x01, false, false, 0}};
  for (const bool vertical : {true, false}) {
    MakeBar(vertical);
    EXPECT_EQ(mBar->GetKeyMask(), 0xFFU);
    for (const Case& each : cases) {
      const bool fits = vertical ? each.mVertical : each.mHorizontal;
      for (const std::uint32_t mask : {0xFFU, each.mBit, 0xFFU & ~each.mBit}) {
        Set(0.5, 0.1, 0.3, 0.1);
        mBar->SetKeyMask(mask);
        const bool takes = fits && (mask & each.mBit) != 0;
        EXPECT_EQ(Key(each.mCode), takes) << std::hex << each.mCode << " with " << mask;
        EXPECT_DOUBLE_EQ(mBar->GetValue(), takes ? each.mValue : 0.5) << std::hex << each.mCode;
      }
    }
  }
  mBar->SetKeyMask(0xFF);
  mBar->SetVisible(false);
  EXPECT_FALSE(Key(0x20240000));
}

// Each of these changes the value.
const std::vector<void (*)(StubWindow&, LControl&)> kWays = {
    [](StubWindow& window, LControl&) { window.Press(); },
    [](StubWindow& window, LControl&) {
      window.Move(10, 60);
      window.Press();
      window.Move(10, 70);
    },
    [](StubWindow&, LControl& main) {
      KeyCode key;
      key.code = 0x20240000;
      main.OnSiblingKey(MakeRC<LKeyParam>(key));
    },
    [](StubWindow& window, LControl&) {
      window.Move(10, 115);
      window.Press();
    },
};

TEST_F(ScrollBarTest, WhoHearsOfTheValueMayDestroyTheBar) {
  for (const auto& way : kWays) {
    MakeBar();
    Set(0.5, 0.1, 0.3, 0.1);
    const auto hearer = Hear(mBar, kValueChange, [this](const auto&) { mBar->Destroy(); });
    mWindow->Move(10, 20);
    way(*mWindow, *mMain);
    EXPECT_EQ(hearer->mCount, 1);
    EXPECT_EQ(mBar->mIdleRefCount, 0);
    mWindow->LetGo();
    IdleAfter(1);
    EXPECT_EQ(hearer->mCount, 1);
    hearer->UnregisterAll();
  }
}

TEST_F(ScrollBarTest, WhoHearsOfTheValueMayThrow) {
  for (const auto& way : kWays) {
    MakeBar();
    Set(0.5, 0.1, 0.3, 0.1);
    mWindow->Move(10, 20);
    const auto hearer = Hear(mBar, kValueChange, [](const auto&) { throw std::runtime_error("no"); });
    EXPECT_THROW(way(*mWindow, *mMain), std::runtime_error);
    hearer->UnregisterAll();
    mWindow->LetGo();
    if (mWindow->mCapture) mWindow->mCapture->ReleaseMouse();
    EXPECT_EQ(mBar->mIdleRefCount, 0);
    const double value = mBar->GetValue();
    EXPECT_NE(value, 0.5);
    IdleAfter(1);
    EXPECT_EQ(mBar->GetValue(), value);
    EXPECT_EQ(Thumb().mY, std::round(88 * value));
  }
}

TEST_F(ScrollBarTest, ABarGoesWithItsTree) {
  MakeBar();
  mWindow->Move(10, 20);
  mWindow->Press();
  mMain->Destroy();
  EXPECT_EQ(mBar->mIdleRefCount, 0);
  EXPECT_EQ(mBar->GetChildCount(), 0);
  IdleAfter(1);
}

}  // namespace
}  // namespace TF
