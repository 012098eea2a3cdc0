#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "TFFramework/Notification/NotificationClient.h"
#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kLifetimeTest = u"NID_TEST";

// An object that sends and receives, as every control is.
class TestNode : public LNotificationClient, public LNotificationDistributor, public Counted<TestNode> {};

// A client that owns the distributor it listens to, as the engine does its MIDI service.
class OwningClient : public TestClient {
 public:
  RCPtr<TestDistributor> mService;
};

int GetAlive() {
  return TestClient::GetAlive() + TestDistributor::GetAlive() + TestNode::GetAlive();
}

class NotificationLifetimeTest : public testing::Test {
 protected:
  ~NotificationLifetimeTest() override {
    EXPECT_EQ(GetAlive(), 0);
    EXPECT_TRUE(LNotificationDistributor::GetActiveDistributors().empty());
  }
};

TEST_F(NotificationLifetimeTest, EveryCycleOfRegistrationsEndsWithItsLastOutsideHolder) {
  const struct {
    const char* mName;
    std::function<void()> mMakeAndDrop;
  } cases[] = {
      {"client first",
       [] {
         const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
         RCPtr<TestClient> client = MakeRC<TestClient>();
         client->Register(distributor, kLifetimeTest);
         client->Register(distributor, u"NID_TEST_OTHER");
         EXPECT_EQ(LNotificationDistributor::GetActiveDistributors().size(), 1u);
         client = nullptr;
         EXPECT_EQ(TestClient::GetAlive(), 0);
         EXPECT_EQ(distributor->GetRefCount(), 1);
         EXPECT_EQ(distributor->GetInternalRefCount(), 0);
       }},
      {"distributor first",
       [] {
         const RCPtr<TestClient> client = MakeRC<TestClient>();
         client->Register(MakeRC<TestDistributor>(), kLifetimeTest);
         EXPECT_EQ(TestDistributor::GetAlive(), 1);
       }},
      {"distributor first, registration next",
       [] {
         const RCPtr<TestClient> client = MakeRC<TestClient>();
         client->Register(MakeRC<TestDistributor>(), kLifetimeTest);
         EXPECT_EQ(client->UnregisterAll(), 1);
         EXPECT_EQ(TestDistributor::GetAlive(), 0);
       }},
      {"two clients, distributor in between",
       [] {
         RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
         RCPtr<TestClient> first = MakeRC<TestClient>();
         const RCPtr<TestClient> second = MakeRC<TestClient>();
         first->Register(distributor, kLifetimeTest);
         second->Register(distributor, kLifetimeTest);
         first = nullptr;
         distributor = nullptr;
         EXPECT_EQ(TestClient::GetAlive(), 1);
         EXPECT_EQ(TestDistributor::GetAlive(), 1);
       }},
      {"one client of many distributors",
       [] {
         const RCPtr<TestClient> client = MakeRC<TestClient>();
         for (int count = 0; count < 5; ++count) client->Register(MakeRC<TestDistributor>(), kLifetimeTest);
         EXPECT_EQ(LNotificationDistributor::GetActiveDistributors().size(), 5u);
       }},
      {"one client of one distributor after the other",
       [] {
         const RCPtr<TestClient> client = MakeRC<TestClient>();
         for (int count = 0; count < 3; ++count) {
           const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
           client->Unregister(distributor, client->Register(distributor, kLifetimeTest));
         }
         EXPECT_EQ(TestDistributor::GetAlive(), 0);
         client->Register(MakeRC<TestDistributor>(), kLifetimeTest);
       }},
      {"client that owns its distributor",
       [] {
         const RCPtr<OwningClient> client = MakeRC<OwningClient>();
         client->mService = MakeRC<TestDistributor>();
         client->Register(client->mService, kLifetimeTest);
       }},
      {"client of itself",
       [] {
         const RCPtr<TestNode> node = MakeRC<TestNode>();
         node->Register(node, kLifetimeTest);
         node->Register(node, u"NID_TEST_OTHER");
       }},
      {"two that listen to each other",
       [] {
         const RCPtr<TestNode> first = MakeRC<TestNode>();
         const RCPtr<TestNode> second = MakeRC<TestNode>();
         first->Register(second, kLifetimeTest);
         second->Register(first, kLifetimeTest);
       }},
      {"three in a ring, each listening to itself too",
       [] {
         const RCPtr<TestNode> nodes[] = {MakeRC<TestNode>(), MakeRC<TestNode>(), MakeRC<TestNode>()};
         for (int index = 0; index < 3; ++index) {
           nodes[index]->Register(nodes[(index + 1) % 3], kLifetimeTest);
           nodes[index]->Register(nodes[index], kLifetimeTest);
         }
       }},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.mName);
    row.mMakeAndDrop();
    EXPECT_EQ(GetAlive(), 0);
  }
}

TEST_F(NotificationLifetimeTest, ADistributorThatNobodyHoldsStillServesItsClients) {
  std::string log;
  RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  const RCPtr<TestClient> client = MakeLogger(log, 'A');
  client->Register(distributor, kLifetimeTest);
  distributor = nullptr;
  for (const auto& active : LNotificationDistributor::GetActiveDistributors()) {
    active->Send(LNotification::Create(kLifetimeTest));
  }
  EXPECT_EQ(log, "A");
}

TEST_F(NotificationLifetimeTest, AReceiverThatDropsItselfLivesUntilItsCallEnds) {
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  RCPtr<TestClient> client = MakeRC<TestClient>();
  int alive_in_call = 0;
  client->mAction = [&](const auto&, const auto&) {
    client = nullptr;
    alive_in_call = TestClient::GetAlive();
  };
  client->Register(distributor, kLifetimeTest);
  distributor->Send(LNotification::Create(kLifetimeTest));
  EXPECT_EQ(alive_in_call, 1);
  EXPECT_EQ(TestClient::GetAlive(), 0);
  EXPECT_EQ(distributor->Send(LNotification::Create(kLifetimeTest)), kNothingDone);
}

TEST_F(NotificationLifetimeTest, NotifyClosingCallsEachRegistrationOnceWhateverTheClientsDo) {
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  class Leaver : public TestClient {
   public:
    TFRESULT OnDistributorClosing(const Sender& sender, NotificationId id) override {
      const TFRESULT result = TestClient::OnDistributorClosing(sender, id);
      if (mOther) mOther->UnregisterAll();
      return result;
    }
    RCPtr<TestClient> mOther;
  };
  const RCPtr<TestClient> lower = MakeRC<TestClient>();
  const RCPtr<TestClient> unregistered = MakeRC<TestClient>();
  const RCPtr<Leaver> leaver = MakeRC<Leaver>();
  const RCPtr<TestClient> upper = MakeRC<TestClient>();
  leaver->mOther = unregistered;
  for (const RCPtr<TestClient>& client : {lower, unregistered, RCPtr<TestClient>(leaver), upper}) {
    client->Register(distributor, kLifetimeTest);
    client->Register(distributor, u"NID_TEST_OTHER");
  }
  distributor->NotifyClosing();
  const std::vector<NotificationId> both = {GetNotificationID(u"NID_TEST_OTHER"),
                                            GetNotificationID(kLifetimeTest)};
  EXPECT_EQ(upper->mClosed, both);
  EXPECT_EQ(leaver->mClosed, both);
  EXPECT_EQ(lower->mClosed, both);
  EXPECT_TRUE(unregistered->mClosed.empty());
  EXPECT_EQ(upper->GetRegistrationCount() + lower->GetRegistrationCount(), 0);
  EXPECT_EQ(distributor->GetRefCount(), 1);
}

}  // namespace
}  // namespace TF
