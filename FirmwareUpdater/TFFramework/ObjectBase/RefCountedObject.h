#pragma once

#include <atomic>
#include <cstdint>

#include "TFFramework/ObjectBase/Result.h"

namespace TF {

template <class C, class Other>
class StringT;
template <class T, class P = T*>
class RCPtr;

class IStringable {
 public:
  IStringable() = default;
  IStringable(const IStringable&) = default;
  IStringable& operator=(const IStringable&) = default;
  virtual ~IStringable() = default;
  virtual StringT<char16_t, char> ToString() const = 0;
};

class IUndoable : public IStringable {
 public:
  virtual void Undo() = 0;
};

// Root of all shared objects: a virtual base with an atomic count of all references and a
// count of those among them that the object's own registrations hold and that it can give
// up by itself (internal references).
//
// Threads: the counts may change on any thread. Sharing marks and Unshare are for objects
// whose writer is known to be alone.
class LRefCountedObject : public IUndoable {
 public:
  // A new object has count 0; the first pointer takes it to 1.
  LRefCountedObject();
  LRefCountedObject(const LRefCountedObject&) = delete;
  LRefCountedObject& operator=(const LRefCountedObject&) = delete;

  StringT<char16_t, char> ToString() const override;
  // Throws logic_error unless overridden.
  void Undo() override;

  // Both return the new count. The last reference from outside makes the object release its
  // internal references; the last reference of all deletes it.
  virtual std::int32_t AddRef() {
    return CountOf(mCounts.fetch_add(kOneReference, std::memory_order_relaxed)) + 1;
  }
  virtual std::int32_t Release();

  // Drops the references that keep the object alive from its own registrations, each with
  // DropInternalReferences, and ends with this base form: success when one counted reference
  // and no internal one is left, else kFailure.
  virtual TFRESULT ReleaseInternalReferences();

  // A copy for one owner alone; throws logic_error unless overridden.
  virtual RCPtr<LRefCountedObject> CreateCopy() const;

  // An unshareable object never gets a second holder: who takes a reference gets a copy.
  // Throws runtime_error when it is to become unshareable and has several holders already.
  void SetUnshareable(bool unshareable);
  bool IsShareable() const { return mShareable.load(std::memory_order_relaxed); }

  std::int32_t GetRefCount() const { return CountOf(mCounts.load(std::memory_order_acquire)); }
  std::int32_t GetInternalRefCount() const { return InternalOf(mCounts.load(std::memory_order_acquire)); }

  // For whoever stores or drops a reference that the object can break by itself.
  void AddInternalReferences(std::int32_t count = 1) { mCounts.fetch_add(count * kOneInternal); }
  void DropInternalReferences(std::int32_t count = 1) { mCounts.fetch_sub(count * kOneInternal); }

  // Objects alive in the process; counted in debug builds, else 0.
  static std::int64_t GetLiveCount();

  ~LRefCountedObject() override;

 private:
  // mRefCount in the lower half and mInternalRefCount in the upper, so that one atomic step
  // sees both: two threads that drop the last two outside references must not both take the
  // other for the last.
  static constexpr std::int64_t kOneReference = 1;
  static constexpr std::int64_t kOneInternal = std::int64_t{1} << 32;
  static std::int32_t CountOf(std::int64_t counts) { return static_cast<std::int32_t>(counts & 0xFFFFFFFF); }
  static std::int32_t InternalOf(std::int64_t counts) { return static_cast<std::int32_t>(counts >> 32); }

  void BreakCycles();

  std::atomic<std::int64_t> mCounts{0};
  std::atomic<std::uint32_t> mReleaseGuard{0};
  std::atomic<bool> mShareable{true};
};

}  // namespace TF
