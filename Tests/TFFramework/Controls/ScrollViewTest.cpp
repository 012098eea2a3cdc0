#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "TFFramework/Notification/AutoNotificationDisabler.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

constexpr const char16_t* kValueChange = u"NID_VALUE_CHANGE";
constexpr const char16_t* kExtentChange = u"NID_CLIENT_EXTENT_CHANGE";
constexpr int kThickness = 10;

// Writes down what it is told, and lets a test act then.
class TellingView : public Touchable<LScrollView> {
 public:
  TellingView(const RCPtr<LControl>& parent, const String& name) : Touchable<LScrollView>(parent, name) {}
  using LScrollView::IsBarShown;
  using LScrollView::mAutoClientExtent;
  using LScrollView::mBarThickness;
  using LScrollView::mExtentExtra;
  using LScrollView::mHandler;
  using LScrollView::mMinViewSize;

  void OnClientExtentChange() override { Tell("extent"); }
  void OnClientViewChange() override { Tell("view"); }
  void OnBarVisibilityChange(LayoutAxis axis) override {
    Tell(axis == LayoutAxis::kY ? "vertical" : "horizontal");
  }

  // Whoever is laid out beside the bars asks for it.
  void GetScrollViewRect(RectT<double>& result) override {
    ++mAsked;
    LScrollView::GetScrollViewRect(result);
  }

  std::string mTold;
  std::function<void()> mAct;
  int mAsked = 0;

 private:
  void Tell(const std::string& what) {
    mTold += (mTold.empty() ? "" : " ") + what;
    if (mAct) mAct();
  }
};

// A view of 100 by 80 pixels with bars of 10.
class ScrollViewTest : public BarFixture {
 protected:
  void RegisterMore() override { mFactory->RegisterControlCreateFunction(u"View", MakeControl<TellingView>); }
  void TearDown() override {
    mView = nullptr;
    BarFixture::TearDown();
  }
  void MakeView(const std::string& bars, const std::string& children = "",
                const std::string& parameters = "") {
    MakeControls(Part("View", "view", Place(20, 30, 100, 80), bars + children, parameters));
    mView = Find<TellingView>(u"view");
    ASSERT_TRUE(mView);
    mView->mTold.clear();
  }
  void MakeView() { MakeView(ViewBars(kThickness, true)); }
  void SetExtent(double width, double height) {
    mView->SetClientExtent({width, height});
    mView->UpdateBars();
  }
  RCPtr<OpenBar> Bar(LayoutAxis axis) const {
    return Find<OpenBar>(axis == LayoutAxis::kY ? u"view.vBar" : u"view.hBar");
  }
  RCPtr<OpenBar> VBar() const { return Bar(LayoutAxis::kY); }
  RCPtr<OpenBar> HBar() const { return Bar(LayoutAxis::kX); }
  SizeT<double> View() const {
    RectT<double> view;
    mView->GetScrollViewRect(view);
    return {view.mWidth, view.mHeight};
  }
  void ExpectBars(bool vertical, bool horizontal, const std::string& of) const {
    EXPECT_EQ(mView->IsBarShown(LayoutAxis::kY), vertical) << of;
    EXPECT_EQ(mView->IsBarShown(LayoutAxis::kX), horizontal) << of;
    const double right = vertical ? 90 : 100, bottom = horizontal ? 70 : 80;
    EXPECT_EQ(View(), (SizeT<double>{right, bottom})) << of;
  }
  static std::string Parameter(const std::string& key, const std::string& value) {
    return "<CreateParam ID='" + key + "'>" + value + "</CreateParam>";
  }
  static std::string Auto(const std::string& value = "true") {
    return Parameter("AUTO_CLIENT_EXTENT_X", value) + Parameter("AUTO_CLIENT_EXTENT_Y", value);
  }

  RCPtr<TellingView> mView;
};

