#include "TFFramework/Notification/NotificationQueue.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kQueueTest = u"NID_TEST";

class TestQueue : public LNotificationQueue, public Counted<TestQueue> {};

// A queue whose distributor has one client, which writes down the payload values it gets.
class NotificationQueueTest : public testing::Test {
 protected:
  NotificationQueueTest() {
    mQueue->SetDistributor(mDistributor);
    mClient->Register(mDistributor, kQueueTest);
  }
  ~NotificationQueueTest() override {
    mClient = nullptr;
    mQueue = nullptr;
    EXPECT_EQ(Payload::GetAlive(), 0);
  }

  static RCPtr<LNotification> Make(int value) {
    return LNotification::Create(kQueueTest, MakeRC<Payload>(value));
  }
  void Post(int first, int last) {
    for (int value = first; value <= last; ++value) EXPECT_EQ(mQueue->Post(Make(value)), kSuccess);
  }
  static std::vector<int> Range(int first, int last) {
    std::vector<int> values;
    for (int value = first; value <= last; ++value) values.push_back(value);
    return values;
  }

  std::vector<int> mValues;
  std::function<void()> mThen;
  RCPtr<TestDistributor> mDistributor = MakeRC<TestDistributor>();
  RCPtr<TestQueue> mQueue = MakeRC<TestQueue>();
  RCPtr<TestClient> mClient = MakeRC<TestClient>([this](const auto&, const auto& notification) {
    mValues.push_back(RCPtr<Payload>(notification->GetData())->mValue);
    if (mThen) mThen();
  });
};

TEST_F(NotificationQueueTest, KeepsAllThatIsPostedInOrder) {
  // More than the ring holds at first, from different places of the ring.
  for (const int count : {3, 255, 300, 1000, 5}) {
    mValues.clear();
    Post(1, count);
    EXPECT_TRUE(mValues.empty());
    EXPECT_FALSE(mQueue->Process(false));
    EXPECT_EQ(mValues, Range(1, count));
  }
}

TEST_F(NotificationQueueTest, GrowsWhereverTheRingStands) {
  int next = 1;
  for (int round = 0; round < 20; ++round) {
    Post(next, next + 36);
    next += 37;
    mQueue->Process(false);
  }
  Post(next, next + 299);
  mQueue->Process(false);
  EXPECT_EQ(mValues, Range(1, next + 299));
}

TEST_F(NotificationQueueTest, RefusesWhatCannotBePosted) {
  const RCPtr<LNotification> notification = Make(1);
  EXPECT_EQ(mQueue->Post(nullptr), kInvalidArgument);
  const RCPtr<LNotificationQueue> unbound = MakeRC<LNotificationQueue>();
  EXPECT_EQ(unbound->Post(notification), kFailure);
  EXPECT_FALSE(notification->IsPosted());
  EXPECT_EQ(mQueue->Post(notification), kSuccess);
  EXPECT_EQ(mQueue->Post(notification), kInvalidArgument);
  mQueue->Process(false);
  EXPECT_EQ(mQueue->Post(notification), kSuccess);
  mQueue->Process(false);
  EXPECT_EQ(mValues, std::vector<int>({1, 1}));
}

TEST_F(NotificationQueueTest, APostedOneCannotBePostedFromItsOwnDelivery) {
  const RCPtr<LNotification> notification = Make(1);
  TFRESULT result = kSuccess;
  mThen = [&] { result = mQueue->Post(notification); };
  mQueue->Post(notification);
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(result, kInvalidArgument);
}

TEST_F(NotificationQueueTest, WhatIsPostedWhileProcessRunsWaitsForTheNext) {
  mThen = [this] {
    if (mValues.size() <= 2) Post(10, 10);
  };
  Post(1, 2);
  EXPECT_TRUE(mQueue->Process(false));
  EXPECT_EQ(mValues, std::vector<int>({1, 2}));
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(mValues, std::vector<int>({1, 2, 10, 10}));
}

TEST_F(NotificationQueueTest, ANestedProcessSendsNothingStored) {
  bool remaining = false;
  mThen = [&] { remaining = mQueue->Process(false); };
  Post(1, 1);
  mQueue->Process(false);
  EXPECT_FALSE(remaining);
  Post(2, 3);
  mThen = [&] {
    if (mValues.size() == 2) remaining = mQueue->Process(false);
  };
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_TRUE(remaining);
  EXPECT_EQ(mValues, Range(1, 3));
}

