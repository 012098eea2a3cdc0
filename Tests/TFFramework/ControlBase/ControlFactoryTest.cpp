#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Renderer/Renderer.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/ControlBase/SkinDocumentFixture.h"

namespace TF {
namespace {

// What happened to the controls, in its order.
std::vector<std::string> gSteps;
LControlFactory* gFactory = nullptr;

// Writes down what is done to it. An order of 100 or more in the skin makes it fail to initialize.
class StepControl : public LControl {
 public:
  using LControl::LControl;

  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override {
    Note("apply");
    return LControl::ApplyDescriptor(descriptor);
  }
  TFRESULT CreateChildren(const RCPtr<LControlDescriptor>& descriptor) override {
    Note("children");
    for (const auto& child : descriptor->mSubControls) {
      gFactory->CreateSubControl(RCPtr<LControl>(this), child);
    }
    return kSuccess;
  }
  TFRESULT Initialize() override {
    Note("initialize");
    return GetLayout()->LayoutOrder >= 100 ? kFailure : kSuccess;
  }
  TFRESULT OnDescriptorApplied() override {
    Note(IsCreated() ? "applied again" : "applied");
    return kSuccess;
  }

  LLayoutDescriptor& Layout() { return *GetLayout(); }

 private:
  void Note(const char* step) { gSteps.push_back(ToUtf8(GetName()) + " " + step); }
};

class OtherControl : public StepControl {
 public:
  using StepControl::StepControl;
};

class ControlFactoryTest : public SkinDocumentFixture {
 protected:
  void LoadSkin(const std::string& skins) {
    ASSERT_EQ(Load(SkinDocument(skins)), kSuccess);
    gFactory = mFactory.Get();
    gSteps.clear();
    ASSERT_EQ(mFactory->RegisterControlCreateFunction(u"Step", MakeControl<StepControl>), kSuccess);
  }
  void TearDown() override {
    for (const RCPtr<LControl>& control : mControls) control->Destroy();
    SkinDocumentFixture::TearDown();
  }
  RCPtr<StepControl> Create(const char16_t* name, const RCPtr<LRootWindow>& window = nullptr) {
    return Keep(mFactory->CreateControl(name, window));
  }
  RCPtr<LControl> Keep(const RCPtr<LControl>& control) {
    if (control) mControls.push_back(control);
    return control;
  }

