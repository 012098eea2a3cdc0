#include <string>

#include "Tests/TFFramework/ControlBase/LookParts.h"
#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {
namespace {

class ControlHitTestTest : public ProbeFixture {
 protected:
  struct Case {
    int mX, mY;
    const char* mHit;  // With the point from its corner.
  };

  // What lies at a point of the window.
  std::string HitAt(int x, int y) {
    RCPtr<LControl> hit;
    PointT<double> local;
    std::int32_t bestZ = LControl::kNoZ;
    mMain->HitTest(hit, {double(x), double(y)}, true, local, bestZ);
    if (!hit) return "none";
    EXPECT_EQ(bestZ, hit->GetEffectiveZ());
    const PointT<double> corner = hit->GetWindowPosition();
    EXPECT_EQ(local, (PointT<double>{x - corner.mX, y - corner.mY})) << x << " " << y;
    return ToUtf8(hit->GetName());
  }
  template <std::size_t size>
  void Expect(const Case (&cases)[size], int line) {
    for (const Case& entry : cases) {
      EXPECT_EQ(HitAt(entry.mX, entry.mY), entry.mHit) << entry.mX << " " << entry.mY << " line " << line;
    }
  }
};

TEST_F(ControlHitTestTest, TheTopmostChildThatShowsAPointHasIt) {
  MakeWindow(Box("a", Place(10, 10, 100, 100) + "Z_Order='1'", Box("a1", Place(50, 50, 100, 100))) +
             Box("b", Place(90, 90, 100, 100) + "Z_Order='2'"));
  const Case plain[] = {{10, 10, "a"},   {9, 10, "main"},    {109, 20, "a"},     {110, 20, "main"},
                        {60, 60, "a1"},  {59, 60, "a"},      {100, 100, "b"},    {120, 80, "main"},
                        {189, 189, "b"}, {190, 189, "main"}, {399, 299, "main"}, {400, 299, "none"},
                        {-1, 0, "none"}, {0, 300, "none"}};
  Expect(plain, __LINE__);
  At(u"b")->SetHitExcluded(true);
  EXPECT_EQ(HitAt(100, 100), "a1");
  At(u"b")->SetHitExcluded(false);
  At(u"b")->mSolid = false;
  EXPECT_EQ(HitAt(100, 100), "a1");
  At(u"b")->mSolid = true;
  At(u"b")->SetEnabled(false);
  EXPECT_EQ(HitAt(100, 100), "b");
  At(u"b")->SetVisible(false);
  EXPECT_EQ(HitAt(100, 100), "a1");
  At(u"a")->SetVisible(false);
  EXPECT_EQ(HitAt(100, 100), "main");
  mMain->SetScrollOffset({-20, 30});
  At(u"b")->SetVisible(true);
  const Case scrolled[] = {{110, 60, "b"}, {109, 60, "main"}, {209, 159, "b"}, {210, 159, "main"}};
  Expect(scrolled, __LINE__);
}

TEST_F(ControlHitTestTest, FloatingControlsAreHitAboveAllOthersAndOutsideOfTheirParents) {
  MakeWindow(Box("a", Place(10, 10, 100, 100),
                 Box("f", Place(150, 20, 40, 40) + "ClipToParent='False' Z_Order='5'",
                     Box("f1", Place(30, 30, 40, 40)))) +
             Box("top", Place(150, 0, 200, 200) + "Z_Order='99'") +
             Box("g", Place(180, 40, 60, 60) + "ClipToParent='False' Z_Order='3'"));
  const Case cases[] = {{165, 35, "f"},   {185, 45, "f"}, {195, 65, "f1"},  {205, 65, "g"},
                        {199, 69, "f1"},  {200, 70, "g"}, {160, 70, "top"}, {50, 50, "a"},
                        {159, 30, "top"}, {239, 99, "g"}, {240, 99, "top"}};
  Expect(cases, __LINE__);
  // Of equal ones the one that is painted later.
  At(u"g")->Layout().Z_Order = 5;
  EXPECT_EQ(HitAt(185, 45), "g");
  At(u"g")->Layout().Z_Order = 4;
  EXPECT_EQ(HitAt(185, 45), "f");
  At(u"a.f")->SetHitExcluded(true);
  EXPECT_EQ(HitAt(165, 35), "top");
  EXPECT_EQ(HitAt(195, 65), "f1");
  At(u"a")->SetVisible(false);
  EXPECT_EQ(HitAt(195, 65), "g");
  At(u"a")->SetVisible(true);
  At(u"a.f")->SetHitExcluded(false);
  mMain->DestroyChildLater(At(u"g"));
  EXPECT_EQ(HitAt(205, 65), "top");
}

TEST_F(ControlHitTestTest, AFloatingControlInAFloatingOneCountsByTheHigherOfBoth) {
  MakeWindow(Box("f", Place(10, 10, 50, 50) + "ClipToParent='False' Z_Order='7'",
                 Box("inner", Place(100, 0, 50, 50) + "ClipToParent='False' Z_Order='-2'")) +
             Box("g", Place(120, 10, 50, 50) + "ClipToParent='False' Z_Order='6'"));
  const Case cases[] = {{125, 20, "inner"}, {165, 20, "g"}, {20, 20, "f"}, {80, 20, "main"}};
  Expect(cases, __LINE__);
}

TEST_F(ControlHitTestTest, PixelsThatALookLeavesClearLetTheMouseThrough) {
  MakeWindow(Box("back", Place(0, 0, 100, 100)) +
             Box("front", Place(0, 0, 100, 100) + "Z_Order='1'", Box("child", Place(0, 0, 20, 20))));
  const auto descriptor = MakeRC<LLookDescriptor>();
  descriptor->mClientPart = Client(ColorPart(0xFF000000), 40, 40, -10, -10);
  const auto faint = MakeRC<LLookDescriptor>();
  faint->mClientPart = Client(ColorPart(0xFF000000), 0, 0, 0, 0);
  const auto front = At(u"front");
  front->mSolid = false;
  front->SetLookCount(2);
  front->SetLook(MakeRC<LLook>(descriptor, nullptr), 0);
  front->SetLook(MakeRC<LLook>(faint, nullptr), 1);
  front->SetActiveLook(0);
  front->Relayout();
  const auto child = At(u"front.child");
  const Case cases[] = {{39, 50, "back"},  {40, 40, "child"}, {59, 59, "child"},
                        {60, 60, "front"}, {89, 89, "front"}, {90, 60, "back"}};
  Expect(cases, __LINE__);
  front->SetLookAlpha(1, 0.5F, false);
  EXPECT_EQ(HitAt(95, 60), "front");
  front->SetLookAlpha(1, 0, false);
  // What is docked on both axes may stand beside the client area.
  child->Layout().Axis(LayoutAxis::kX).mPosition.mAbs = -30;
  child->Relayout();
  EXPECT_EQ(HitAt(15, 45), "back");
  for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
    LayoutPosition position;
    LayoutSize size;
    child->GetAxisLayout(axis, position, size);
    position.mIsDocked = true;
    child->SetAxisLayout(axis, position, size);
  }
  EXPECT_EQ(HitAt(15, 45), "child");
}

