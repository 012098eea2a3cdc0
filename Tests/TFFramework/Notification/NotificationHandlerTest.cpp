#include "TFFramework/Notification/NotificationHandler.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "TFFramework/Notification/AutoNotificationDisabler.h"
#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kHandlerTest = u"NID_TEST";
constexpr const char16_t* kOtherName = u"NID_TEST_OTHER";

// A client as the classes of the system are: it forwards to a handler of its own.
class HandlerOwner : public LNotificationClient, public Counted<HandlerOwner> {
 public:
  using Handler = LNotificationHandler<HandlerOwner>;
  using Sender = RCPtr<LNotificationDistributor>;

  void CreateHandler() { mHandler = MakeRC<Handler>(this); }

  void OnNotification(const Sender& sender, const RCPtr<LNotification>& notification) override {
    mLastResult = mHandler->Dispatch(sender, notification);
  }
  TFRESULT OnDistributorClosing(const Sender& sender, NotificationId id) override {
    mHandler->RemoveHandler(sender, id);
    return LNotificationClient::OnDistributorClosing(sender, id);
  }

  TFRESULT OnFirst(const Sender&, const RCPtr<LNotification>&) {
    mLog += '1';
    return kNothingDone;
  }
  TFRESULT OnSecond(const Sender&, const RCPtr<LNotification>&) {
    mLog += '2';
    return kSuccess;
  }
  TFRESULT OnReplacing(const Sender& sender, const RCPtr<LNotification>& notification) {
    CreateHandler();
    return mHandler->AddHandler(&HandlerOwner::OnFirst, sender, notification->GetId());
  }

  RCPtr<Handler> mHandler;
  std::string mLog;
  TFRESULT mLastResult = kAborted;
};

RCPtr<HandlerOwner> MakeOwner() {
  RCPtr<HandlerOwner> owner = MakeRC<HandlerOwner>();
  owner->CreateHandler();
  return owner;
}

class NotificationHandlerTest : public testing::Test {
 protected:
  ~NotificationHandlerTest() override {
    mOwner = nullptr;
    EXPECT_EQ(HandlerOwner::GetAlive(), 0);
  }

  std::string SendAndLog(const RCPtr<TestDistributor>& distributor, const char16_t* name) {
    mOwner->mLog.clear();
    distributor->Send(LNotification::Create(name));
    return mOwner->mLog;
  }

  RCPtr<TestDistributor> mDistributor = MakeRC<TestDistributor>();
  RCPtr<TestDistributor> mOther = MakeRC<TestDistributor>();
  RCPtr<HandlerOwner> mOwner = MakeOwner();
  HandlerOwner::Handler& Handler() { return *mOwner->mHandler; }
};

TEST_F(NotificationHandlerTest, CallsTheFunctionOfSenderAndId) {
  EXPECT_EQ(Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest), kSuccess);
  EXPECT_EQ(Handler().AddHandler(&HandlerOwner::OnSecond, mDistributor, kOtherName), kSuccess);
  EXPECT_EQ(Handler().AddHandler(&HandlerOwner::OnSecond, mOther, kHandlerTest), kSuccess);
  EXPECT_EQ(SendAndLog(mDistributor, kHandlerTest), "1");
  EXPECT_EQ(mOwner->mLastResult, kNothingDone);
  EXPECT_EQ(SendAndLog(mDistributor, kOtherName), "2");
  EXPECT_EQ(SendAndLog(mOther, kHandlerTest), "2");
  EXPECT_EQ(mOwner->mLastResult, kSuccess);
  EXPECT_EQ(SendAndLog(mOther, kOtherName), "");
}

TEST_F(NotificationHandlerTest, RefusesWhatCannotBeRegistered) {
  EXPECT_EQ(Handler().AddHandler(&HandlerOwner::OnFirst, nullptr, kHandlerTest), kInvalidArgument);
  EXPECT_EQ(Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, u""), kFailure);
  EXPECT_EQ(Handler().AddLocalHandler(&HandlerOwner::OnFirst, u""), kFailure);
  EXPECT_EQ(Handler().Dispatch(mDistributor, nullptr), kInvalidArgument);
  EXPECT_EQ(mOwner->GetRegistrationCount(), 0);
}

TEST_F(NotificationHandlerTest, ALocalHandlerTakesWhatTheOwnerDispatchesItself) {
  EXPECT_EQ(Handler().AddLocalHandler(&HandlerOwner::OnFirst, kHandlerTest), kSuccess);
  EXPECT_EQ(mOwner->GetRegistrationCount(), 0);
  EXPECT_EQ(Handler().Dispatch(nullptr, LNotification::Create(kHandlerTest)), kNothingDone);
  EXPECT_EQ(Handler().Dispatch(nullptr, LNotification::Create(kOtherName)), kSuccess);
  EXPECT_EQ(Handler().Dispatch(mDistributor, LNotification::Create(kHandlerTest)), kSuccess);
  EXPECT_EQ(mOwner->mLog, "1");
  EXPECT_TRUE(Handler().RemoveHandler(nullptr, GetNotificationID(kHandlerTest)));
}

