#pragma once

#include <memory>
#include <utility>

#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

// Lets an object carry an arbitrary payload.
class LTaggableObject : public virtual LRefCountedObject {
 public:
  const RCPtr<LRefCountedObject>& GetTag() const { return mTag; }
  void SetTag(RCPtr<LRefCountedObject> tag) { mTag = std::move(tag); }

 private:
  RCPtr<LRefCountedObject> mTag;
};

// Puts a plain value behind an RCPtr, as the payload of a notification or a worker task.
template <class T>
class LHolder : public virtual LRefCountedObject {
 public:
  explicit LHolder(T value = T()) : mValue(std::make_unique<T>(std::move(value))) {}

  T& GetValue() { return *mValue; }
  const T& GetValue() const { return *mValue; }

 private:
  std::unique_ptr<T> mValue;
};

// Makes a plain class countable.
template <class T, class B>
class LWrapper : public T, public virtual B {
 public:
  using T::T;
};

// Makes a plain class countable and gives it a text by the function F.
template <class T, auto F, class B>
class LWrapperStringable : public T, public virtual B {
 public:
  using T::T;
  explicit LWrapperStringable(const T& value) : T(value) {}

  auto ToString() const -> decltype(F(std::declval<const T&>())) override {
    return F(static_cast<const T&>(*this));
  }
};

}  // namespace TF
