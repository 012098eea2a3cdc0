#pragma once

#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "TFFramework/Utilities/Storage/Pair.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// Values of type T that each carry their key. Not thread-safe.
template <class T, class K>
class IHashedList {
 public:
  IHashedList() = default;
  IHashedList(const IHashedList&) = default;
  IHashedList& operator=(const IHashedList&) = default;
  virtual std::int32_t GetCount() const = 0;
  virtual void Clear() = 0;
  // Stores or replaces; true when the key is new.
  virtual bool Set(const T& value) = 0;
  // Address of the stored value, valid until the list changes; fallback without such a key.
  virtual T* Find(const K& key, T* fallback) = 0;
  // False without such a key.
  virtual bool Remove(const K& key) = 0;
  virtual ~IHashedList() = default;
};

// Bits bits of an integer key from bit Shift on, as a bucket index.
template <int Bits, int Shift, class K>
constexpr std::uint32_t GetBits(K key) {
  static_assert(std::is_integral_v<K> && Bits < 32);
  return static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<K>>(key) >> Shift) & ((1u << Bits) - 1);
}

// The buckets behind the hashed containers: 2^Bits short arrays of objects with an mKey,
// searched from their newest entry back. What is removed dies after the count is right again.
template <class Entry, int Bits>
class HashBuckets {
 public:
  std::int32_t GetCount() const { return mCount; }

  // The slot of the entry, or null; only the lowest Bits bits of hash count.
  template <class K>
  RCPtr<Entry>* Find(std::uint32_t hash, const K& key) {
    RCPtrArray<Entry>& bucket = BucketOf(hash);
    RCPtr<Entry>* const first = bucket.begin();
    for (RCPtr<Entry>* entry = bucket.end(); entry != first;) {
      --entry;
      if ((*entry)->mKey == key) return entry;
    }
    return nullptr;
  }

  void Add(std::uint32_t hash, const RCPtr<Entry>& entry) {
    BucketOf(hash).Add(entry);
    ++mCount;
  }

  template <class K>
  bool Remove(std::uint32_t hash, const K& key) {
    RCPtr<Entry>* const entry = Find(hash, key);
    if (!entry) return false;
    RCPtrArray<Entry>& bucket = BucketOf(hash);
    RCPtr<Entry> dying;
    bucket.RemoveItem(static_cast<std::int32_t>(entry - bucket.begin()), dying);
    --mCount;
    return true;
  }

  void Clear() {
    for (RCPtrArray<Entry>& bucket : mBuckets) {
      mCount -= bucket.GetCount();
      bucket.SetCount(0);
    }
  }

 private:
  RCPtrArray<Entry>& BucketOf(std::uint32_t hash) { return mBuckets[hash & ((1u << Bits) - 1)]; }

  std::array<RCPtrArray<Entry>, std::size_t{1} << Bits> mBuckets;
  std::int32_t mCount = 0;
};

// KeyFunction gives a value's key, HashFunction a key's bucket. Meant for as many values as
// there are buckets or a few times more: a bucket is searched linearly.
template <class T, class K, auto KeyFunction, int Bits, auto HashFunction>
class HashedList final : public IHashedList<T, K> {
  using Entry = LPair<K, T>;

 public:
  std::int32_t GetCount() const override { return mBuckets.GetCount(); }
  void Clear() override { mBuckets.Clear(); }

  bool Set(const T& value) override {
    const K key = KeyFunction(value);
    const std::uint32_t hash = HashFunction(key);
    if (RCPtr<Entry>* entry = mBuckets.Find(hash, key)) {
      T other(value);
      std::swap((*entry)->mValue, other);  // The old value dies when nothing here is touched any more.
      return false;
    }
    mBuckets.Add(hash, MakeRC<Entry>(key, value));
    return true;
  }

  T* Find(const K& key, T* fallback = nullptr) override {
    RCPtr<Entry>* const entry = mBuckets.Find(HashFunction(key), key);
    return entry ? &(*entry)->mValue : fallback;
  }

  bool Remove(const K& key) override { return mBuckets.Remove(HashFunction(key), key); }

 private:
  HashBuckets<Entry, Bits> mBuckets;
};

}  // namespace TF
