#include "TFFramework/Notification/NotificationCenter.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kName = u"NID_TEST";

class TestCenter : public LNotificationCenter, public Counted<TestCenter> {
 public:
  using LNotificationCenter::LNotificationCenter;
};

// Counts on its base being taken down although the object was never finished.
class FailingCenter : public TestCenter {
 public:
  FailingCenter() : TestCenter(u"failing") { throw std::runtime_error("no center"); }
};

TEST(NotificationCenterTest, SendsItselfWhatIsPostedToIt) {
  std::string log;
  const RCPtr<TestCenter> center = MakeRC<TestCenter>(u"test");
  EXPECT_EQ(center->GetName(), u"test");
  RCPtr<TestClient> client = MakeRC<TestClient>([&](const auto& sender, const auto&) {
    EXPECT_EQ(sender, RCPtr<LNotificationDistributor>(center));
    log += 'A';
  });
  client->Register(center, kName);
  EXPECT_EQ(center->Post(LNotification::Create(kName)), kSuccess);
  EXPECT_EQ(log, "");
  EXPECT_FALSE(center->Process(true));
  EXPECT_EQ(log, "A");
}

TEST(NotificationCenterTest, DroppedByEverybodyItClosesForItsClients) {
  RCPtr<TestCenter> center = MakeRC<TestCenter>(u"test");
  const RCPtr<TestClient> first = MakeRC<TestClient>();
  const RCPtr<TestClient> second = MakeRC<TestClient>();
  first->Register(center, kName);
  first->Register(center, u"NID_TEST_OTHER");
  second->Register(center, kName);
  center->Post(LNotification::Create(kName, MakeRC<Payload>()));
  center = nullptr;
  EXPECT_EQ(TestCenter::GetAlive(), 0);
  EXPECT_EQ(Payload::GetAlive(), 0);
  EXPECT_EQ(first->mClosed.size(), 2u);
  EXPECT_EQ(second->mClosed, std::vector<NotificationId>({GetNotificationID(kName)}));
  EXPECT_EQ(first->GetRegistrationCount(), 0);
  EXPECT_EQ(second->GetRegistrationCount(), 0);
  EXPECT_EQ(first->GetInternalRefCount(), 0);
}

TEST(NotificationCenterTest, EndsInEveryOrder) {
  MakeRC<TestCenter>(u"test");
  EXPECT_EQ(TestCenter::GetAlive(), 0);
  {
    const RCPtr<TestCenter> center = MakeRC<TestCenter>(u"test");
    const RCPtr<TestClient> client = MakeRC<TestClient>();
    client->Register(center, kName);
  }
  EXPECT_EQ(TestCenter::GetAlive(), 0);
  {
    RCPtr<TestCenter> center = MakeRC<TestCenter>(u"test");
    RCPtr<TestClient> client = MakeRC<TestClient>();
    client->Register(center, kName);
    client = nullptr;
    EXPECT_EQ(center->GetRefCount() - center->GetInternalRefCount(), 1);
    center = nullptr;
  }
  EXPECT_EQ(TestCenter::GetAlive(), 0);
  EXPECT_EQ(TestClient::GetAlive(), 0);
  EXPECT_THROW(MakeRC<FailingCenter>(), std::runtime_error);
  EXPECT_EQ(TestCenter::GetAlive(), 0);
}

TEST(NotificationCenterTest, AReceiverMayDropItWhileItProcesses) {
  RCPtr<TestCenter> center = MakeRC<TestCenter>(u"test");
  int calls = 0;
  const RCPtr<TestClient> client = MakeRC<TestClient>([&](const auto&, const auto&) {
    center = nullptr;
    ++calls;
  });
  client->Register(center, kName);
  center->Post(LNotification::Create(kName));
  center->Post(LNotification::Create(kName));
  TestCenter* const processed = center.Get();
  EXPECT_FALSE(processed->Process(true));
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(TestCenter::GetAlive(), 0);
  EXPECT_EQ(client->GetRegistrationCount(), 0);
}

