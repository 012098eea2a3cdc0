#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A blob that is part of the program, such as a document or a picture.
struct Resource {
  std::u16string_view mType;  // Such as u"TFXML".
  std::u16string_view mName;  // In upper case.
  std::span<const unsigned char> mBytes;
};

// Hands in the program's resources, which must stay in place. Once, before any is looked for.
void SetResources(std::span<const Resource> resources);

// The bytes of the resource of this type and name, compared as they stand; nothing when the
// program has none. Any thread.
std::optional<std::span<const unsigned char>> FindResource(std::u16string_view type,
                                                           std::u16string_view name);

// Whether a path stands for a resource: it begins with "::".
bool IsResourcePath(const String& path);
// The resource of this type that such a path stands for: what follows the mark, in upper case and
// with "_" for each ".".
std::optional<std::span<const unsigned char>> FindResourceOfPath(std::u16string_view type,
                                                                 const String& path);

}  // namespace TF
