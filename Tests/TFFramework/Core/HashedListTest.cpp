#include "TFFramework/Utilities/Storage/HashedList.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "TFFramework/Utilities/Storage/RCPtrMap.h"

namespace {

using TF::ConstRCPtr;
using TF::MakeRC;
using TF::RCPtr;

struct Glyph {
  long mCode = 0;
  int mWidth = 0;
};

long CodeOf(const Glyph& glyph) {
  return glyph.mCode;
}
using GlyphList = TF::HashedList<Glyph, long, CodeOf, 8, TF::GetBits<8, 0, long>>;

TEST(HashedList, TakesTheBucketFromTheBitsOfTheKey) {
  const struct {
    std::uint32_t bucket, expected;
  } cases[] = {
      {TF::GetBits<8, 4, int>(0x12345), 0x34}, {TF::GetBits<8, 4, int>(-1), 0xFF},
      {TF::GetBits<8, 0, long>(0x1FF), 0xFF},  {TF::GetBits<8, 0, long>(-256), 0x00},
      {TF::GetBits<4, 4, int>(0x12345), 0x4},
  };
  for (const auto& row : cases) EXPECT_EQ(row.bucket, row.expected);
}

TEST(HashedList, FollowsAMapThroughRandomChanges) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  GlyphList list;
  std::map<long, int> model;
  for (int round = 0; round < 20000; ++round) {
    const long key = static_cast<long>(random() % 1500) - 700;
    if (random() % 3 != 0) {
      ASSERT_EQ(list.Set({key, round}), model.count(key) == 0);
      model[key] = round;
    } else {
      ASSERT_EQ(list.Remove(key), model.erase(key) == 1);
    }
    ASSERT_EQ(list.GetCount(), static_cast<std::int32_t>(model.size()));
    const long asked = static_cast<long>(random() % 1500) - 700;
    const Glyph* found = list.Find(asked);
    ASSERT_EQ(found != nullptr, model.count(asked) == 1);
    if (found) {
      ASSERT_EQ(found->mWidth, model[asked]);
    }
  }
  list.Clear();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(list.Find(model.begin()->first), nullptr);
}

TEST(HashedList, GivesTheFallbackForAKeyThatIsNotThere) {
  GlyphList list;
  Glyph fallback;
  list.Set({1, 10});
  EXPECT_EQ(list.Find(257, &fallback), &fallback) << "same bucket, other key";
  EXPECT_NE(list.Find(1, &fallback), &fallback);
}

TEST(Pair, IsShownByTheTextOfItsKey) {
  const auto byName = MakeRC<TF::LPair<TF::String, int>>(u"Gain", 3);
  const auto byNumber = MakeRC<TF::LPair<int, int>>(-12, 3);
  EXPECT_EQ(byName->ToString(), u"Gain");
  EXPECT_EQ(byNumber->ToString(), u"-12");
}

class LFace : public virtual TF::LRefCountedObject {
 public:
  explicit LFace(std::function<void()> lastWish = nullptr) : mLastWish(std::move(lastWish)) {}
  ~LFace() override {
    if (mLastWish) mLastWish();
  }

 private:
  const std::function<void()> mLastWish;
};

using FaceMap = TF::RCPtrMap<LFace, LFace, 8>;

TEST(RCPtrMap, KeepsValuesByTheAddressOfTheirKey) {
  FaceMap map;
  std::vector<ConstRCPtr<LFace>> keys;
  std::vector<RCPtr<LFace>> values;
  for (int i = 0; i < 600; ++i) {
    keys.push_back(MakeRC<LFace>());
    values.push_back(MakeRC<LFace>());
    EXPECT_TRUE(map.Set(keys.back(), values.back()));
  }
  EXPECT_FALSE(map.Set(keys[5], values[6]));
  EXPECT_EQ(map.GetCount(), 600);
  EXPECT_EQ(map.GetValue(keys[5]), values[6]);
  EXPECT_EQ(map.GetConstValue(keys[599]), values[599]);
  EXPECT_EQ(values[5]->GetRefCount(), 1);
  EXPECT_TRUE(map.Remove(keys[7]));
  EXPECT_FALSE(map.Remove(keys[7]));
  EXPECT_EQ(keys[7]->GetRefCount(), 1);
  map.Clear();
  EXPECT_EQ(map.GetCount(), 0);
  EXPECT_EQ(keys[0]->GetRefCount(), 1);
}

TEST(RCPtrMap, GivesASharedNullForAMissingKey) {
  FaceMap map;
  const ConstRCPtr<LFace> key(MakeRC<LFace>());
  const RCPtr<LFace>& missing = map.GetValue(key);
  EXPECT_FALSE(missing);
  EXPECT_EQ(&missing, &FaceMap().GetValue(nullptr));
  EXPECT_FALSE(map.GetConstValue(key));
}

TEST(RCPtrMap, IsInItsNewShapeWhenDroppedObjectsDie) {
  FaceMap map;
  const ConstRCPtr<LFace> key(MakeRC<LFace>());
  std::vector<std::int32_t> counts;
  const auto tell = [&] { counts.push_back(map.GetCount()); };
  map.Set(key, MakeRC<LFace>(tell));
  map.Set(key, MakeRC<LFace>([&] {
            tell();
            map.Remove(key);
          }));
  map.Set(key, MakeRC<LFace>(tell));
  EXPECT_EQ(counts, (std::vector<std::int32_t>{1, 1, 0})) << "the second value took the third with it";
  map.Set(key, MakeRC<LFace>(tell));
  map.Clear();
  EXPECT_EQ(counts.back(), 0);
}

}  // namespace