TEST_F(ScrollViewTest, BarsComeWhenTheyAreNeededAndBringEachOther) {
  struct Case {
    double mWidth, mHeight;
    bool mVertical, mHorizontal;
  };
  const Case cases[] = {{100, 80, false, false}, {0, 0, false, false},   {90, 81, true, false},
                        {91, 81, true, true},    {101, 70, false, true}, {101, 71, true, true},
                        {500, 500, true, true},  {100, 81, true, true},  {90, 500, true, false},
                        {500, 70, false, true},  {100, 80, false, false}};
  for (const bool hasCorner : {true, false}) {
    MakeView(ViewBars(kThickness, hasCorner));
    ExpectBars(false, false, "nothing");
    EXPECT_EQ(mView->mBarThickness, (SizeT<double>{kThickness, kThickness}));
    for (const Case& each : cases) {
      SetExtent(each.mWidth, each.mHeight);
      const std::string of = std::to_string(each.mWidth) + " " + std::to_string(each.mHeight);
      ExpectBars(each.mVertical, each.mHorizontal, of);
      // A bar that is not needed stays, as wide as nothing.
      EXPECT_EQ(VBar()->GetBounds().mWidth, each.mVertical ? 10 : 0) << of;
      EXPECT_EQ(HBar()->GetBounds().mHeight, each.mHorizontal ? 10 : 0) << of;
      if (hasCorner && each.mVertical) {
        EXPECT_EQ(VBar()->GetBounds(), (RectT<double>{90, 0, 10, each.mHorizontal ? 70.0 : 80.0})) << of;
      }
    }
  }
}

TEST_F(ScrollViewTest, AnyOfTheBarsMayBeMissing) {
  struct Case {
    const char* mBars;
    bool mVertical, mHorizontal;
  };
  for (const bool hasCorner : {true, false}) {
    for (const Case& each : {Case{"", false, false}, {"vBar", true, false}, {"hBar", false, true}}) {
      MakeView(ViewBars(kThickness, hasCorner, each.mBars));
      SetExtent(500, 500);
      ExpectBars(each.mVertical, each.mHorizontal, each.mBars);
      mView->SetScrollOffset({7, 9});
      EXPECT_EQ(mView->GetScrollOffset(), (PointT<double>{7, 9})) << each.mBars;
    }
  }
}

TEST_F(ScrollViewTest, ABarWithoutArrowsLiesAsItsViewSays) {
  MakeView(Part("Bar", "hBar",
                "XIsDocked='True' YIsDocked='True' " + FillAxis('X') + AtFarEnd('Y') + SizeOnAxis('Y', 16),
                BarParts(false, "channel thumb")));
  SetExtent(400, 50);
  EXPECT_FALSE(HBar()->IsVertical());
  EXPECT_EQ(Find(u"view.hBar.channel.thumb")->GetBounds(), (RectT<double>{0, 0, 20, 16}));
}

TEST_F(ScrollViewTest, ChangesAreToldOnceAndOnlyWhenThereAreAny) {
  MakeView();
  const auto hearer = Hear(mView, kExtentChange);
  EXPECT_EQ(mView->SetClientExtent({200, 200}), kSuccess);
  EXPECT_EQ(mView->SetClientExtent({200, 200 + 1e-15}), kNothingDone);
  EXPECT_EQ(mView->SetClientExtent({NAN, 200}), kInvalidArgument);
  mView->UpdateBars();
  mView->UpdateBars();
  EXPECT_EQ(mView->mTold, "extent vertical horizontal view");
  EXPECT_EQ(hearer->mCount, 1);
  mView->mTold.clear();
  SetExtent(50, 300);
  EXPECT_EQ(mView->mTold, "extent horizontal view");
}

