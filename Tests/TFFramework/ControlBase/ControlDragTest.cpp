#include <stdexcept>
#include <string>

#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {
namespace {

using Edges = DragEdges;

class ControlDragTest : public ProbeFixture {
 protected:
  // Presses at a point of the window and moves by single steps, 10 milliseconds apart.
  void Drag(PointT<std::int32_t> from, std::initializer_list<PointT<std::int32_t>> points) {
    mWindow->Move(from.mX, from.mY);
    mWindow->Press();
    for (const auto& point : points) {
      Wait(0.01);
      mWindow->Move(point.mX, point.mY);
    }
  }
  // A scrolling view of 200 by 100 at 10, 10, in it a box of 40 by 20 at 80, 40.
  void MakeView(DragMode mode, std::uint32_t edges) {
    MakeWindow(Box("view", Place(10, 10, 200, 100), Box("item", Place(80, 40, 40, 20))) +
               Box("target", Place(220, 10, 100, 100), Box("inner", Place(0, 0, 50, 50))));
    At(u"view.item")->mWantedMode = mode;
    At(u"view.item")->mWantedEdges = edges;
  }
  const RectT<double>& Item() const { return At(u"view.item")->GetBounds(); }
  double Scroll() const { return At(u"view")->GetScrollOffset().mX; }
};

TEST_F(ControlDragTest, ADragBeginsAtTheThresholdAndAtThePressPoint) {
  struct Case {
    std::int32_t mThreshold;
    PointT<std::int32_t> mMove;
    Log mEvents;
  };
  const Case cases[] = {
      {1, {0, 0}, {"item move 5 5"}},
      {1, {1, 0}, {"item move 5 5", "item drag begin", "item move 6 5", "item dragged"}},
      {1, {0, -1}, {"item move 5 5", "item drag begin", "item move 5 4", "item dragged"}},
      {4, {3, -3}, {"item move 8 2"}},
      {4, {-4, 3}, {"item move 5 5", "item drag begin", "item move 1 8", "item dragged"}},
      {0, {2, 0}, {"item move 7 5", "item dragged"}},  // It has begun with the press.
  };
  for (const Case& entry : cases) {
    MakeView(DragMode::kMove, Edges::kX);
    At(u"view.item")->mDragThreshold = entry.mThreshold;
    mWindow->Move(95, 55);
    mWindow->Press();
    EXPECT_EQ(TakeEvents().back(), entry.mThreshold == 0 ? "item dragged" : "item left down 5 5");
    mWindow->Move(95 + entry.mMove.mX, 55 + entry.mMove.mY);
    EXPECT_EQ(TakeEvents(), entry.mEvents) << entry.mThreshold;
    mMain->Destroy();
  }
}

TEST_F(ControlDragTest, AFrameFollowsTheMouseInsideItsLimits) {
  struct Case {
    DragMode mMode;
    std::uint32_t mEdges;
    PointT<std::int32_t> mTo;  // From 100, 60 of the window, which is 10, 10 in the item.
    RectT<double> mFrame;
  };
  const Case cases[] = {
      {DragMode::kMove, Edges::kX | Edges::kY, {110, 50}, {90, 30, 40, 20}},
      {DragMode::kMove, Edges::kX, {110, 50}, {90, 40, 40, 20}},
      {DragMode::kMove, Edges::kY, {110, 50}, {80, 30, 40, 20}},
      {DragMode::kMove,
       Edges::kX | Edges::kY,
       {399, 299},
       {190, 90, 40, 20}},  // The mouse stays in the view.
      {DragMode::kMove, Edges::kX | Edges::kY, {-50, -50}, {-10, -10, 40, 20}},
      {DragMode::kResize, Edges::kRight, {130, 90}, {80, 40, 70, 20}},
      {DragMode::kResize, Edges::kRight, {20, 60}, {80, 40, 1, 20}},
      {DragMode::kResize, Edges::kLeft, {90, 60}, {70, 40, 50, 20}},
      {DragMode::kResize, Edges::kLeft, {190, 60}, {119, 40, 1, 20}},
      {DragMode::kResize, Edges::kTop, {100, 99}, {80, 59, 40, 1}},
      {DragMode::kResize, Edges::kBottom | Edges::kRight, {103, 65}, {80, 40, 43, 25}},
      {DragMode::kResize, Edges::kBottom, {100, -90}, {80, 40, 40, 1}},
      {DragMode::kNone, Edges::kX, {150, 60}, {80, 40, 40, 20}},
  };
  for (const Case& entry : cases) {
    MakeView(entry.mMode, entry.mEdges);
    Drag({100, 60}, {{101, 60}, {entry.mTo.mX / 2 + 50, entry.mTo.mY / 2 + 30}, entry.mTo});
    EXPECT_EQ(Item(), entry.mFrame) << static_cast<int>(&entry - cases);
    mWindow->LetGo();
    EXPECT_EQ(Item(), entry.mFrame);
    EXPECT_EQ(Scroll(), 0);
    mMain->Destroy();
  }
}

TEST_F(ControlDragTest, AViewScrollsUnderADragAtItsEdges) {
  struct Case {
    DragMode mMode;
    std::uint32_t mEdges;
    int mX;         // Of the mouse in the view.
    double mSpeed;  // Pixels per second; 0 for none.
  };
  const Case cases[] = {
      {DragMode::kMoveScrolling, Edges::kX, 169, 0},
      {DragMode::kMoveScrolling, Edges::kX, 170, 15},
      {DragMode::kMoveScrolling, Edges::kX, 171, 30},
      {DragMode::kMoveScrolling, Edges::kX, 200, 465},
      {DragMode::kMoveScrolling, Edges::kX, 201, 0},  // Outside of the limits.
      {DragMode::kMoveScrolling, Edges::kX, 31, 0},
      {DragMode::kMoveScrolling, Edges::kX, 30, -15},
      {DragMode::kMoveScrolling, Edges::kX, 10, -315},
      {DragMode::kMoveScrolling, Edges::kY, 190, 0},
      {DragMode::kMove, Edges::kX, 190, 0},
      {DragMode::kResizeScrolling, Edges::kRight, 180, 165},
      {DragMode::kResizeScrolling, Edges::kBottom, 180, 0},
  };
  for (const Case& entry : cases) {
    MakeView(entry.mMode, entry.mEdges);
    const auto view = At(u"view");
    view->mScrollRange = {1000, 0};
    view->SetScrollOffset({500, 0});
    At(u"view.item")->Layout().Axis(LayoutAxis::kX).mPosition.mAbs = 580;
    At(u"view.item")->Relayout();
    Drag({100, 60}, {{101, 60}, {10 + entry.mX, 60}});
    const std::string label = std::to_string(static_cast<int>(&entry - cases));
    EXPECT_EQ(view->mIdleRefCount, entry.mSpeed != 0) << label;
    if (entry.mSpeed != 0) {
      EXPECT_EQ(view->mScrollSpeed[0], entry.mSpeed) << label;
    }
    const double left = Item().mX, width = Item().mWidth;
    Wait(0.2);
    mWindow->Idle();
    const double moved = std::round(entry.mSpeed * 0.2);
    EXPECT_EQ(Scroll(), 500 + moved) << label;
    // The item stays under the mouse.
    EXPECT_EQ(Item().mX + Item().mWidth, left + width + moved) << label;
    mWindow->LetGo();
    EXPECT_EQ(view->mIdleRefCount, 0) << label;
    mMain->Destroy();
  }
}

TEST_F(ControlDragTest, ScrollingEndsAtItsLimitsAndKeepsFractions) {
  MakeView(DragMode::kMoveScrolling, Edges::kX);
  const auto view = At(u"view");
  view->mScrollRange = {100, 0};
  EXPECT_EQ(view->StopScroll(LayoutAxis::kX), kNothingDone);
  view->StartScroll(LayoutAxis::kX, 15, 100, 0, nullptr);
  for (int i = 0; i < 100; ++i) {
    Wait(0.01);
    mWindow->Idle();
  }
  EXPECT_NEAR(Scroll(), 15, 1);
  Wait(60);
  mWindow->Idle();
  EXPECT_EQ(Scroll(), 100);
  view->StartScroll(LayoutAxis::kX, -500, 100, 0, nullptr);
  Wait(60);
  mWindow->Idle();
  EXPECT_EQ(Scroll(), 0);
  EXPECT_EQ(view->StopScroll(LayoutAxis::kX), kSuccess);
  EXPECT_EQ(view->mIdleRefCount, 0);
}

class ControlFlickTest : public ControlDragTest {
 protected:
  static constexpr double kStep = 0.125;  // Seconds.

