#pragma once

#include <stdexcept>

#include "TFFramework/Utilities/Storage/ContainerNames.h"
#include "TFFramework/Utilities/Storage/RCPtrSlots.h"

namespace TF {

// Array of counted pointers. A slot is a raw pointer that counts as one reference and reads
// as a ConstRCPtr; new slots are null. An unshareable object with another holder is stored
// as a copy. GetAt has no bounds test; RemoveItem throws out_of_range.
//
// Dropped objects die after the array has its new shape, so their destructors may use it.
template <class T, std::uint32_t Grain = 1, std::uint32_t Slack = 0,
          IAllocator& (*AllocatorOf)() = GetSystemAllocator>
class ConstRCPtrArray : public IArray<ConstRCPtr<T>> {
  using Item = ConstRCPtr<T>;
  using List = IArray<Item>;

 public:
  ConstRCPtrArray() = default;
  ConstRCPtrArray(const ConstRCPtrArray& other) : List(other) {
    mSlots.Append(other.Items(), other.mSlots.GetCount());
  }
  // The objects go while this is still an array that their destructors can call.
  ~ConstRCPtrArray() override { mSlots.ReleaseAll(); }
  ConstRCPtrArray& operator=(const ConstRCPtrArray& other) {
    if (&other != this) mSlots.Replace(other.Items(), other.mSlots.GetCount());
    return *this;
  }

  std::int32_t GetCount() const override { return mSlots.GetCount(); }
  const Item& GetAt(std::int32_t index) const override { return Items()[index]; }
  Item& GetAt(std::int32_t index) override { return Items()[index]; }
  const Item& operator[](std::int32_t index) const { return Items()[index]; }
  Item& operator[](std::int32_t index) { return Items()[index]; }

  std::int32_t RemoveItem(std::int32_t index, Item& out) override {
    if (!List::HasIndex(index)) {
      Throw<std::out_of_range>(
          "", ContainerOperationName("ConstRCPtrArray", typeid(T), {Grain, Slack}, "RemoveItem"));
    }
    return mSlots.TakeInto(index, out);
  }
  std::int32_t Append(const IIterable<Item>& other) override {
    return mSlots.Append(other.First(), other.GetCount());
  }
  std::int32_t AppendFast(const IArray<Item>& other) override { return Append(other); }
  std::int32_t Assign(const IIterable<Item>& other) override {
    return mSlots.Replace(other.First(), other.GetCount());
  }
  std::int32_t SetCount(std::int32_t count) override { return mSlots.SetCount(count); }
  std::int32_t InsertItems(std::int32_t index, std::int32_t count) override {
    return mSlots.Insert(index, count);
  }
  std::int32_t RemoveItems(std::int32_t index, std::int32_t count) override {
    return List::HasRange(index, count) ? mSlots.Drop(index, count) : kInvalidArgument;
  }

 protected:
  RCPtrSlots<T, Grain, Slack, AllocatorOf> mSlots;

 private:
  const Item* Items() const { return mSlots.template Items<Item>(); }
  Item* Items() { return mSlots.template Items<Item>(); }
};

// The operations of RCPtrArray that take or give RCPtr. They stand in a class of their own
// because the read-only form has operations of the same names for ConstRCPtr.
template <class T, std::uint32_t Grain, std::uint32_t Slack, class Owner>
class RCPtrArrayOperations : public IArray<RCPtr<T>> {
  using Item = RCPtr<T>;

 public:
  std::int32_t RemoveItem(std::int32_t index, Item& out) final {
    if (!this->HasIndex(index)) {
      Throw<std::out_of_range>("",
                               ContainerOperationName("RCPtrArray", typeid(T), {Grain, Slack}, "RemoveItem"));
    }
    return Slots().TakeInto(index, out);
  }
  std::int32_t Append(const IIterable<Item>& other) final {
    return Slots().Append(other.First(), other.GetCount());
  }
  std::int32_t AppendFast(const IArray<Item>& other) final { return Append(other); }
  std::int32_t Assign(const IIterable<Item>& other) final {
    return Slots().Replace(other.First(), other.GetCount());
  }

 private:
  auto& Slots() { return static_cast<Owner*>(this)->mSlots; }
};

// The same list with full access to its objects: slots read as RCPtr.
template <class T, std::uint32_t Grain = 1, std::uint32_t Slack = 0,
          IAllocator& (*AllocatorOf)() = GetSystemAllocator>
class RCPtrArray : public ConstRCPtrArray<T, Grain, Slack, AllocatorOf>,
                   public RCPtrArrayOperations<T, Grain, Slack, RCPtrArray<T, Grain, Slack, AllocatorOf>> {
  using Base = ConstRCPtrArray<T, Grain, Slack, AllocatorOf>;
  using List = RCPtrArrayOperations<T, Grain, Slack, RCPtrArray>;
  using Item = RCPtr<T>;
  friend List;

 public:
  using List::Add;
  using List::Advance;
  using List::Append;
  using List::AppendFast;
  using List::Assign;
  using List::BeforeFirst;
  using List::Begin;
  using List::Clear;
  using List::Dereference;
  using List::End;
  using List::First;
  using List::GetBuffer;
  using List::GetMaxCount;
  using List::InsertAt;
  using List::kNoCountLimit;
  using List::Last;
  using List::PastLast;
  using List::RBegin;
  using List::RemoveItem;
  using List::RemoveLast;
  using List::REnd;
  using List::Swap;
  using typename List::ConstIterator;
  using typename List::Iterator;

  RCPtrArray() = default;
  RCPtrArray(const RCPtrArray&) = default;
  RCPtrArray& operator=(const RCPtrArray&) = default;
  ~RCPtrArray() override { Base::mSlots.ReleaseAll(); }

  std::int32_t GetCount() const final { return Base::mSlots.GetCount(); }
  const Item& GetAt(std::int32_t index) const final { return Items()[index]; }
  Item& GetAt(std::int32_t index) final { return Items()[index]; }
  const Item& operator[](std::int32_t index) const { return Items()[index]; }
  Item& operator[](std::int32_t index) { return Items()[index]; }
  const Item* begin() const { return Items(); }
  Item* begin() { return Items(); }
  const Item* end() const { return Items() + GetCount(); }
  Item* end() { return Items() + GetCount(); }

  std::int32_t SetCount(std::int32_t count) final { return Base::SetCount(count); }
  std::int32_t InsertItems(std::int32_t index, std::int32_t count) final {
    return Base::InsertItems(index, count);
  }
  std::int32_t RemoveItems(std::int32_t index, std::int32_t count) final {
    return Base::RemoveItems(index, count);
  }

 private:
  const Item* Items() const { return Base::mSlots.template Items<Item>(); }
  Item* Items() { return Base::mSlots.template Items<Item>(); }
};

// A list that can itself be shared.
template <class T, std::uint32_t Grain = 1, std::uint32_t Slack = 0,
          IAllocator& (*AllocatorOf)() = GetSystemAllocator>
class LRCPtrArray : public RCPtrArray<T, Grain, Slack, AllocatorOf>, public virtual LRefCountedObject {};

}  // namespace TF