TEST_F(ScrollViewTest, StepsAndOffsetFollowTheExtentInPixels) {
  struct Case {
    double mExtent, mPage, mRatio, mOffset;
  };
  MakeView();
  SetExtent(50, 300);
  VBar()->SetValue(0.5);
  // The value stays.
  for (const Case& each : {Case{280, 0.4, 80.0 / 280, 100},
                           {480, 0.2, 80.0 / 480, 200},
                           {160, 1, 0.5, 40},
                           {120, 1, 80.0 / 120, 20},
                           {81, 1, 80.0 / 81, 1},
                           {80, 1, 1, 0},
                           {10, 1, 1, 0},
                           {280, 0.4, 80.0 / 280, 100}}) {
    SetExtent(50, each.mExtent);
    EXPECT_DOUBLE_EQ(VBar()->GetValue(), 0.5) << each.mExtent;
    EXPECT_DOUBLE_EQ(VBar()->GetPageStep(), each.mPage) << each.mExtent;
    EXPECT_DOUBLE_EQ(VBar()->GetLineStep(), each.mPage / 10) << each.mExtent;
    EXPECT_DOUBLE_EQ(VBar()->GetThumbRatio(), each.mRatio) << each.mExtent;
    EXPECT_EQ(mView->GetScrollOffset(), (PointT<double>{0, each.mOffset})) << each.mExtent;
  }
}

TEST_F(ScrollViewTest, ABarScrollsItsAxisAloneByRoundedPixels) {
  MakeView();
  SetExtent(190, 171);
  for (const auto& [value, offset] :
       {std::pair{1.0, 101.0}, {0.5, 51.0}, {0.004, 0.0}, {0.005, 1.0}, {0.0, 0.0}}) {
    mView->SetScrollOffset({33, 0});
    VBar()->SetValue(value);
    EXPECT_EQ(mView->GetScrollOffset(), (PointT<double>{33, offset})) << value;
    HBar()->SetValue(1);
    EXPECT_EQ(mView->GetScrollOffset(), (PointT<double>{100, offset})) << value;
  }
}

TEST_F(ScrollViewTest, InStepsEveryRecordCanComeToTheTop) {
  MakeView();
  EXPECT_EQ(mView->SetScrollStep(LayoutAxis::kY, 14), kSuccess);
  EXPECT_EQ(mView->SetScrollStep(LayoutAxis::kY, -1), kInvalidArgument);
  EXPECT_EQ(mView->SetScrollStep(static_cast<LayoutAxis>(2), 1), kInvalidArgument);
  SetExtent(50, 14 * 100000);
  EXPECT_DOUBLE_EQ(VBar()->GetLineStep(), 1.0 / 99995);
  EXPECT_DOUBLE_EQ(VBar()->GetPageStep(), 5.0 / 99995);
  EXPECT_DOUBLE_EQ(VBar()->GetThumbRatio(), 5.0 / 100000);
  for (int record = 0; record <= 99995; record += 7) {
    VBar()->SetScaledValue(record);
    ASSERT_EQ(mView->GetScrollOffset().mY, record * 14.0);
  }
  VBar()->SetScaledValue(49.9);
  EXPECT_EQ(mView->GetScrollOffset().mY, 49 * 14.0);
  VBar()->SetScaledValue(49);
  // What is at the top stays there, as long as there is enough below it.
  for (const auto& [records, top] :
       {std::pair{100001, 49}, {3000, 49}, {54, 49}, {50, 45}, {5, 0}, {0, 0}, {900, 0}}) {
    SetExtent(50, 14.0 * records);
    EXPECT_EQ(mView->GetScrollOffset().mY, top * 14.0) << records;
  }
}

TEST_F(ScrollViewTest, AStepLargerThanTheViewIsAPage) {
  MakeView();
  mView->SetScrollStep(LayoutAxis::kY, 90);
  SetExtent(50, 900);
  EXPECT_DOUBLE_EQ(VBar()->GetPageStep(), 0.1);
  mView->SetScrollStep(LayoutAxis::kY, 0);
  mView->UpdateBars();
  VBar()->SetValue(1);
  EXPECT_EQ(mView->GetScrollOffset().mY, 820);
}

