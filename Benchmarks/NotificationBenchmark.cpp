#include <benchmark/benchmark.h>

#include <boost/signals2.hpp>
#include <cstdint>
#include <vector>

#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationDistributor.h"

// LNotificationDistributor::Send to 1 and to 16 clients beside boost::signals2.

namespace {

constexpr const char16_t* kName = u"NID_BENCHMARK";

class LCounter : public TF::LNotificationClient {
 public:
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>&,
                      const TF::RCPtr<TF::LNotification>&) override {
    ++mCount;
  }
  std::uint64_t mCount = 0;
};

void SendToClients(benchmark::State& state) {
  const auto distributor = TF::MakeRC<TF::LNotificationDistributor>();
  std::vector<TF::RCPtr<LCounter>> clients;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    clients.push_back(TF::MakeRC<LCounter>());
    clients.back()->Register(distributor, kName, 0);
  }
  const auto notification = TF::LNotification::Create(kName, nullptr);
  for (auto _ : state) distributor->Send(notification);
  for (auto& client : clients) {
    benchmark::DoNotOptimize(client->mCount);
    client->UnregisterAll();
  }
}
BENCHMARK(SendToClients)->Arg(1)->Arg(16);

struct Counter {
  void OnSignal(const Counter*, const int*) { ++mCount; }
  std::uint64_t mCount = 0;
};

void SignalToSlots(benchmark::State& state) {
  boost::signals2::signal<void(const Counter*, const int*)> signal;
  std::vector<Counter> slots(static_cast<std::size_t>(state.range(0)));
  for (Counter& slot : slots) {
    signal.connect([&slot](const Counter* sender, const int* payload) { slot.OnSignal(sender, payload); });
  }
  const int payload = 0;
  for (auto _ : state) signal(&slots[0], &payload);
  for (Counter& slot : slots) benchmark::DoNotOptimize(slot.mCount);
}
BENCHMARK(SignalToSlots)->Arg(1)->Arg(16);

}  // namespace