TEST_F(NotificationQueueTest, IdleIsSentOnceForEachProcessThatAsksForIt) {
  int idle = 0;
  const RCPtr<TestClient> listener = MakeRC<TestClient>([&](const auto&, const auto& notification) {
    EXPECT_FALSE(notification->GetData());
    ++idle;
  });
  listener->Register(mDistributor, u"NID_IDLE");
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(idle, 0);
  EXPECT_FALSE(mQueue->Process(true));
  EXPECT_EQ(idle, 1);
  Post(1, 3);
  mQueue->Process(true);
  EXPECT_EQ(idle, 2);
}

TEST_F(NotificationQueueTest, AnExceptionLosesOnlyTheOneItWasFor) {
  Post(1, 3);
  mThen = [this] {
    if (mValues.back() == 2) throw std::runtime_error("from a receiver");
  };
  EXPECT_THROW(mQueue->Process(false), std::runtime_error);
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(mValues, Range(1, 3));
}

TEST_F(NotificationQueueTest, AReceiverMayDiscardTheRest) {
  Post(1, 3);
  mThen = [this] { mQueue->Discard(); };
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(mValues, Range(1, 1));
}

TEST_F(NotificationQueueTest, AReceiverMayDropTheQueue) {
  Post(1, 3);
  mThen = [this] { mQueue = nullptr; };
  LNotificationQueue* const queue = mQueue.Get();
  EXPECT_FALSE(queue->Process(false));
  EXPECT_EQ(mValues, Range(1, 3));
}

TEST_F(NotificationQueueTest, DiscardFreesEverythingForAnotherPost) {
  const RCPtr<LNotification> notification = Make(1);
  mQueue->Post(notification);
  Post(2, 5);
  EXPECT_FALSE(mQueue->Discard());
  EXPECT_EQ(Payload::GetAlive(), 1);
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_TRUE(mValues.empty());
  EXPECT_EQ(mQueue->Post(notification), kSuccess);
}

TEST_F(NotificationQueueTest, LatestOnlyClientsGetTheLastPostAndNothingSent) {
  mClient->Register(mDistributor, kQueueTest, kNotifyLatestPostedOnly);
  std::string log;
  const RCPtr<TestClient> other = MakeLogger(log, 'O');
  other->Register(mDistributor, kQueueTest);
  Post(1, 3);
  mDistributor->Send(Make(9));
  EXPECT_TRUE(mValues.empty());
  mQueue->Process(false);
  EXPECT_EQ(mValues, Range(3, 3));
  EXPECT_EQ(log, "OOOO");
  const RCPtr<LNotification> latest = Make(4);
  mQueue->Post(latest);
  mQueue->Process(false);
  mDistributor->Send(latest);
  EXPECT_EQ(mValues, Range(3, 4));
  // Back to an ordinary client, it gets everything.
  mClient->Register(mDistributor, kQueueTest, 0);
  Post(5, 6);
  mQueue->Process(false);
  EXPECT_EQ(mValues, Range(3, 6));
}

TEST_F(NotificationQueueTest, ADistributorIsSetOnce) {
  EXPECT_EQ(mQueue->SetDistributor(nullptr), kFailure);
  EXPECT_EQ(mQueue->SetDistributor(MakeRC<TestDistributor>()), kFailure);
  const RCPtr<LNotificationQueue> queue = MakeRC<LNotificationQueue>();
  EXPECT_EQ(queue->SetDistributor(nullptr), kSuccess);
  EXPECT_EQ(queue->SetDistributor(mDistributor), kSuccess);
  EXPECT_EQ(queue->SetDistributor(mDistributor), kFailure);
}

TEST_F(NotificationQueueTest, ThePostingReceiverPostsWhatAnotherDistributorSends) {
  const RCPtr<TestDistributor> source = MakeRC<TestDistributor>();
  const RCPtr<LNotificationReceiver> receiver = mQueue->GetPostingReceiver();
  EXPECT_EQ(source->RegisterClient(receiver, kQueueTest, 0), kSuccess);
  const RCPtr<LNotification> notification = Make(1);
  source->Send(notification);
  source->Send(notification);
  EXPECT_FALSE(notification->IsPosted());
  EXPECT_TRUE(mValues.empty());
  EXPECT_FALSE(mQueue->Process(false));
  EXPECT_EQ(mValues, std::vector<int>({1, 1}));
  EXPECT_EQ(receiver->OnDistributorClosing(source, notification->GetId()), kFailure);
  mQueue = nullptr;
  EXPECT_EQ(TestQueue::GetAlive(), 0);
  EXPECT_EQ(source->Send(notification), kSuccess);
  EXPECT_EQ(source->UnregisterClient(receiver, notification->GetId()), kSuccess);
}

}  // namespace
}  // namespace TF