 private:
  std::vector<RCPtr<LControl>> mControls;
};

const std::string kTree =
    "<Skin><SubControl Class='Step' Name='main' IsVisible='False'><Skin>"
    "<SubControl Class='Step' Name='second' LayoutOrder='2' IsVisible='False'/>"
    "<SubControl Class='Step' Name='first' LayoutOrder='1'><Skin><SubControl Class='Step' "
    "Name='inner'/></Skin></SubControl>"
    "</Skin></SubControl></Skin>";

TEST_F(ControlFactoryTest, ATreeIsBuiltFromTheInsideInLayoutOrder) {
  LoadSkin(kTree);
  const auto main = Create(u"main");
  ASSERT_TRUE(main);
  const std::vector<std::string> steps = {
      "main apply",        "main children",  "first apply",      "first children",
      "inner apply",       "inner children", "inner initialize", "inner applied",
      "first initialize",  "first applied",  "second apply",     "second children",
      "second initialize", "second applied", "main initialize",  "main applied"};
  EXPECT_EQ(gSteps, steps);
  EXPECT_TRUE(main->IsCreated());
  EXPECT_EQ(main->GetChild(0)->GetParent(), main.Get());
  EXPECT_EQ(main->GetChild(1)->GetName(), u"second");
}

TEST_F(ControlFactoryTest, ATopLevelControlIsVisibleWhateverTheSkinSays) {
  LoadSkin(kTree);
  EXPECT_FALSE(mFactory->FindControlDescriptor(u"main")->mLayout->IsVisible);
  const auto main = Create(u"main");
  EXPECT_TRUE(main->Layout().IsVisible);
  EXPECT_FALSE(static_cast<StepControl&>(*main->GetChild(1)).Layout().IsVisible);
}

TEST_F(ControlFactoryTest, ALayoutChangedAtRunTimeLeavesTheSkinAsItIs) {
  LoadSkin(kTree);
  const auto main = Create(u"main");
  main->Layout().Z_Order = 7;
  EXPECT_EQ(main->GetDescriptor()->mLayout->Z_Order, 0);
}

TEST_F(ControlFactoryTest, TheWindowGoesToTheTopControlAndIsFoundFromBelow) {
  LoadSkin(kTree);
  const auto window = MakeRC<LRootWindow>(nullptr, nullptr);
  const auto main = Create(u"main", window);
  EXPECT_EQ(main->GetRootWindow(), window);
  const RCPtr<LControl> child = main->GetChild(0);
  EXPECT_EQ(child->GetRootWindow(), window);
  EXPECT_EQ(child->SetRootWindow(MakeRC<LRootWindow>(nullptr, nullptr)), kFailure);
  EXPECT_EQ(child->GetRootWindow(), window);
}

TEST_F(ControlFactoryTest, AnUnknownClassThrowsWhenItsControlIsMade) {
  LoadSkin("<Skin><SubControl Class='Step' Name='a'/><SubControl Class='None' Name='b'/></Skin>");
  ControlCreateFunction function = nullptr;
  mFactory->GetControlCreateFunction(u"Step", function);
  EXPECT_EQ(function, &MakeControl<StepControl>);
  for (int i = 0; i < 2; ++i) {
    try {
      Create(u"b");
      FAIL();
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(std::string(error.what())
                      .starts_with("Runtime Error : TF::LControlFactory::GetControlCreateFunction"));
    }
  }
  EXPECT_TRUE(mLog.Contains("\"None\" is not registered"));
  EXPECT_TRUE(Create(u"a"));
}

TEST_F(ControlFactoryTest, TheFirstFunctionOfAClassStays) {
  LoadSkin(kTree);
  EXPECT_EQ(mFactory->RegisterControlCreateFunction(u"Step", MakeControl<OtherControl>), kNothingDone);
  EXPECT_EQ(mFactory->RegisterControlCreateFunction(u"Other", nullptr), kInvalidArgument);
  EXPECT_FALSE(RCPtr<OtherControl>(RCPtr<LControl>(Create(u"main"))));
}

TEST_F(ControlFactoryTest, TheDescriptorKeepsItsCreateFunction) {
  LoadSkin(kTree);
  EXPECT_EQ(mFactory->FindControlDescriptor(u"main")->mCreateFunction, nullptr);
  Create(u"main");
  EXPECT_EQ(mFactory->FindControlDescriptor(u"main")->mCreateFunction, &MakeControl<StepControl>);
}

TEST_F(ControlFactoryTest, AControlThatCannotBeBuiltIsNull) {
  LoadSkin("<Skin><SubControl Class='Step' Name='a' LayoutOrder='100'/></Skin>");
  EXPECT_FALSE(Create(u"a"));
  EXPECT_FALSE(Create(u"b"));
  EXPECT_FALSE(mFactory->CreateSubControl(nullptr, nullptr));
  EXPECT_EQ(gSteps.back(), "a initialize");
}

TEST_F(ControlFactoryTest, TheLastTopLevelControlOfANameIsFound) {
  LoadSkin(
      "<Skin><SubControl Class='Step' Name='a' Z_Order='1'/><SubControl Class='Step' Name='a' Z_Order='2'/>"
      "<SubControl Class='Step' Name='b'><Skin><SubControl Class='Step' "
      "Name='c'/></Skin></SubControl></Skin>");
  EXPECT_EQ(mFactory->FindControlDescriptor(u"a")->mLayout->Z_Order, 2);
  EXPECT_FALSE(mFactory->FindControlDescriptor(u"c"));
  EXPECT_FALSE(mFactory->FindControlDescriptor(u"A"));
}

TEST_F(ControlFactoryTest, TheCurrentSkinGivesControlsAndFont) {
  LoadSkin(
      "<Skin FontName='Arial' FontSize='8.25' FontStyle='0'><SubControl Class='Step' Name='a'/></Skin>"
      "<Skin FontSize='0.5'><SubControl Class='Step' Name='b'/></Skin><Skin FontSize='1' FontStyle='-1'/>");
  const struct {
    std::int32_t mIndex;
    TFRESULT mResult;
    const char* mFont;
    const char16_t* mControl;
  } cases[] = {{0, kSuccess, "Arial 8.25 0", u"a"},
               {1, kNothingDone, "Sans 9 2", u"b"},
               {2, kSuccess, "Sans 1 2", nullptr},
               {3, kNothingDone, "Sans 9 2", nullptr},
               {-1, kNothingDone, "Sans 9 2", nullptr}};
  EXPECT_EQ(mFactory->GetSkinCount(), 3U);
  for (const auto& [index, expected, font, control] : cases) {
    mFactory->SetCurrentSkin(index);
    String name(u"Sans");
    float size = 9;
    std::int32_t style = 2;
    EXPECT_EQ(mFactory->GetSkinFont(name, size, style), expected) << index;
    EXPECT_EQ(fmt::format("{} {:g} {}", ToUtf8(name), size, style), font) << index;
    for (const char16_t* known : {u"a", u"b"}) {
      EXPECT_EQ(static_cast<bool>(mFactory->FindControlDescriptor(known)),
                control && String(known) == control)
          << index;
    }
  }
}

TEST_F(ControlFactoryTest, ADocumentWithoutASkinHasNoControlsAndNoFont) {
  LoadSkin("<Skins/>");
  String name;
  float size = 0;
  std::int32_t style = 0;
  EXPECT_EQ(mFactory->GetSkinCount(), 0U);
  EXPECT_FALSE(Create(u"main"));
  EXPECT_EQ(mFactory->GetSkinFont(name, size, style), kNothingDone);
  EXPECT_EQ(mFactory->ApplySkin(MakeRC<StepControl>(nullptr, u"main")), kNothingDone);
}

TEST_F(ControlFactoryTest, ASkinIsAppliedToAControlOfItsName) {
  LoadSkin(kTree + "<Skin><SubControl Class='Step' Name='main' Z_Order='3'/></Skin>");
  const auto main = Create(u"main");
  const RCPtr<LControl> child = main->GetChild(0);
  mFactory->SetCurrentSkin(1);
  gSteps.clear();
  EXPECT_EQ(mFactory->ApplySkin(RCPtr<LControl>(main)), kSuccess);
  EXPECT_EQ(gSteps, (std::vector<std::string>{"main apply", "main initialize", "main applied again"}));
  EXPECT_EQ(main->Layout().Z_Order, 3);
  EXPECT_EQ(main->GetChildCount(), 0);
  EXPECT_EQ(mFactory->ApplySkin(child), kNothingDone);
  EXPECT_EQ(mFactory->ApplySkin(nullptr), kInvalidArgument);
}

TEST_F(ControlFactoryTest, ACopiedDescriptorHasANameAndALayoutOfItsOwn) {
  LoadSkin(kTree);
  const auto original = mFactory->FindControlDescriptor(u"main");
  const auto layout = MakeRC<LLayoutDescriptor>();
  layout->Z_Order = 9;
  const auto copy = mFactory->CopyDescriptor(original, layout, u"copy");
  ASSERT_TRUE(Keep(mFactory->CreateSubControl(nullptr, copy)));
  EXPECT_EQ(gSteps.front(), "copy apply");
  EXPECT_EQ(gSteps.size(), 16U);
  EXPECT_EQ(original->mName, u"main");
  EXPECT_EQ(original->mLayout->Z_Order, 0);
  EXPECT_EQ(copy->mSkin, original->mSkin);
  EXPECT_EQ(copy->mParent, nullptr);
  EXPECT_EQ(copy->mSubControls[0], original->mSubControls[0]);
  EXPECT_FALSE(mFactory->CopyDescriptor(nullptr, layout, u"copy"));
}

TEST_F(ControlFactoryTest, AControlBelowAPartOfTheSkinOutlivesIt) {
  LoadSkin(kTree);
  const auto inner = mFactory->FindControlDescriptor(u"main")->mSubControls[0];
  mFactory = nullptr;
  EXPECT_EQ(inner->mParent, nullptr);
}

TEST_F(ControlFactoryTest, ASecondDocumentAddsSkinsThatShareTheParts) {
  const std::string part =
      "<Colorizer Name='c' ColorType='' Color='FF000000'/>"
      "<Part Name='p' Width='1' Height='1' ResizeType='' ColorizerName='c'/>";
  LoadSkin(part + "<Skin/>");
  mFactory->SetCurrentSkin(1);
  ASSERT_EQ(LoadMore(SkinDocument("<Looks><Look Name='l'><NonClientPart Name='p'/></Look></Looks>"
                                  "<Skin><SubControl Class='Step' Name='a'/></Skin>")),
            kSuccess);
  EXPECT_EQ(Contents().mLooks.find(u"l")->second->mNonClientParts.GetCount(), 1);
  EXPECT_EQ(mFactory->GetSkinCount(), 2U);
  EXPECT_FALSE(mFactory->FindControlDescriptor(u"a"));
}

class LoadResourcesTest : public ControlFactoryTest {
 protected:
  static Resource ResourceOf(const char16_t* name, const std::string& text) {
    return {u"TFXML", name, {reinterpret_cast<const unsigned char*>(text.data()), text.size()}};
  }

