#include "TFFramework/Utilities/Storage/RCPtrArray.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

namespace CountedTestTypes {

// Runs a wish with its last breath.
class LItem : public virtual TF::LRefCountedObject {
 public:
  explicit LItem(int value = 0) : mValue(value) { ++sAlive; }
  ~LItem() override {
    --sAlive;
    if (mLastWish) mLastWish();
  }
  TF::RCPtr<TF::LRefCountedObject> CreateCopy() const override { return TF::MakeRC<LItem>(mValue); }

  static int sAlive;
  const int mValue;
  std::function<void()> mLastWish;
};
int LItem::sAlive = 0;

class LNoCopy : public virtual TF::LRefCountedObject {};

}  // namespace CountedTestTypes

namespace {

using CountedTestTypes::LItem;
using CountedTestTypes::LNoCopy;
using TF::ConstRCPtr;
using TF::ConstRCPtrArray;
using TF::kInvalidArgument;
using TF::MakeRC;
using TF::RCPtr;
using TF::RCPtrArray;

class RCPtrArrayTest : public testing::Test {
 protected:
  void SetUp() override { LItem::sAlive = 0; }
  void TearDown() override { EXPECT_EQ(LItem::sAlive, 0); }
};

RCPtrArray<LItem> Filled(int count) {
  RCPtrArray<LItem> list;
  for (int i = 0; i < count; ++i) list.Add(MakeRC<LItem>(i));
  return list;
}

std::vector<int> Values(const RCPtrArray<LItem>& list) {
  std::vector<int> values;
  for (const RCPtr<LItem>& item : list) values.push_back(item ? item->mValue : -1);
  return values;
}

template <class Function>
std::string TextOf(Function function) {
  try {
    function();
  } catch (const TF::ExceptionBase& exception) {
    return exception.What();
  }
  return "no exception";
}

TEST_F(RCPtrArrayTest, HoldsOneReferencePerSlot) {
  const auto item = MakeRC<LItem>(1);
  RCPtrArray<LItem> list;
  list.Add(item);
  list.Add(item);
  EXPECT_EQ(item->GetRefCount(), 3);
  RCPtrArray<LItem> copy(list);
  EXPECT_EQ(item->GetRefCount(), 5);
  copy = list;
  EXPECT_EQ(item->GetRefCount(), 5);
  RCPtr<LItem> out;
  EXPECT_EQ(list.RemoveItem(0, out), 1);
  EXPECT_EQ(item->GetRefCount(), 5) << "the slot's reference moves";
  copy.Clear();
  list.SetCount(5);
  EXPECT_FALSE(list[4]);
  list.Swap(0, 4);
  EXPECT_EQ(list[4], item);
  EXPECT_EQ(item->GetRefCount(), 3);
  list.SetCount(0);
  EXPECT_EQ(item->GetRefCount(), 2);
}

TEST_F(RCPtrArrayTest, StoresACopyOfAnUnshareableObject) {
  auto item = MakeRC<LItem>(7);
  item->SetUnshareable(true);
  RCPtrArray<LItem> list;
  list.Add(item);
  EXPECT_NE(list[0], item);
  EXPECT_EQ(list[0]->mValue, 7);
  EXPECT_EQ(item->GetRefCount(), 1);
}

TEST_F(RCPtrArrayTest, StaysAsItIsWhenAnObjectCannotBeCopied) {
  const auto item = MakeRC<LNoCopy>();
  item->SetUnshareable(true);
  RCPtrArray<LNoCopy> list;
  EXPECT_THROW(list.Add(item), std::logic_error);
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(item->GetRefCount(), 1);
}

TEST_F(RCPtrArrayTest, NamesItselfWhenAnItemIsNotThere) {
  RCPtrArray<LItem> list = Filled(2);
  ConstRCPtrArray<LItem, 256, 256> constant;
  RCPtr<LItem> out;
  ConstRCPtr<LItem> constOut;
  const std::string expected =
      "Out of Range : TF::RCPtrArray<class CountedTestTypes::LItem,1,0>::RemoveItem : ";
  for (const std::int32_t index : {2, -1}) {
    EXPECT_EQ(TextOf([&] { list.RemoveItem(index, out); }).substr(0, expected.size()), expected);
  }
  const std::string expectedConst =
      "Out of Range : TF::ConstRCPtrArray<class CountedTestTypes::LItem,256,256>::RemoveItem : ";
  EXPECT_EQ(TextOf([&] { constant.RemoveLast(constOut); }).substr(0, expectedConst.size()), expectedConst);
  EXPECT_EQ(list.RemoveItems(1, 2), kInvalidArgument);
}

TEST_F(RCPtrArrayTest, ReadsAsConstThroughItsReadOnlyForm) {
  RCPtrArray<LItem> list = Filled(3);
  const ConstRCPtrArray<LItem>& constant = list;
  EXPECT_EQ(constant.GetCount(), 3);
  EXPECT_EQ(constant[2].Get(), list[2].Get());
  int sum = 0;
  for (const ConstRCPtr<LItem>& item : constant) sum += item->mValue;
  EXPECT_EQ(sum, 3);
  ConstRCPtrArray<LItem> copy(constant);
  copy.Append(constant);
  EXPECT_EQ(copy.GetCount(), 6);
  EXPECT_EQ(list[0]->GetRefCount(), 3);
}

TEST_F(RCPtrArrayTest, MayBeItsOwnSource) {
  RCPtrArray<LItem> list = Filled(3);
  list.Append(list);
  list.AppendFast(list);
  EXPECT_EQ(list.GetCount(), 12);
  list.SetCount(3);
  list.Assign(list);
  list.Add(list[0]);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 1, 2, 0}));
}

