#include "TFFramework/Utilities/Storage/LBuffer.h"

#include <gtest/gtest.h>

#include "TFFramework/Utilities/Storage/Variant.h"

namespace {

using TF::BufferT;
using TF::GetSystemAllocator;

template <std::uint32_t Grain, std::uint32_t Slack>
using Block = BufferT<Grain, Slack, 8, char*, GetSystemAllocator>;

// Gives blocks until it is told to be exhausted.
class PoorAllocator final : public TF::IAllocator {
 public:
  void* Allocate(std::size_t size) override { return mExhausted ? nullptr : std::malloc(size); }
  void* AllocateZeroed(std::size_t count, std::size_t size) override { return std::calloc(count, size); }
  void* Reallocate(void* block, std::size_t size) override {
    return mExhausted ? nullptr : std::realloc(block, size);
  }
  void Free(void* block) override { std::free(block); }
  bool mExhausted = false;
};

PoorAllocator poorAllocator;
TF::IAllocator& GetPoorAllocator() {
  return poorAllocator;
}

template <class Buffer>
void ExpectCapacities(std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> steps) {
  Buffer buffer;
  for (const auto& [size, capacity] : steps) {
    EXPECT_EQ(buffer.SetSize(size), size);
    EXPECT_EQ(buffer.GetSize(), size);
    EXPECT_EQ(buffer.GetCapacity(), capacity) << "after size " << size;
  }
}

TEST(Buffer, KeepsCapacityWithinGrainAndSlack) {
  ExpectCapacities<Block<1, 0>>({{10, 10}, {9, 9}, {11, 11}, {0, 0}});
  ExpectCapacities<Block<1, 128>>({{1000, 1000}, {872, 1000}, {871, 871}, {1000, 1000}});
  ExpectCapacities<Block<4, 0>>({{1, 4}, {4, 4}, {5, 8}, {1, 4}});
  ExpectCapacities<Block<1024, 1024>>({{2049, 3072}, {2048, 3072}, {2047, 2048}});
}

TEST(Buffer, SetSizeKeepsContentsAndReserveIsExact) {
  Block<16, 0> buffer(3, 100, true);
  EXPECT_EQ(buffer.GetCapacity(), 16u);
  std::memcpy(buffer.GetPointer(), "abc", 3);
  buffer.SetSize(200);
  EXPECT_EQ(std::memcmp(buffer.GetPointer(), "abc", 3), 0);
  const Block<1, 128> reserved(90, 100, true);
  EXPECT_EQ(reserved.GetCapacity(), 100u);
  EXPECT_EQ(buffer.Allocate(0), 0u);
  EXPECT_EQ(buffer.GetPointer(), nullptr);
}

TEST(Buffer, FillsOnlyInsideItsRange) {
  struct Case {
    std::uint32_t offset;
    std::int32_t count;
    TFRESULT result;
    const char* bytes;
  };
  const Case cases[] = {
      {0, -1, TF::kSuccess, "xxxx"},
      {2, -1, TF::kSuccess, "..xx"},
      {4, -1, TF::kSuccess, "...."},
      {5, -1, TF::kInvalidArgument, "...."},
      {1, 2, TF::kSuccess, ".xx."},
      {1, 4, TF::kInvalidArgument, "...."},
      {0xFFFFFFFF, 2, TF::kInvalidArgument, "...."},
  };
  for (const Case& entry : cases) {
    Block<1, 0> buffer(4);
    buffer.Fill('.', 0, -1);
    EXPECT_EQ(buffer.Fill('x', entry.offset, entry.count), entry.result);
    EXPECT_EQ(std::string(buffer.GetPointer(), 4), entry.bytes);
  }
  Block<1, 0> buffer(5, 0, true);
  EXPECT_EQ(buffer.Fill16(0x2E2E, 1, -1), TF::kSuccess);
  EXPECT_EQ(std::string(buffer.GetPointer(), 5), std::string("\0....", 5));
  EXPECT_EQ(buffer.Fill16(0, 2, 2), TF::kInvalidArgument);
}

TEST(Buffer, ThrowsWithoutMemoryAndKeepsWhatItHad) {
  BufferT<1, 0, 8, char*, GetPoorAllocator> buffer(3);
  std::memcpy(buffer.GetPointer(), "abc", 3);
  poorAllocator.mExhausted = true;
  EXPECT_THROW(buffer.SetSize(50), TF::Exception<std::bad_alloc>);
  poorAllocator.mExhausted = false;
  EXPECT_EQ(std::string(buffer.GetPointer(), buffer.GetSize()), "abc");
  Block<64, 0> tooLarge;
  EXPECT_THROW(tooLarge.SetSize(0xFFFFFFF0), TF::Exception<std::bad_alloc>);
}

TEST(LBuffer, CopiesAPartIntoZeroes) {
  TF::ByteBuffer buffer(4);
  buffer.Fill('a', 0, -1);
  const TF::RCPtr<TF::LIBuffer> part = buffer.CreateCopy(3, 2);
  EXPECT_EQ(std::string(static_cast<const char*>(part->GetPointer()), 3), std::string("aa\0", 3));
  const TF::RCPtr<TF::LIBuffer> nothing = buffer.CreateCopy(1, 4);
  EXPECT_EQ(*static_cast<const char*>(nothing->GetPointer()), '\0');
}

class TestVariant : public TF::Variant {
 public:
  using Type = TF::VariantType;
  explicit TestVariant(double value) {
    mType = Type::kDouble;
    mValue.number = value;
  }
  explicit TestVariant(float value) {
    mType = Type::kFloat;
    mValue.shortNumber = value;
  }
  TestVariant(Type type, std::int64_t value) {
    mType = type;
    mValue.signedNumber = value;
  }
  TestVariant(Type type, const void* block, std::uint32_t size) {
    mType = type;
    mSize = size;
    mValue.block = const_cast<void*>(block);
    if (type < Type::kBlock) return;
    mValue.block = AllocateBlock(size);
    std::memcpy(mValue.block, block, size);
  }
};

using Type = TF::VariantType;

TEST(Variant, RoundsFloatsAndSaturates) {
  struct Case {
    double value;
    std::int32_t asInt32;
    std::uint8_t asUInt8;
  };
  const Case cases[] = {{2.5, 3, 3},
                        {-2.5, -3, 0},
                        {1e12, 2147483647, 255},
                        {-1e12, -2147483647 - 1, 0},
                        {std::numeric_limits<double>::quiet_NaN(), 0, 0}};
  for (const Case& entry : cases) {
    EXPECT_EQ(TestVariant(entry.value).ToInt32(), entry.asInt32);
    EXPECT_EQ(TestVariant(static_cast<float>(entry.value)).ToUInt8(), entry.asUInt8);
  }
  EXPECT_EQ(TestVariant(1e300).ToUInt64(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(TestVariant(1e300).ToInt64(), std::numeric_limits<std::int64_t>::max());
}

TEST(Variant, ConvertsEveryKind) {
  const std::uint8_t bytes[] = {0x81, 0x02, 0x03, 0x04, 0x05};
  const TestVariant foreign(Type::kForeignBlock, bytes, 5);
  EXPECT_EQ(foreign.ToUInt8(), 0x81);
  EXPECT_EQ(foreign.ToInt8(), -127);
  EXPECT_EQ(foreign.ToUInt16(), 0x0281);
  EXPECT_EQ(foreign.ToUInt32(), 0x04030281u);
  EXPECT_EQ(foreign.ToUInt64(), 0x0504030281u);
  const TestVariant text(Type::kText, "hello", 6);
  EXPECT_EQ(text.ToInt32(), 5);
  EXPECT_TRUE(text.ToBool());
  EXPECT_STREQ(text.GetText(), "hello");
  EXPECT_FALSE(TestVariant(Type::kText, "", 1).ToBool());
  const TestVariant opaque(Type::kOpaqueBlock, bytes, 5);
  EXPECT_EQ(opaque.ToUInt32(), 0u);
  EXPECT_TRUE(opaque.ToBool());
  EXPECT_FALSE(TF::Variant().ToBool());
  EXPECT_EQ(TF::Variant(std::uint32_t{0x80000001}).ToInt32(), -2147483647);
  EXPECT_EQ(TestVariant(Type::kInt16, -2).ToDouble(), -2.0);
  EXPECT_EQ(TF::Variant(std::uint8_t{200}).ToInt8(), -56);
}

TEST(Variant, GivesItsBytesButNoReadOnlyBlockForWriting) {
  const char bytes[] = "abc";
  std::uint32_t size = 9;
  TestVariant readOnly(Type::kForeignReadOnlyBlock, bytes, 3);
  EXPECT_EQ(readOnly.GetData(size), nullptr);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(std::as_const(readOnly).GetData(size), bytes);
  EXPECT_EQ(size, 3u);
  TF::Variant number(std::uint32_t{5});
  ASSERT_NE(number.GetData(size), nullptr);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(number.GetText(), nullptr);
}

}  // namespace
