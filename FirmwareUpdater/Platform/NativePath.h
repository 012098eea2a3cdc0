#pragma once

#include <string>
#include <string_view>

// Paths inside the program are UTF-16 and part their folders with `\`; the system's are bytes
// and part theirs with `/`. A native `\`, a byte that is no valid UTF-8 and the bytes of the
// code units that stand for them become private code units, so that every native name comes
// back byte for byte.
namespace Platform {

// A path from outside in inner form, made absolute against the working directory with its
// links kept. A file in the root becomes `\.\name`, so that its folder is never empty. Empty
// stays empty.
std::u16string FromNativePath(std::string_view native);

// Like FromNativePath, but a relative path stays relative and the root is left as it is.
std::u16string FromNativeName(std::string_view native);

// Text from outside that is no path: only bytes that are no valid UTF-8 change.
std::u16string FromNativeText(std::string_view native);

// What to hand to the system for an inner path.
std::string ToNativePath(std::u16string_view inner);

}  // namespace Platform
