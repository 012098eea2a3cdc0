#include "TFFramework/ControlBase/Clipboard.h"

#include <gtest/gtest.h>

#include "TFFramework/Notification/Notification.h"
#include "Tests/TFFramework/System/WindowFixture.h"

namespace TF {
namespace {

constexpr const char16_t* kRequests[] = {u"NID_EDIT_DELETE_REQ", u"NID_EDIT_CUT_REQ", u"NID_EDIT_COPY_REQ",
                                         u"NID_EDIT_PASTE_REQ"};

// A control whose text can be edited, if it is an edit target, by what stands in gAllowed.
class EditProbe : public WindowProbe {
 public:
  using WindowProbe::WindowProbe;

  static inline bool gIsTarget = true;
  static inline std::int32_t gAllowed = -1;

  bool IsEditTarget() override { return gIsTarget; }
  bool CanPerformEdit(std::int32_t operation) override {
    Tell("can " + std::to_string(operation));
    return operation == gAllowed;
  }
  TFRESULT PerformEdit(std::int32_t operation) override {
    Tell("edit " + std::to_string(operation));
    return kSuccess;
  }
};

class PlainObject : public LTaggableObject {};

class TellingObject : public LTaggableObject {
 public:
  String ToString() const override { return u"told"; }
};

RCPtr<LTaggableObject> MakeText(const char16_t* text) {
  return MakeRC<LTextObject>(String(text));
}

class ClipboardTest : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    EditProbe::gIsTarget = true;
    EditProbe::gAllowed = -1;
    MakeApplication("<SubControl Class='Probe' Name='mainControl' XSizeAbs='400' YSizeAbs='300'><Skin>" +
                    Box("a", "XSizeAbs='9' YSizeAbs='9'") +
                    "<SubControl Class='Edit' Name='edit' XSizeAbs='90' YSizeAbs='90'><Skin>" +
                    Box("inner", "XSizeAbs='9' YSizeAbs='9'") + "</Skin></SubControl></Skin></SubControl>");
    mApplication->GetControlFactory()->RegisterControlCreateFunction(u"Edit", MakeControl<EditProbe>);
    ASSERT_EQ(mApplication->OpenScreen(), kSuccess);
    Listener().OnFocus(true);
    mClipboard = mApplication->GetClipboard();
    ASSERT_EQ(mClipboard->Initialize(), kSuccess);
  }
  void TearDown() override {
    mClipboard = nullptr;
    WindowFixture::TearDown();
  }

  void FocusInner() { Root()->SetFocusControl(Child(u"edit")->FindChild(u"inner")); }
  Texts Request(std::int32_t operation) {
    WindowProbe::gLog.clear();
    mApplication->GetApplicationCenter()->Send(LNotification::Create(kRequests[operation], nullptr));
    Texts edits;
    for (const std::string& line : TakeLog())
      if (line.rfind("edit can", 0) == 0 || line.rfind("edit edit", 0) == 0) edits.push_back(line);
    return edits;
  }
  std::string ReadContents() {
    const RCPtr<LTaggableObject> contents = mClipboard->GetContents();
    return contents ? ToUtf8(contents->ToString()) : "nothing";
  }

  RCPtr<LClipboard> mClipboard;
};

TEST_F(ClipboardTest, HandsEditCommandsToWhatHasTheFocusOrHoldsIt) {
  using Lines = Texts;
  for (std::int32_t operation = 0; operation < 4; ++operation) {
    const std::string number = std::to_string(operation);
    EditProbe::gAllowed = operation;
    FocusInner();
    EXPECT_EQ(Request(operation), (Lines{"edit can " + number, "edit edit " + number}));
    const std::int32_t another = (operation + 1) % 4;
    EXPECT_EQ(Request(another), (Lines{"edit can " + std::to_string(another)}));
  }
}

TEST_F(ClipboardTest, DropsEditCommandsThatNobodyCanTake) {
  EditProbe::gAllowed = EditOperation::kCopy;
  struct Case {
    const char* mName;
    std::function<void()> mPrepare;
  };
  const Case cases[] = {
      {"no focus", [this] { Root()->SetFocusControl(nullptr); }},
      {"focus elsewhere", [this] { Root()->SetFocusControl(Child(u"a")); }},
      {"no edit target",
       [this] {
         EditProbe::gIsTarget = false;
         FocusInner();
       }},
      {"no active window",
       [this] {
         EditProbe::gIsTarget = true;
         FocusInner();
         Window().mHasFocus = false;
       }},
  };
  for (const Case& row : cases) {
    row.mPrepare();
    EXPECT_EQ(Request(EditOperation::kCopy), Texts()) << row.mName;
  }
  Window().mHasFocus = true;
  EXPECT_EQ(Request(EditOperation::kCopy), (Texts{"edit can 2", "edit edit 2"}));
}

