#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// Owning pointer to a counted object, read-only access. The new reference is taken before
// the old one is dropped, and the field changes before any object dies, so assigning a
// pointer to itself or to a member of what it holds is safe.
//
// One pointer variable belongs to one thread at a time; several pointers to one object may
// live on several threads.
template <class T, class P = T*>
class ConstRCPtr {
 public:
  ConstRCPtr() = default;
  ConstRCPtr(std::nullptr_t) {}
  ConstRCPtr(P pointer) { Assign(pointer); }
  ConstRCPtr(const ConstRCPtr& other) { Assign(other.mPointer); }
  ConstRCPtr(ConstRCPtr&& other) noexcept : mPointer(std::exchange(other.mPointer, nullptr)) {}
  // Becomes null when the other object is no T.
  template <class U, class Q>
  requires(!std::is_same_v<U, T>) ConstRCPtr(const ConstRCPtr<U, Q>& other) {
    Assign(Convert(other.mPointer));
  }
  ~ConstRCPtr() { Drop(std::exchange(mPointer, nullptr)); }

  ConstRCPtr& operator=(const ConstRCPtr& other) {
    Assign(other.mPointer);
    return *this;
  }
  ConstRCPtr& operator=(ConstRCPtr&& other) noexcept {
    if (this != &other) Drop(std::exchange(mPointer, std::exchange(other.mPointer, nullptr)));
    return *this;
  }
  ConstRCPtr& operator=(std::nullptr_t) {
    Drop(std::exchange(mPointer, nullptr));
    return *this;
  }

  const T* Get() const { return mPointer; }
  const T* operator->() const { return mPointer; }
  const T& operator*() const { return *mPointer; }
  explicit operator bool() const { return mPointer != nullptr; }

  template <class U, class Q>
  bool operator==(const ConstRCPtr<U, Q>& other) const {
    return mPointer == other.mPointer;
  }
  bool operator==(std::nullptr_t) const { return mPointer == nullptr; }
  bool operator==(const T* pointer) const { return mPointer == pointer; }

  // Makes this pointer the sole owner of its object, of a copy if others share it. Throws
  // logic_error when no usable copy can be had; the pointer then keeps what it held.
  void Unshare() {
    if (mPointer == nullptr || mPointer->GetRefCount() < 2) return;
    ConstRCPtr copy = CopyOf(mPointer);
    Drop(std::exchange(mPointer, std::exchange(copy.mPointer, nullptr)));
  }

 protected:
  template <class U, class Q>
  friend class ConstRCPtr;

  template <class U>
  static P Convert(U* other) {
    if constexpr (std::is_convertible_v<U*, P>)
      return other;
    else
      return other ? dynamic_cast<P>(other) : nullptr;
  }

  static void Drop(P pointer) {
    if (pointer) pointer->Release();
  }

  static ConstRCPtr CopyOf(P pointer);

  void Assign(P pointer) {
    if (pointer == mPointer) return;
    P old = mPointer;
    if (pointer) {
      pointer->AddRef();
      if (!pointer->IsShareable()) pointer = OwnCopy(pointer);
    }
    mPointer = pointer;
    Drop(old);
  }

  P mPointer = nullptr;

 private:
  // The holder of an unshareable object that has another one gets its own copy.
  static P OwnCopy(P pointer) {
    ConstRCPtr holder;
    holder.mPointer = pointer;
    holder.Unshare();
    return std::exchange(holder.mPointer, nullptr);
  }
};

// Owning pointer with full access.
template <class T, class P>
class RCPtr : public ConstRCPtr<T, P> {
  using Base = ConstRCPtr<T, P>;

 public:
  using Base::Base;
  RCPtr() = default;
  RCPtr(const RCPtr& other) = default;
  RCPtr(RCPtr&& other) noexcept = default;
  template <class U, class Q>
  requires(!std::is_same_v<U, T>) RCPtr(const RCPtr<U, Q>& other) {
    this->Assign(Base::Convert(other.Get()));
  }
  RCPtr(const ConstRCPtr<T, P>&) = delete;
  template <class U, class Q>
  RCPtr(const ConstRCPtr<U, Q>&) = delete;

  RCPtr& operator=(const RCPtr& other) = default;
  RCPtr& operator=(RCPtr&& other) noexcept = default;
  RCPtr& operator=(std::nullptr_t) {
    Base::operator=(nullptr);
    return *this;
  }

  T* Get() const { return this->mPointer; }
  T* operator->() const { return this->mPointer; }
  T& operator*() const { return *this->mPointer; }
};

template <class T, class P>
ConstRCPtr<T, P> ConstRCPtr<T, P>::CopyOf(P pointer) {
  const RCPtr<LRefCountedObject> plain = pointer->CreateCopy();
  ConstRCPtr copy;
  P converted = Convert(plain.Get());
  if (!converted) {
    Throw<std::logic_error>(DemangledName(typeid(T).name()), "TF::ConstRCPtr<class T,class T *>::Unshare");
  }
  converted->AddRef();
  copy.mPointer = converted;
  return copy;
}

// Makes a counted object behind its first pointer.
template <class T, class... Arguments>
RCPtr<T> MakeRC(Arguments&&... arguments) {
  return RCPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace TF
