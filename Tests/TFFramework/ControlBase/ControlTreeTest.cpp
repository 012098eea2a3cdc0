#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/TFFramework/ControlBase/ControlFixture.h"

namespace TF {
namespace {

// Writes down the notifications of controls, and may act on them.
class Listener : public virtual LNotificationClient {
 public:
  void ListenTo(const RCPtr<LControl>& control, const char16_t* name) {
    Register(RCPtr<LNotificationDistributor>(control), name);
  }
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const RCPtr<LControl> control(sender);
    mHeard.push_back(ToUtf8(control->GetName()) + " " + ToUtf8(notification->GetId()));
    mData = notification->GetData();
    if (mDestroys) control->Destroy();
    if (mThrows) throw std::runtime_error("heard");
  }
  std::vector<std::string> TakeHeard() { return std::exchange(mHeard, {}); }

  RCPtr<LRefCountedObject> mData;
  bool mDestroys = false;
  bool mThrows = false;

 private:
  std::vector<std::string> mHeard;
};

class ControlTreeTest : public ControlFixture {
 protected:
  void TearDown() override {
    mListener->UnregisterAll();
    ControlFixture::TearDown();
  }
  std::string NamesIn(ChildOrder order) const {
    std::string names;
    for (std::int32_t i = 0; i < mMain->GetChildCount(); ++i)
      names += ToUtf8(mMain->GetChild(i, order)->GetName());
    return names;
  }
  RCPtr<BoxControl> MakeBox(const RCPtr<LControl>& parent, const char16_t* name) {
    auto descriptor = MakeRC<LControlDescriptor>();
    descriptor->mName = name;
    descriptor->mClass = u"Box";
    return RCPtr<BoxControl>(mFactory->CreateSubControl(parent, descriptor));
  }

