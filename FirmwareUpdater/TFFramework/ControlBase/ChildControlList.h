#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LControl;

// The orders in which the children of a control can be walked.
enum class ChildOrder : std::uint32_t {
  kLayout = 0,  // As they were added.
  kZ = 1,       // From the lowest to the highest.
  kTab = 2,
};

// Owns the children of one control. It alone tells a child its place, so that no child has to be
// searched for.
//
// Threads: main thread.
class ChildControlList {
 public:
  explicit ChildControlList(LControl& owner);
  ChildControlList(const ChildControlList&) = delete;
  ChildControlList& operator=(const ChildControlList&) = delete;
  ~ChildControlList();

  std::int32_t GetCount() const;
  // Throws runtime_error for an index or an order that is not there.
  const RCPtr<LControl>& GetAt(std::int32_t index, ChildOrder order) const;
  // The place of a child in one of the orders; -1 for what is no child.
  std::int32_t GetIndex(const LControl& child, ChildOrder order) const;
  // Null for an unknown name. Children that wait for their end have none.
  RCPtr<LControl> Find(const String& name) const;

  // Puts a control that has no parent yet behind the others, and counts what of it is not clipped, up
  // to the top. kFailure when its name is taken, kInvalidArgument for null.
  TFRESULT AddChild(const RCPtr<LControl>& child);
  // Takes the child out, and returns where it stood; -1 when it is none.
  std::int32_t RemoveChild(const RCPtr<LControl>& child);
  // Renames a child, and what the children behind it say of it. kFailure for a name that is taken,
  // kNothingDone for the same name, kInvalidArgument for what is no child.
  TFRESULT Rename(const RCPtr<LControl>& child, const String& name);

  // The child waits for its end: its name is free again.
  void ReleaseName(const LControl& child);
  // One of the values by which children are ordered has changed, or a child has come or gone.
  void Touch() { ++mGeneration; }

 private:
  bool IsChild(const LControl& child) const;
  const std::vector<std::int32_t>& SortedBy(ChildOrder order) const;
  void Renumber(std::int32_t first);

  LControl& mOwner;
  RCPtrArray<LControl> mItems;
  std::map<String, LControl*> mNames;
  std::uint32_t mGeneration = 0;
  mutable std::uint32_t mSortedGeneration = 0;
  mutable std::vector<std::int32_t> mZOrder;
  mutable std::vector<std::int32_t> mTabOrder;
};

}  // namespace TF
