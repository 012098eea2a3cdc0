#include <string>

#include "Tests/TFFramework/ControlBase/LetterPaint.h"
#include "Tests/TFFramework/ControlBase/LookParts.h"
#include "Tests/TFFramework/ControlBase/ProbeControl.h"
#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace TF {
namespace {

using IntRect = RectT<std::int32_t>;

class ControlRenderTest : public ProbeFixture {
 protected:
  IntRect InvalidBounds() {
    Region region;
    for (const IntRect& rect : mWindow->TakeInvalid()) region.Add(rect);
    return region.GetBounds();
  }
};

TEST_F(ControlRenderTest, WhatSticksOutOfAParentIsPaintedAnewWhenItComesAndGoes) {
  MakeWindow(Box("panel", Place(10, 10, 50, 50), Box("box", Place(40, 0, 30, 20))));
  const auto box = At(u"panel.box");
  box->SetClipToParent(false);
  EXPECT_EQ(InvalidBounds(), (IntRect{50, 10, 30, 20}));
  box->SetClipToParent(false);
  EXPECT_EQ(InvalidBounds(), IntRect());
  box->SetClipToParent(true);
  EXPECT_EQ(InvalidBounds(), (IntRect{50, 10, 30, 20}));
}

TEST_F(ControlRenderTest, DirtIsWhatTheParentsShowOfIt) {
  MakeWindow(
      Box("panel", Place(10, 20, 50, 50), Box("box", Place(40, 5, 30, 20), Box("dot", Place(5, 5, 9, 9)))));
  const auto panel = At(u"panel");
  struct Case {
    PointT<double> mScroll;
    RectT<double> mDirt;  // Of the dot.
    IntRect mShown;
  };
  for (const Case& each : {Case{{0, 0}, {0, 0, 2, 3}, {55, 30, 2, 3}},
                           {{0, 0}, {0, 0, 9, 9}, {55, 30, 5, 9}},
                           {{10, 4}, {0, 0, 9, 9}, {45, 26, 9, 9}},
                           {{60, 0}, {0, 0, 9, 9}, {}},
                           {{0, 0}, {0.4, 0.4, 0.2, 0.2}, {55, 30, 1, 1}}}) {
    panel->SetScrollOffset(each.mScroll);
    Forget();
    At(u"panel.box.dot")->Invalidate(each.mDirt, true);
    EXPECT_EQ(InvalidBounds(), each.mShown);
  }
  panel->SetVisible(false);
  Forget();
  At(u"panel.box.dot")->InvalidateFrame();
  EXPECT_EQ(InvalidBounds(), IntRect());
}

class PaintedControl : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;
  TFRESULT OnRenderBackground(const RCPtr<LRenderer>& renderer) override {
    return PaintLetter(*this, *renderer);
  }
};

class ControlPaintTest : public ControlRenderTest {
 protected:
  // Draws the main control's tree; '.' stands where nothing was drawn.
  std::string Row(const Region& dirty, std::int32_t y, std::int32_t width, RCPtrArray<LControl>& deferred) {
    RendererRig rig({40, 30});
    rig.Draw([&](LRenderer&) { mMain->Render(rig.mRenderer, dirty, deferred, false); });
    std::string row;
    for (std::int32_t x = 0; x < width; ++x) {
      const std::uint32_t pixel = rig.mWindow.At(x, y);
      row += pixel == 0 ? '.' : static_cast<char>(pixel & 0xFF);
    }
    return row;
  }
};

TEST_F(ControlPaintTest, DrawsInZOrderInsideTheClientAreasAndDefersWhatFloats) {
  MakeWindow("");
  mMain->Destroy();
  const std::string skin =
      std::string("<Skin><SubControl Class='Box' Name='main'") + kFill + "><Skin>" +
      Box("p", Place(2, 0, 10, 10),
          Box("x", Place(6, 0, 9, 5) + "Z_Order='1'") + Box("y", Place(3, 0, 5, 5) + "Z_Order='2'") +
              Box("f", Place(0, 0, 30, 30) + "ClipToParent='False'")) +
      "</Skin></SubControl></Skin>";
  ASSERT_EQ(Load(SkinDocument(skin)), kSuccess);
  mFactory->RegisterControlCreateFunction(u"Box", MakeControl<PaintedControl>);
  mApplication = nullptr;
  mApplication = MakeRC<ClockApplication>(mFactory);
  mMain = mFactory->CreateControl(u"main", RCPtr<LRootWindow>(mWindow));
  mMain->Relayout();
  RCPtrArray<LControl> deferred;
  EXPECT_EQ(Row(Region({0, 0, 40, 30}), 2, 16, deferred), "mmpppyyyyyxxmmmm");
  ASSERT_EQ(deferred.GetCount(), 1);
  EXPECT_EQ(deferred[0]->GetName(), u"f");
  // The part of a control that is not dirty is not drawn, and a control beside the dirt not at all.
  deferred.SetCount(0);
  EXPECT_EQ(Row(Region({6, 0, 3, 30}), 2, 16, deferred), "......yyy.......");
  EXPECT_EQ(deferred.GetCount(), 1);
  // The content moves under the client area.
  mMain->FindChild(u"p")->SetScrollOffset({4, 0});
  deferred.SetCount(0);
  EXPECT_EQ(Row(Region({0, 0, 40, 30}), 2, 16, deferred), "mmyyyyxxxxxxmmmm");
  EXPECT_EQ(mMain->Render(nullptr, Region(), deferred, false), kInvalidArgument);
  // A view that tracks its content leaves the rest of its frame to its look and to what is docked there.
  const auto look = MakeRC<LLookDescriptor>();
  look->mClientPart = Client(ColorPart(0xFF000000U | 'l'), 3, 0, 0, 0);
  mMain->SetLookCount(1);
  mMain->SetLook(MakeRC<LLook>(look, nullptr), 0);
  mMain->SetActiveLook(0);
  RCPtr<ProbeControl>(mMain)->mBackingStore = true;
  mMain->FindChild(u"p")->SetVisible(false);
  deferred.SetCount(0);
  EXPECT_EQ(Row(Region({1, 0, 37, 30}), 2, 40, deferred), "..." + std::string(35, 'm') + "..");
}

}  // namespace
}  // namespace TF