  const std::string mStrings = "<R><StringTable ID='Framework'/></R>";
  const std::string mNames = "<R><Application Name='FromStrings'/></R>";
  const std::string mSkin =
      "<R><Colorizer/><Part Name='p' Width='1' Height='1' ResizeType='' ImageFile='A.png' ImageLocX='0' "
      "ImageLocY='0'/><Skin/></R>";
};

TEST_F(LoadResourcesTest, ReadsTheProgramsOwnDocuments) {
  const Resource resources[] = {ResourceOf(u"FRAMEWORK_STRINGS", mStrings),
                                ResourceOf(u"APP_STRINGS", mNames), ResourceOf(u"APP_SKINS", mSkin)};
  SetResources(resources);
  mFactory = MakeRC<LControlFactory>(u"Tessel");
  ASSERT_EQ(mFactory->LoadResources(u"::", 0x0409), kSuccess);
  EXPECT_TRUE(mFactory->GetFrameworkStrings());
  EXPECT_EQ(Skin()->mName, u"FromStrings");
  EXPECT_EQ(Contents().mParts.begin()->second->mImageFile, u"::a.png");
}

TEST_F(LoadResourcesTest, FailsWithoutASkinAloneAmongTheResources) {
  const Resource skin[] = {ResourceOf(u"APP_SKINS", mSkin)}, strings[] = {ResourceOf(u"APP_STRINGS", mNames)};
  mFactory = MakeRC<LControlFactory>(u"Tessel");
  SetResources(strings);
  EXPECT_EQ(mFactory->LoadResources(u"::", 0x0409), kFailure);
  EXPECT_TRUE(mLog.Contains("skin: there is no \"::APP_SKINS\""));
  SetResources(skin);
  EXPECT_EQ(mFactory->LoadResources(u"::", 0x0409), kSuccess);
}

TEST_F(LoadResourcesTest, ReadsTheFilesOfAFolder) {
  TestSupport::TemporaryFolder folder;
  mFactory = MakeRC<LControlFactory>(u"Tessel");
  const String path(folder.InnerPath());
  EXPECT_EQ(mFactory->LoadResources(path, 9), kFailure);
  folder.WriteFile("FrameworkStrings.xml", mStrings);
  folder.WriteFile("StringTables.xml", mNames);
  EXPECT_EQ(mFactory->LoadResources(path, 9), kFailure);
  folder.WriteFile("Skins.xml", mSkin);
  EXPECT_EQ(mFactory->LoadResources(path, 9), kSuccess);
  EXPECT_EQ(Skin()->mName, u"FromStrings");
  EXPECT_EQ(Contents().mParts.begin()->second->mImageFile, path + u"\\a.png");
}

}  // namespace
}  // namespace TF
