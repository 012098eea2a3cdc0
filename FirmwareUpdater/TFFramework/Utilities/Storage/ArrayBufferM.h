#pragma once

#include "TFFramework/Utilities/Storage/ArrayBuffer.h"

namespace TF {

// ArrayBuffer that keeps up to N elements inside the object and takes memory for more only.
// The elements move to the heap when the count passes N, and back, freeing the block, when
// it comes down to N.
template <class T, std::int32_t N, std::uint32_t Grain = 1, std::uint32_t Slack = 0, std::uint32_t One = 1,
          std::uint32_t Alignment = 8, IAllocator& (*AllocatorOf)() = GetSystemAllocator>
class ArrayBufferM : public ArrayBuffer<T, Grain, Slack, One, Alignment, AllocatorOf> {
  static_assert(N > 0);
  using Base = ArrayBuffer<T, Grain, Slack, One, Alignment, AllocatorOf>;

 public:
  ArrayBufferM() = default;
  ArrayBufferM(std::initializer_list<T> items) : ArrayBufferM() {
    if (items.size() == 0) return;
    ArrayBufferM::SetCount(static_cast<std::int32_t>(items.size()));
    std::copy(items.begin(), items.end(), Items());
  }
  ArrayBufferM(const ArrayBufferM& other) : ArrayBufferM() { ArrayBufferM::AppendFast(other); }
  ArrayBufferM& operator=(const ArrayBufferM& other) {
    if (&other != this) this->Assign(other);
    return *this;
  }

  std::int32_t GetCount() const override { return mInlineCount != 0 ? mInlineCount : this->HeapCount(); }
  const T& GetAt(std::int32_t index) const override { return Items()[index]; }
  T& GetAt(std::int32_t index) override { return Items()[index]; }
  const T* First() const override { return GetCount() > 0 ? Items() : nullptr; }
  T* First() override { return GetCount() > 0 ? Items() : nullptr; }

  std::int32_t SetCount(std::int32_t count) override {
    if (count < 0) return kInvalidArgument;
    if (count > N) return GrowOnHeap(count);
    if (this->HeapCount() > 0) ReturnInside(count);
    if (count > mInlineCount) Base::Zero(mItems + mInlineCount, count - mInlineCount);
    mInlineCount = count;
    return count;
  }

 private:
  const T* Items() const { return this->HeapCount() > 0 ? this->HeapItems() : mItems; }
  T* Items() { return this->HeapCount() > 0 ? this->HeapItems() : mItems; }

  std::int32_t GrowOnHeap(std::int32_t count) {
    Base::SetCount(count);
    Base::Move(this->HeapItems(), mItems, mInlineCount);
    mInlineCount = 0;
    return count;
  }

  // The heap holds more than N elements here, so all count of them are there to be taken.
  void ReturnInside(std::int32_t count) {
    Base::Move(mItems, this->HeapItems(), count);
    this->FreeHeap();
    mInlineCount = count;
  }

  T mItems[N] = {};
  std::int32_t mInlineCount = 0;
};

}  // namespace TF
