#include "TFFramework/ControlBase/ChildControlList.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <tuple>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

int CountDockedAxes(const LControl& control) {
  return int{control.IsDocked(LayoutAxis::kX)} + int{control.IsDocked(LayoutAxis::kY)};
}

auto ZKey(const LControl& control) {
  const LLayoutDescriptor& layout = *control.GetLayout();
  return std::tuple(!layout.ClipToParent, CountDockedAxes(control), layout.Z_Order);
}

std::int32_t TabKey(const LControl& control) {
  return control.GetLayout()->TabStop;
}

template <class Key>
void SortBy(std::vector<std::int32_t>& order, const RCPtrArray<LControl>& items, Key key) {
  order.resize(static_cast<std::size_t>(items.GetCount()));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](std::int32_t left, std::int32_t right) {
    return key(*items[left]) < key(*items[right]);
  });
}

}  // namespace

ChildControlList::ChildControlList(LControl& owner) : mOwner(owner) {}

ChildControlList::~ChildControlList() = default;

std::int32_t ChildControlList::GetCount() const {
  return mItems.GetCount();
}

const std::vector<std::int32_t>& ChildControlList::SortedBy(ChildOrder order) const {
  if (mSortedGeneration != mGeneration) {
    SortBy(mZOrder, mItems, ZKey);
    SortBy(mTabOrder, mItems, TabKey);
    mSortedGeneration = mGeneration;
  }
  return order == ChildOrder::kZ ? mZOrder : mTabOrder;
}

const RCPtr<LControl>& ChildControlList::GetAt(std::int32_t index, ChildOrder order) const {
  const bool isKnownOrder =
      order == ChildOrder::kLayout || order == ChildOrder::kZ || order == ChildOrder::kTab;
  if (index < 0 || index >= mItems.GetCount() || !isKnownOrder) {
    Throw<std::runtime_error>("", "TF::LControl::ChildControlList::GetAt");
  }
  if (order == ChildOrder::kLayout) return mItems[index];
  return mItems[SortedBy(order)[static_cast<std::size_t>(index)]];
}

bool ChildControlList::IsChild(const LControl& child) const {
  const std::int32_t index = child.mLayoutIndex;
  return index >= 0 && index < mItems.GetCount() && mItems[index] == &child;
}

std::int32_t ChildControlList::GetIndex(const LControl& child, ChildOrder order) const {
  if (!IsChild(child)) return -1;
  if (order == ChildOrder::kLayout) return child.mLayoutIndex;
  const std::vector<std::int32_t>& sorted = SortedBy(order);
  const auto found = std::find(sorted.begin(), sorted.end(), child.mLayoutIndex);
  return static_cast<std::int32_t>(found - sorted.begin());
}

RCPtr<LControl> ChildControlList::Find(const String& name) const {
  const auto found = mNames.find(name);
  return found == mNames.end() ? nullptr : RCPtr<LControl>(found->second);
}

TFRESULT ChildControlList::AddChild(const RCPtr<LControl>& child) {
  if (!child || child->mLayoutIndex >= 0) return kInvalidArgument;
  const auto [place, isNew] = mNames.try_emplace(child->GetName(), child.Get());
  if (!isNew) return kFailure;
  try {
    mItems.Add(child);
  } catch (...) {
    mNames.erase(place);
    throw;
  }
  child->mLayoutIndex = mItems.GetCount() - 1;
  Touch();
  mOwner.CountUnclipped(child->GetUnclippedCount() + (child->GetClipToParent() ? 0 : 1));
  return kSuccess;
}

std::int32_t ChildControlList::RemoveChild(const RCPtr<LControl>& child) {
  if (!child || !IsChild(*child)) return -1;
  // The child may be the last to hold the owner.
  const RCPtr<LControl> owner(&mOwner), held = child;
  const std::int32_t index = held->mLayoutIndex;
  mOwner.CountUnclipped(-held->GetUnclippedCount() - (held->GetClipToParent() ? 0 : 1));
  ReleaseName(*held);
  held->mParent = nullptr;
  held->mLayoutIndex = -1;
  mItems.RemoveItems(index, 1);
  Renumber(index);
  Touch();
  mOwner.OnChildRemoved(held, index);
  return index;
}

void ChildControlList::Renumber(std::int32_t first) {
  for (std::int32_t index = first; index < mItems.GetCount(); ++index) mItems[index]->mLayoutIndex = index;
}

void ChildControlList::ReleaseName(const LControl& child) {
  const auto found = mNames.find(child.GetName());
  if (found != mNames.end() && found->second == &child) mNames.erase(found);
}

TFRESULT ChildControlList::Rename(const RCPtr<LControl>& child, const String& name) {
  if (!child || !IsChild(*child)) return kInvalidArgument;
  if (child->mName == name) return kNothingDone;
  if (!mNames.try_emplace(name, child.Get()).second) return kFailure;
  const String oldName = child->mName;
  ReleaseName(*child);
  child->mName = name;
  for (std::int32_t index = child->mLayoutIndex + 1; index < mItems.GetCount(); ++index) {
    mItems[index]->RenameReferences(oldName, name);
  }
  return kSuccess;
}

}  // namespace TF
