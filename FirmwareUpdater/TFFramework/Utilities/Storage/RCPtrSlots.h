#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/ArrayBuffer.h"

namespace TF {

// The storage of pointer arrays: raw pointers that each count as one reference, read as
// ConstRCPtr or RCPtr (P below). Dropped objects die after the slots have their new shape, so
// their destructors may use the array. Indices are the caller's to check.
template <class T, std::uint32_t Grain, std::uint32_t Slack, IAllocator& (*AllocatorOf)()>
class RCPtrSlots {
  using Item = ConstRCPtr<T>;
  static_assert(sizeof(Item) == sizeof(T*) && sizeof(RCPtr<T>) == sizeof(T*),
                "a slot reads as a pointer object");

 public:
  RCPtrSlots() = default;
  RCPtrSlots(const RCPtrSlots&) = delete;
  RCPtrSlots& operator=(const RCPtrSlots&) = delete;
  ~RCPtrSlots() { ReleaseAll(); }

  std::int32_t GetCount() const { return mPointers.GetCount(); }

  // Null when there are none.
  template <class P>
  const P* Items() const {
    return static_cast<const P*>(static_cast<const void*>(mPointers.First()));
  }
  template <class P>
  P* Items() {
    return static_cast<P*>(static_cast<void*>(mPointers.First()));
  }

  std::int32_t SetCount(std::int32_t count) {
    if (count >= 0 && count < GetCount()) return Drop(count, GetCount() - count);
    return mPointers.SetCount(count);
  }

  // Opens null slots.
  std::int32_t Insert(std::int32_t index, std::int32_t count) { return mPointers.InsertItems(index, count); }

  // Moves one reference into out and gives the new count. What out held dies last.
  template <class P>
  std::int32_t TakeInto(std::int32_t index, P& out) {
    P item = std::move(Items<P>()[index]);
    const std::int32_t left = mPointers.RemoveItems(index, 1);
    out = std::move(item);
    return left;
  }

  // Needs memory of its own only for more than one reference.
  std::int32_t Drop(std::int32_t index, std::int32_t count) {
    if (count == 0) return GetCount();
    if (count == 1) {
      Item dying;
      return TakeInto(index, dying);
    }
    Item* first = Items<Item>() + index;
    const std::vector<Item> dying(std::make_move_iterator(first), std::make_move_iterator(first + count));
    return mPointers.RemoveItems(index, count);
  }

  // Takes all references before it grows, since the source may be these slots, and since the
  // copy of an unshareable object may fail.
  template <class P>
  std::int32_t Append(const P* source, std::int32_t count) {
    const std::int32_t start = GetCount();
    if (count == 0) return start;
    std::vector<P> items(source, source + count);
    const std::int32_t after = mPointers.SetCount(start + count);
    std::move(items.begin(), items.end(), Items<P>() + start);
    return after;
  }

  // The new references come in before the old ones go: an old object may own the source.
  template <class P>
  std::int32_t Replace(const P* source, std::int32_t count) {
    const std::int32_t before = GetCount();
    Append(source, count);
    return Drop(0, before);
  }

  // For destructors, without memory of its own. Again from the start as long as something was
  // found, since a dying object may still add and remove others.
  void ReleaseAll() {
    bool found = true;
    while (std::exchange(found, false)) {
      for (std::int32_t i = 0; i < GetCount(); ++i) {
        const Item dying = std::move(Items<Item>()[i]);
        found = found || dying;
      }
    }
  }

 private:
  ArrayBuffer<T*, Grain, Slack, 1, 8, AllocatorOf> mPointers;
};

}  // namespace TF
