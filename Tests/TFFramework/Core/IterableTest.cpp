#include "TFFramework/Utilities/Storage/Iterable.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "TFFramework/Utilities/Storage/Array.h"
#include "TFFramework/Utilities/Storage/ArrayBuffer.h"
#include "TFFramework/Utilities/Storage/ArrayBufferM.h"
#include "TFFramework/Utilities/Storage/SimpleFixedArray.h"

namespace {

using TF::kInvalidArgument;
using TF::kSuccess;

constexpr std::int32_t kFixedCapacity = 12;

// Every array of plain values keeps the same promises.
template <class List>
class ArrayOfValues : public testing::Test {};

using Lists = testing::Types<TF::Array<int>, TF::ArrayBuffer<int>, TF::ArrayBuffer<int, 4, 8>,
                             TF::ArrayBufferM<int, 4>, TF::SimpleFixedArray<int, kFixedCapacity>>;
TYPED_TEST_SUITE(ArrayOfValues, Lists);

template <class List>
List Filled(std::int32_t count) {
  List list;
  for (std::int32_t i = 0; i < count; ++i) list.Add(i * 10);
  return list;
}

std::vector<int> Values(const TF::IArray<int>& list) {
  std::vector<int> values;
  for (auto i = list.Begin(); !(i == list.End()); ++i) values.push_back(*i);
  return values;
}

TYPED_TEST(ArrayOfValues, WalksItsElementsBothWays) {
  TypeParam list = Filled<TypeParam>(3);
  std::vector<int> backwards;
  for (auto i = list.RBegin(); !(i == list.REnd()); ++i) backwards.push_back(*i);
  EXPECT_EQ(backwards, (std::vector<int>{20, 10, 0}));
  for (auto i = list.Begin(); !(i == list.End()); ++i) *i += 1;
  int sum = 0;
  for (const int value : static_cast<const TypeParam&>(list)) sum += value;
  EXPECT_EQ(sum, 33);
}

TYPED_TEST(ArrayOfValues, HasNoAddressesWhenEmpty) {
  const TypeParam list;
  EXPECT_EQ(list.First(), nullptr);
  EXPECT_EQ(list.GetBuffer(), nullptr);
  EXPECT_TRUE(list.Begin() == list.End());
  EXPECT_TRUE(list.RBegin() == list.REnd());
  EXPECT_TRUE(list.Advance(list.Begin(), 3) == list.End());
}

TYPED_TEST(ArrayOfValues, AdvancesNoFurtherThanOnePastEitherEnd) {
  TypeParam list = Filled<TypeParam>(3);
  const struct {
    std::int32_t from, step, position;
  } cases[] = {{0, 1, 1},   {0, 3, 3},  {0, 4, 3},   {2, 0x7FFFFFFF, 3},
               {0, -1, -1}, {2, -2, 0}, {2, -5, -1}, {1, -0x7FFFFFFF, -1},
               {1, 0, 1}};
  for (const auto& row : cases) {
    const auto start = list.Advance(list.Begin(), row.from);
    const auto moved = list.Advance(start, row.step);
    const auto expected = reinterpret_cast<std::intptr_t>(list.First()) +
                          row.position * static_cast<std::intptr_t>(sizeof(int));
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(moved.mElement), expected) << row.from << " by " << row.step;
  }
  EXPECT_EQ(list.Advance(list.Begin(), 9).mElement, list.PastLast());
  EXPECT_EQ(list.Advance(list.Begin(), -9).mElement, list.BeforeFirst());
  auto backwards = list.RBegin();
  backwards += 2;
  EXPECT_EQ(*backwards, 0);
}

TYPED_TEST(ArrayOfValues, RefusesIndicesOutOfRangeAndStaysAsItIs) {
  TypeParam list = Filled<TypeParam>(3);
  int out = 77;
  EXPECT_EQ(list.Swap(0, 3), kInvalidArgument);
  EXPECT_EQ(list.Swap(-1, 0), kInvalidArgument);
  EXPECT_EQ(list.InsertAt(4, 1), kInvalidArgument);
  EXPECT_EQ(list.InsertAt(-1, 1), kInvalidArgument);
  EXPECT_EQ(list.InsertItems(4, 1), kInvalidArgument);
  EXPECT_EQ(list.InsertItems(0, -1), kInvalidArgument);
  EXPECT_EQ(list.RemoveItems(3, 0), kInvalidArgument);
  EXPECT_EQ(list.RemoveItems(1, 3), kInvalidArgument);
  EXPECT_EQ(list.RemoveItems(1, 0x7FFFFFFF), kInvalidArgument);
  EXPECT_EQ(list.RemoveItems(1, -1), kInvalidArgument);
  EXPECT_EQ(list.RemoveItem(3, out), kInvalidArgument);
  EXPECT_EQ(list.SetCount(-1), kInvalidArgument);
  EXPECT_EQ(out, 77);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 10, 20}));
}

TYPED_TEST(ArrayOfValues, TellsIndexOrCount) {
  TypeParam list;
  int out = 0;
  EXPECT_EQ(list.Add(1), 0);
  EXPECT_EQ(list.InsertAt(0, 2), 0);
  EXPECT_EQ(list.SetCount(4), 4);
  EXPECT_EQ(list.InsertItems(4, 1), 5);
  EXPECT_EQ(list.RemoveItem(1, out), 4);
  EXPECT_EQ(out, 1);
  EXPECT_EQ(list.RemoveItems(1, 3), 1);
  EXPECT_EQ(list.RemoveLast(out), 0);
  EXPECT_EQ(out, 2);
  EXPECT_EQ(list.Clear(), kSuccess);
}

