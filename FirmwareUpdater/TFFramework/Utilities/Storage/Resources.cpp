#include "TFFramework/Utilities/Storage/Resources.h"

#include <algorithm>

namespace TF {

namespace {

constexpr std::u16string_view kPathMark = u"::";

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

bool IsResourcePath(const String& path) {
  return path.View().starts_with(kPathMark);
}

std::optional<std::span<const unsigned char>> FindResourceOfPath(std::u16string_view type,
                                                                 const String& path) {
  String name = path.Mid(static_cast<std::int32_t>(kPathMark.size())).ToUpper();
  name.ReplaceAny(u".", u'_');
  return FindResource(type, name);
}

}  // namespace TF