TEST_F(ScrollViewTest, BarsFollowAnOffsetThatSomebodyElseSets) {
  for (const int step : {0, 5}) {
    MakeView();
    mView->SetScrollStep(LayoutAxis::kY, step);
    SetExtent(90, 280);
    int nested = 0;
    const auto hearer = Hear(VBar(), kValueChange, [&](const auto&) {
      if (nested++ == 0) mView->SetScrollOffset({0, 75});
    });
    mView->SetScrollOffset({0, 50});
    EXPECT_EQ(nested, 2);
    EXPECT_EQ(mView->GetScrollOffset().mY, 75);
    EXPECT_NEAR(VBar()->GetScaledValue(), step ? 15 : 75, 1e-9);
    hearer->UnregisterAll();
    // The view hears the bar again.
    VBar()->SetValue(1);
    EXPECT_EQ(mView->GetScrollOffset().mY, 200);
  }
}

TEST_F(ScrollViewTest, AnOffsetBetweenTwoStepsStays) {
  MakeView();
  mView->SetScrollStep(LayoutAxis::kY, 5);
  SetExtent(90, 280);
  mView->SetScrollOffset({0, 52});
  EXPECT_EQ(mView->GetScrollOffset().mY, 52);
  EXPECT_NEAR(VBar()->GetScaledValue(), 10.4, 1e-9);
}

TEST_F(ScrollViewTest, AKeyMovesOneBarAlone) {
  MakeView();
  SetExtent(500, 500);
  for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) Bar(axis)->SetValue(0.5);
  mWindow->mFocus = mView;
  mWindow->Key(0x20240000);
  EXPECT_EQ(VBar()->GetValue(), 0);
  EXPECT_EQ(HBar()->GetValue(), 0.5);
}

TEST_F(ScrollViewTest, AHandlerThatIsNotThereCannotBeDisabled) {
  MakeView();
  using Disabler = CAutoNotificationDisabler<LScrollView>;
  const RCPtr<LNotificationDistributor> bar(VBar());
  const Disabler quiet(mView->mHandler, bar, kValueChange);
  try {
    const Disabler again(mView->mHandler, bar, kValueChange);
    ADD_FAILURE();
  } catch (const std::exception& failure) {
    const std::string what = failure.what();
    EXPECT_NE(what.find("Failed Result : "), std::string::npos) << what;
    EXPECT_NE(what.find("LScrollView"), std::string::npos) << what;
  }
}

TEST_F(ScrollViewTest, TheWheelStepsTheBarThatFits) {
  struct Case {
    bool mVertical, mHorizontal;
    std::uint32_t mDirection, mModifiers;
    LayoutAxis mAxis;
    double mStep;  // In lines, 10 of which are a page.
  };
  const LayoutAxis x = LayoutAxis::kX, y = LayoutAxis::kY;
  const Case cases[] = {
      {true, false, 0, 0, y, 1},     {true, false, 1, 0, y, -1},    {true, false, 0, 0x8, y, 10},
      {true, false, 1, 0x8, y, -10}, {true, false, 0, 0x40, y, 1},  {true, false, 2, 0, y, 1},
      {true, false, 3, 0, y, -1},    {false, true, 0, 0, x, 1},     {false, true, 1, 0, x, -1},
      {false, true, 2, 0, x, 1},     {false, true, 3, 0x8, x, -10}, {true, true, 0, 0, y, 1},
      {true, true, 1, 0, y, -1},     {true, true, 0, 0x40, x, 1},   {true, true, 1, 0x48, x, -10},
      {true, true, 2, 0, x, 1},      {true, true, 3, 0, x, -1},     {true, true, 2, 0x40, x, 1}};
  MakeView();
  for (const Case& each : cases) {
    SetExtent(each.mHorizontal ? 1290 : 50, each.mVertical ? 1270 : 50);
    for (const LayoutAxis axis : {x, y}) Bar(axis)->SetValue(0.5);
    const auto param = MakeRC<LMouseWheelParam>(50, 50, each.mModifiers, 0, each.mDirection);
    const TFRESULT result =
        each.mDirection < 2 ? mView->OnVerticalWheel(param) : mView->OnHorizontalWheel(param);
    EXPECT_EQ(result, kSuccess);
    for (const LayoutAxis axis : {x, y}) {
      const double step = axis == each.mAxis ? each.mStep * Bar(axis)->GetLineStep() : 0;
      EXPECT_NEAR(Bar(axis)->GetValue(), 0.5 + step, 1e-12) << each.mDirection << " " << each.mModifiers;
    }
  }
  SetExtent(50, 50);
  const auto param = MakeRC<LMouseWheelParam>(50, 50, 0, 0, 0);
  EXPECT_EQ(mView->OnVerticalWheel(param), kNothingDone);
  EXPECT_EQ(mView->OnHorizontalWheel(param), kNothingDone);
  SetExtent(50, 500);
  VBar()->SetVisible(false);
  EXPECT_EQ(mView->OnVerticalWheel(param), kNothingDone);
}

