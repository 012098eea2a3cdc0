#pragma once

#include "TFFramework/Utilities/Storage/Iterable.h"

namespace TF {

// Up to N elements inside the object. A larger count is cut to N. GetAt has no bounds test.
// Removed elements die after the array has its new shape.
template <class T, std::int32_t N>
class SimpleFixedArray : public IArray<T> {
 public:
  std::int32_t GetCount() const final { return mCount; }
  std::int32_t GetMaxCount() const final { return N; }
  const T& GetAt(std::int32_t index) const final { return mItems[index]; }
  T& GetAt(std::int32_t index) final { return mItems[index]; }

  std::int32_t SetCount(std::int32_t count) final {
    if (count < 0) return kInvalidArgument;
    const std::int32_t after = std::min(count, N);
    const std::int32_t before = std::exchange(mCount, after);
    Reset(after, before);
    return after;
  }

  std::int32_t InsertItems(std::int32_t index, std::int32_t count) final {
    if (!this->CanOpen(index, count)) return kInvalidArgument;
    std::move_backward(mItems + index, mItems + mCount, mItems + mCount + count);
    Reset(index, std::min(index + count, mCount));
    mCount += count;
    return mCount;
  }

  std::int32_t RemoveItems(std::int32_t index, std::int32_t count) final {
    if (!this->HasRange(index, count)) return kInvalidArgument;
    std::rotate(mItems + index, mItems + index + count, mItems + mCount);
    return SetCount(mCount - count);
  }

 private:
  // Elements that are not in use hold default values.
  void Reset(std::int32_t from, std::int32_t to) {
    for (std::int32_t i = from; i < to; ++i) mItems[i] = T();
  }

  T mItems[N] = {};
  std::int32_t mCount = 0;
};

}  // namespace TF