TEST_F(RCPtrArrayTest, TakesAListThatOneOfItsOwnObjectsOwns) {
  struct LParent : LItem {
    RCPtrArray<LItem> mChildren = Filled(4);
  };
  auto parent = MakeRC<LParent>();
  RCPtrArray<LItem> list;
  list.Add(parent);
  const RCPtrArray<LItem>& children = parent->mChildren;
  parent = nullptr;
  list.Assign(children);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 1, 2, 3}));
}

// Each way to drop objects, while the first of them to die empties or fills the list.
TEST_F(RCPtrArrayTest, IsInItsNewShapeWhenDroppedObjectsDie) {
  using List = RCPtrArray<LItem>;
  const std::vector<std::pair<const char*, std::function<void(List&)>>> drops = {
      {"remove one",
       [](List& list) {
         RCPtr<LItem> out;
         list.RemoveItem(1, out);
       }},
      {"remove some", [](List& list) { list.RemoveItems(1, 2); }},
      {"set count", [](List& list) { list.SetCount(1); }},
      {"clear", [](List& list) { list.Clear(); }},
      {"assign", [](List& list) { list = Filled(2); }},
      {"slot", [](List& list) { list[1] = nullptr; }},
  };
  const std::vector<std::pair<const char*, std::function<void(List&)>>> wishes = {
      {"clear", [](List& list) { list.Clear(); }},
      {"add", [](List& list) { list.Add(MakeRC<LItem>(9)); }},
      {"remove last",
       [](List& list) {
         if (list.GetCount() > 0) list.RemoveItems(list.GetCount() - 1, 1);
       }},
  };
  for (const auto& [dropName, drop] : drops) {
    for (const auto& [wishName, wish] : wishes) {
      SCOPED_TRACE(testing::Message() << dropName << ", " << wishName);
      List list = Filled(4);
      int wished = 0;
      list[1]->mLastWish = [&, wish = wish] {
        ++wished;
        wish(list);
      };
      drop(list);
      EXPECT_EQ(wished, 1);
      for (const RCPtr<LItem>& item : list) EXPECT_TRUE(!item || item->GetRefCount() == 1);
    }
  }
}

TEST_F(RCPtrArrayTest, LetsDyingObjectsUseAListThatIsBeingDestroyed) {
  RCPtrArray<LItem> list = Filled(5);
  RCPtrArray<LItem>* const address = &list;
  list[1]->mLastWish = [address] { address->RemoveItems(3, 1); };
  list[2]->mLastWish = [address] { address->Add(MakeRC<LItem>(5)); };
  list[4]->mLastWish = [address] { address->RemoveItems(0, 1); };
}

TEST_F(RCPtrArrayTest, ReleasesWhatOutHeldLast) {
  RCPtrArray<LItem> list = Filled(3);
  auto out = MakeRC<LItem>(8);
  std::int32_t seen = -1;
  out->mLastWish = [&] { seen = list.GetCount(); };
  EXPECT_EQ(list.RemoveLast(out), 2);
  EXPECT_EQ(seen, 2);
  EXPECT_EQ(out->mValue, 2);
}

TEST_F(RCPtrArrayTest, FollowsAVectorThroughRandomChanges) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  RCPtrArray<LItem, 16, 16> list;
  std::vector<RCPtr<LItem>> model;
  for (int round = 0; round < 3000; ++round) {
    const auto count = static_cast<std::int32_t>(model.size());
    const auto index = static_cast<std::int32_t>(random() % (model.size() + 1));
    switch (random() % 4) {
      case 0:
      case 1:
        model.insert(model.begin() + index, MakeRC<LItem>(round));
        list.InsertAt(index, model[static_cast<std::size_t>(index)]);
        break;
      case 2:
        if (index < count) list.RemoveItems(index, (count - index) / 8 + 1);
        if (index < count)
          model.erase(model.begin() + index, model.begin() + index + (count - index) / 8 + 1);
        break;
      default:
        list.SetCount(index);
        model.resize(static_cast<std::size_t>(index));
    }
    ASSERT_EQ(std::vector<RCPtr<LItem>>(list.begin(), list.end()), model);
  }
  model.clear();
  EXPECT_EQ(LItem::sAlive, list.GetCount());
}

TEST_F(RCPtrArrayTest, CanItselfBeShared) {
  auto list = MakeRC<TF::LRCPtrArray<LItem>>();
  const RCPtr<TF::LRefCountedObject> tag(list);
  list->SetCount(3);
  (*list)[2] = MakeRC<LItem>(4);
  EXPECT_EQ(list->GetRefCount(), 2);
  EXPECT_EQ(list->GetAt(2)->mValue, 4);
}

}  // namespace