TEST_F(ScrollViewTest, AWheelStepPaintsTheViewAndLaysOutNoRow) {
  std::string rows;
  for (int row = 0; row < 2000; ++row) {
    rows += Part("Box", "r" + std::to_string(row), Place(0, 20 * row, 50, 20) + "LayoutOrder='3' ");
  }
  MakeView(ViewBars(kThickness, true), rows, Auto());
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{50, 40000}));
  mWindow->Move(40, 50);
  const auto extents = Hear(mView, kExtentChange);
  std::int32_t before = 0, after = 0;
  const auto count = [this](std::int32_t& sum) {
    for (std::int32_t index = 0; index < mView->GetChildCount(); ++index) {
      const RCPtr<ProbeControl> row(mView->GetChild(index));
      if (row && !row->IsDocked(LayoutAxis::kY)) sum += row->mBoundsChanges;
    }
  };
  count(before);
  Forget();
  mView->mAsked = 0;
  EXPECT_EQ(mWindow->Wheel(LMouseWheelParam::kDown), kSuccess);
  EXPECT_GT(mView->GetScrollOffset().mY, 0);
  count(after);
  EXPECT_EQ(after, before);
  EXPECT_LT(mView->mAsked, 100);
  EXPECT_EQ(extents->mCount, 0);
  Region invalid;
  for (const RectT<std::int32_t>& rect : mWindow->TakeInvalid()) invalid.Add(rect);
  EXPECT_EQ(invalid.GetBounds(), (RectT<std::int32_t>{20, 30, 100, 80}));
}

TEST_F(ScrollViewTest, TheExtentFollowsTheChildren) {
  const std::string children = Part("Box", "a", Place(0, 0, 30, 20)) +
                               Part("Box", "b", Place(10, 15, 35, 40)) +
                               Part("Box", "d", Place(500, 500, 9, 9) + "XIsDocked='True' YIsDocked='True'") +
                               Part("Box", "x", Place(300, 0, 9, 60) + "XIsDocked='True'");
  MakeView(ViewBars(kThickness, true), children, Auto("TRUE"));
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{45, 60}));
  const auto hearer = Hear(mView, kExtentChange);
  LayoutSize size;
  size.mAbs = 200;
  Find(u"view.a")->SetAxisLayout(LayoutAxis::kY, LayoutPosition(), size);
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{45, 200}));
  EXPECT_EQ(hearer->mCount, 1);
  ExpectBars(true, false, "a");
  VBar()->SetValue(1);
  EXPECT_EQ(mView->GetScrollOffset().mY, 120);
  EXPECT_EQ(hearer->mCount, 1);
  Find(u"view.a")->Destroy();
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{45, 60}));
  EXPECT_EQ(mView->GetScrollOffset().mY, 0);
  ExpectBars(false, false, "gone");
  mView->mExtentExtra = {5, 30};
  mView->UpdateBars();
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{50, 90}));
  ExpectBars(true, false, "extra");
}

