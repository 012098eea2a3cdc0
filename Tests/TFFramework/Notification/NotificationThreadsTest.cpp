#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/Notification/NotificationHandler.h"
#include "Tests/TFFramework/Notification/TestClient.h"

namespace TF {
namespace {

constexpr const char16_t* kThreadsTest = u"NID_TEST";
constexpr int kThreads = 4;
constexpr std::chrono::seconds kPatience{60};

// Runs the function, with the number of its thread, on several threads until each returns.
class Threads {
 public:
  Threads(int count, const std::function<void(int)>& run) : mRunning(count) {
    for (int number = 0; number < count; ++number) {
      mThreads.emplace_back([this, run, number] {
        run(number);
        --mRunning;
      });
    }
  }
  ~Threads() {
    for (std::thread& thread : mThreads) thread.join();
  }
  bool AreRunning() const { return mRunning > 0; }

 private:
  std::atomic<int> mRunning;
  std::vector<std::thread> mThreads;
};

class NotificationThreadsTest : public testing::TestWithParam<bool> {
 protected:
  NotificationThreadsTest() { LNotification::SetCacheEnabled(GetParam()); }
  ~NotificationThreadsTest() override {
    LNotification::SetCacheEnabled(false);
    LNotificationCenterManager::ReleaseInstance();
    EXPECT_EQ(TestClient::GetAlive(), 0);
    EXPECT_EQ(TestDistributor::GetAlive(), 0);
    EXPECT_EQ(Payload::GetAlive(), 0);
    EXPECT_TRUE(LNotificationDistributor::GetActiveDistributors().empty());
  }
};

INSTANTIATE_TEST_SUITE_P(Cache, NotificationThreadsTest, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "On" : "Off"; });

TEST_P(NotificationThreadsTest, PostsFromManyThreadsArriveCompleteAndInTheOrderOfEachThread) {
  constexpr int kPosts = 3000;
  std::array<int, kThreads> next{};
  int out_of_order = 0;
  const RCPtr<LNotificationCenter> center =
      LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName);
  const RCPtr<TestClient> client = MakeRC<TestClient>([&](const auto&, const auto& notification) {
    const int value = RCPtr<Payload>(notification->GetData())->mValue;
    if (next[value % kThreads]++ != value / kThreads) ++out_of_order;
  });
  client->Register(center, kThreadsTest);
  const auto received = [&] {
    int sum = 0;
    for (const int count : next) sum += count;
    return sum;
  };
  const Threads posters(kThreads, [](int number) {
    for (int count = 0; count < kPosts; ++count) {
      LNotificationCenterManager::GetInstance()
          ->GetCenter(u"application")
          ->Post(LNotification::Create(kThreadsTest, MakeRC<Payload>(count * kThreads + number)));
    }
  });
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (received() < kThreads * kPosts && std::chrono::steady_clock::now() < deadline) {
    if (!LNotificationCenterManager::GetInstance()->ProcessAll(false)) std::this_thread::yield();
  }
  EXPECT_EQ(received(), kThreads * kPosts);
  EXPECT_EQ(out_of_order, 0);
}

TEST_P(NotificationThreadsTest, WhoeverComesAndGoesMeanwhileTheOthersAreServedOnceEach) {
  constexpr int kRounds = 1000;
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  std::array<int, 3> served{};
  std::vector<RCPtr<TestClient>> staying;
  std::vector<RCPtr<TestClient>> leaving;
  // Those that leave stand between and below those that stay, where a place could get lost.
  for (int& count : served) {
    for (int between = 0; between < 2; ++between) {
      leaving.push_back(MakeRC<TestClient>());
      leaving.back()->Register(distributor, kThreadsTest);
    }
    staying.push_back(MakeRC<TestClient>([&count](const auto&, const auto&) { ++count; }));
    staying.back()->Register(distributor, kThreadsTest);
  }
  int sends = 0;
  {
    const Threads changing(kThreads, [&](int number) {
      for (int round = 0; round < kRounds; ++round) {
        RCPtr<TestClient> passing = MakeRC<TestClient>();
        passing->Register(distributor, kThreadsTest);
        if (round % 2 == 0) passing->Unregister(distributor, GetNotificationID(kThreadsTest));
        passing = nullptr;
        if (number == 0 && round % 100 == 99 && !leaving.empty()) leaving.pop_back();
      }
    });
    while (changing.AreRunning()) {
      distributor->Send(LNotification::Create(kThreadsTest));
      ++sends;
    }
  }
  EXPECT_GT(sends, 0);
  for (const int count : served) EXPECT_EQ(count, sends);
}

