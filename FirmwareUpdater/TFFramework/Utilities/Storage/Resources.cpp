#include "TFFramework/Utilities/Storage/Resources.h"

#include <algorithm>

namespace TF {

namespace {

std::span<const Resource> programResources;

}  // namespace

void SetResources(std::span<const Resource> resources) {
  programResources = resources;
}

std::optional<std::span<const unsigned char>> FindResource(std::u16string_view type,
                                                           std::u16string_view name) {
  const auto found = std::find_if(
      programResources.begin(), programResources.end(),
      [&](const Resource& resource) { return resource.mType == type && resource.mName == name; });
  if (found == programResources.end()) return std::nullopt;
  return found->mBytes;
}

}  // namespace TF
