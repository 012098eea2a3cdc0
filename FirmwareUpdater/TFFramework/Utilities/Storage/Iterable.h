#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "TFFramework/ObjectBase/Result.h"

namespace TF {

// A place in a container: the element's address and the direction of the walk, +1 or -1.
// Valid until the container changes its count.
template <class Container, class Element>
struct ElementIterator {
  Element& operator*() const { return mContainer->Dereference(*this); }
  Element* operator->() const { return &mContainer->Dereference(*this); }
  ElementIterator& operator++() { return *this = mContainer->Advance(*this, mStep); }
  ElementIterator& operator--() { return *this = mContainer->Advance(*this, -mStep); }
  ElementIterator& operator+=(std::int32_t steps) {
    return *this = mContainer->Advance(*this, steps * mStep);
  }
  bool operator==(const ElementIterator& other) const { return mElement == other.mElement; }

  Container* mContainer = nullptr;
  Element* mElement = nullptr;
  std::int32_t mStep = 1;
};

// Reading side of every list: elements of one type in a row. Indices and counts are in
// elements; an address operation gives null on an empty list. No list is thread-safe.
template <class T>
class IIterable {
 public:
  using Iterator = ElementIterator<IIterable, T>;
  using ConstIterator = ElementIterator<const IIterable, const T>;

  static constexpr std::int32_t kNoCountLimit = 0x7FFFFFFF;

  IIterable() = default;
  IIterable(const IIterable&) = default;
  IIterable& operator=(const IIterable&) = default;
  virtual ~IIterable() = default;

  virtual std::int32_t GetCount() const = 0;
  virtual std::int32_t GetMaxCount() const { return kNoCountLimit; }

  virtual ConstIterator Begin() const { return {this, First(), 1}; }
  virtual Iterator Begin() { return {this, First(), 1}; }
  virtual ConstIterator End() const { return {this, PastLast(), 1}; }
  virtual Iterator End() { return {this, PastLast(), 1}; }
  virtual ConstIterator RBegin() const { return {this, Last(), -1}; }
  virtual Iterator RBegin() { return {this, Last(), -1}; }
  virtual ConstIterator REnd() const { return {this, BeforeFirst(), -1}; }
  virtual Iterator REnd() { return {this, BeforeFirst(), -1}; }

  virtual const T& Dereference(const ConstIterator& iterator) const { return *iterator.mElement; }
  virtual T& Dereference(const Iterator& iterator) { return *iterator.mElement; }

  virtual const T& GetAt(std::int32_t index) const = 0;
  virtual T& GetAt(std::int32_t index) = 0;
  const T& operator[](std::int32_t index) const { return GetAt(index); }
  T& operator[](std::int32_t index) { return GetAt(index); }

  // kInvalidArgument with an index out of range.
  virtual TFRESULT Swap(std::int32_t a, std::int32_t b) {
    if (!HasIndex(a) || !HasIndex(b)) return kInvalidArgument;
    std::swap(GetAt(a), GetAt(b));
    return kSuccess;
  }

  // The iterator moved by step elements towards the end, or towards the start when step is
  // negative; it stops at PastLast and at BeforeFirst.
  virtual ConstIterator Advance(const ConstIterator& iterator, std::int32_t step) const {
    return Moved(iterator, First(), step);
  }
  virtual Iterator Advance(const Iterator& iterator, std::int32_t step) {
    return Moved(iterator, First(), step);
  }

  virtual const T* First() const { return GetCount() > 0 ? &GetAt(0) : nullptr; }
  virtual T* First() { return GetCount() > 0 ? &GetAt(0) : nullptr; }
  virtual const T* PastLast() const { return Offset(First(), GetCount()); }
  virtual T* PastLast() { return Offset(First(), GetCount()); }
  virtual const T* Last() const { return Offset(First(), std::int64_t{GetCount()} - 1); }
  virtual T* Last() { return Offset(First(), std::int64_t{GetCount()} - 1); }
  virtual const T* BeforeFirst() const { return Offset(First(), -1); }
  virtual T* BeforeFirst() { return Offset(First(), -1); }

  // For range-based loops.
  const T* begin() const { return First(); }
  T* begin() { return First(); }
  const T* end() const { return PastLast(); }
  T* end() { return PastLast(); }

 protected:
  bool HasIndex(std::int32_t index) const { return index >= 0 && index < GetCount(); }
  bool HasRange(std::int32_t index, std::int32_t count) const {
    return HasIndex(index) && count >= 0 && count <= GetCount() - index;
  }