TEST_F(ControlHitTestTest, AControlThatTakesTheHitsOfItsChildrenRemembersWhich) {
  MakeWindow(
      Box("a", Place(10, 10, 100, 100), Box("a1", Place(20, 20, 30, 30), Box("deep", Place(5, 5, 9, 9)))) +
      Box("f", Place(60, 60, 100, 100) + "ClipToParent='False' Z_Order='1'",
          Box("f1", Place(10, 10, 20, 20)) + Box("g",
                                                 Place(90, 0, 50, 50) + "ClipToParent='False' Z_Order='1'",
                                                 Box("g1", Place(10, 10, 30, 30)))));
  const auto a = At(u"a"), f = At(u"f");
  a->mRouteChildHits = f->mRouteChildHits = true;
  EXPECT_EQ(HitAt(37, 38), "a");
  EXPECT_EQ(a->mRoutedChild, At(u"a.a1.deep"));
  EXPECT_EQ(a->mRoutedPoint, (PointT<std::int32_t>{2, 3}));
  EXPECT_EQ(HitAt(75, 75), "f");
  EXPECT_EQ(f->mRoutedChild, At(u"f.f1"));
  EXPECT_EQ(HitAt(15, 15), "a");
  EXPECT_FALSE(a->mRoutedChild);
  // What floats below it has its own, inside and outside of its frame.
  EXPECT_EQ(HitAt(155, 75), "g");
  EXPECT_EQ(HitAt(185, 75), "g1");
  EXPECT_FALSE(f->mRoutedChild);
  // With a hole where the child is, what lies behind has it.
  a->mSolid = false;
  EXPECT_EQ(HitAt(37, 38), "main");
}

}  // namespace
}  // namespace TF
