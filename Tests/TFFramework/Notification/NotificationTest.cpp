#include "TFFramework/Notification/Notification.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "TFFramework/Notification/NotificationCenter.h"
#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

class NotificationCacheTest : public testing::Test {
 protected:
  NotificationCacheTest() { LNotification::SetCacheEnabled(true); }
  ~NotificationCacheTest() override { LNotification::SetCacheEnabled(false); }
};

TEST(NotificationTest, CarriesIdAndPayload) {
  const RCPtr<Payload> payload = MakeRC<Payload>(7);
  const RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST", payload);
  EXPECT_EQ(notification->GetId(), GetNotificationID(u"NID_TEST"));
  EXPECT_EQ(notification->GetData(), payload);
  EXPECT_EQ(LNotification::Create(notification->GetId())->GetId(), notification->GetId());
}

TEST(NotificationTest, PayloadEndsWithItsNotification) {
  RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST", MakeRC<Payload>());
  EXPECT_EQ(Payload::GetAlive(), 1);
  notification = nullptr;
  EXPECT_EQ(Payload::GetAlive(), 0);
}

TEST_F(NotificationCacheTest, AnEmptyNameGivesNothingEvenWithOneInStore) {
  LNotification::Create(u"NID_TEST");
  EXPECT_FALSE(LNotification::Create(nullptr));
  EXPECT_FALSE(LNotification::Create(u""));
}

TEST_F(NotificationCacheTest, LeavesAloneWhatSomebodyStillHolds) {
  RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST_A", MakeRC<Payload>(1));
  const LNotification* const object = notification.Get();
  const RCPtr<LNotification> second_holder = notification;
  notification = nullptr;
  EXPECT_EQ(Payload::GetAlive(), 1);
  EXPECT_NE(LNotification::Create(u"NID_TEST_A"), object);
}

TEST_F(NotificationCacheTest, LastFreedComesFirstWithIdAndPayloadOfItsOwn) {
  RCPtr<LNotification> first = LNotification::Create(u"NID_TEST_A", MakeRC<Payload>(1));
  RCPtr<LNotification> second = LNotification::Create(u"NID_TEST_B", MakeRC<Payload>(2));
  const LNotification* const objects[] = {first.Get(), second.Get()};
  first = nullptr;
  second = nullptr;
  EXPECT_EQ(Payload::GetAlive(), 0);
  const RCPtr<LNotification> again = LNotification::Create(u"NID_TEST_C", MakeRC<Payload>(3));
  EXPECT_EQ(again, objects[1]);
  EXPECT_EQ(again->GetId(), GetNotificationID(u"NID_TEST_C"));
  EXPECT_EQ(RCPtr<Payload>(again->GetData())->mValue, 3);
  const RCPtr<LNotification> plain = LNotification::Create(u"NID_TEST_D");
  EXPECT_EQ(plain, objects[0]);
  EXPECT_FALSE(plain->GetData());
}

TEST_F(NotificationCacheTest, APayloadMayCreateAndDropNotificationsWhenItEnds) {
  struct Chatty : LRefCountedObject {
    ~Chatty() override { LNotification::Create(u"NID_TEST_B", MakeRC<Payload>()); }
  };
  for (int round = 0; round < 3; ++round) {
    RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST_A", MakeRC<Chatty>());
    notification = nullptr;
  }
  EXPECT_EQ(Payload::GetAlive(), 0);
}

TEST_F(NotificationCacheTest, APostedOneIsNotReusedUntilItIsDeliveredOrDiscarded) {
  for (const bool deliver : {true, false}) {
    const RCPtr<LNotificationCenter> center = MakeRC<LNotificationCenter>(u"test");
    RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST_A", MakeRC<Payload>());
    const LNotification* const object = notification.Get();
    ASSERT_EQ(center->Post(notification), kSuccess);
    notification = nullptr;
    EXPECT_EQ(Payload::GetAlive(), 1);
    EXPECT_NE(LNotification::Create(u"NID_TEST_B"), object);
    if (deliver) {
      center->Process(false);
    } else {
      center->Discard();
    }
    EXPECT_EQ(Payload::GetAlive(), 0);
    const RCPtr<LNotification> again = LNotification::Create(u"NID_TEST_B");
    EXPECT_EQ(again, object);
    EXPECT_FALSE(again->IsPosted());
  }
}

TEST_F(NotificationCacheTest, SwitchedOffItFreesWhatItKept) {
  const RCPtr<Payload> counted = MakeRC<Payload>();
  GetNotificationID(u"NID_TEST");  // Stays for the rest of the process.
  const std::int64_t before = LRefCountedObject::GetLiveCount();
  if (before == 0) GTEST_SKIP() << "objects are not counted in this build";
  std::vector<RCPtr<LNotification>> held;
  for (int count = 0; count < 600; ++count) held.push_back(LNotification::Create(u"NID_TEST"));
  held.clear();
  LNotification::SetCacheEnabled(false);
  EXPECT_EQ(LRefCountedObject::GetLiveCount(), before);
  LNotification::Create(u"NID_TEST");
  EXPECT_EQ(LRefCountedObject::GetLiveCount(), before);
}

TEST_F(NotificationCacheTest, ThreadsShareIt) {
  constexpr int kRounds = 2000;
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&wrong, number] {
      for (int round = 0; round < kRounds; ++round) {
        const RCPtr<LNotification> notification = LNotification::Create(u"NID_TEST", MakeRC<Payload>(number));
        if (RCPtr<Payload>(notification->GetData())->mValue != number) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(Payload::GetAlive(), 0);
}

}  // namespace
}  // namespace TF