 private:
  // The elements may be pointers.
  static constexpr std::int64_t kElementBytes = sizeof(T);  // NOLINT(bugprone-sizeof-expression)

  // By number, since the language knows no address before the first element.
  template <class E>
  static E* Offset(E* first, std::int64_t elements) {
    if (!first) return nullptr;
    const auto number =
        reinterpret_cast<std::uintptr_t>(first) + static_cast<std::uintptr_t>(elements * kElementBytes);
    return reinterpret_cast<E*>(number);  // NOLINT(performance-no-int-to-ptr)
  }

  template <class I, class E>
  I Moved(I iterator, E* first, std::int32_t step) const {
    const auto bytes = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(iterator.mElement) -
                                                 reinterpret_cast<std::uintptr_t>(first));
    const std::int64_t wanted = bytes / kElementBytes + step;
    iterator.mElement = Offset(first, std::clamp<std::int64_t>(wanted, -1, GetCount()));
    return iterator;
  }
};

// Changing side of a list. New elements are default values. A list may be appended or
// assigned to itself, and a value may be an element of the list that it is added to.
template <class T>
class IIterableModifiable : public IIterable<T> {
 public:
  // kFailure when elements are left.
  virtual TFRESULT Clear() {
    SetCount(0);
    return this->GetCount() == 0 ? kSuccess : kFailure;
  }

  // Gives index back; kInvalidArgument when it lies behind the end or nothing more fits.
  virtual std::int32_t InsertAt(std::int32_t index, const T& value) {
    T element(value);
    const std::int32_t count = InsertItems(index, 1);
    if (Failed(count)) return count;
    this->GetAt(index) = std::move(element);
    return index;
  }

  // Moves the element into out and gives the new count; kInvalidArgument without such an
  // element. Arrays of counted pointers throw out_of_range instead.
  virtual std::int32_t RemoveItem(std::int32_t index, T& out) {
    if (!this->HasIndex(index)) return kInvalidArgument;
    T element(std::move(this->GetAt(index)));
    const std::int32_t count = RemoveItems(index, 1);
    out = std::move(element);
    return count;
  }

  // Gives the new count; kInvalidArgument when not all elements found room.
  virtual std::int32_t Append(const IIterable<T>& other) {
    const std::int32_t count = other.GetCount();
    for (std::int32_t i = 0; i < count; ++i) {
      const std::int32_t index = Add(other.GetAt(i));
      if (Failed(index)) return index;
    }
    return this->GetCount();
  }

  // The index of the new element.
  virtual std::int32_t Add(const T& value) { return InsertAt(this->GetCount(), value); }
  virtual std::int32_t RemoveLast(T& out) { return RemoveItem(this->GetCount() - 1, out); }

  virtual std::int32_t Assign(const IIterable<T>& other) {
    if (&other == this) return this->GetCount();
    SetCount(0);
    return Append(other);
  }

  // Gives the new count, which a list of fixed size may cut; kInvalidArgument for a negative
  // count.
  virtual std::int32_t SetCount(std::int32_t count) = 0;

  // Opens count elements at index and gives the new count; kInvalidArgument when index lies
  // behind the end or count is negative.
  virtual std::int32_t InsertItems(std::int32_t index, std::int32_t count) = 0;

  // Gives the new count; kInvalidArgument when index is no element's or the range passes the
  // end.
  virtual std::int32_t RemoveItems(std::int32_t index, std::int32_t count) = 0;

 protected:
  bool CanOpen(std::int32_t index, std::int32_t count) const {
    const std::int32_t present = this->GetCount();
    return index >= 0 && index <= present && count >= 0 && count <= this->GetMaxCount() - present;
  }
};

// A list with contiguous storage.
template <class T>
class IArray : public IIterableModifiable<T> {
 public:
  // Null when empty; valid until the count changes.
  virtual const T* GetBuffer() const { return this->First(); }
  virtual T* GetBuffer() { return this->First(); }

  // Adds all elements in one step and gives the new count; kInvalidArgument, and no change,
  // when they do not fit.
  virtual std::int32_t AppendFast(const IArray<T>& other) {
    const std::int32_t start = this->GetCount();
    const std::int32_t added = other.GetCount();
    if (added == 0) return start;
    const std::int32_t count = this->InsertItems(start, added);
    if (Failed(count)) return count;
    const T* source = other.GetBuffer();
    std::copy(source, source + added, this->GetBuffer() + start);
    return count;
  }
};

}  // namespace TF