TEST(NotificationCenterTest, AClientMayKeepItWhileItCloses) {
  class Keeper : public TestClient {
   public:
    TFRESULT OnDistributorClosing(const Sender& sender, NotificationId id) override {
      mKept = sender;
      return TestClient::OnDistributorClosing(sender, id);
    }
    RCPtr<TestCenter> mKept;
  };
  const RCPtr<Keeper> client = MakeRC<Keeper>();
  client->Register(MakeRC<TestCenter>(u"test"), kName);
  ASSERT_EQ(TestCenter::GetAlive(), 1);
  EXPECT_EQ(client->mKept->Post(LNotification::Create(kName)), kFailure);
  EXPECT_FALSE(client->mKept->Process(true));
  EXPECT_FALSE(client->mKept->GetPostingReceiver());
  client->Register(client->mKept, kName);
  EXPECT_EQ(client->mClosed.size(), 1u);
  EXPECT_EQ(client->GetRegistrationCount(), 1);
  client->mKept = nullptr;
  EXPECT_EQ(client->mClosed.size(), 2u);
  client->mKept = nullptr;
  EXPECT_EQ(TestCenter::GetAlive(), 0);
}

class NotificationCenterManagerTest : public testing::Test {
 protected:
  ~NotificationCenterManagerTest() override { LNotificationCenterManager::ReleaseInstance(); }
};

TEST_F(NotificationCenterManagerTest, FindsCentersByNameAndMakesTheMissing) {
  const RCPtr<LNotificationCenterManager> manager = LNotificationCenterManager::GetInstance();
  EXPECT_EQ(LNotificationCenterManager::GetInstance(), manager);
  const RCPtr<LNotificationCenter> application = manager->GetCenter(kApplicationCenterName);
  const std::u16string same_text = u"application";
  EXPECT_EQ(manager->GetCenter(same_text.c_str()), application);
  EXPECT_EQ(manager->GetCenter(application->GetName().GetText()), application);
  EXPECT_NE(manager->GetCenter(u"Application"), application);
  EXPECT_FALSE(manager->GetCenter(u""));
  EXPECT_FALSE(manager->GetCenter(nullptr));
}

TEST_F(NotificationCenterManagerTest, ProcessesAllFromTheLatestOn) {
  std::string log;
  const RCPtr<LNotificationCenterManager> manager = LNotificationCenterManager::GetInstance();
  const RCPtr<LNotificationCenter> first = manager->GetCenter(u"first");
  const RCPtr<LNotificationCenter> second = manager->GetCenter(u"second");
  const RCPtr<TestClient> a = MakeLogger(log, 'A', [&] { second->Post(LNotification::Create(kName)); });
  const RCPtr<TestClient> b = MakeLogger(log, 'B');
  const RCPtr<TestClient> idle = MakeLogger(log, 'i');
  a->Register(first, kName);
  b->Register(second, kName);
  idle->Register(first, u"NID_IDLE");
  idle->Register(second, u"NID_IDLE");
  first->Post(LNotification::Create(kName));
  second->Post(LNotification::Create(kName));
  EXPECT_FALSE(manager->ProcessAll(true));
  EXPECT_EQ(log, "BiAi");
  log.clear();
  EXPECT_FALSE(manager->ProcessAll(false));
  EXPECT_EQ(log, "B");
}

TEST_F(NotificationCenterManagerTest, TellsWhetherAnyCenterHasSomethingLeft) {
  const RCPtr<LNotificationCenterManager> manager = LNotificationCenterManager::GetInstance();
  const RCPtr<LNotificationCenter> first = manager->GetCenter(u"first");
  const RCPtr<LNotificationCenter> second = manager->GetCenter(u"second");
  const RCPtr<TestClient> poster = MakeRC<TestClient>([](const auto& sender, const auto&) {
    RCPtr<LNotificationCenter>(sender)->Post(LNotification::Create(u"NID_TEST_OTHER"));
  });
  for (const RCPtr<LNotificationCenter>& center : {first, second}) {
    poster->Register(center, kName);
    center->Post(LNotification::Create(kName));
    EXPECT_TRUE(manager->ProcessAll(false));
    EXPECT_FALSE(manager->ProcessAll(false));
  }
}

TEST_F(NotificationCenterManagerTest, ReleasingTheInstanceClosesTheCenters) {
  RCPtr<TestClient> client = MakeRC<TestClient>();
  client->Register(LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName), kName);
  LNotificationCenterManager::ReleaseInstance();
  EXPECT_EQ(client->mClosed.size(), 1u);
  EXPECT_TRUE(LNotificationDistributor::GetActiveDistributors().empty());
}

}  // namespace
}  // namespace TF