  // A view that is flicked by dragging, in three even moves.
  void Flick(int distance, double rest, std::uint32_t edges = Edges::kX) {
    MakeWindow(Box("view", Place(0, 0, 400, 300)));
    At(u"view")->mWantedMode = DragMode::kFlick;
    At(u"view")->mWantedEdges = edges;
    At(u"view")->SetScrollOffset({1000, 1000});
    mWindow->Move(200, 200);
    mWindow->Press();
    for (int i = 1; i <= 3; ++i) {
      Wait(kStep);
      mWindow->Move(200 - i * distance, 200 - i * distance);
    }
    Wait(rest);
    mWindow->LetGo();
  }
};

TEST_F(ControlFlickTest, ContentFollowsTheMouseOnTheAxesThatMay) {
  for (const std::uint32_t edges : {Edges::kX, Edges::kY, Edges::kX | Edges::kY}) {
    Flick(10, 1, edges);
    const double x = (edges & Edges::kX) != 0 ? 1030 : 1000, y = (edges & Edges::kY) != 0 ? 1030 : 1000;
    EXPECT_EQ(At(u"view")->GetScrollOffset(), (PointT<double>{x, y}));
    EXPECT_EQ(At(u"view")->mIdleRefCount, 0);
    mMain->Destroy();
  }
}

TEST_F(ControlFlickTest, AFastReleaseRunsOn) {
  struct Case {
    double mSpeed;
    double mRest;  // Seconds between the last move and the release.
    bool mRuns;
  };
  const Case cases[] = {
      {1000, 0.099, true}, {999, 0.099, false}, {1000, 0.1, false}, {-1000, 0, true}, {-999.9, 0, false}};
  for (const Case& entry : cases) {
    MakeWindow(Box("view", Place(0, 0, 400, 300)));
    const auto view = At(u"view");
    view->mWantedMode = DragMode::kFlick;
    mWindow->Move(200, 200);
    mWindow->Press();
    Wait(0.1);
    mWindow->Move(190, 200);
    view->mVelocity = {entry.mSpeed, 0};
    Wait(entry.mRest);
    mWindow->LetGo();
    EXPECT_EQ(view->mIdleRefCount, entry.mRuns) << entry.mSpeed << " " << entry.mRest;
    EXPECT_EQ(view->mInertia[0], entry.mRuns) << entry.mSpeed << " " << entry.mRest;
    EXPECT_FALSE(view->mInertia[1]);
    mMain->Destroy();
  }
}

TEST_F(ControlFlickTest, InertiaKeepsItsSpeedForASecondAndThenFades) {
  Flick(150, 0);
  const auto view = At(u"view");
  const double start = view->GetScrollOffset().mX, speed = view->mScrollSpeed[0];
  EXPECT_GE(speed, 1200);
  for (int i = 0; i < 8; ++i) {
    Wait(kStep);
    mWindow->Idle();
    EXPECT_EQ(view->mScrollSpeed[0], speed);
  }
  EXPECT_NEAR(view->GetScrollOffset().mX, start + speed, 1);
  Wait(kStep);
  mWindow->Idle();
  EXPECT_NEAR(view->mScrollSpeed[0], speed - 125, 1);
  for (int i = 0; i < 40; ++i) {
    Wait(kStep);
    mWindow->Idle();
  }
  EXPECT_EQ(view->mIdleRefCount, 0);
  EXPECT_FALSE(view->mInertia[0]);
}

TEST_F(ControlFlickTest, APressStopsInertiaAndDragsAtOnce) {
  Flick(150, 0);
  EXPECT_TRUE(At(u"view")->mInertia[0]);
  mWindow->Move(200, 200);
  mWindow->Press();
  EXPECT_FALSE(At(u"view")->mInertia[0]);
  EXPECT_EQ(At(u"view")->mIdleRefCount, 0);
  EXPECT_TRUE(At(u"view")->GetConditions()->mCurrent & ControlCondition::kLeftDrag);
}

class ControlCarryTest : public ControlDragTest {};

TEST_F(ControlCarryTest, ACarriedControlFloatsToATargetAndBack) {
  MakeView(DragMode::kCarry, Edges::kX | Edges::kY);
  const auto item = At(u"view.item"), target = At(u"target");
  target->mTakesDrops = true;
  At(u"view")->SetScrollOffset({10, 0});
  mWindow->TakeAsked();
  Drag({90, 55}, {{91, 55}, {230, 60}});
  EXPECT_FALSE(item->GetClipToParent());
  EXPECT_EQ(item->GetWindowPosition(), (PointT<double>{220, 55}));
  EXPECT_EQ(mWindow->TakeAsked(), (Log{"cursor UI_CURSOR_NO_DROP", "cursor UI_CURSOR_DROP_MOVE"}));
  mWindow->Move(231, 60);
  mWindow->Move(215, 60);
  EXPECT_EQ(mWindow->TakeAsked(), Log{"cursor UI_CURSOR_NO_DROP"});
  mWindow->Move(240, 60);
  TakeLog();
  mWindow->mCursor = 3;
  mWindow->LetGo();
  const Log events = TakeEvents();
  EXPECT_EQ(events, (Log{"item left up", "target drop", "target drop leave", "item drag end"}));
  EXPECT_EQ(mWindow->mCursor, 0U);
  EXPECT_TRUE(item->GetClipToParent());
  EXPECT_FALSE(item->IsDocked(LayoutAxis::kX));
  EXPECT_EQ(item->GetWindowPosition(), (PointT<double>{230, 55}));
  for (const auto& control : {item, At(u"view"), At(u"")}) EXPECT_FALSE(control->IsHitExcluded());
}

TEST_F(ControlCarryTest, TheTargetHearsWhatComes) {
  MakeView(DragMode::kCarry, Edges::kX | Edges::kY);
  At(u"target")->mTakesDrops = true;
  Drag({90, 55}, {{91, 55}, {230, 60}, {231, 61}, {215, 60}});
  Log events = TakeEvents();
  std::erase_if(events, [](const std::string& event) { return event.starts_with("item"); });
  EXPECT_EQ(events, (Log{"target drop enter", "target drop over 10 50", "target drop over 11 51",
                         "target drop leave"}));
  // It scrolls for what is held at its edge.
  const auto target = At(u"target");
  target->mAutoScroll = Edges::kRight;
  mWindow->Move(300, 60);
  EXPECT_EQ(target->mScrollSpeed[0], 165);
  EXPECT_EQ(target->mIdleRefCount, 1);
  Wait(0.1);
  mWindow->Idle();
  EXPECT_EQ(target->GetScrollOffset().mX, std::round(16.5));
  mWindow->Move(222, 60);
  EXPECT_EQ(target->mIdleRefCount, 0);
  mWindow->Move(319, 60);
  mWindow->LetGo();
  EXPECT_EQ(target->mIdleRefCount, 0);
}

TEST_F(ControlCarryTest, ACarriedControlStaysWhereItIsWhileItsParentScrolls) {
  MakeView(DragMode::kCarry, Edges::kX);
  const auto item = At(u"view.item"), view = At(u"view");
  Drag({100, 60}, {{101, 60}, {120, 60}});
  EXPECT_EQ(item->GetWindowPosition().mX, 110);
  view->SetScrollOffset({30, 0});
  EXPECT_EQ(item->GetWindowPosition().mX, 110);
  mWindow->Move(125, 60);
  EXPECT_EQ(item->GetWindowPosition().mX, 115);
  mWindow->LetGo();
  EXPECT_EQ(item->GetWindowPosition().mX, 115);
  EXPECT_EQ(item->GetBounds().mX, 135);
}

TEST_F(ControlCarryTest, ADragThatEndsWhileItBeginsLeavesTheControlAsItWas) {
  for (const bool floats : {false, true}) {
    MakeView(DragMode::kCarry, Edges::kX);
    const auto item = At(u"view.item");
    item->SetClipToParent(!floats);
    Listen(item, {u"NID_LEFT_DRAG_CONDITION_CHANGE"});
    ProbeControl::gAct = [&](ProbeControl&, const std::string& event) {
      const bool isDrag = (item->GetConditions()->mCurrent & ControlCondition::kLeftDrag) != 0;
      if (event.ends_with("NID_LEFT_DRAG_CONDITION_CHANGE") && isDrag) item->ReleaseMouse();
    };
    Drag({100, 60}, {{101, 60}, {120, 60}});
    ProbeControl::gAct = nullptr;
    EXPECT_FALSE(item->HasCapture());
    EXPECT_EQ(item->GetClipToParent(), !floats);
    EXPECT_FALSE(item->IsDocked(LayoutAxis::kX));
    EXPECT_EQ(Item(), (RectT<double>{80, 40, 40, 20}));
    mEar->UnregisterAll();
    mMain->Destroy();
  }
}

TEST_F(ControlCarryTest, NothingIsDroppedFromOrOntoAControlThatGoes) {
  for (const char16_t* victim : {u"view.item", u"target", u"view"}) {
    MakeView(DragMode::kCarry, Edges::kX | Edges::kY);
    const auto target = At(u"target"), gone = At(victim);
    target->mTakesDrops = true;
    Drag({90, 55}, {{91, 55}, {230, 60}});
    TakeLog();
    gone->Destroy();
    mWindow->LetGo();
    const Log events = TakeEvents();
    EXPECT_EQ(std::count(events.begin(), events.end(), "target drop"), 0) << ToUtf8(victim);
    EXPECT_EQ(std::count(events.begin(), events.end(), "target drop leave"), 1) << ToUtf8(victim);
    EXPECT_FALSE(mWindow->mCapture) << ToUtf8(victim);
    mMain->Destroy();
  }
}

TEST_F(ControlDragTest, AControlThatGoesWhenItsConditionsChangeHearsNoMore) {
  for (const char* last : {"item drag end", "item conditions"}) {
    MakeView(DragMode::kMove, Edges::kX);
    const auto item = At(u"view.item");
    Listen(item, {u"NID_CONDITION_CHANGE"});
    Drag({100, 60}, {{101, 60}, {120, 60}});
    bool isGone = false;
    ProbeControl::gAct = [&](ProbeControl& control, const std::string& event) {
      if (event != last) return;
      ProbeControl::gAct = nullptr;
      control.Destroy();
      isGone = true;
      TakeLog();
    };
    mWindow->LetGo();
    Log events = TakeLog();
    std::erase_if(events, [](const std::string& event) { return !event.starts_with("item"); });
    EXPECT_EQ(events, Log()) << last;
    EXPECT_TRUE(isGone) << last;
    mEar->UnregisterAll();
    mMain->Destroy();
  }
}

TEST_F(ControlDragTest, AHeldButtonPressesAgainWhatIsUnderIt) {
  MakeWindow(Box("bar", Place(0, 0, 100, 100), Box("arrow", Place(10, 10, 20, 20))));
  const auto bar = At(u"bar");
  bar->mRouteChildHits = true;
  mWindow->Move(15, 16);
  mWindow->Press();
  EXPECT_EQ(bar->mIdleRefCount, 1);
  Wait(0.1);
  mWindow->Idle();
  TakeLog();
  Wait(0.001);
  mWindow->Idle();
  EXPECT_EQ(TakeEvents(), (Log{"arrow left down 5 6", "bar idle"}));
  EXPECT_TRUE(At(u"bar.arrow")->HasCapture());
  EXPECT_EQ(bar->mIdleRefCount, 0);
  mWindow->LetGo();
  EXPECT_FALSE(mWindow->mCapture);
}

TEST_F(ControlDragTest, IdleTimeIsGivenToWhoAsksAndOnlyInItsWindow) {
  MakeView(DragMode::kNone, 0);
  const auto view = At(u"view");
  view->AddIdleUser();
  view->AddIdleUser();
  mMain->ProcessRootWindowAquired();
  mWindow->Idle();
  EXPECT_EQ(TakeEvents(), Log{"view idle"});
  const auto other = MakeRC<StubWindow>();
  mMain->SetRootWindow(other);
  mWindow->Idle();
  EXPECT_TRUE(TakeEvents().empty());
  other->Idle();
  EXPECT_EQ(TakeEvents(), Log{"view idle"});
  view->RemoveIdleUser();
  other->Idle();
  EXPECT_EQ(TakeEvents(), Log{"view idle"});
  view->RemoveIdleUser();
  view->RemoveIdleUser();
  other->Idle();
  EXPECT_TRUE(TakeEvents().empty());
  mMain->SetRootWindow(nullptr);
  view->AddIdleUser();
  other->Idle();
  EXPECT_TRUE(TakeEvents().empty());
  mMain->SetRootWindow(mWindow);
  mWindow->Idle();
  EXPECT_EQ(TakeEvents(), Log{"view idle"});
}

TEST_F(ControlDragTest, ScrollOffsetsAreWholeAndTold) {
  MakeView(DragMode::kNone, 0);
  const auto view = At(u"view");
  Listen(view, {u"NID_SCROLL_OFFSET_CHANGE"});
  const double none = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    PointT<double> mOffset, mResult;
    TFRESULT mChanged;
  };
  const Case cases[] = {{{0.4, -0.4}, {0, 0}, kNothingDone},
                        {{0.5, -2.5}, {1, -3}, kSuccess},
                        {{none, 7}, {1, 7}, kSuccess},
                        {{1e300, 7}, {LControl::kInfinite, 7}, kSuccess}};
  for (const Case& entry : cases) {
    Forget();
    EXPECT_EQ(view->SetScrollOffset(entry.mOffset), entry.mChanged);
    EXPECT_EQ(view->GetScrollOffset(), entry.mResult);
    EXPECT_EQ(TakeEvents().size(), entry.mChanged == kSuccess ? 1U : 0U);
  }
  mWindow->Move(95, 55);
  EXPECT_EQ(mWindow->mHover, view);
  view->SetScrollOffset({0, 0});
  EXPECT_EQ(mWindow->mHover, At(u"view.item"));
}

}  // namespace
}  // namespace TF
