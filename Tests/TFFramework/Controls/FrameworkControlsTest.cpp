#include "TFFramework/Controls/FrameworkControls.h"

#include "TFFramework/Controls/Label.h"
#include "TFFramework/Controls/ListBoxItem.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

class FrameworkControlsTest : public BarFixture {
 protected:
  void RegisterMore() override { EXPECT_EQ(RegisterFrameworkControls(*mFactory), kSuccess); }
};

TEST_F(FrameworkControlsTest, AClassThatIsKnownByNameAloneIsNamedByTheError) {
  for (const char* name : {"Framework.Slider", "Framework.TextBox", "Framework.TreeViewItem"}) {
    try {
      MakeControls(Part(name, "x", Place(0, 0, 10, 10)));
      ADD_FAILURE() << name;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(std::string("Control class not available : ") + name),
                std::string::npos)
          << error.what();
    }
    mMain = nullptr;
  }
}

TEST_F(FrameworkControlsTest, SkinsKnowClassesByTheirNames) {
  MakeControls(Part("Framework.Panel", "panel", Place(0, 0, 100, 100),
                    Part("Framework.OverlayButton", "item", "XSizeAbs='10'") +
                        Part("Framework.ScrollChannel", "channel", "XSizeAbs='10'")) +
               Part("Framework.Label", "label", Place(0, 0, 10, 10)));
  EXPECT_TRUE(Find<LPanel>(u"panel"));
  EXPECT_TRUE(Find<LListBoxItem>(u"panel.item"));
  EXPECT_TRUE(Find<LPanel>(u"panel.channel"));
  EXPECT_TRUE(Find<LLabel>(u"label"));
}

}  // namespace
}  // namespace TF