TEST_F(ScrollViewTest, EachAxisOfTheExtentIsAutomaticByItself) {
  struct Case {
    const char* mX;
    const char* mY;
    SizeT<double> mExtent;
  };
  for (const Case& each : {Case{"true", "false", {30, 7}},
                           {"no", "True", {9, 20}},
                           {"true", "TRUE", {30, 20}},
                           {"", "", {9, 7}}}) {
    MakeView(ViewBars(kThickness, true), Part("Box", "a", Place(0, 0, 30, 20)),
             Parameter("AUTO_CLIENT_EXTENT_X", each.mX) + Parameter("AUTO_CLIENT_EXTENT_Y", each.mY));
    mView->SetClientExtent({9, 7});
    mView->UpdateBars();
    EXPECT_EQ(mView->GetClientExtent(), each.mExtent) << each.mX << each.mY;
  }
}

TEST_F(ScrollViewTest, ContentIsLaidOutInWhatTheBarsLeave) {
  MakeView(ViewBars(kThickness, true), Part("Box", "wide", FillAxis('X') + "YSizeAbs='200' LayoutOrder='5' "),
           Auto());
  ExpectBars(true, false, "made");
  EXPECT_EQ(Find(u"view.wide")->GetBounds().mWidth, 90);
  SetExtent(0, 0);
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{90, 200}));
  LayoutSize size;
  size.mAbs = 40;
  Find(u"view.wide")->SetAxisLayout(LayoutAxis::kY, LayoutPosition(), size);
  ExpectBars(false, false, "low");
  EXPECT_EQ(Find(u"view.wide")->GetBounds().mWidth, 100);
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{100, 40}));
  // The bar takes from the width that the content would have needed the other one for.
  size.mAbs = 200;
  Find(u"view.wide")->SetAxisLayout(LayoutAxis::kY, LayoutPosition(), size);
  ExpectBars(true, false, "high");
  EXPECT_EQ(mView->GetClientExtent(), (SizeT<double>{90, 200}));
}

TEST_F(ScrollViewTest, AnotherSizeOfTheViewNeedsOtherBars) {
  MakeView();
  SetExtent(95, 75);
  struct Case {
    double mWidth, mHeight;
    bool mVertical, mHorizontal;
  };
  for (const Case& each : {Case{100, 80, false, false},
                           {94, 85, false, true},
                           {94, 84, true, true},
                           {105, 74, true, false},
                           {0, 0, false, false},
                           {40, 30, true, true},
                           {100, 80, false, false}}) {
    LayoutSize width, height;
    width.mAbs = each.mWidth;
    height.mAbs = each.mHeight;
    mView->SetLayout(LayoutPosition(), width, LayoutPosition(), height);
    EXPECT_EQ(mView->IsBarShown(LayoutAxis::kY), each.mVertical) << each.mWidth;
    EXPECT_EQ(mView->IsBarShown(LayoutAxis::kX), each.mHorizontal) << each.mWidth;
  }
}

TEST_F(ScrollViewTest, TheClientViewIsNoLargerThanTheContent) {
  struct Case {
    SizeT<double> mExtent, mLeast;
    PointT<double> mOffset;
    RectT<double> mView;
  };
  MakeView();
  for (const Case& each : {Case{{500, 500}, {}, {20, 30}, {20, 30, 90, 70}},
                           {{50, 60}, {}, {0, 0}, {0, 0, 50, 60}},
                           {{0, 0}, {}, {0, 0}, {0, 0, 1, 1}},
                           {{500, 500}, {100, 120}, {20, 30}, {15, 5, 100, 120}},
                           {{500, 500}, {900, 20}, {20, 30}, {0, 30, 500, 70}}}) {
    SetExtent(each.mExtent.mWidth, each.mExtent.mHeight);
    mView->mMinViewSize = each.mLeast;
    mView->SetScrollOffset(each.mOffset);
    EXPECT_EQ(mView->GetClientView(), each.mView) << each.mExtent.mWidth << " " << each.mLeast.mWidth;
  }
}

