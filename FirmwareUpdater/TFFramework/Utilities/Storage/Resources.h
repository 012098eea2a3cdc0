#pragma once

#include <optional>
#include <span>
#include <string_view>

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

}  // namespace TF
