#pragma once

#include <cstring>
#include <initializer_list>
#include <type_traits>

#include "TFFramework/Utilities/Storage/Buffer.h"
#include "TFFramework/Utilities/Storage/Iterable.h"

namespace TF {

// Array of scalars in a plain memory block: its capacity comes in steps of Grain elements,
// and up to Slack spare ones are kept when it shrinks. New elements are all zero bits. GetAt
// has no bounds test. Throws bad_alloc, with nothing changed, when there is no memory.
template <class T, std::uint32_t Grain = 1, std::uint32_t Slack = 0, std::uint32_t = 1,
          std::uint32_t Alignment = 8, IAllocator& (*AllocatorOf)() = GetSystemAllocator>
class ArrayBuffer : public IArray<T> {
  static_assert(std::is_trivially_copyable_v<T>, "the elements move as plain bytes");

  // The elements may be pointers.
  static constexpr std::uint32_t kElementBytes = sizeof(T);  // NOLINT(bugprone-sizeof-expression)

 public:
  ArrayBuffer() = default;
  ArrayBuffer(std::initializer_list<T> items) : ArrayBuffer() {
    ArrayBuffer::SetCount(static_cast<std::int32_t>(items.size()));
    std::copy(items.begin(), items.end(), HeapItems());
  }
  ArrayBuffer(const ArrayBuffer& other) : ArrayBuffer() { AppendBlock(other); }
  ArrayBuffer& operator=(const ArrayBuffer& other) {
    if (&other != this) this->Assign(other);
    return *this;
  }

  std::int32_t GetCount() const override { return HeapCount(); }
  const T& GetAt(std::int32_t index) const override { return HeapItems()[index]; }
  T& GetAt(std::int32_t index) override { return HeapItems()[index]; }
  const T* First() const override { return HeapCount() > 0 ? HeapItems() : nullptr; }
  T* First() override { return HeapCount() > 0 ? HeapItems() : nullptr; }

  std::int32_t Append(const IIterable<T>& other) override { return AppendBlock(other); }
  std::int32_t AppendFast(const IArray<T>& other) override { return AppendBlock(other); }

  std::int32_t SetCount(std::int32_t count) override {
    if (count < 0) return kInvalidArgument;
    const std::int32_t before = HeapCount();
    mBuffer.SetSize(Bytes(count));
    if (count > before) Zero(HeapItems() + before, count - before);
    return count;
  }

  std::int32_t InsertItems(std::int32_t index, std::int32_t count) override {
    if (!this->CanOpen(index, count)) return kInvalidArgument;
    const std::int32_t before = this->GetCount();
    if (count == 0) return before;
    const std::int32_t after = this->SetCount(before + count);
    T* gap = this->First() + index;
    Move(gap + count, gap, before - index);
    Zero(gap, count);
    return after;
  }

  std::int32_t RemoveItems(std::int32_t index, std::int32_t count) override {
    if (!this->HasRange(index, count)) return kInvalidArgument;
    const std::int32_t left = this->GetCount() - count;
    T* gap = this->First() + index;
    Move(gap, gap + count, left - index);
    return this->SetCount(left);
  }

 protected:
  std::int32_t HeapCount() const { return static_cast<std::int32_t>(mBuffer.GetSize() / kElementBytes); }
  const T* HeapItems() const { return static_cast<const T*>(mBuffer.GetPointer()); }
  T* HeapItems() { return mBuffer.GetPointer(); }
  void FreeHeap() { mBuffer.Allocate(0); }

  static std::uint32_t Bytes(std::int32_t count) {
    const std::uint64_t bytes = std::uint64_t{kElementBytes} * static_cast<std::uint32_t>(count);
    if (bytes > 0xFFFFFFFF) Throw<std::bad_alloc>("", "TF::ArrayBuffer::SetCount");
    return static_cast<std::uint32_t>(bytes);
  }

  static void Zero(T* items, std::int32_t count) { std::memset(static_cast<void*>(items), 0, Bytes(count)); }
  static void Move(T* to, const T* from, std::int32_t count) {
    if (count > 0) std::memmove(static_cast<void*>(to), from, Bytes(count));
  }

 private:
  // The source is asked for its elements after this array has grown: it may be this array.
  std::int32_t AppendBlock(const IIterable<T>& other) {
    const std::int32_t start = this->GetCount();
    const std::int32_t added = other.GetCount();
    if (added == 0) return start;
    if (!this->CanOpen(start, added)) return kInvalidArgument;
    const std::int32_t count = this->SetCount(start + added);
    Move(this->First() + start, other.First(), added);
    return count;
  }

  BufferT<Grain * kElementBytes, Slack * kElementBytes, Alignment, T*, AllocatorOf> mBuffer;
};

}  // namespace TF
