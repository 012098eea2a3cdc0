#include "TFFramework/Threads/ReuseBufferAllocator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace TF {
namespace {

constexpr std::size_t kLargest = ReuseBufferAllocator::kLargestClassBytes;

TEST(ReuseBufferAllocatorTest, FreedBlockServesItsOwnSizeClassOnly) {
  struct Case {
    std::size_t freed;
    std::size_t asked;
    bool same;
  };
  constexpr Case kCases[] = {{0, 16, true},       {1, 16, true},     {16, 17, false},
                             {17, 32, true},      {33, 32, false},   {300, 512, true},
                             {513, 512, false},   {513, 1024, true}, {kLargest / 2 + 1, kLargest, true},
                             {kLargest, 1, false}};
  for (const Case& c : kCases) {
    ReuseBufferAllocator allocator;
    void* freed = allocator.Allocate(c.freed);
    allocator.Free(freed);
    void* asked = allocator.Allocate(c.asked);
    std::memset(asked, 1, c.asked);
    EXPECT_EQ(asked == freed, c.same) << c.freed << " " << c.asked;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(asked) % alignof(std::max_align_t), 0U);
    allocator.Free(asked);
  }
}

TEST(ReuseBufferAllocatorTest, RetainsNoMoreThanItsLimit) {
  ReuseBufferAllocator allocator;
  std::vector<void*> blocks;
  for (std::size_t size = 16; size <= kLargest; size *= 4) {
    for (std::size_t sum = 0; sum < ReuseBufferAllocator::kRetainedBytesLimit; sum += size) {
      blocks.push_back(allocator.Allocate(size));
    }
  }
  EXPECT_EQ(allocator.GetRetainedBytes(), 0U);
  for (void* block : blocks) allocator.Free(block);
  EXPECT_EQ(allocator.GetRetainedBytes(), ReuseBufferAllocator::kRetainedBytesLimit);
}

TEST(ReuseBufferAllocatorTest, BlocksAboveTheLargestClassAreNotKept) {
  ReuseBufferAllocator allocator;
  void* block = allocator.Allocate(kLargest + 1);
  std::memset(block, 1, kLargest + 1);
  allocator.Free(block);
  EXPECT_EQ(allocator.GetRetainedBytes(), 0U);
}

TEST(ReuseBufferAllocatorTest, ReallocateKeepsTheContentsOnEveryRoad) {
  constexpr std::size_t kSizes[] = {1, 10, 16, 17, 5000, kLargest, kLargest + 1, 2 * kLargest};
  ReuseBufferAllocator allocator;
  for (const std::size_t from : kSizes) {
    for (const std::size_t to : kSizes) {
      auto* block = static_cast<unsigned char*>(allocator.Reallocate(nullptr, from));
      for (std::size_t i = 0; i < from; ++i) block[i] = static_cast<unsigned char>(i * 7);
      block = static_cast<unsigned char*>(allocator.Reallocate(block, to));
      std::size_t wrong = 0;
      for (std::size_t i = 0; i < from && i < to; ++i) wrong += block[i] != static_cast<unsigned char>(i * 7);
      EXPECT_EQ(wrong, 0U) << from << " " << to;
      std::memset(block, 0xFF, to);
      allocator.Free(block);
    }
  }
}

TEST(ReuseBufferAllocatorTest, ZeroedBlockIsZeroAfterADirtyOne) {
  ReuseBufferAllocator allocator;
  void* dirty = allocator.Allocate(64);
  std::memset(dirty, 0xFF, 64);
  allocator.Free(dirty);
  auto* zeroed = static_cast<const char*>(allocator.AllocateZeroed(4, 16));
  EXPECT_EQ(zeroed, dirty);
  EXPECT_EQ(std::vector<char>(zeroed, zeroed + 64), std::vector<char>(64));
  allocator.Free(dirty);
}

TEST(ReuseBufferAllocatorTest, SizesThatOverflowGiveNullAndKeepTheBlock) {
  ReuseBufferAllocator allocator;
  EXPECT_EQ(allocator.Allocate(SIZE_MAX), nullptr);
  EXPECT_EQ(allocator.AllocateZeroed(SIZE_MAX / 2, 3), nullptr);
  auto* block = static_cast<char*>(allocator.Allocate(16));
  block[15] = 'x';
  EXPECT_EQ(allocator.Reallocate(block, SIZE_MAX - 8), nullptr);
  EXPECT_EQ(block[15], 'x');
  allocator.Free(block);
  allocator.Free(nullptr);
}

TEST(ReuseBufferAllocatorTest, ThreadsNeverShareABlock) {
  IAllocator& allocator = GetReuseBufferAllocator();
  const auto use = [&allocator](unsigned char mark) {
    for (std::size_t i = 0; i < 5000; ++i) {
      const std::size_t size = 1 + i * 13 % 600;
      auto* block = static_cast<unsigned char*>(allocator.Allocate(size));
      std::memset(block, mark, size);
      ASSERT_EQ(block[size - 1], mark);
      allocator.Free(block);
    }
  };
  std::vector<std::thread> threads;
  for (unsigned char mark = 1; mark <= 4; ++mark) threads.emplace_back(use, mark);
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace TF
