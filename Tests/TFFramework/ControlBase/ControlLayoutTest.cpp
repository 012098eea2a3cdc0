#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include "Tests/TFFramework/ControlBase/ControlFixture.h"

namespace TF {

void PrintTo(const RectT<double>& rect, std::ostream* out) {
  *out << rect.mX << "," << rect.mY << " " << rect.mWidth << "x" << rect.mHeight;
}

namespace {

using Rect = RectT<double>;
using ControlLayoutTest = ControlFixture;

TEST_F(ControlLayoutTest, AFrameFollowsItsReferences) {
  const std::string first =
      Box("first", "LayoutOrder='1' XPositionAbs='20' XSizeAbs='100' YPositionAbs='30'");
  const struct {
    const char* mAttributes;
    Rect mFrame;
  } cases[] = {
      {"", {0, 0, 16, 40}},
      {"XSizeAbs='-7'", {0, 0, 0, 40}},
      {"XPositionAbs='5' XSizeToControl='Client' XSizeRel='1' XSizeAbs='-10'", {5, 0, 385, 40}},
      {"XPlacementAnchor='1' XPositionRel='1' XSizeToControl='Client' XSizeRel='1' XSizeAbs='-10'",
       {390, 0, 10, 40}},
      {"XPlacementAnchor='0.5' XPositionRel='0.5' XSizeAbs='30'", {185, 0, 30, 40}},
      {"XPositionToControl='first' XPositionRel='1' XPositionAbs='4'", {124, 0, 16, 40}},
      {"XPositionToControl='first' XSizeToControl='first' XSizeRel='1' XSizeAbs='0'", {20, 0, 100, 40}},
      {"XPositionToControl='nobody' XPositionRel='1' XPositionAbs='4'", {4, 0, 16, 40}},
      {"XSizeToControl='nobody' XSizeRel='1' XSizeAbs='9'", {0, 0, 9, 40}},
      {"YPositionToControl='Parent' YPositionRel='1' YPlacementAnchor='1'", {0, 260, 16, 40}},
      {"XMinSizeAbs='50' XPlacementAnchor='1' XPositionRel='1'", {350, 0, 50, 40}},
      {"XMinSizeAbs='50' XMaxSizeAbs='30'", {0, 0, 30, 40}},
      {"XSizeAbs='90' XMaxSizeAbs='0'", {0, 0, 90, 40}},
      {"XSizeAbs='90' XMaxSizeAbs='-20'", {-20, 0, 20, 40}},
      {"XMinSizeToControl='Children' XMinSizeRel='1'", {0, 0, 16, 40}},
      {"XPositionAbs='1e300' XSizeAbs='nan'", {1, 0, 0, 40}},
      {"XPlacementAnchor='nan' XPositionRel='inf'", {0, 0, 16, 40}},
      {"XPlacementAnchor='1e38' XSizeAbs='2147483647'", {-LControl::kInfinite, 0, 2147483647, 40}},
  };
  for (const auto& [attributes, frame] : cases) {
    MakeTree(first + Box("box", std::string("LayoutOrder='2' ") + attributes));
    EXPECT_EQ(Child(u"first")->GetBounds(), (Rect{20, 30, 100, 40}));
    EXPECT_EQ(Child(u"box")->GetBounds(), frame) << attributes;
    EXPECT_EQ(Child(u"box")->Relayout(), kNothingDone) << attributes;
    mMain->Destroy();
    mMain = nullptr;
    mApplication = nullptr;
  }
}

TEST_F(ControlLayoutTest, ATopControlRefersToDesktopWindowAndMouse) {
  const struct {
    const char* mAttributes;
    Rect mFrame;
  } cases[] = {
      {"XPositionToControl='Screen' XPositionRel='1' XPlacementAnchor='1'", {884, 0, 16, 40}},
      {"XPositionToControl='Screen' XPlacementAnchor='0.5' XPositionRel='0.5' XSizeAbs='400'",
       {200, 0, 400, 40}},
      {"XSizeToControl='Active Window' XSizeRel='1' XSizeAbs='0'", {0, 0, 400, 40}},
      {"XPositionToControl='mouse' YPositionToControl='mouse' YPositionAbs='20'", {30, 60, 16, 40}},
  };
  for (const auto& [attributes, frame] : cases) {
    MakeSkin("<Skin>" + Box("main", attributes) + "</Skin>");
    EXPECT_EQ(mMain->GetBounds(), frame) << attributes;
    mMain->Destroy();
    mApplication = nullptr;
  }
}

TEST_F(ControlLayoutTest, WithoutAnythingToReferToTheFrameStays) {
  const auto control = MakeRC<LControl>(nullptr, u"alone");
  EXPECT_EQ(control->Relayout(), kFailure);
  EXPECT_EQ(control->GetBounds(), Rect{});
}

TEST_F(ControlLayoutTest, AChangeReachesChildrenAndLaterSiblingsAndNoOthers) {
  MakeTree(Box("a", std::string("LayoutOrder='1'") + kFill) +
           Box("b", "LayoutOrder='2' XPositionToControl='a' XPositionRel='1'") +
           Box("c", "LayoutOrder='3' XPositionToControl='b' XPositionRel='1' XPositionAbs='2'") +
           Box("early", "LayoutOrder='0' XPositionToControl='c'"));
  EXPECT_EQ(Child(u"c")->GetBounds().mX, 418);
  const auto a = Child(u"a");
  LayoutPosition position;
  LayoutSize size;
  ASSERT_EQ(a->GetAxisLayout(LayoutAxis::kX, position, size), kSuccess);
  size.mAbs = -100;
  EXPECT_EQ(a->SetAxisLayout(LayoutAxis::kX, position, size), kSuccess);
  EXPECT_EQ(Child(u"b")->GetBounds().mX, 300);
  EXPECT_EQ(Child(u"c")->GetBounds().mX, 318);
  EXPECT_EQ(Child(u"early")->GetBounds().mX, 0);
  EXPECT_EQ(a->SetAxisLayout(LayoutAxis::kX, position, size), kNothingDone);
  EXPECT_EQ(a->SetAxisLayout(static_cast<LayoutAxis>(2), position, size), kInvalidArgument);
}

TEST_F(ControlLayoutTest, CircularReferencesComeToAnEnd) {
  MakeTree(Box("a", "LayoutOrder='1' XPositionToControl='b' XPositionRel='1'") +
           Box("b", "LayoutOrder='2' XPositionToControl='a' XPositionRel='1'") +
           Box("self", "XSizeToControl='self' XSizeRel='1' XSizeAbs='10'"));
  Main()->Resize(500, 300);
  EXPECT_EQ(Child(u"b")->GetBounds().mX, Child(u"a")->GetBounds().GetRight());
  EXPECT_GT(Child(u"self")->GetBounds().mWidth, 0);
}

TEST_F(ControlLayoutTest, ADockedChildKeepsItsPlaceWhileTheParentScrolls) {
  MakeTree(Box("docked", "LayoutOrder='1' XIsDocked='True' XPositionAbs='7'") +
           Box("free", "XPositionAbs='7'") +
           Box("behind", "LayoutOrder='2' XPositionToControl='docked' XPositionRel='1'"));
  const double behind = Child(u"behind")->GetBounds().mX;
  mMain->SetScrollOffset({25.4, 0});
  EXPECT_EQ(mMain->GetScrollOffset().mX, 25);
  EXPECT_EQ(Child(u"docked")->GetPositionInParent().mX, 7);
  EXPECT_EQ(Child(u"free")->GetPositionInParent().mX, -18);
  EXPECT_EQ(Child(u"behind")->GetBounds().mX, behind);
}

TEST_F(ControlLayoutTest, AParentGrowsWithItsChildren) {
  MakeTree(Box("panel",
               "XSizeAbs='0' XMinSizeToControl='Children' XMinSizeRel='1' XMinSizeAbs='3' YSizeAbs='0'"
               " YMinSizeToControl='inner' YMinSizeRel='1'",
               Box("inner", "XSizeAbs='60' YPositionAbs='5'") +
                   Box("floating", "ClipToParent='False' XPositionAbs='500'")));
  const auto panel = Child(u"panel");
  EXPECT_EQ(panel->GetBounds(), (Rect{0, 0, 63, 45}));
  const auto inner = panel->FindChild(u"inner");
  LayoutPosition position;
  LayoutSize size;
  inner->GetAxisLayout(LayoutAxis::kX, position, size);
  size.mAbs = 80;
  inner->SetAxisLayout(LayoutAxis::kX, position, size);
  EXPECT_EQ(panel->GetBounds().mWidth, 83);
}

TEST_F(ControlLayoutTest, AMaximumOverTheChildrenShrinks) {
  MakeTree(Box("panel", "XSizeAbs='300' XMaxSizeToControl='Children' XMaxSizeRel='1'",
               Box("inner", "XSizeAbs='60'")));
  EXPECT_EQ(Child(u"panel")->GetBounds().mWidth, 60);
}

TEST_F(ControlLayoutTest, TheAutomaticSizeIsTheMinimumAndLeavesTheLayoutAsItWas) {
  MakeTree(Box("box", "XSizeAbs='200' XMinSizeAbs='30' YMinSizeAbs='12' YMaxSizeAbs='500'"));
  const auto box = Child(u"box");
  const SizeT<double> size = box->GetAutoSize();
  EXPECT_EQ(size, (SizeT<double>{30, 12}));
  EXPECT_EQ(box->GetBounds(), (Rect{0, 0, 200, 40}));
  EXPECT_EQ(box->GetFixedMaxSize(), (SizeT<double>{0, 500}));
}

TEST_F(ControlLayoutTest, AProposedSizeIsKeptInsideTheLimits) {
  MakeTree("");
  LayoutLimit minimum, maximum;
  minimum.mAbs = 100;
  maximum.mAbs = 600;
  ASSERT_FALSE(Failed(mMain->SetAxisLimits(LayoutAxis::kX, minimum, maximum)));
  EXPECT_EQ(mMain->ConstrainSize({20, 0}), (SizeT<double>{100, 1}));
  EXPECT_EQ(mMain->ConstrainSize({LControl::kInfinite, 50}), (SizeT<double>{600, 50}));
  EXPECT_EQ(mMain->ConstrainSize({300, -9}), (SizeT<double>{300, 9}));
}

TEST_F(ControlLayoutTest, AnExceptionInALayoutLeavesNoMark) {
  class Throwing : public BoxControl {
   public:
    using BoxControl::BoxControl;
    void ParentResized(const SizeT<double>& size) override {
      if (mThrows) throw std::runtime_error("resized");
      BoxControl::ParentResized(size);
    }
    bool mThrows = false;
  };
  ASSERT_EQ(Load(SkinDocument("<Skin><SubControl Class='Box' Name='main'" + std::string(kFill) +
                              "><Skin><SubControl Class='Throwing' Name='child'" + kFill +
                              "/></Skin></SubControl></Skin>")),
            kSuccess);
  mApplication = MakeRC<ClockApplication>(mFactory);
  mFactory->RegisterControlCreateFunction(u"Box", MakeControl<BoxControl>);
  mFactory->RegisterControlCreateFunction(u"Throwing", MakeControl<Throwing>);
  mMain = mFactory->CreateControl(u"main", nullptr);
  const auto child = RCPtr<Throwing>(mMain->FindChild(u"child"));
  child->mThrows = true;
  EXPECT_THROW(Main()->Resize(500, 300), std::runtime_error);
  child->mThrows = false;
  Main()->Resize(600, 300);
  EXPECT_EQ(child->GetBounds().mWidth, 600);
}

TEST_F(ControlLayoutTest, ALongRowOfSiblingsThatMoveOneAnotherNeedsNoDeepStack) {
  constexpr int kCount = 10000;
  std::string row = Box("b0", std::string("LayoutOrder='0'") + kFill);
  for (int i = 1; i < kCount; ++i) {
    const std::string before = "b" + std::to_string(i - 1);
    row += Box("b" + std::to_string(i), "LayoutOrder='" + std::to_string(i) + "' XPositionToControl='" +
                                            before + "' XPositionRel='1' XSizeAbs='1'");
  }
  MakeTree(row);
  ASSERT_EQ(mMain->GetChildCount(), kCount);
  Main()->Resize(500, 300);
  EXPECT_EQ(mMain->GetChild(kCount - 1)->GetBounds().mX, 500 + kCount - 2);
  EXPECT_EQ(Child(u"b5000")->mRelayouts, 1);
}

TEST_F(ControlLayoutTest, AParentGrowsOnceWithALongRowInIt) {
  constexpr int kCount = 5000;
  std::string row = Box("b0", "LayoutOrder='0' XSizeAbs='1'");
  for (int i = 1; i < kCount; ++i) {
    row += Box("b" + std::to_string(i), "LayoutOrder='" + std::to_string(i) + "' XPositionToControl='b" +
                                            std::to_string(i - 1) + "' XPositionRel='1' XSizeAbs='1'");
  }
  MakeTree(Box("panel", "XSizeAbs='0' XMinSizeToControl='Children' XMinSizeRel='1'", row));
  EXPECT_EQ(Child(u"panel")->GetBounds().mWidth, kCount);
  const RCPtr<LControl> first = Child(u"panel")->GetChild(0);
  LayoutPosition position;
  LayoutSize size;
  first->GetAxisLayout(LayoutAxis::kX, position, size);
  size.mAbs = 101;
  const std::int32_t before = Child(u"panel")->mBoundsChanges;
  first->SetAxisLayout(LayoutAxis::kX, position, size);
  EXPECT_EQ(Child(u"panel")->GetBounds().mWidth, kCount + 100);
  EXPECT_EQ(Child(u"panel")->mBoundsChanges, before + 1);
}

// Descriptors of controls in one another, each one pixel narrower than what is around it.
RCPtr<LControlDescriptor> NestedBoxes(int levels) {
  RCPtr<LControlDescriptor> inner;
  for (int level = 0; level < levels; ++level) {
    const auto outer = MakeRC<LControlDescriptor>();
    outer->mName = u"level";
    outer->mClass = u"Box";
    outer->mLayout = MakeRC<LLayoutDescriptor>();
    AxisLayout& x = outer->mLayout->Axis(LayoutAxis::kX);
    x.mPosition.mAbs = 1;
    x.mSize = {SizeReference::kClient, u"", 1, 0};
    if (inner) outer->mSubControls.Add(inner);
    inner = outer;
  }
  return inner;
}

TEST_F(ControlLayoutTest, ADeepTreeIsLaidOutOnceFromTheTop) {
  constexpr int kLevels = 1000;
  MakeTree("");
  RCPtr<LControl> control = mFactory->CreateSubControl(mMain, NestedBoxes(kLevels));
  for (int level = 1; level < kLevels; ++level) {
    control = control->FindChild(u"level");
    ASSERT_TRUE(control) << level;
  }
  const auto innermost = RCPtr<BoxControl>(control);
  EXPECT_EQ(innermost->GetBounds().mWidth, 0);
  const std::int32_t before = innermost->mRelayouts;
  EXPECT_LE(before, 2);
  Main()->Resize(kLevels + 500, 300);
  EXPECT_EQ(innermost->GetBounds().mWidth, 500);
  EXPECT_EQ(innermost->mRelayouts, before + 1);
  EXPECT_TRUE(innermost->IsShown(true));
}

}  // namespace
}  // namespace TF
