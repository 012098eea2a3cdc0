#include "TFFramework/ObjectBase/RefCountedObject.h"

#include <gtest/gtest.h>

#include <thread>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace {

using TF::ConstRCPtr;
using TF::LRefCountedObject;
using TF::MakeRC;
using TF::RCPtr;

class LProbe : public virtual LRefCountedObject {
 public:
  explicit LProbe(int& deaths) : mDeaths(deaths) {}
  ~LProbe() override { ++mDeaths; }

 private:
  int& mDeaths;
};

// Holds itself, as an object with registrations does.
class LSelfHolder : public virtual LRefCountedObject {
 public:
  explicit LSelfHolder(int& deaths) : mDeaths(deaths) {}
  ~LSelfHolder() override { ++mDeaths; }

  void HoldItself(int times) {
    for (int i = 0; i < times; ++i) {
      mSelf.push_back(RCPtr<LSelfHolder>(this));
      AddInternalReferences();
    }
  }

  TFRESULT ReleaseInternalReferences() override {
    ++mReleases;
    if (mKeepAlive) *mKeepAlive = this;
    DropInternalReferences(static_cast<int>(mSelf.size()));
    mSelf.clear();
    return LRefCountedObject::ReleaseInternalReferences();
  }

  int mReleases = 0;
  RCPtr<LRefCountedObject>* mKeepAlive = nullptr;

 private:
  int& mDeaths;
  std::vector<RCPtr<LSelfHolder>> mSelf;
};

class LCopyable : public virtual LRefCountedObject {
 public:
  explicit LCopyable(int value) : mValue(value) {}
  RCPtr<LRefCountedObject> CreateCopy() const override { return MakeRC<LCopyable>(mValue); }
  const int mValue;
};

// Copies itself into something that is no LMiscopied.
class LMiscopied : public virtual LRefCountedObject {
 public:
  RCPtr<LRefCountedObject> CreateCopy() const override { return MakeRC<LCopyable>(0); }
};

template <class Action>
std::string MessageOf(Action action) {
  try {
    action();
  } catch (const TF::ExceptionBase& exception) {
    return exception.What();
  }
  return "no exception";
}

TEST(RefCountedObject, LivesAsLongAsItsPointers) {
  int deaths = 0;
  auto* object = new LProbe(deaths);
  EXPECT_EQ(object->GetRefCount(), 0);
  RCPtr<LProbe> first(object);
  EXPECT_EQ(object->GetRefCount(), 1);
  RCPtr<LRefCountedObject> second = first;
  ConstRCPtr<LProbe> third = first;
  EXPECT_EQ(object->GetRefCount(), 3);
  first = nullptr;
  second = nullptr;
  EXPECT_EQ(deaths, 0);
  third = nullptr;
  EXPECT_EQ(deaths, 1);
}

TEST(RefCountedObject, LastOutsideReferenceBreaksTheCyclesOnce) {
  int deaths = 0;
  auto object = MakeRC<LSelfHolder>(deaths);
  LSelfHolder* raw = object.Get();
  raw->HoldItself(2);
  EXPECT_EQ(raw->GetRefCount(), 3);
  EXPECT_EQ(raw->GetInternalRefCount(), 2);
  RCPtr<LSelfHolder> other = object;
  object = nullptr;
  EXPECT_EQ(raw->mReleases, 0);
  other = nullptr;
  EXPECT_EQ(deaths, 1);
}

TEST(RefCountedObject, SurvivesWhenSomebodyTakesItDuringTheBreaking) {
  int deaths = 0;
  auto object = MakeRC<LSelfHolder>(deaths);
  LSelfHolder* raw = object.Get();
  RCPtr<LRefCountedObject> rescuer;
  raw->mKeepAlive = &rescuer;
  raw->HoldItself(1);
  object = nullptr;
  ASSERT_EQ(deaths, 0);
  EXPECT_EQ(raw->mReleases, 1);
  raw->mKeepAlive = nullptr;
  raw->HoldItself(1);
  rescuer = nullptr;
  EXPECT_EQ(deaths, 1);
}

TEST(RefCountedObject, TwoThreadsDroppingTheLastTwoReferencesLeaveNoCycle) {
  constexpr int kRounds = 2000;
  int deaths = 0;
  for (int round = 0; round < kRounds; ++round) {
    auto first = MakeRC<LSelfHolder>(deaths);
    first->HoldItself(1);
    RCPtr<LSelfHolder> second = first;
    std::thread other([held = std::move(second)]() mutable { held = nullptr; });
    first = nullptr;
    other.join();
  }
  EXPECT_EQ(deaths, kRounds);
}

TEST(RefCountedObject, TellsItsTypeWhenNotOverridden) {
  const auto object = MakeRC<LCopyable>(1);
  const std::string text = TF::ToUtf8(object->ToString());
  EXPECT_EQ(text.rfind("LRefCountedObject::ToString() not overridden. Returning TypeName: ", 0), 0u);
  EXPECT_NE(text.find("LCopyable"), std::string::npos);
}

TEST(RefCountedObject, RefusesWhatIsNotOverridden) {
  int deaths = 0;
  const auto object = MakeRC<LProbe>(deaths);
  EXPECT_EQ(
      MessageOf([&] { object->Undo(); })
          .rfind("Logic Error : Undo() not implemented for RefCountedObject : TF::LRefCountedObject::Undo : "
                 "ObjectBase\\RefCountedObject : Line ",
                 0),
      0u);
  EXPECT_EQ(MessageOf([&] { object->CreateCopy(); })
                .rfind("Logic Error : CreateCopy() not implemented for RefCountedObject : "
                       "TF::LRefCountedObject::CreateCopy : ",
                       0),
            0u);
}

