#include "TFFramework/Threads/ReuseAllocator.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Threads/Event.h"
#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

using Block = std::array<char, 40>;

TEST(ReuseAllocatorTest, LastFreedBlockIsTheNextToGoOut) {
  ReuseAllocator<Block, 4> allocator(false);
  std::vector<void*> blocks;
  for (int i = 0; i < 10; ++i) {
    blocks.push_back(allocator.Allocate(sizeof(Block)));
    std::memset(blocks.back(), i, sizeof(Block));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % alignof(std::max_align_t), 0U);
  }
  for (const int i : {3, 7, 0}) allocator.Free(blocks[static_cast<std::size_t>(i)]);
  for (const int i : {0, 7, 3}) {
    EXPECT_EQ(allocator.Allocate(sizeof(Block)), blocks[static_cast<std::size_t>(i)]) << i;
  }
  for (int i = 0; i < 10; ++i) EXPECT_EQ(static_cast<char*>(blocks[static_cast<std::size_t>(i)])[39], i);
  allocator.Free(nullptr);
}

TEST(ReuseAllocatorTest, OtherSizesComeFromTheHeapAndGoBackThere) {
  ReuseAllocator<Block, 1> allocator(true);
  for (const std::size_t size : {std::size_t{1}, sizeof(Block) - 1, sizeof(Block) + 1, std::size_t{100000}}) {
    void* other = allocator.Allocate(size);
    std::memset(other, 1, size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(other) % alignof(std::max_align_t), 0U);
    allocator.Free(other);
    void* block = allocator.Allocate(sizeof(Block));
    EXPECT_NE(block, other);
    allocator.Free(block);
  }
}

class Recycled : public virtual LRefCountedObject {
 public:
  static void* operator new(std::size_t size) { return Blocks().Allocate(size); }
  static void operator delete(void* pointer) { Blocks().Free(pointer); }

 private:
  static ReuseAllocator<Recycled, 4>& Blocks() {
    static auto& blocks = *new ReuseAllocator<Recycled, 4>(true);
    return blocks;
  }
};

class Derived : public Recycled {
 public:
  std::array<char, 100> mBytes{};
};

TEST(ReuseAllocatorTest, CountedObjectsRecycleTheirBlocksAndDerivedOnesDoNot) {
  RCPtr<Recycled> first = MakeRC<Recycled>();
  const Recycled* const address = first.Get();
  first = nullptr;
  RCPtr<Recycled> derived(new Derived);
  EXPECT_NE(derived.Get(), address);
  derived = nullptr;
  EXPECT_EQ(MakeRC<Recycled>().Get(), address);
}

// One thread makes, another drops, as the MIDI threads do.
TEST(ReuseAllocatorTest, BlocksTravelBetweenThreads) {
  constexpr int kRounds = 2000;
  constexpr int kBatch = 8;
  ReuseAllocator<Block, 1> allocator(true);
  std::array<void*, kBatch> blocks{};
  Event full(true);
  Event empty(true);
  empty.Set();
  std::thread dropper([&] {
    for (int i = 0; i < kRounds; ++i) {
      ASSERT_EQ(full.Wait(kTestWait), kWaitSignalled);
      const auto batch = blocks;
      empty.Set();
      for (void* block : batch) {
        ASSERT_EQ(*static_cast<int*>(block), i);
        allocator.Free(block);
      }
    }
  });
  for (int i = 0; i < kRounds; ++i) {
    std::array<void*, kBatch> batch{};
    for (void*& block : batch) *static_cast<int*>(block = allocator.Allocate(sizeof(Block))) = i;
    ASSERT_EQ(empty.Wait(kTestWait), kWaitSignalled);
    blocks = batch;
    full.Set();
  }
  dropper.join();
}

}  // namespace
}  // namespace TF
