#include "TFFramework/Notification/NotificationDistributor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kDistributorTest = u"NID_TEST";

// A distributor whose clients A, B and C, registered in this order, write down their calls.
class DeliveryTest : public testing::Test {
 protected:
  ~DeliveryTest() override {
    for (auto* client : {&mA, &mB, &mC}) {
      if (*client) (*client)->UnregisterAll();
    }
  }

  void RegisterAll() {
    mA->Register(mDistributor, kDistributorTest);
    mB->Register(mDistributor, kDistributorTest);
    mC->Register(mDistributor, kDistributorTest);
  }
  void Send() { mDistributor->Send(LNotification::Create(kDistributorTest)); }
  std::string SendAndLog() {
    mLog.clear();
    Send();
    return mLog;
  }
  void Unregister(const RCPtr<TestClient>& client) {
    EXPECT_EQ(client->Unregister(mDistributor, GetNotificationID(kDistributorTest)), kSuccess);
  }

  std::string mLog;
  RCPtr<TestDistributor> mDistributor = MakeRC<TestDistributor>();
  std::function<void()> mThenA, mThenB, mThenC;
  RCPtr<TestClient> mA = MakeLogger(mLog, 'A', [this] { Run(mThenA); });
  RCPtr<TestClient> mB = MakeLogger(mLog, 'B', [this] { Run(mThenB); });
  RCPtr<TestClient> mC = MakeLogger(mLog, 'C', [this] { Run(mThenC); });

 private:
  static void Run(const std::function<void()>& then) {
    if (then) then();
  }
};

TEST_F(DeliveryTest, LastRegisteredIsServedFirst) {
  RegisterAll();
  EXPECT_EQ(SendAndLog(), "CBA");
}

TEST_F(DeliveryTest, AClientRegisteredMeanwhileGetsOnlyTheNextNotification) {
  RegisterAll();
  const RCPtr<TestClient> added = MakeLogger(mLog, 'D');
  mThenB = [&] { added->Register(mDistributor, kDistributorTest); };
  EXPECT_EQ(SendAndLog(), "CBA");
  mThenB = nullptr;
  EXPECT_EQ(SendAndLog(), "DCBA");
  added->UnregisterAll();
}

TEST_F(DeliveryTest, WhoeverIsUnregisteredMeanwhileTheOthersAreServedOnce) {
  const struct {
    std::string mDuring, mLeaving, mServed, mServedNext;
  } cases[] = {
      {"C", "C", "CBA", "BA"}, {"C", "B", "CA", "CA"},  {"C", "A", "CB", "CB"},  {"C", "AB", "C", "C"},
      {"C", "AC", "CB", "B"},  {"C", "ABC", "C", ""},   {"B", "B", "CBA", "CA"}, {"B", "C", "CBA", "BA"},
      {"B", "A", "CB", "CB"},  {"B", "BC", "CBA", "A"}, {"B", "AC", "CB", "B"},  {"A", "ABC", "CBA", ""},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.mDuring + " unregisters " + row.mLeaving);
    RegisterAll();
    std::function<void()>& then = row.mDuring == "A" ? mThenA : row.mDuring == "B" ? mThenB : mThenC;
    then = [&] {
      for (const char name : row.mLeaving) Unregister(name == 'A' ? mA : name == 'B' ? mB : mC);
    };
    EXPECT_EQ(SendAndLog(), row.mServed);
    then = nullptr;
    EXPECT_EQ(SendAndLog(), row.mServedNext);
    for (auto* client : {&mA, &mB, &mC}) (*client)->UnregisterAll();
  }
}

TEST_F(DeliveryTest, AReceiverMayDropItself) {
  RegisterAll();
  mThenB = [this] { mB = nullptr; };
  EXPECT_EQ(SendAndLog(), "CBA");
  EXPECT_EQ(TestClient::GetAlive(), 2);
  EXPECT_EQ(SendAndLog(), "CA");
}

TEST_F(DeliveryTest, AReceiverMayDropOthers) {
  RegisterAll();
  mThenC = [this] { mB = nullptr; };
  EXPECT_EQ(SendAndLog(), "CA");
  mThenA = [this] { mC = nullptr; };
  EXPECT_EQ(SendAndLog(), "CA");
  EXPECT_EQ(SendAndLog(), "A");
  EXPECT_EQ(TestClient::GetAlive(), 1);
}

