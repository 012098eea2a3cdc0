#pragma once

#include <stdexcept>
#include <vector>

#include "TFFramework/Utilities/Storage/HashedList.h"

namespace TF {

// One place of a cache.
template <class T, class K>
struct PurgableCacheEntry {
  virtual ~PurgableCacheEntry() = default;
  virtual bool IsEmpty() const { return !mValue; }

  // Forgets the use and gives the object back, for the caller to release when all is done.
  RCPtr<T> Empty() {
    mLastUse = 0;
    mUseCount = 0;
    return std::exchange(mValue, nullptr);
  }

  // True when this entry makes room before the other: it is older, or as old with fewer uses.
  bool GoesBefore(const PurgableCacheEntry& other, std::uint32_t clock) const {
    const std::uint32_t age = clock - mLastUse;
    const std::uint32_t otherAge = clock - other.mLastUse;
    return age != otherAge ? age > otherAge : mUseCount < other.mUseCount;
  }

  K mKey = K();
  RCPtr<T> mValue;
  // Clock of the last access.
  std::uint32_t mLastUse = 0;
  std::uint32_t mUseCount = 0;
};

// Bounded cache of objects by the key of a descriptor. When it is full, the entry that was
// not used for longest makes room, among equals the one with fewer uses. Time is a count of
// accesses. Not thread-safe.
template <class T, class Descriptor, class K, auto KeyFunction, int Bits, auto HashFunction>
class PurgableObjectCache {
  using Entry = PurgableCacheEntry<T, K>;

 public:
  // Throws invalid_argument for a capacity below 1.
  explicit PurgableObjectCache(std::int32_t capacity) : mCapacity(capacity) {
    if (capacity < 1) Throw<std::invalid_argument>("", "TF::PurgableObjectCache::PurgableObjectCache");
    mEntries.resize(static_cast<std::size_t>(capacity));
  }
  PurgableObjectCache(const PurgableObjectCache&) = delete;
  PurgableObjectCache& operator=(const PurgableObjectCache&) = delete;

  // The pointer that belongs to the descriptor, never a null address. Where it points at
  // nothing the caller makes the object and stores it there. With reset an object already
  // there is dropped. The address is good until the next call.
  RCPtr<T>* Find(const Descriptor& descriptor, bool reset = false) {
    const K key = KeyFunction(descriptor);
    Entry** const found = mKeys.Find(key);
    if (found && !reset) return Touch(**found);
    RCPtr<T> dying;
    Entry* const entry = found ? *found : TakeOver(key, dying);
    if (found) dying = entry->Empty();
    return Touch(*entry);
  }

  // Empties every entry that was last used before the clock value since; their keys stay.
  // Gives the number of entries.
  std::int32_t Purge(std::uint32_t since) {
    std::vector<RCPtr<T>> dying;
    for (Entry& entry : mEntries) {
      if (static_cast<std::int32_t>(entry.mLastUse - since) < 0) dying.push_back(entry.Empty());
    }
    return static_cast<std::int32_t>(dying.size());
  }

  std::int32_t GetCapacity() const { return mCapacity; }
  // Accesses so far; wraps around.
  std::uint32_t GetClock() const { return mClock; }
  // The clock of the last purge, kept here for whoever purges.
  std::uint32_t GetPurgeClock() const { return mPurgeClock; }
  void SetPurgeClock(std::uint32_t clock) { mPurgeClock = clock; }

 private:
  static const K& KeyOf(Entry* const& entry) { return entry->mKey; }

  // An entry for a new key: one never used, one without an object, or the victim. Its former
  // object goes to dying.
  Entry* TakeOver(const K& key, RCPtr<T>& dying) {
    Entry* entry = nullptr;
    if (mKeys.GetCount() < mCapacity) {
      entry = &mEntries[static_cast<std::size_t>(mKeys.GetCount())];
    } else {
      entry = &FindVictim();
      mKeys.Remove(entry->mKey);
    }
    dying = entry->Empty();
    entry->mKey = key;
    mKeys.Set(entry);
    return entry;
  }

  Entry& FindVictim() {
    Entry* victim = &mEntries.front();
    for (Entry& entry : mEntries) {
      if (entry.IsEmpty()) return entry;
      if (entry.GoesBefore(*victim, mClock)) victim = &entry;
    }
    return *victim;
  }

  RCPtr<T>* Touch(Entry& entry) {
    if (entry.mUseCount < 0xFFFFFFFF) ++entry.mUseCount;
    entry.mLastUse = ++mClock;
    return &entry.mValue;
  }

  const std::int32_t mCapacity;
  std::uint32_t mClock = 0;
  std::uint32_t mPurgeClock = 0;
  std::vector<Entry> mEntries;
  HashedList<Entry*, K, KeyOf, Bits, HashFunction> mKeys;
};

}  // namespace TF