  const RCPtr<Listener> mListener = MakeRC<Listener>();
};

TEST_F(ControlTreeTest, ChildrenHaveThreeOrders) {
  MakeTree(Box("a", "LayoutOrder='3' Z_Order='9' TabStop='2'") +
           Box("b", "LayoutOrder='1' Z_Order='9' TabStop='-1'") +
           Box("c", "LayoutOrder='2' Z_Order='1' TabStop='2'") +
           Box("d", "LayoutOrder='4' Z_Order='-5' XIsDocked='True' YIsDocked='True'") +
           Box("e", "LayoutOrder='5' Z_Order='-9' ClipToParent='False'") +
           Box("f", "LayoutOrder='6' Z_Order='100' YIsDocked='True'"));
  EXPECT_EQ(NamesIn(ChildOrder::kLayout), "bcadef");
  EXPECT_EQ(NamesIn(ChildOrder::kZ), "cbafde");
  EXPECT_EQ(NamesIn(ChildOrder::kTab), "bdefca");
  Child(u"e")->SetClipToParent(true);
  EXPECT_EQ(NamesIn(ChildOrder::kZ), "ecbafd");
  LayoutPosition position;
  LayoutSize size;
  Child(u"c")->GetAxisLayout(LayoutAxis::kX, position, size);
  position.mIsDocked = true;
  Child(u"c")->SetAxisLayout(LayoutAxis::kX, position, size);
  EXPECT_EQ(NamesIn(ChildOrder::kZ), "ebacfd");
  EXPECT_EQ(mMain->GetChildren().GetIndex(*Child(u"a"), ChildOrder::kTab), 5);
  EXPECT_EQ(mMain->GetChildren().GetIndex(*mMain, ChildOrder::kTab), -1);
}

TEST_F(ControlTreeTest, AnIndexOrAnOrderThatIsNotThereThrows) {
  MakeTree(Box("a", ""));
  const std::string expected = "Runtime Error : TF::LControl::ChildControlList::GetAt";
  for (const auto& [index, order] : {std::pair(1, ChildOrder::kLayout), std::pair(-1, ChildOrder::kZ),
                                     std::pair(0, static_cast<ChildOrder>(3))}) {
    try {
      mMain->GetChild(index, order);
      ADD_FAILURE() << index;
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(std::string(error.what()).starts_with(expected)) << error.what();
    }
  }
}

TEST_F(ControlTreeTest, FloatingControlsAreCountedUpToTheTop) {
  MakeTree(Box("a", "Z_Order='50'",
               Box("b", "ClipToParent='False' Z_Order='3'", Box("c", "ClipToParent='False'"))) +
           Box("d", "ClipToParent='False' Z_Order='-4'"));
  const auto a = Child(u"a");
  const auto b = a->FindChild(u"b");
  EXPECT_EQ(mMain->GetUnclippedCount(), 3);
  EXPECT_EQ(a->GetUnclippedCount(), 2);
  EXPECT_EQ(b->FindChild(u"c")->GetEffectiveZ(), 3);
  EXPECT_EQ(Child(u"d")->GetEffectiveZ(), -4);
  EXPECT_EQ(a->GetEffectiveZ(), LControl::kNoZ);
  EXPECT_EQ(b->SetClipToParent(true), kSuccess);
  EXPECT_EQ(b->SetClipToParent(true), kNothingDone);
  EXPECT_EQ(mMain->GetUnclippedCount(), 2);
  EXPECT_EQ(b->SetParent(mMain), kSuccess);
  EXPECT_EQ(a->GetUnclippedCount(), 0);
  EXPECT_EQ(mMain->GetUnclippedCount(), 2);
  b->Destroy();
  Child(u"d")->Destroy();
  EXPECT_EQ(mMain->GetUnclippedCount(), 0);
}

TEST_F(ControlTreeTest, ANameThatIsTakenKeepsAChildOut) {
  MakeTree(Box("a", "XSizeAbs='5'") + Box("a", "XSizeAbs='6'") + Box("b", "", Box("a", "")));
  EXPECT_EQ(NamesIn(ChildOrder::kLayout), "ab");
  EXPECT_EQ(Child(u"a")->GetBounds().mWidth, 5);
  EXPECT_TRUE(mLog.Contains("\"a\" could not be made below \"main\""));
  const auto inner = Child(u"b")->FindChild(u"a");
  EXPECT_EQ(inner->SetParent(mMain), kFailure);
  EXPECT_FALSE(inner->GetParent());
  EXPECT_EQ(Child(u"b")->GetChildCount(), 0);
  EXPECT_EQ(mMain->SetParent(Child(u"a")), kInvalidArgument);
  inner->Destroy();
}

TEST_F(ControlTreeTest, ARenamedChildIsFollowedByThoseBehindIt) {
  MakeTree(Box("a", "LayoutOrder='1' XSizeAbs='30'") +
           Box("b", "LayoutOrder='2' XPositionToControl='a' XPositionRel='1'"));
  auto& children = mMain->GetChildren();
  EXPECT_EQ(children.Rename(Child(u"a"), u"b"), kFailure);
  EXPECT_EQ(children.Rename(Child(u"a"), u"a"), kNothingDone);
  EXPECT_EQ(children.Rename(mMain, u"z"), kInvalidArgument);
  EXPECT_EQ(children.Rename(Child(u"a"), u"z"), kSuccess);
  EXPECT_FALSE(Child(u"a"));
  EXPECT_EQ(Child(u"b")->Relayout(), kNothingDone);
  EXPECT_EQ(Child(u"b")->GetBounds().mX, 30);
}

TEST_F(ControlTreeTest, ADoomedChildGivesUpItsNameAtOnceAndItsLifeLater) {
  MakeTree(Box("tip", "") + Box("other", ""));
  const auto doomed = Child(u"tip");
  EXPECT_EQ(mMain->DestroyChildLater(doomed), kSuccess);
  EXPECT_EQ(mMain->DestroyChildLater(nullptr), kInvalidArgument);
  EXPECT_EQ(mMain->DestroyChildLater(mMain), kInvalidArgument);
  EXPECT_FALSE(Child(u"tip"));
  EXPECT_FALSE(doomed->IsShown(false));
  const auto next = MakeBox(mMain, u"tip");
  ASSERT_TRUE(next);
  EXPECT_EQ(mMain->GetChildCount(), 3);
  mMain->DestroyDoomedChildren();
  EXPECT_EQ(mMain->GetChildCount(), 2);
  EXPECT_FALSE(doomed->GetParent());
  EXPECT_EQ(Child(u"tip"), next);
}

TEST_F(ControlTreeTest, ADestroyedTreeHoldsNothing) {
  const int before = BoxControl::gAlive;
  MakeTree(Box("a", "", Box("b", "", Box("c", "ClipToParent='False'"))));
  EXPECT_EQ(BoxControl::gAlive, before + 4);
  RCPtr<LControl> b = Child(u"a")->FindChild(u"b");
  mMain->Destroy();
  EXPECT_FALSE(b->GetParent());
  EXPECT_EQ(b->GetChildCount(), 0);
  EXPECT_EQ(BoxControl::gAlive, before + 2);
  b = nullptr;
  mMain = nullptr;
  EXPECT_EQ(BoxControl::gAlive, before);
}

class FailingControl : public BoxControl {
 public:
  using BoxControl::BoxControl;
  TFRESULT Initialize() override {
    LControl::Initialize();
    gListener->ListenTo(RCPtr<LControl>(this), u"NID_VALUE_CHANGE");
    Register(RCPtr<LNotificationDistributor>(GetParent()), u"NID_VALUE_CHANGE");
    throw std::runtime_error("a child is missing");
  }
  static inline Listener* gListener = nullptr;
};

TEST_F(ControlTreeTest, ACreationThatThrowsLeavesNoRegistrationAndNoChild) {
  MakeTree("");
  FailingControl::gListener = mListener.Get();
  mFactory->RegisterControlCreateFunction(u"Failing", MakeControl<FailingControl>);
  const auto descriptor = MakeRC<LControlDescriptor>();
  descriptor->mName = u"f";
  descriptor->mClass = u"Failing";
  EXPECT_THROW(mFactory->CreateSubControl(mMain, descriptor), std::runtime_error);
  EXPECT_EQ(mMain->GetChildCount(), 0);
  EXPECT_EQ(mMain->GetRefCount(), 1);
}

TEST_F(ControlTreeTest, AValueIsLimitedAndTold) {
  MakeTree("");
  mListener->ListenTo(mMain, u"NID_VALUE_CHANGE");
  EXPECT_EQ(mMain->SetValue(1.5), 1.0);
  EXPECT_EQ(mMain->SetValue(1.5), 1.0);
  EXPECT_EQ(mMain->SetValue(std::numeric_limits<double>::quiet_NaN()), 1.0);
  EXPECT_EQ(mListener->TakeHeard(), std::vector<std::string>{"main NID_VALUE_CHANGE"});
  const struct {
    double mMin, mMax;
    std::int32_t mScale;
    double mScaled, mNormalized;
  } cases[] = {{0, 100, 0, 25, 0.25},
               {100, 0, 0, 25, 0.75},
               {0, 100, 0, 999, 1},
               {1, 100, 1, 10, 0.5},
               {5, 5, 0, 5, 0}};
  for (const auto& [min, max, scale, scaled, normalized] : cases) {
    ASSERT_EQ(mMain->SetValueRange(min, max, scale), kSuccess);
    EXPECT_DOUBLE_EQ(mMain->SetScaledValue(scaled), normalized) << min << " " << scale;
    EXPECT_DOUBLE_EQ(mMain->GetScaledValue(), std::min(scaled, 100.0)) << min << " " << scale;
  }
  EXPECT_EQ(mMain->SetValueRange(0, 10, 1), kInvalidArgument);
  EXPECT_EQ(mMain->SetValueRange(0, 10, 2), kInvalidArgument);
  EXPECT_EQ(mMain->GetScaledValue(), 5);
}

TEST_F(ControlTreeTest, CreateParametersAreReadOnceOrAtEachSkin) {
  const std::string skin =
      "<SubControl Class='Box' Name='a' TabStop='3'><Skin/><CreateParamList>"
      "<CreateParam ID='INITIAL_VALUE'>0.25</CreateParam>"
      "<CreateParam ID='NOT_FOCUSABLE'>true</CreateParam>"
      "</CreateParamList></SubControl>" +
      Box("b", "TabStop='-3'") +
      "<SubControl Class='Box' Name='late'><CreateParamList>"
      "<CreateParam ID='DEFER_CREATE'>true</CreateParam></CreateParamList></SubControl>";
  MakeTree(skin);
  ASSERT_TRUE(Child(u"a"));
  EXPECT_EQ(Child(u"a")->GetValue(), 0.25);
  EXPECT_TRUE(Child(u"a")->IsNotFocusable());
  EXPECT_TRUE(Child(u"b")->IsNotFocusable());
  EXPECT_FALSE(Child(u"late"));
  Child(u"a")->SetValue(0.5);
  EXPECT_EQ(mFactory->ApplySkin(mMain), kSuccess);
  EXPECT_EQ(Child(u"a")->GetValue(), 0.5);
}

TEST_F(ControlTreeTest, DisablingTellsEveryControlBelowAfterTheOneAbove) {
  MakeTree(Box("a", "", Box("b", "")) + Box("c", "IsVisible='False'"));
  const auto b = Child(u"a")->FindChild(u"b");
  for (const auto& control : {mMain, RCPtr<LControl>(Child(u"a")), b}) {
    control->UpdateConditions();
    for (const char16_t* name : {u"NID_CONDITION_CHANGE", u"NID_ENABLED_CONDITION_CHANGE"}) {
      mListener->ListenTo(control, name);
    }
  }
  mMain->SetEnabled(false);
  EXPECT_EQ(mListener->TakeHeard(),
            (std::vector<std::string>{"main NID_CONDITION_CHANGE", "main NID_ENABLED_CONDITION_CHANGE",
                                      "a NID_CONDITION_CHANGE", "a NID_ENABLED_CONDITION_CHANGE",
                                      "b NID_CONDITION_CHANGE", "b NID_ENABLED_CONDITION_CHANGE"}));
  EXPECT_FALSE(b->IsEnabled(true));
  EXPECT_TRUE(b->IsEnabled(false));
  Child(u"a")->SetEnabled(false);
  mMain->SetEnabled(true);
  EXPECT_EQ(mListener->TakeHeard().size(), 2U);
}

TEST_F(ControlTreeTest, AControlThatIsDestroyedByItsReceiverSendsNoMore) {
  MakeTree(Box("a", ""));
  const auto a = Child(u"a");
  mListener->ListenTo(a, u"NID_CONDITION_CHANGE");
  mListener->ListenTo(a, u"NID_ENABLED_CONDITION_CHANGE");
  mListener->mDestroys = true;
  a->SetEnabled(false);
  EXPECT_FALSE(a->GetParent());
  for (const std::string& heard : mListener->TakeHeard()) EXPECT_EQ(heard, "a NID_CONDITION_CHANGE");
}

TEST_F(ControlTreeTest, AReceiverThatThrowsDoesNotKeepAControlAlive) {
  MakeTree(Box("a", "", Box("b", "")));
  const auto a = Child(u"a");
  const auto b = a->FindChild(u"b");
  mListener->ListenTo(a, u"NID_CONDITION_CHANGE");
  mListener->mThrows = true;
  EXPECT_THROW(a->Destroy(), std::runtime_error);
  EXPECT_FALSE(a->GetParent());
  EXPECT_FALSE(b->GetParent());
  EXPECT_EQ(mMain->GetChildCount(), 0);
}

TEST_F(ControlTreeTest, AnotherSkinKeepsTheControlsThatItNamesToo) {
  MakeSkin(std::string("<Skin><SubControl Class='Box' Name='main'") + kFill + "><Skin>" +
           Box("stays", "LayoutOrder='1' XSizeAbs='10' ClipToParent='False'", Box("inner", "")) +
           Box("goes", "LayoutOrder='2'") +
           "</Skin></SubControl></Skin><Skin><SubControl Class='Box' Name='main'" + kFill + "><Skin>" +
           Box("comes", "LayoutOrder='1'") +
           Box("stays", "LayoutOrder='2' XSizeAbs='70'", Box("inner", "XSizeAbs='7'")) +
           "</Skin></SubControl></Skin>");
  const auto stays = Child(u"stays"), goes = Child(u"goes");
  const auto inner = stays->FindChild(u"inner");
  stays->SetEnabled(false);
  mFactory->SetCurrentSkin(1);
  EXPECT_EQ(mFactory->ApplySkin(mMain), kSuccess);
  EXPECT_EQ(NamesIn(ChildOrder::kLayout), "comesstays");
  EXPECT_EQ(Child(u"stays"), stays);
  EXPECT_EQ(stays->FindChild(u"inner"), inner);
  EXPECT_EQ(stays->GetBounds().mWidth, 70);
  EXPECT_EQ(inner->GetBounds().mWidth, 7);
  EXPECT_FALSE(stays->IsEnabled(false));
  EXPECT_FALSE(goes->GetParent());
  EXPECT_EQ(mMain->GetUnclippedCount(), 0);
}

TEST_F(ControlTreeTest, AnotherSkinShowsTheLookThatWasShownOrElseTheFirst) {
  MakeTree("");
  const auto skin =
      mFactory->CopyDescriptor(mMain->GetDescriptor(), mMain->GetDescriptor()->mLayout, u"main");
  skin->mSkin = MakeRC<LSkinDescriptor>();
  skin->mSkin->mLookList = MakeRC<LLookList>();
  for (const std::int32_t looks : {3, 2, 1}) {
    skin->mSkin->mLookList->SetCount(looks);
    for (std::int32_t slot = 0; slot < looks; ++slot)
      (*skin->mSkin->mLookList)[slot] = MakeRC<LLookDescriptor>();
    EXPECT_EQ(mMain->ApplyDescriptor(skin), kSuccess);
    EXPECT_EQ(mMain->GetLook(LControl::kActiveLook), mMain->GetLook(looks == 2 ? 1 : 0)) << looks;
    mMain->SetActiveLook(1);
  }
}

TEST_F(ControlTreeTest, LooksFallBackToTheOneThatIsShown) {
  MakeTree("");
  const auto first = MakeRC<LLook>(MakeRC<LLookDescriptor>(), nullptr);
  const auto second = MakeRC<LLook>(MakeRC<LLookDescriptor>(), nullptr);
  EXPECT_FALSE(mMain->GetLook(0));
  EXPECT_EQ(mMain->GetClientRect(), (RectT<double>{0, 0, 400, 300}));
  mMain->SetLookCount(3);
  EXPECT_EQ(mMain->SetLook(first, 1), kSuccess);
  EXPECT_EQ(mMain->SetLook(second, 2), kSuccess);
  EXPECT_EQ(mMain->SetLook(second, 3), kInvalidArgument);
  EXPECT_EQ(mMain->GetLook(99), first);
  EXPECT_FALSE(mMain->GetLook(0));
  EXPECT_EQ(mMain->SetActiveLook(2), kSuccess);
  EXPECT_EQ(mMain->GetLook(99), second);
  EXPECT_EQ(mMain->SetLookAlpha(1, 1.5F, false), kSuccess);
  EXPECT_EQ(mMain->GetLookAlpha(1), 0);
  EXPECT_EQ(mMain->SetLookAlpha(3, 1, false), kInvalidArgument);
  EXPECT_EQ(second->GetSize(), (SizeT<std::int32_t>{400, 300}));
}

TEST_F(ControlTreeTest, FontsComeFromTheParentWhereTheyAreNotGiven) {
  MakeTree(Box("inherits", "FontInheritsFromParent='True' FontSize='2' FontSizeIsRelative='True'", " "));
  const auto child = Child(u"inherits");
  EXPECT_EQ(mMain->SetFont(u"Sans", 10, LFont::kBold, false), kSuccess);
  EXPECT_EQ(mMain->SetFont(u"Sans", 10, LFont::kBold, false), kNothingDone);
  EXPECT_EQ(child->GetFont(), LFont::Get(u"Sans", 20, LFont::kBold));
  EXPECT_EQ(child->SetFont(u"Serif", 0, -1, false), kSuccess);
  mMain->SetFont(u"Sans", 12, LFont::kRegular, false);
  EXPECT_EQ(child->GetFont(), LFont::Get(u"Serif", 12, LFont::kRegular));
}

TEST_F(ControlTreeTest, OperationsOfEditingMustBeOverridden) {
  MakeTree(Box("a", ""));
  EXPECT_FALSE(Child(u"a")->FindEditTarget());
  try {
    mMain->PerformEdit(0);
    FAIL();
  } catch (const std::logic_error& error) {
    EXPECT_TRUE(
        std::string(error.what())
            .starts_with(
                "Logic Error : LControl::PerformEdit must be overridden : TF::LControl::PerformEdit"));
  }
}

TEST(ControlParamsTest, ParametersTellTheirContents) {
  EXPECT_EQ(MakeRC<LPointParam>(3, -4)->ToString(), u"point(3, -4)");
  EXPECT_EQ(MakeRC<LMouseButtonParam>(3, -4, 0x49, 0, 1, false, 1)->ToString(),
            u"point(3, -4)  modifiers: 0x00000049");
  EXPECT_EQ(MakeRC<LMouseWheelParam>(0, 0, 0, 0, 0)->ToString(),
            u"point(0, 0)  modifiers: 0x00000000  direction: down");
  EXPECT_EQ(MakeRC<LMouseWheelParam>(0, 0, 0, 0, 2)->ToString(),
            u"point(0, 0)  modifiers: 0x00000000  direction: up");
  EXPECT_EQ(MakeRC<LValueParam>(0.25, 3)->ToString(), u"ValueParam = 0.250000");
  EXPECT_EQ(MakeRC<LConditionsParam>()->ToString(), u"(0, 0)");
}

TEST(ControlParamsTest, ABlockThatComesBackIsTheNextToGoOut) {
  const void* block = MakeRC<LMouseButtonParam>(0, 0, 0, 0, 1, false, 0).Get();
  EXPECT_EQ(MakeRC<LMouseButtonParam>(1, 1, 0, 0, 1, false, 0).Get(), block);
}

}  // namespace
}  // namespace TF
