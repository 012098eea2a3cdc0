#include "TFFramework/Utilities/Storage/ArrayBuffer.h"

#include <gtest/gtest.h>

#include "TFFramework/Utilities/Storage/ArrayBufferM.h"

namespace {

// The system's heap with a count of the blocks in use and of the bytes last asked for.
class CountingAllocator final : public TF::IAllocator {
 public:
  void* Allocate(std::size_t size) override {
    ++mBlocks;
    mLastSize = size;
    return TF::GetSystemAllocator().Allocate(size);
  }
  void* AllocateZeroed(std::size_t count, std::size_t size) override {
    ++mBlocks;
    return TF::GetSystemAllocator().AllocateZeroed(count, size);
  }
  void* Reallocate(void* block, std::size_t size) override {
    mLastSize = size;
    return TF::GetSystemAllocator().Reallocate(block, size);
  }
  void Free(void* block) override {
    --mBlocks;
    TF::GetSystemAllocator().Free(block);
  }

  int mBlocks = 0;
  std::size_t mLastSize = 0;
};

CountingAllocator& Counting() {
  static CountingAllocator allocator;
  return allocator;
}
TF::IAllocator& GetCounting() {
  return Counting();
}

TEST(ArrayBuffer, CountsGrainAndSlackInElements) {
  TF::ArrayBuffer<std::int32_t, 4, 8, 1, 8, GetCounting> list;
  const struct {
    std::int32_t count;
    std::size_t bytes;
  } steps[] = {
      {1, 16},   // rounded up to 4 elements
      {5, 32},   // and to 8
      {20, 80},  //
      {12, 80},  // 8 spare elements stay
      {11, 48},  // 9 do not
  };
  for (const auto& step : steps) {
    list.SetCount(step.count);
    EXPECT_EQ(Counting().mLastSize, step.bytes) << step.count;
  }
}

TEST(ArrayBuffer, RefusesMoreBytesThanABlockCanHave) {
  TF::ArrayBuffer<std::int64_t> list{1, 2};
  EXPECT_THROW(list.SetCount(0x20000001), std::bad_alloc);
  EXPECT_EQ(list.GetCount(), 2);
  EXPECT_EQ(list[1], 2);
}

using Message = TF::ArrayBufferM<signed char, 4, 1, 0, 1, 8, GetCounting>;

Message Counted(std::int32_t count) {
  Message list;
  for (std::int32_t i = 0; i < count; ++i) list.Add(static_cast<signed char>(i + 1));
  return list;
}

TEST(ArrayBufferM, TakesMemoryForMoreThanItsInlineElementsOnly) {
  const struct {
    std::int32_t from, to;
    int blocks;
  } cases[] = {{0, 4, 0}, {4, 0, 0}, {3, 7, 1}, {7, 5, 1}, {7, 4, 0}, {7, 2, 0}, {7, 0, 0}, {5, 5, 1}};
  for (const auto& row : cases) {
    Message list = Counted(row.from);
    list.SetCount(row.to);
    EXPECT_EQ(Counting().mBlocks, row.blocks) << row.from << " to " << row.to;
    ASSERT_EQ(list.GetCount(), row.to);
    for (std::int32_t i = 0; i < row.to; ++i) EXPECT_EQ(list[i], i < row.from ? i + 1 : 0) << i;
  }
  EXPECT_EQ(Counting().mBlocks, 0);
}

TEST(ArrayBufferM, KeepsItsElementsAcrossTheHeapAndBack) {
  Message list = Counted(3);
  list.SetCount(7);
  list.SetCount(2);
  EXPECT_EQ(Counting().mBlocks, 0);
  list.SetCount(7);
  EXPECT_EQ(std::vector<int>(list.begin(), list.end()), (std::vector<int>{1, 2, 0, 0, 0, 0, 0}));
}

TEST(ArrayBufferM, CopiesShareNothing) {
  for (const std::int32_t count : {0, 3, 9}) {
    Message list = Counted(count);
    Message copy(list);
    Message assigned = Counted(6);
    assigned = list;
    list.SetCount(0);
    EXPECT_EQ(copy.GetCount(), count);
    ASSERT_EQ(assigned.GetCount(), count);
    for (std::int32_t i = 0; i < count; ++i) EXPECT_EQ(assigned[i], i + 1);
  }
  EXPECT_EQ(Counting().mBlocks, 0);
}

}  // namespace