TEST_F(DeliveryTest, AReceiverThatUnregistersOthersWhenItEndsMakesNobodyBeServedTwice) {
  RegisterAll();
  RCPtr<TestClient> ending = MakeRC<TestClient>();
  const RCPtr<TestClient> above = MakeLogger(mLog, 'F');
  // The shared pointer ends with the client that has it in its action.
  ending->mAction = [&, at_end = std::shared_ptr<void>(nullptr, [this](void*) { Unregister(mA); })](
                        const auto&, const auto&) {
    mLog += 'E';
    ending = nullptr;
  };
  ending->Register(mDistributor, kDistributorTest);
  above->Register(mDistributor, kDistributorTest);
  EXPECT_EQ(SendAndLog(), "FECB");
  above->UnregisterAll();
}

TEST_F(DeliveryTest, AReceiverMayDropTheDistributorAndTheNotification) {
  RegisterAll();
  RCPtr<LNotification> notification = LNotification::Create(kDistributorTest, MakeRC<Payload>());
  int payloads = 0;
  mThenC = [&] {
    mDistributor = nullptr;
    notification = nullptr;
  };
  mThenA = [&] { payloads = Payload::GetAlive(); };
  const RCPtr<TestDistributor>& alias = mDistributor;
  EXPECT_EQ(alias->Send(notification), kSuccess);
  EXPECT_EQ(mLog, "CBA");
  EXPECT_EQ(payloads, 1);
  EXPECT_EQ(Payload::GetAlive(), 0);
  for (auto* client : {&mA, &mB, &mC}) (*client)->UnregisterAll();
  EXPECT_EQ(TestDistributor::GetAlive(), 0);
}

TEST_F(DeliveryTest, AnExceptionEndsTheDeliveryAndLeavesNothingHeld) {
  RegisterAll();
  mThenB = [] { throw std::runtime_error("from a receiver"); };
  RCPtr<LNotification> notification = LNotification::Create(kDistributorTest, MakeRC<Payload>());
  EXPECT_THROW(mDistributor->Send(notification), std::runtime_error);
  EXPECT_EQ(mLog, "CB");
  EXPECT_EQ(notification->GetRefCount(), 1);
  EXPECT_EQ(mB->GetRefCount() - mB->GetInternalRefCount(), 1);
  EXPECT_EQ(mDistributor->GetRefCount() - mDistributor->GetInternalRefCount(), 1);
  mThenB = nullptr;
  EXPECT_EQ(SendAndLog(), "CBA");
}

TEST_F(DeliveryTest, AfterANestedDeliveryOfItsIdTheOuterOneGoesOnBelowIt) {
  RegisterAll();
  bool inside = false;
  const auto nested = [&] {
    if (inside) return;
    inside = true;
    mLog += '(';
    Send();
    mLog += ')';
    inside = false;
  };
  // The nested walk ends at A, below which there is nobody left for the outer one.
  mThenC = nested;
  EXPECT_EQ(SendAndLog(), "C(CBA)");
  mThenC = nullptr;
  mThenB = nested;
  EXPECT_EQ(SendAndLog(), "CB(CBA)");
  // A takes only the outer notification, so that the nested walk ends at B.
  mThenB = nullptr;
  mThenC = nested;
  mA->Register(mDistributor, kDistributorTest, kNotifyLatestPostedOnly);
  const RCPtr<LNotification> outer = LNotification::Create(kDistributorTest);
  mDistributor->FindPool(outer->GetId())->SetPending(outer);
  mLog.clear();
  mDistributor->Send(outer);
  EXPECT_EQ(mLog, "C(CB)A");
}

TEST_F(DeliveryTest, ANestedDeliveryThatFailsHasNobodyServedTwice) {
  RegisterAll();
  bool inside = false;
  mThenC = [&] {
    if (inside) throw std::runtime_error("from a nested delivery");
  };
  mThenB = [&] {
    inside = true;
    mLog += '(';
    EXPECT_THROW(Send(), std::runtime_error);
    mLog += ')';
    inside = false;
  };
  EXPECT_EQ(SendAndLog(), "CB(C)A");
}

TEST_F(DeliveryTest, ANestedDeliveryOfAnotherIdDisturbsNothing) {
  RegisterAll();
  mA->Register(mDistributor, u"NID_TEST_OTHER");
  mThenC = [this] { mDistributor->Send(LNotification::Create(u"NID_TEST_OTHER")); };
  EXPECT_EQ(SendAndLog(), "CABA");
}

TEST_F(DeliveryTest, SendTellsWhetherAnybodyWasThere) {
  EXPECT_EQ(mDistributor->Send(nullptr), kInvalidArgument);
  EXPECT_EQ(mDistributor->Send(LNotification::Create(kDistributorTest)), kNothingDone);
  mA->Register(mDistributor, kDistributorTest);
  EXPECT_EQ(mDistributor->Send(LNotification::Create(kDistributorTest)), kSuccess);
  EXPECT_EQ(mDistributor->Send(LNotification::Create(u"NID_TEST_OTHER")), kNothingDone);
  mA->UnregisterAll();
  EXPECT_EQ(mDistributor->Send(LNotification::Create(kDistributorTest)), kNothingDone);
}