TEST_F(NotificationHandlerTest, ALaterFunctionForTheSameTakesThePlaceOfTheFirst) {
  Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest);
  Handler().AddHandler(&HandlerOwner::OnSecond, mDistributor, kHandlerTest, kNotifyLatestPostedOnly);
  HandlerOwner::Handler::Function function = nullptr;
  std::uint32_t flags = 0;
  EXPECT_EQ(Handler().GetHandler(mDistributor, kHandlerTest, function, flags), kSuccess);
  EXPECT_EQ(function, &HandlerOwner::OnSecond);
  EXPECT_EQ(flags, kNotifyLatestPostedOnly);
  EXPECT_EQ(Handler().GetHandler(mOther, kHandlerTest, function, flags), kFailure);
  EXPECT_EQ(Handler().GetHandler(mDistributor, u"", function, flags), kFailure);
  EXPECT_EQ(mOwner->GetRegistrationCount(), 1);
}

TEST_F(NotificationHandlerTest, WithoutItsFunctionANotificationHasNoEffect) {
  Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest);
  EXPECT_TRUE(Handler().RemoveHandler(mDistributor, GetNotificationID(kHandlerTest)));
  EXPECT_FALSE(Handler().RemoveHandler(mDistributor, GetNotificationID(kHandlerTest)));
  EXPECT_EQ(SendAndLog(mDistributor, kHandlerTest), "");
  EXPECT_EQ(mOwner->mLastResult, kSuccess);
  EXPECT_TRUE(mDistributor->IsRegistered(mOwner));
}

TEST_F(NotificationHandlerTest, AFunctionMayReplaceTheHandler) {
  Handler().AddHandler(&HandlerOwner::OnReplacing, mDistributor, kHandlerTest);
  EXPECT_EQ(SendAndLog(mDistributor, kHandlerTest), "");
  EXPECT_EQ(SendAndLog(mDistributor, kHandlerTest), "1");
}

TEST_F(NotificationHandlerTest, ClosingDistributorsTakeTheirFunctionsWithThem) {
  Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest);
  mDistributor->NotifyClosing();
  EXPECT_FALSE(Handler().RemoveHandler(mDistributor, GetNotificationID(kHandlerTest)));
  EXPECT_EQ(mOwner->GetRegistrationCount(), 0);
}

using Disabler = CAutoNotificationDisabler<HandlerOwner>;

TEST_F(NotificationHandlerTest, ADisabledHandlerIsBackAfterTheScope) {
  Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest, kNotifyLatestPostedOnly);
  Handler().AddHandler(&HandlerOwner::OnSecond, mDistributor, kOtherName);
  {
    const Disabler disabler(mOwner->mHandler, mDistributor, kOtherName);
    EXPECT_EQ(SendAndLog(mDistributor, kOtherName), "");
    EXPECT_EQ(mOwner->GetRegistrationCount(), 1);
  }
  EXPECT_EQ(SendAndLog(mDistributor, kOtherName), "2");
  { const Disabler disabler(mOwner->mHandler, mDistributor, kHandlerTest); }
  std::uint32_t flags = 0;
  EXPECT_EQ(mDistributor->GetRegisteredFlags(mOwner, kHandlerTest, flags), kSuccess);
  EXPECT_EQ(flags, kNotifyLatestPostedOnly);
}

TEST_F(NotificationHandlerTest, WhatCannotBeDisabledThrows) {
  const auto message = [this](const RCPtr<LNotificationDistributor>& distributor, const char16_t* name) {
    try {
      const Disabler disabler(mOwner->mHandler, distributor, name);
    } catch (const FailedResultException& failure) {
      return std::string(failure.what());
    }
    return std::string();
  };
  const std::string missing = message(mDistributor, kHandlerTest);
  EXPECT_EQ(missing.find("Failed Result : TFRESULT = 80004005 : TF::CAutoNotificationDisabler<class "), 0u)
      << missing;
  EXPECT_NE(missing.find(
                "HandlerOwner>::CAutoNotificationDisabler : Notification\\AutoNotificationDisabler : Line "),
            std::string::npos)
      << missing;
  Handler().AddLocalHandler(&HandlerOwner::OnFirst, kHandlerTest);
  EXPECT_NE(message(nullptr, kHandlerTest).find("TFRESULT = 80070057"), std::string::npos);
}

TEST_F(NotificationHandlerTest, ADisabledHandlerIsBackAfterAnException) {
  Handler().AddHandler(&HandlerOwner::OnFirst, mDistributor, kHandlerTest);
  const auto fail = [this] {
    const Disabler disabler(mOwner->mHandler, mDistributor, kHandlerTest);
    throw std::runtime_error("in the scope");
  };
  EXPECT_THROW(fail(), std::runtime_error);
  EXPECT_EQ(SendAndLog(mDistributor, kHandlerTest), "1");
}

}  // namespace
}  // namespace TF