TEST_F(ClipboardTest, GivesBackItsOwnObjectWithoutReadingTheDesktop) {
  struct Case {
    RCPtr<LTaggableObject> mObject;
    std::optional<std::string> mShared;
  };
  const Case cases[] = {{MakeText(u"Gr\u00FC\u00DFe"), "Gr\xC3\xBC\xC3\x9F\x65"},
                        {MakeText(u""), ""},
                        {MakeRC<TellingObject>(), "told"},
                        {MakeRC<PlainObject>(), std::nullopt}};
  for (const Case& row : cases) {
    EXPECT_EQ(mClipboard->SetContents(row.mObject), kSuccess);
    EXPECT_EQ(mSystem.mClipboard.mText, row.mShared);
    EXPECT_EQ(mClipboard->GetContents(), row.mObject);
    EXPECT_EQ(mClipboard->GetContents(), row.mObject);
  }
  EXPECT_EQ(mSystem.mClipboard.mReads, 0);
}

TEST_F(ClipboardTest, FollowsOtherPrograms) {
  mSystem.mClipboard.mText = "there before";
  EXPECT_EQ(ReadContents(), "there before");
  ASSERT_EQ(mClipboard->SetContents(MakeText(u"mine")), kSuccess);
  mSystem.mClipboard.TakeByOther("theirs");
  const RCPtr<LTaggableObject> theirs = mClipboard->GetContents();
  EXPECT_EQ(ReadContents(), "theirs");
  EXPECT_EQ(mClipboard->GetContents(), theirs);
  mSystem.mClipboard.TakeByOther("");
  EXPECT_EQ(ReadContents(), "");
  mSystem.mClipboard.TakeByOther(std::nullopt);
  EXPECT_EQ(ReadContents(), "nothing");
  mSystem.mClipboard.TakeByOther("again");
  EXPECT_EQ(ReadContents(), "again");
}

TEST_F(ClipboardTest, ForgetsWhatAnotherProgramHasTaken) {
  for (const RCPtr<LTaggableObject>& object :
       {MakeText(u"mine"), RCPtr<LTaggableObject>(MakeRC<PlainObject>())}) {
    ASSERT_EQ(mClipboard->SetContents(object), kSuccess);
    mSystem.mClipboard.TakeByOther(std::nullopt);
    Listener().OnClipboardLost();
    EXPECT_EQ(ReadContents(), "nothing");
    EXPECT_EQ(mSystem.mClipboard.mText, std::nullopt);
  }
  ASSERT_EQ(mClipboard->SetContents(MakeText(u"later")), kSuccess);
  EXPECT_EQ(ReadContents(), "later");
}

// A display may tell of the loss of the former text in the middle of taking the next one.
TEST_F(ClipboardTest, IsNotDisturbedWhileItSets) {
  mSystem.mClipboard.mOnSet = [this] {
    EXPECT_EQ(mClipboard->SetContents(MakeText(u"inner")), kNothingDone);
    Listener().OnClipboardLost();
  };
  EXPECT_EQ(mClipboard->SetContents(MakeText(u"outer")), kSuccess);
  EXPECT_EQ(ReadContents(), "outer");
  mSystem.mClipboard.mOnSet = [] { throw std::runtime_error("display gone"); };
  EXPECT_THROW(mClipboard->SetContents(MakeText(u"thrown")), std::runtime_error);
  mSystem.mClipboard.mOnSet = nullptr;
  EXPECT_EQ(mClipboard->SetContents(MakeText(u"next")), kSuccess);
}

TEST_F(ClipboardTest, KeepsForTheProgramWhatTheDesktopDoesNotTake) {
  mSystem.mClipboard.mRefuses = true;
  const RCPtr<LTaggableObject> object = MakeText(u"too much");
  EXPECT_EQ(mClipboard->SetContents(object), kFailure);
  EXPECT_EQ(mClipboard->GetContents(), object);
  EXPECT_EQ(mClipboard->SetContents(nullptr), kSuccess);
  EXPECT_EQ(ReadContents(), "nothing");
}

TEST_F(ClipboardTest, FailsWithoutADisplayAndWithoutAnApplication) {
  End();
  EXPECT_EQ(mClipboard->GetRegistrationCount(), 4);
  EXPECT_EQ(mClipboard->SetContents(MakeText(u"alone")), kFailure);
  EXPECT_EQ(ReadContents(), "alone");
  EXPECT_THROW(mClipboard->Initialize(), FailedResultException);
}

}  // namespace
}  // namespace TF
