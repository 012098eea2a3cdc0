#include "TFFramework/ObjectBase/RefCountedObject.h"

#include <typeinfo>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

namespace {

// Relaxed, so that counting orders nothing between threads and hides no race.
std::atomic<std::int64_t> liveObjects{0};

void CountObject([[maybe_unused]] std::int64_t change) {
#ifdef TF_COUNT_OBJECTS
  liveObjects.fetch_add(change, std::memory_order_relaxed);
#endif
}

}  // namespace

LRefCountedObject::LRefCountedObject() {
  CountObject(1);
}

LRefCountedObject::~LRefCountedObject() {
  CountObject(-1);
}

std::int64_t LRefCountedObject::GetLiveCount() {
  return liveObjects.load(std::memory_order_relaxed);
}

String LRefCountedObject::ToString() const {
  return FromUtf8("LRefCountedObject::ToString() not overridden. Returning TypeName: " +
                  DemangledName(typeid(*this).name()));
}

void LRefCountedObject::Undo() {
  Throw<std::logic_error>("Undo() not implemented for RefCountedObject", "TF::LRefCountedObject::Undo");
}

std::int32_t LRefCountedObject::Release() {
  bool cyclesBroken = false;
  std::int64_t counts = mCounts.load(std::memory_order_acquire);
  for (;;) {
    if (!cyclesBroken && InternalOf(counts) > 0 && CountOf(counts) - InternalOf(counts) == 1) {
      cyclesBroken = true;
      BreakCycles();
      counts = mCounts.load(std::memory_order_acquire);
      continue;
    }
    if (mCounts.compare_exchange_weak(counts, counts - kOneReference, std::memory_order_acq_rel)) break;
  }
  const std::int32_t left = CountOf(counts) - 1;
  if (left == 0) delete this;
  return left;
}

void LRefCountedObject::BreakCycles() {
  std::uint32_t open = 0;
  if (!mReleaseGuard.compare_exchange_strong(open, 1)) return;
  ReleaseInternalReferences();
  if (GetRefCount() != 1) mReleaseGuard.store(0);
}

TFRESULT LRefCountedObject::ReleaseInternalReferences() {
  const std::int64_t counts = mCounts.load(std::memory_order_acquire);
  return InternalOf(counts) == 0 && CountOf(counts) == 1 ? kSuccess : kFailure;
}

RCPtr<LRefCountedObject> LRefCountedObject::CreateCopy() const {
  Throw<std::logic_error>("CreateCopy() not implemented for RefCountedObject",
                          "TF::LRefCountedObject::CreateCopy");
}

void LRefCountedObject::SetUnshareable(bool unshareable) {
  if (unshareable && GetRefCount() > 1) {
    Throw<std::runtime_error>("", "TF::LRefCountedObject::SetUnshareable");
  }
  mShareable.store(!unshareable, std::memory_order_relaxed);
}

}  // namespace TF
