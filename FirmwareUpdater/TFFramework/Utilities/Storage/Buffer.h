#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/Allocator.h"

namespace TF {

// A growable memory block. All sizes and offsets are in bytes.
class IBuffer {
 public:
  IBuffer() = default;
  IBuffer(const IBuffer&) = delete;
  IBuffer& operator=(const IBuffer&) = delete;
  virtual ~IBuffer() = default;

  virtual std::uint32_t GetSize() const = 0;
  // Sets the size and gives it back. When the capacity must change the contents are lost;
  // size 0 frees the block.
  virtual std::uint32_t Allocate(std::uint32_t size) = 0;
  // Sets the size, keeps the contents and gives the size back.
  virtual std::uint32_t SetSize(std::uint32_t size) = 0;
  // A negative count means up to the end. kInvalidArgument, and no change, when the range
  // does not lie inside the buffer.
  virtual TFRESULT Fill(std::uint8_t value, std::uint32_t offset, std::int32_t count) = 0;
  // offset in bytes, count in items of 16 bits.
  virtual TFRESULT Fill16(std::uint16_t value, std::uint32_t offset, std::int32_t count) = 0;
  virtual std::uint32_t GetCapacity() const = 0;
  // Start of the data, null when nothing is allocated; BufferT gives it typed under the same
  // name.
  void* GetPointer() { return GetBlock(); }
  const void* GetPointer() const { return const_cast<IBuffer*>(this)->GetBlock(); }

 protected:
  virtual void* GetBlock() = 0;
};

// The block behind strings and arrays. Capacity is rounded up to Grain; SetSize keeps a
// block with up to Slack spare bytes. Throws bad_alloc, with the old block and its contents
// in place, when the allocator gives nothing.
template <std::uint32_t Grain, std::uint32_t Slack, std::uint32_t Alignment, class P,
          IAllocator& (*AllocatorOf)()>
class BufferT : public virtual IBuffer {
 public:
  explicit BufferT(std::uint32_t size = 0, std::uint32_t reserve = 0, bool zeroFill = false) {
    if (reserve > size) Replace(reserve);
    BufferT::SetSize(size);
    if (zeroFill && mSize != 0) std::memset(mBlock, 0, mSize);
  }
  ~BufferT() override { Free(); }

  std::uint32_t GetSize() const override { return mSize; }
  std::uint32_t GetCapacity() const override { return mCapacity; }
  P GetPointer() { return mPointer; }
  const void* GetPointer() const { return mPointer; }

  std::uint32_t Allocate(std::uint32_t size) override {
    if (size == 0) {
      Free();
      return 0;
    }
    const std::uint32_t wanted = RoundUp(size);
    if (wanted != mCapacity) {
      Free();
      Replace(wanted);
    }
    mSize = size;
    return mSize;
  }

  std::uint32_t SetSize(std::uint32_t size) override {
    if (mCapacity == 0) return Allocate(size);
    if (!FitsAsItIs(size)) {
      const std::uint32_t wanted = RoundUp(size);
      if (wanted == 0) {
        Free();
        return 0;
      }
      Adopt(AllocatorOf().Reallocate(mBlock, wanted), wanted);
    }
    mSize = size;
    return mSize;
  }

  TFRESULT Fill(std::uint8_t value, std::uint32_t offset, std::int32_t count) override {
    const std::uint64_t items =
        count < 0 ? std::uint64_t{mSize} - std::min(mSize, offset) : std::uint64_t(count);
    if (offset > mSize || offset + items > mSize) return kInvalidArgument;
    if (items > 0) std::memset(Bytes() + offset, value, items);
    return kSuccess;
  }

  TFRESULT Fill16(std::uint16_t value, std::uint32_t offset, std::int32_t count) override {
    const std::uint64_t items =
        count < 0 ? (std::uint64_t{mSize} - std::min(mSize, offset)) / 2 : std::uint64_t(count);
    if (offset > mSize || offset + items * 2 > mSize) return kInvalidArgument;
    for (std::uint64_t i = 0; i < items; ++i) std::memcpy(Bytes() + offset + i * 2, &value, sizeof value);
    return kSuccess;
  }

 protected:
  void* GetBlock() override { return mBlock; }

 private:
  char* Bytes() { return static_cast<char*>(mBlock); }

  bool FitsAsItIs(std::uint32_t size) const {
    if (mCapacity < size) return false;
    const std::uint32_t spare = mCapacity - size;
    return Slack == 0 ? spare < Grain : spare <= Slack;
  }

  static std::uint32_t RoundUp(std::uint32_t size) {
    const std::uint64_t rounded = (std::uint64_t{size} + Grain - 1) / Grain * Grain;
    if (rounded > 0xFFFFFFFF) OutOfMemory();
    return static_cast<std::uint32_t>(rounded);
  }

  void Replace(std::uint32_t capacity) { Adopt(AllocatorOf().Allocate(capacity), capacity); }

  void Adopt(void* block, std::uint32_t capacity) {
    if (!block) OutOfMemory();
    mBlock = block;
    mPointer = static_cast<P>(block);
    mCapacity = capacity;
  }

  void Free() {
    if (mBlock) AllocatorOf().Free(mBlock);
    mBlock = nullptr;
    mPointer = nullptr;
    mSize = 0;
    mCapacity = 0;
  }

  [[noreturn]] static void OutOfMemory() { Throw<std::bad_alloc>("", "TF::BufferT::Allocate"); }

  P mPointer = nullptr;
  std::uint32_t mSize = 0;
  void* mBlock = nullptr;
  std::uint32_t mCapacity = 0;
};

}  // namespace TF