// What a distributor that chooses its receivers sees, with A removing itself and B skipped.
TEST_F(DeliveryTest, SendToClientAtServesOneAndGivesTheIndexToGoOnFrom) {
  RegisterAll();
  const auto pool = mDistributor->FindPool(GetNotificationID(kDistributorTest));
  const RCPtr<LNotification> notification = LNotification::Create(kDistributorTest);
  EXPECT_EQ(pool->SendToClientAt(mDistributor, 3, notification), 3);
  EXPECT_EQ(pool->SendToClientAt(mDistributor, -1, notification), -1);
  EXPECT_EQ(mLog, "");
  EXPECT_EQ(pool->SendToClientAt(mDistributor, 1, notification), 1);
  mThenC = [this] {
    mB->UnregisterAll();
    mA->UnregisterAll();
  };
  EXPECT_EQ(pool->SendToClientAt(mDistributor, 2, notification), 0);
  EXPECT_EQ(mLog, "BC");
  EXPECT_EQ(pool->GetCount(), 1);
  EXPECT_EQ(pool->GetReceiverAt(0), mC);
  EXPECT_FALSE(pool->GetReceiverAt(1));
  EXPECT_FALSE(mDistributor->FindPool(GetNotificationID(u"NID_TEST_OTHER")));
}

TEST(NotificationRegistrationTest, ASecondRegistrationForAnIdOnlyChangesTheFlags) {
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  const RCPtr<TestClient> client = MakeRC<TestClient>();
  std::uint32_t flags = 99;
  EXPECT_EQ(distributor->GetRegisteredFlags(client, kDistributorTest, flags), kFailure);
  EXPECT_EQ(flags, 99u);
  EXPECT_EQ(client->Register(distributor, kDistributorTest), GetNotificationID(kDistributorTest));
  EXPECT_EQ(client->Register(distributor, kDistributorTest, kNotifyLatestPostedOnly),
            GetNotificationID(kDistributorTest));
  EXPECT_EQ(client->GetRegistrationCount(), 1);
  EXPECT_EQ(distributor->RegisterClient(client, kDistributorTest, 0), kNothingDone);
  EXPECT_EQ(distributor->GetRegisteredFlags(client, kDistributorTest, flags), kSuccess);
  EXPECT_EQ(flags, 0u);
  EXPECT_EQ(client->Unregister(distributor, GetNotificationID(kDistributorTest)), kSuccess);
  EXPECT_FALSE(distributor->IsRegistered(client));
  EXPECT_EQ(client->Unregister(distributor, GetNotificationID(kDistributorTest)), kNothingDone);
}

TEST(NotificationRegistrationTest, BadArgumentsAreRefusedAndChangeNothing) {
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  const RCPtr<TestClient> client = MakeRC<TestClient>();
  const NotificationId id = GetNotificationID(kDistributorTest);
  EXPECT_EQ(client->Register(nullptr, kDistributorTest), nullptr);
  EXPECT_EQ(client->Register(distributor, u""), nullptr);
  EXPECT_EQ(client->Register(distributor, nullptr), nullptr);
  EXPECT_EQ(client->Unregister(nullptr, id), kNothingDone);
  EXPECT_EQ(distributor->RegisterClient(nullptr, kDistributorTest, 0), kInvalidArgument);
  EXPECT_EQ(distributor->RegisterClient(client, u"", 0), kNothingDone);
  EXPECT_EQ(distributor->UnregisterClient(client, id), kNothingDone);
  client->Register(distributor, kDistributorTest);
  EXPECT_EQ(client->Unregister(nullptr, id), kInvalidArgument);
  EXPECT_EQ(client->Unregister(distributor, nullptr), kInvalidArgument);
  EXPECT_EQ(client->Unregister(distributor, GetNotificationID(u"NID_TEST_OTHER")), kNothingDone);
  EXPECT_EQ(distributor->UnregisterClient(nullptr, id), kInvalidArgument);
  EXPECT_EQ(distributor->UnregisterClient(client, nullptr), kInvalidArgument);
  EXPECT_EQ(client->GetRegistrationCount(), 1);
  EXPECT_TRUE(distributor->IsRegistered(client));
}

