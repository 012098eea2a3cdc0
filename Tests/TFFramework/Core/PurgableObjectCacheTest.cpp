#include "TFFramework/Utilities/Storage/PurgableObjectCache.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using TF::MakeRC;
using TF::RCPtr;

class LPicture : public virtual TF::LRefCountedObject {
 public:
  explicit LPicture(char name) : mName(name) {}
  const char mName;
};

struct Descriptor {
  char mName;
};

int KeyOf(const Descriptor& descriptor) {
  return descriptor.mName;
}

class Cache : public TF::PurgableObjectCache<LPicture, Descriptor, int, KeyOf, 8, TF::GetBits<8, 0, int>> {
 public:
  using PurgableObjectCache::PurgableObjectCache;

  // As a user does it: '+' for an object that had to be made, '=' for one that was there.
  char Use(char name, bool reset = false) {
    RCPtr<LPicture>* place = Find({name}, reset);
    const bool isThere = static_cast<bool>(*place);
    if (!isThere) *place = MakeRC<LPicture>(name);
    EXPECT_EQ((*place)->mName, name);
    return isThere ? '=' : '+';
  }

  std::string Use(std::string_view names) {
    std::string results;
    for (const char name : names) results += Use(name);
    return results;
  }
};

TEST(PurgableObjectCache, LetsTheLongestUnusedEntryMakeRoom) {
  const struct {
    int capacity;
    const char *accesses, *results;
  } cases[] = {
      {2, "ABACAB", "++=+=+"},    // C replaces B
      {2, "ABCABC", "++++++"},    // round and round
      {1, "AABA", "+=++"},        //
      {3, "ABCDBCD", "++++==="},  // D replaces A
      {3, "ABCADBC", "+++=+++"},  // D replaces B, B replaces C, C replaces A
  };
  for (const auto& row : cases) {
    Cache cache(row.capacity);
    EXPECT_EQ(cache.Use(row.accesses), row.results) << row.accesses;
  }
}

TEST(PurgableCacheEntry, MakesRoomByAgeAndThenByUses) {
  using Entry = TF::PurgableCacheEntry<LPicture, int>;
  struct Use {
    std::uint32_t last, count;
  };
  const struct {
    std::uint32_t clock;
    Use one, other;
    bool goesFirst;
  } cases[] = {
      {9, {3, 8}, {4, 1}, true},  {9, {4, 1}, {3, 8}, false},
      {9, {3, 1}, {3, 2}, true},  {9, {3, 2}, {3, 1}, false},
      {9, {3, 2}, {3, 2}, false}, {2, {0xFFFFFFFF, 5}, {1, 5}, true},  // the clock has wrapped
  };
  for (const auto& row : cases) {
    Entry one;
    Entry other;
    one.mLastUse = row.one.last;
    one.mUseCount = row.one.count;
    other.mLastUse = row.other.last;
    other.mUseCount = row.other.count;
    EXPECT_EQ(one.GoesBefore(other, row.clock), row.goesFirst) << row.one.last << ", " << row.other.last;
  }
}

TEST(PurgableObjectCache, MakesTheObjectAnewAfterAReset) {
  Cache cache(2);
  EXPECT_EQ(cache.Use('A'), '+');
  EXPECT_EQ(cache.Use('A', true), '+');
  EXPECT_EQ(cache.Use('A'), '=');
  EXPECT_EQ(cache.Use('B', true), '+') << "a reset of what is not there";
}

TEST(PurgableObjectCache, PurgesWhatWasLastUsedBeforeTheGivenClock) {
  Cache cache(3);
  cache.Use("ABC");
  EXPECT_EQ(cache.Purge(cache.GetPurgeClock()), 0) << "one whole period to live";
  cache.SetPurgeClock(cache.GetClock());
  cache.Use("C");
  EXPECT_EQ(cache.Purge(cache.GetPurgeClock()), 2);
  EXPECT_EQ(cache.Use("CAB"), "=++");
}

TEST(PurgableObjectCache, TakesAnEmptyEntryBeforeTheOldest) {
  Cache cache(2);
  cache.Use("A");
  *cache.Find({'B'}) = nullptr;
  EXPECT_EQ(cache.Use("CA"), "+=") << "A is older, B is empty";
  EXPECT_EQ(cache.Use("B"), "+");
}

TEST(PurgableObjectCache, ReleasesTheVictimOnceTheNewEntryStands) {
  struct LReporter : LPicture {
    LReporter(Cache& cache, int& found) : LPicture('A'), mCache(cache), mFound(found) {}
    ~LReporter() override { mFound = *mCache.Find({'B'}) ? 2 : 1; }
    Cache& mCache;
    int& mFound;
  };
  Cache cache(1);
  int found = 0;
  *cache.Find({'A'}) = MakeRC<LReporter>(cache, found);
  RCPtr<LPicture>* const place = cache.Find({'B'});
  EXPECT_EQ(found, 1) << "B has its entry and no object yet";
  EXPECT_FALSE(*place);
}

TEST(PurgableObjectCache, NeedsACapacity) {
  EXPECT_THROW(Cache(0), std::invalid_argument);
}

}  // namespace
