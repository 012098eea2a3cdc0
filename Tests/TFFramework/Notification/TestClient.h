#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "TFFramework/Notification/NotificationClient.h"

// Counts the objects of a class that are alive, to see that cycles of references end.
template <class T>
class Counted {
 public:
  Counted() { ++sAlive; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --sAlive; }

  static int GetAlive() { return sAlive; }

 private:
  inline static std::atomic<int> sAlive{0};
};

class Payload : public virtual TF::LRefCountedObject, public Counted<Payload> {
 public:
  explicit Payload(int value = 0) : mValue(value) {}
  const int mValue;
};

class TestDistributor : public TF::LNotificationDistributor, public Counted<TestDistributor> {};

// A client that runs a function for each notification and counts its closing distributors.
class TestClient : public TF::LNotificationClient, public Counted<TestClient> {
 public:
  using Sender = TF::RCPtr<TF::LNotificationDistributor>;
  using Action = std::function<void(const Sender&, const TF::RCPtr<TF::LNotification>&)>;

  explicit TestClient(Action action = nullptr) : mAction(std::move(action)) {}

  void OnNotification(const Sender& sender, const TF::RCPtr<TF::LNotification>& notification) override {
    if (mAction) mAction(sender, notification);
  }
  TFRESULT OnDistributorClosing(const Sender& sender, TF::NotificationId id) override {
    mClosed.push_back(id);
    return LNotificationClient::OnDistributorClosing(sender, id);
  }

  Action mAction;
  std::vector<TF::NotificationId> mClosed;
};

// A client that adds its name to a log, then runs a function.
inline TF::RCPtr<TestClient> MakeLogger(std::string& log, char name, std::function<void()> then = nullptr) {
  return TF::MakeRC<TestClient>([&log, name, then = std::move(then)](const auto&, const auto&) {
    log += name;
    if (then) then();
  });
}