TEST(NotificationRegistrationTest, UnregisterAllLeavesEveryDistributor) {
  const RCPtr<TestDistributor> first = MakeRC<TestDistributor>();
  const RCPtr<TestDistributor> second = MakeRC<TestDistributor>();
  const RCPtr<TestClient> client = MakeRC<TestClient>();
  client->Register(first, kDistributorTest);
  client->Register(first, u"NID_TEST_OTHER");
  client->Register(second, kDistributorTest);
  EXPECT_EQ(client->GetRegistrationCount(), 3);
  EXPECT_EQ(client->GetInternalRefCount(), 3);
  EXPECT_EQ(client->UnregisterAll(), 3);
  EXPECT_EQ(client->UnregisterAll(), 0);
  EXPECT_EQ(client->GetInternalRefCount(), 0);
  EXPECT_EQ(client->GetRefCount(), 1);
  EXPECT_EQ(first->GetRefCount(), 1);
  EXPECT_EQ(second->GetInternalRefCount(), 0);
}

// Clients by number act at random while they are served: they register and unregister
// themselves and others, and drop each other. The model knows only when each registration
// began and whether it still stands.
class RandomDelivery {
 public:
  explicit RandomDelivery(std::uint32_t seed) : mRandom(seed) {
    for (int number = 0; number < kClients; ++number) Make(number);
  }
  ~RandomDelivery() {
    mActing = false;
    for (auto& client : mClients) client = nullptr;
  }

  // The numbers served, as they are and as they should be.
  std::pair<std::vector<int>, std::vector<int>> Send() {
    for (int change = 0; change < kClients / 2; ++change) Act();
    mServed.clear();
    mExpected.clear();
    mWaiting = mModel;
    mActing = true;
    mDistributor->Send(LNotification::Create(kDistributorTest));
    mActing = false;
    while (!mWaiting.empty()) ExpectNext();
    return {mServed, mExpected};
  }

 private:
  static constexpr int kClients = 8;
  struct Registration {
    int mClient;
    int mSerial;
    bool operator==(const Registration&) const = default;
  };

  void Make(int number) {
    mClients[number] = MakeRC<TestClient>([this, number](const auto&, const auto&) {
      mServed.push_back(number);
      ExpectNext();
      for (int actions = Pick(4); mActing && actions > 0; --actions) Act();
    });
  }

  // Takes the latest of the registrations that were there at the start and still are.
  void ExpectNext() {
    while (!mWaiting.empty()) {
      const Registration next = mWaiting.back();
      mWaiting.pop_back();
      if (std::find(mModel.begin(), mModel.end(), next) == mModel.end()) continue;
      mExpected.push_back(next.mClient);
      return;
    }
  }

  void Act() {
    const int number = Pick(kClients);
    const bool registered = IsInModel(number);
    switch (Pick(5)) {
      case 0:
      case 1:
        mClients[number]->Register(mDistributor, kDistributorTest);
        if (!registered) mModel.push_back({number, mNextSerial++});
        break;
      case 2:
      case 3:
        EXPECT_EQ(mClients[number]->Unregister(mDistributor, GetNotificationID(kDistributorTest)),
                  registered ? kSuccess : kNothingDone);
        RemoveFromModel(number);
        break;
      default:
        // The one being served stays registered until its call has ended.
        if (!mServed.empty() && mActing && mServed.back() == number) break;
        Make(number);
        RemoveFromModel(number);
        break;
    }
  }

  bool IsInModel(int number) const {
    return std::any_of(mModel.begin(), mModel.end(),
                       [number](const Registration& entry) { return entry.mClient == number; });
  }
  void RemoveFromModel(int number) {
    std::erase_if(mModel, [number](const Registration& entry) { return entry.mClient == number; });
  }
  int Pick(int choices) { return static_cast<int>(mRandom() % static_cast<unsigned>(choices)); }

  std::mt19937 mRandom;
  RCPtr<TestDistributor> mDistributor = MakeRC<TestDistributor>();
  RCPtr<TestClient> mClients[kClients];
  bool mActing = false;
  int mNextSerial = 0;
  std::vector<Registration> mModel;
  std::vector<Registration> mWaiting;
  std::vector<int> mServed;
  std::vector<int> mExpected;
};

TEST(NotificationDistributorTest, RandomChangesDuringDeliveriesFollowTheModel) {
  const std::uint32_t seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  {
    RandomDelivery delivery(seed);
    for (int round = 0; round < 2000; ++round) {
      const auto [served, expected] = delivery.Send();
      ASSERT_EQ(served, expected) << "seed " << seed << ", round " << round;
    }
  }
  EXPECT_EQ(TestClient::GetAlive(), 0);
  EXPECT_EQ(TestDistributor::GetAlive(), 0);
}

}  // namespace
}  // namespace TF
