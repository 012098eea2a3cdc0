#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace TF {

// The virtual key with this name, such as u"VKEY_F1"; nothing for a name in another case or of no key.
std::optional<std::uint8_t> FindVirtualKey(std::u16string_view name);

// What such a key is called in documents, and what people read. Both are empty for a code without a key.
// Where several names share a code, those of the last one.
struct KeyNames {
  std::u16string_view mName;
  std::u16string_view mDisplayText;
};
KeyNames GetKeyNames(std::uint8_t virtualKey);

}  // namespace TF