TEST_P(NotificationThreadsTest, CountsComeOutRightWhenOneClientIsRegisteredAndUnregisteredEverywhere) {
  constexpr int kRounds = 1000;
  const RCPtr<TestDistributor> distributors[] = {MakeRC<TestDistributor>(), MakeRC<TestDistributor>()};
  const RCPtr<TestClient> client = MakeRC<TestClient>();
  {
    const Threads changing(kThreads, [&](int number) {
      for (int round = 0; round < kRounds; ++round) {
        const RCPtr<TestDistributor>& distributor = distributors[(number + round) % 2];
        switch ((number + round) % 3) {
          case 0:
            client->Register(distributor, kThreadsTest);
            break;
          case 1:
            client->Unregister(distributor, GetNotificationID(kThreadsTest));
            break;
          default:
            client->UnregisterAll();
        }
      }
    });
    while (changing.AreRunning()) {
      for (const auto& distributor : distributors) distributor->Send(LNotification::Create(kThreadsTest));
    }
  }
  const int registrations = static_cast<int>(distributors[0]->IsRegistered(client)) +
                            static_cast<int>(distributors[1]->IsRegistered(client));
  EXPECT_EQ(client->GetRegistrationCount(), registrations);
  EXPECT_EQ(client->GetInternalRefCount(), registrations);
  EXPECT_EQ(client->GetRefCount(), registrations + 1);
  EXPECT_EQ(client->UnregisterAll(), registrations);
  EXPECT_EQ(client->GetRefCount(), 1);
}

class ThreadedOwner : public LNotificationClient {
 public:
  using Handler = LNotificationHandler<ThreadedOwner>;

  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    mHandler->Dispatch(sender, notification);
  }
  TFRESULT OnTest(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
    ++mCalls;
    return kSuccess;
  }

  const RCPtr<Handler> mHandler = MakeRC<Handler>(this);
  std::atomic<int> mCalls{0};
};

TEST_P(NotificationThreadsTest, HandlersAreAddedAndRemovedWhileAnotherThreadDelivers) {
  constexpr int kRounds = 1000;
  const RCPtr<TestDistributor> distributor = MakeRC<TestDistributor>();
  const RCPtr<ThreadedOwner> owner = MakeRC<ThreadedOwner>();
  const NotificationId id = GetNotificationID(kThreadsTest);
  {
    const Threads sender(1, [&](int) {
      for (int round = 0; round < kRounds; ++round) distributor->Send(LNotification::Create(id));
    });
    while (sender.AreRunning()) {
      EXPECT_EQ(owner->mHandler->AddHandler(&ThreadedOwner::OnTest, distributor, id), kSuccess);
      EXPECT_EQ(owner->Unregister(distributor, id), kSuccess);
      EXPECT_TRUE(owner->mHandler->RemoveHandler(distributor, id));
    }
  }
  owner->mHandler->AddHandler(&ThreadedOwner::OnTest, distributor, id);
  const int calls = owner->mCalls;
  distributor->Send(LNotification::Create(id));
  EXPECT_EQ(owner->mCalls, calls + 1);
}

// The last holder may be a poster, whose thread then closes the center.
TEST_P(NotificationThreadsTest, ACenterEndsWhileItsClientsComeAndGo) {
  constexpr int kRounds = 200;
  for (int round = 0; round < kRounds; ++round) {
    RCPtr<LNotificationCenter> center = MakeRC<LNotificationCenter>(u"test");
    std::vector<RCPtr<TestClient>> clients;
    for (int number = 0; number < kThreads; ++number) {
      clients.push_back(MakeRC<TestClient>());
      clients.back()->Register(center, kThreadsTest);
    }
    std::array<RCPtr<LNotificationCenter>, kThreads> holders;
    holders.fill(center);
    center = nullptr;
    const Threads ending(kThreads, [&](int number) {
      RCPtr<LNotificationCenter> own = std::move(holders[number]);
      own->Post(LNotification::Create(kThreadsTest, MakeRC<Payload>()));
      if (number % 2 == 0) clients[number]->UnregisterAll();
      own = nullptr;
      if (number == 1) clients[number] = nullptr;
    });
  }
}

}  // namespace
}  // namespace TF
