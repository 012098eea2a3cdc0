#include <benchmark/benchmark.h>

#include <cstdint>
#include <unordered_map>

#include "TFFramework/Utilities/Storage/HashedList.h"
#include "TFFramework/Utilities/Storage/PurgableObjectCache.h"

// Look-ups among as many keys as the program's caches hold, beside std::unordered_map.

namespace {

constexpr std::int32_t kKeys = 256;

std::int32_t Identity(const std::int32_t& value) {
  return value;
}
std::uint32_t Bucket(const std::int32_t& key) {
  return static_cast<std::uint32_t>(key) & 0xFF;
}

// Visits the keys in an order that no prefetcher guesses.
class KeyOrder {
 public:
  std::int32_t Next() {
    mState = mState * 1664525u + 1013904223u;
    return static_cast<std::int32_t>(mState >> 24) % kKeys;
  }

 private:
  std::uint32_t mState = 1;
};

void HashedListFind(benchmark::State& state) {
  TF::HashedList<std::int32_t, std::int32_t, Identity, 8, Bucket> list;
  for (std::int32_t i = 0; i < kKeys; ++i) list.Set(i);
  KeyOrder order;
  for (auto _ : state) benchmark::DoNotOptimize(list.Find(order.Next(), nullptr));
}
BENCHMARK(HashedListFind);

class LObject : public TF::LRefCountedObject {};

void PurgableObjectCacheFind(benchmark::State& state) {
  TF::PurgableObjectCache<LObject, std::int32_t, std::int32_t, Identity, 8, Bucket> cache(kKeys);
  for (std::int32_t i = 0; i < kKeys; ++i) *cache.Find(i) = TF::MakeRC<LObject>();
  KeyOrder order;
  for (auto _ : state) benchmark::DoNotOptimize(cache.Find(order.Next()));
}
BENCHMARK(PurgableObjectCacheFind);

void UnorderedMapFind(benchmark::State& state) {
  std::unordered_map<std::int32_t, std::int32_t> map;
  for (std::int32_t i = 0; i < kKeys; ++i) map[i] = i;
  KeyOrder order;
  for (auto _ : state) benchmark::DoNotOptimize(map.find(order.Next()));
}
BENCHMARK(UnorderedMapFind);

}  // namespace