TEST_F(ScrollViewTest, WhoHearsMayChangeTheExtentAgain) {
  MakeView();
  // Grows up to a limit.
  mView->mAct = [this] {
    const double height = mView->GetClientExtent().mHeight;
    if (height >= 60 && height < 300) mView->SetClientExtent({50, height + 100});
    mView->UpdateBars();
  };
  SetExtent(50, 60);
  EXPECT_EQ(mView->GetClientExtent().mHeight, 360);
  ExpectBars(true, false, "grown");
  VBar()->SetValue(1);
  EXPECT_EQ(mView->GetScrollOffset().mY, 280);
}

TEST_F(ScrollViewTest, WhoIsToldMayDestroyTheViewOrThrow) {
  for (const bool throws : {false, true}) {
    for (int at = 1; at <= 4; ++at) {
      MakeView();
      int told = 0;
      mView->mAct = [&] {
        if (++told != at) return;
        if (throws) throw std::runtime_error("no");
        mView->Destroy();
      };
      try {
        SetExtent(500, 500);
        EXPECT_FALSE(throws);
      } catch (const std::runtime_error&) {
        EXPECT_TRUE(throws);
      }
      EXPECT_EQ(told, at);
      if (!throws) continue;
      mView->mAct = nullptr;
      mView->UpdateBars();
      ExpectBars(true, true, "after");
    }
  }
}

TEST_F(ScrollViewTest, WhoHearsOfTheOffsetMayDropTheLastPointerToTheView) {
  MakeView();
  SetExtent(500, 500);
  RCPtr<Hearer> hearer;
  hearer = Hear(mView, u"NID_SCROLL_OFFSET_CHANGE", [&](const auto&) {
    mView->Destroy();
    mView = nullptr;
  });
  mView->SetScrollOffset({7, 9});
  EXPECT_FALSE(mView);
}

TEST_F(ScrollViewTest, WhoHearsOfABarMayDestroyTheView) {
  MakeView();
  SetExtent(50, 500);
  const auto hearer = Hear(VBar(), kValueChange, [this](const auto&) { mView->Destroy(); });
  mWindow->Move(40, 50);
  mWindow->Wheel(LMouseWheelParam::kDown);
  EXPECT_EQ(hearer->mCount, 1);
  EXPECT_FALSE(mView->GetParent());
  MakeView();
  SetExtent(50, 500);
  const auto again = Hear(VBar(), kValueChange, [this](const auto&) { mView->Destroy(); });
  mView->SetScrollOffset({0, 10});
  EXPECT_EQ(again->mCount, 1);
}

TEST_F(ScrollViewTest, ABarThatGoesIsNotMissed) {
  MakeView();
  SetExtent(500, 500);
  VBar()->Destroy();
  mView->UpdateBars();
  ExpectBars(false, true, "without");
  EXPECT_EQ(mView->OnVerticalWheel(MakeRC<LMouseWheelParam>(0, 0, 0, 0, 0)), kSuccess);
  EXPECT_GT(mView->GetScrollOffset().mX, 0);
}

TEST_F(ScrollViewTest, AnotherSkinKeepsExtentAndPlace) {
  MakeView();
  SetExtent(50, 480);
  VBar()->SetValue(0.5);
  mView->ApplyDescriptor(RCPtr<LControlDescriptor>(mView->GetDescriptor()));
  ExpectBars(true, false, "again");
  EXPECT_EQ(mView->GetScrollOffset().mY, 200);
  VBar()->SetValue(1);
  EXPECT_EQ(mView->GetScrollOffset().mY, 400);
}

}  // namespace
}  // namespace TF