TEST(RCPtr, SelfAssignmentAndAssignmentOfAMemberAreSafe) {
  struct LNode : virtual LRefCountedObject {
    RCPtr<LNode> mNext;
  };
  auto head = MakeRC<LNode>();
  head->mNext = MakeRC<LNode>();
  LNode* second = head->mNext.Get();
  const RCPtr<LNode>& alias = head;
  head = alias;
  EXPECT_EQ(head->GetRefCount(), 1);
  head = head->mNext;
  EXPECT_EQ(head.Get(), second);
  EXPECT_EQ(second->GetRefCount(), 1);
}

TEST(RCPtr, ConvertsByRunTimeTypeOrBecomesNull) {
  const RCPtr<LRefCountedObject> plain = MakeRC<LCopyable>(7);
  const RCPtr<LCopyable> right = plain;
  const RCPtr<LProbe> wrong = plain;
  ASSERT_TRUE(right);
  EXPECT_EQ(right->mValue, 7);
  EXPECT_FALSE(wrong);
  EXPECT_EQ(plain->GetRefCount(), 2);
}

TEST(RCPtr, SecondHolderOfAnUnshareableObjectGetsACopy) {
  auto writer = MakeRC<LCopyable>(5);
  writer->SetUnshareable(true);
  const RCPtr<LCopyable> reader = writer;
  EXPECT_NE(reader.Get(), writer.Get());
  EXPECT_EQ(reader->mValue, 5);
  EXPECT_EQ(writer->GetRefCount(), 1);
}

TEST(RCPtr, UnshareCopiesOnlyWhatOthersShare) {
  auto alone = MakeRC<LCopyable>(3);
  LCopyable* before = alone.Get();
  alone.Unshare();
  EXPECT_EQ(alone.Get(), before);
  const auto other = alone;
  alone.Unshare();
  EXPECT_NE(alone.Get(), before);
  EXPECT_EQ(other.Get(), before);
}

TEST(RCPtr, FailedCopiesThrowAndLeakNothing) {
  int deaths = 0;
  {
    auto object = MakeRC<LProbe>(deaths);
    object->SetUnshareable(true);
    EXPECT_EQ(MessageOf([&] { RCPtr<LProbe> copy = object; }).rfind("Logic Error : CreateCopy()", 0), 0u);
    EXPECT_EQ(object->GetRefCount(), 1);
  }
  EXPECT_EQ(deaths, 1);
  auto odd = MakeRC<LMiscopied>();
  const auto other = odd;
  const std::string message = MessageOf([&] { odd.Unshare(); });
  EXPECT_EQ(message.rfind("Logic Error : ", 0), 0u);
  EXPECT_NE(message.find("LMiscopied : TF::ConstRCPtr<class T,class T *>::Unshare : "), std::string::npos);
  EXPECT_EQ(odd, other);
}

TEST(RefCountedObject, MarksOnlyASoleObjectUnshareable) {
  auto object = MakeRC<LCopyable>(1);
  const auto other = object;
  EXPECT_EQ(
      MessageOf([&] { object->SetUnshareable(true); })
          .rfind(
              "Runtime Error : TF::LRefCountedObject::SetUnshareable : ObjectBase\\RefCountedObject : Line ",
              0),
      0u);
  object->SetUnshareable(false);
}

TEST(Exceptions, ComposeTheirTextFromKindTextSiteAndLine) {
  struct Case {
    std::string text;
    std::string expected;
  };
  const Case cases[] = {
      {MessageOf([] {
         TF::Throw<std::out_of_range>("Unknown Path ID.", "A::B", "/x/FirmwareUpdater/App/Main.cpp", 7);
       }),
       "Out of Range : Unknown Path ID. : A::B : App\\Main : Line 7"},
      {MessageOf([] {
         TF::Throw<std::domain_error>("", "A::B", "/x/FirmwareUpdater/TFFramework/Renderer/Renderer.cpp", 9);
       }),
       "Domain Error : A::B : Renderer\\Renderer : Line 9"},
      {MessageOf([] { TF::Throw<std::bad_alloc>("", "A::B", "B.h", 1); }),
       "Out of Memory : A::B : B : Line 1"},
      {MessageOf([] { TF::Throw<std::invalid_argument>("t", "A::B", "B.h", 1); }),
       "Invalid Argument : t : A::B : B : Line 1"},
      {MessageOf([] { TF::ThrowIfFailed(TF::kRunSettled, "A::B", "B.h", 1); }),
       "Failed Result : TFRESULT = 8000A020 : A::B : B : Line 1"},
      {MessageOf([] { TF::ThrowIfFailed(TF::kNothingDone, "A::B", "B.h", 1); }), "no exception"},
  };
  for (const Case& entry : cases) EXPECT_EQ(entry.text, entry.expected);
  EXPECT_EQ(TF::ResultText(TF::kNothingDone), "TFRESULT = 1");
}

TEST(Wrappers, CarryPlainValuesAndTexts) {
  const auto holder = MakeRC<TF::LHolder<int>>();
  EXPECT_EQ(holder->GetValue(), 0);
  constexpr auto kText = [](const TF::String& text) { return text; };
  using LText = TF::LWrapperStringable<TF::String, kText, TF::LTaggableObject>;
  const auto text = MakeRC<LText>(TF::String(u"tag"));
  text->SetTag(holder);
  EXPECT_EQ(text->ToString(), u"tag");
  EXPECT_EQ(holder->GetRefCount(), 2);
}

}  // namespace