TYPED_TEST(ArrayOfValues, MayBeItsOwnSource) {
  TypeParam list = Filled<TypeParam>(3);
  list.Append(list);
  EXPECT_EQ(Values(list), (std::vector<int>{0, 10, 20, 0, 10, 20}));
  list.AppendFast(list);
  EXPECT_EQ(list.GetCount(), 12);
  list.SetCount(3);
  list.InsertAt(0, list[2]);
  list.Assign(list);
  EXPECT_EQ(Values(list), (std::vector<int>{20, 0, 10, 20}));
  const TypeParam copy(list);
  list = copy;
  EXPECT_EQ(Values(list), Values(copy));
}

// The same random changes on the array and on a plain vector.
TYPED_TEST(ArrayOfValues, FollowsAVectorThroughRandomChanges) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t limit) { return static_cast<std::int32_t>(random() % limit); };
  TypeParam list;
  std::vector<int> model;
  for (int round = 0; round < 4000; ++round) {
    const std::int32_t count = static_cast<std::int32_t>(model.size());
    const std::int32_t index = below(model.size() + 1);
    const std::int32_t room = std::min(4, list.GetMaxCount() == kFixedCapacity ? kFixedCapacity - count : 4);
    switch (below(5)) {
      case 0:
        if (room == 0) break;
        list.InsertAt(index, round);
        model.insert(model.begin() + index, round);
        break;
      case 1: {
        const std::int32_t added = below(static_cast<std::size_t>(room) + 1);
        ASSERT_EQ(list.InsertItems(index, added), count + added);
        model.insert(model.begin() + index, static_cast<std::size_t>(added), 0);
        break;
      }
      case 2: {
        const std::int32_t wanted = below(kFixedCapacity + 1);
        ASSERT_EQ(list.SetCount(wanted), wanted);
        model.resize(static_cast<std::size_t>(wanted));
        break;
      }
      case 3: {
        if (index == count) break;
        const std::int32_t removed = below(static_cast<std::size_t>(count - index) + 1);
        ASSERT_EQ(list.RemoveItems(index, removed), count - removed);
        model.erase(model.begin() + index, model.begin() + index + removed);
        break;
      }
      default: {
        if (index == count) break;
        int out = -1;
        ASSERT_EQ(list.RemoveItem(index, out), count - 1);
        ASSERT_EQ(out, model[static_cast<std::size_t>(index)]);
        model.erase(model.begin() + index);
      }
    }
    ASSERT_EQ(Values(list), model);
  }
}

TEST(SimpleFixedArray, HoldsNoMoreThanItsSize) {
  TF::SimpleFixedArray<signed char, 6> list;
  EXPECT_EQ(list.GetMaxCount(), 6);
  EXPECT_EQ(list.SetCount(9), 6);
  EXPECT_EQ(list.Add(1), kInvalidArgument);
  list.SetCount(4);
  EXPECT_EQ(list.InsertItems(1, 3), kInvalidArgument);
  EXPECT_EQ(list.InsertItems(1, 2), 6);
  EXPECT_EQ(list.AppendFast(list), kInvalidArgument);
  EXPECT_EQ(list.GetCount(), 6);
}

TEST(Array, RefusesABadIndexWithTheStandardError) {
  TF::Array<int> list{1, 2, 3};
  const auto& constant = list;
  EXPECT_THROW(list.GetAt(3), std::out_of_range);
  EXPECT_THROW(constant.GetAt(-1), std::out_of_range);
  EXPECT_THROW(list[3], std::out_of_range);
}

// Counts the elements alive, and lets the last breath of one of them change the list.
struct Reentrant {
  explicit Reentrant(TF::Array<Reentrant>* list = nullptr) : mList(list) {}
  Reentrant(const Reentrant&) = default;
  Reentrant(Reentrant&& other) noexcept : mList(std::exchange(other.mList, nullptr)) {}
  Reentrant& operator=(const Reentrant&) = default;
  Reentrant& operator=(Reentrant&& other) noexcept {
    mList = std::exchange(other.mList, nullptr);
    return *this;
  }
  ~Reentrant() {
    if (TF::Array<Reentrant>* list = std::exchange(mList, nullptr)) mCountsSeen.push_back(list->GetCount());
  }

  static std::vector<std::int32_t> mCountsSeen;
  TF::Array<Reentrant>* mList;
};
std::vector<std::int32_t> Reentrant::mCountsSeen;

TEST(Array, IsInItsNewShapeWhenRemovedElementsDie) {
  TF::Array<Reentrant> list;
  list.SetCount(8);
  for (Reentrant& element : list) element.mList = &list;
  Reentrant::mCountsSeen.clear();
  {
    Reentrant out;
    list.RemoveItem(0, out);
  }
  list.RemoveItems(1, 2);
  list.SetCount(3);
  list.Clear();
  EXPECT_EQ(Reentrant::mCountsSeen, (std::vector<std::int32_t>{7, 5, 5, 3, 3, 0, 0, 0}));
}

}  // namespace
