#pragma once

#include <initializer_list>
#include <iterator>
#include <type_traits>
#include <vector>

#include "TFFramework/Utilities/Storage/Iterable.h"

namespace TF {

// The growing array for elements with copy semantics of their own. It grows by half of its
// capacity. GetAt and [] with a bad index throw the standard std::out_of_range. Removed
// elements die after the array has its new shape, so their destructors may use it.
template <class T>
class Array : public IArray<T> {
  static_assert(!std::is_same_v<T, bool>, "a vector of bool has no elements to point at");

 public:
  Array() = default;
  Array(std::initializer_list<T> items) : mItems(items) {}

  std::int32_t GetCount() const final { return static_cast<std::int32_t>(mItems.size()); }
  const T& GetAt(std::int32_t index) const final { return mItems.at(Position(index)); }
  T& GetAt(std::int32_t index) final { return mItems.at(Position(index)); }
  const T& operator[](std::int32_t index) const { return mItems.at(Position(index)); }
  T& operator[](std::int32_t index) { return mItems.at(Position(index)); }
  const T* First() const final { return mItems.empty() ? nullptr : mItems.data(); }
  T* First() final { return mItems.empty() ? nullptr : mItems.data(); }

  std::int32_t InsertAt(std::int32_t index, const T& value) final {
    if (!this->CanOpen(index, 1)) return kInvalidArgument;
    T element(value);
    Reserve(mItems.size() + 1);
    mItems.insert(mItems.begin() + index, std::move(element));
    return index;
  }

  std::int32_t RemoveItem(std::int32_t index, T& out) final {
    if (!this->HasIndex(index)) return kInvalidArgument;
    T element(std::move(mItems[Position(index)]));
    mItems.erase(mItems.begin() + index);
    const std::int32_t left = GetCount();
    out = std::move(element);
    return left;
  }

  std::int32_t SetCount(std::int32_t count) final {
    if (count < 0) return kInvalidArgument;
    if (count < GetCount()) return RemoveItems(count, GetCount() - count);
    Reserve(Position(count));
    mItems.resize(Position(count));
    return count;
  }

  std::int32_t InsertItems(std::int32_t index, std::int32_t count) final {
    if (!this->CanOpen(index, count)) return kInvalidArgument;
    Reserve(mItems.size() + Position(count));
    mItems.insert(mItems.begin() + index, Position(count), T());
    return GetCount();
  }

  std::int32_t RemoveItems(std::int32_t index, std::int32_t count) final {
    if (!this->HasRange(index, count)) return kInvalidArgument;
    const std::int32_t left = GetCount() - count;
    const auto first = mItems.begin() + index;
    if constexpr (std::is_trivially_destructible_v<T>) {
      mItems.erase(first, first + count);
    } else if (left == 0) {
      std::vector<T> dying;
      dying.swap(mItems);
    } else {
      const std::vector<T> dying(std::make_move_iterator(first), std::make_move_iterator(first + count));
      mItems.erase(first, first + count);
    }
    return left;
  }

 private:
  static std::size_t Position(std::int32_t index) { return static_cast<std::size_t>(index); }

  void Reserve(std::size_t needed) {
    const std::size_t capacity = mItems.capacity();
    if (needed > capacity) mItems.reserve(std::max(needed, capacity + capacity / 2));
  }

  std::vector<T> mItems;
};

}  // namespace TF
