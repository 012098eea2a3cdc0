#pragma once

#include <map>
#include <string_view>

#include "TFFramework/ControlBase/ControlDescriptor.h"
#include "TFFramework/ControlBase/LookDescriptor.h"
#include "TFFramework/ControlBase/VisualPartDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Colorizer.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Orders names so that a text can be looked up without making a string of it.
struct NameOrder {
  using is_transparent = void;
  bool operator()(std::u16string_view left, std::u16string_view right) const { return left < right; }
};

template <class T>
using NameMap = std::map<String, RCPtr<T>, NameOrder>;

// What was read from skin documents. All the skins share what stands here by its name.
struct SkinContents {
  NameMap<LColorizer> mColorizers;
  NameMap<LVisualPartDescriptor> mParts;
  NameMap<LLookDescriptor> mLooks;
  NameMap<LLookList> mLookLists;
  // One node for each skin, which has its font, and its top-level controls in document order.
  RCPtrArray<LControlDescriptor, 1, 0> mSkins;
};

}  // namespace TF
